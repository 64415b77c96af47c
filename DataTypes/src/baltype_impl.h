// Shared internals of the BalType files: the process-wide flags and the decimal maxima of the
// current limit mode, plus bit-level helpers that keep the hot paths free of library calls.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>

#include "Util/BalType.h"
#include "Util/ZtDecimal64.h"

namespace BalTypeInternal {

extern std::atomic<unsigned char> g_overflowFlag;
extern std::atomic<unsigned char> g_dbOverflowFlag;

inline void RaiseOverflow() {
    g_overflowFlag.store(1, std::memory_order_relaxed);
}

inline uint64_t Bits(const ZtDecimal64& d) {
    return d.GetInternalToUInt64();
}

inline ZtDecimal64 FromBits(uint64_t bits) {
    ZtDecimal64 d(ZtDecimal64::NoInit);
    d.SetInternallFromUInt64(bits);
    return d;
}

// |d| without a library call: the sign is the top bit in every encoding.
inline ZtDecimal64 Magnitude(const ZtDecimal64& d) {
    return FromBits(Bits(d) & 0x7FFFFFFFFFFFFFFFULL);
}

// True for a zero of any exponent (and a non-canonical coefficient, which reads as zero).
inline bool IsZeroBits(uint64_t bits) {
    if ((bits & 0x6000000000000000ULL) != 0x6000000000000000ULL) {
        return (bits & 0x001FFFFFFFFFFFFFULL) == 0;
    }
    if ((bits & 0x7800000000000000ULL) == 0x7800000000000000ULL) {
        return false; // infinity or NaN
    }
    uint64_t coefficient = (bits & 0x0007FFFFFFFFFFFFULL) | 0x0020000000000000ULL;
    return coefficient > 9999999999999999ULL;
}

extern std::atomic<int> g_limitMode;

inline bool IsNaNBits(uint64_t bits) {
    return (bits & 0x7C00000000000000ULL) == 0x7C00000000000000ULL;
}

// The decimal maxima of each limit mode (9999999999999.99 and 9999999999.99999 in 9-byte mode),
// converted once from the float limits.
struct Maxima {
    ZtDecimal64 dollar[2];
    ZtDecimal64 qty[2];
};
Maxima BuildMaxima(); // converts the float limits of both modes
// Inline so that the limit tests on every stored result cost a guard check, not a call.
inline const Maxima& GetMaxima() {
    static const Maxima maxima = BuildMaxima();
    return maxima;
}

inline int CurrentMode() {
    return g_limitMode.load(std::memory_order_relaxed);
}
inline const ZtDecimal64& DollarMax() {
    return GetMaxima().dollar[CurrentMode()];
}
inline const ZtDecimal64& QtyMax() {
    return GetMaxima().qty[CurrentMode()];
}

// |x| > |limit| for a finite limit, read from the encodings: the limit tests run on every
// stored result, and this keeps them free of library calls. A NaN is never greater (as with the
// library's quiet comparison); an infinity always is.
inline bool MagnitudeExceeds(uint64_t x, uint64_t limit) {
    static constexpr uint64_t kPow10[20] = {1ULL,
                                            10ULL,
                                            100ULL,
                                            1000ULL,
                                            10000ULL,
                                            100000ULL,
                                            1000000ULL,
                                            10000000ULL,
                                            100000000ULL,
                                            1000000000ULL,
                                            10000000000ULL,
                                            100000000000ULL,
                                            1000000000000ULL,
                                            10000000000000ULL,
                                            100000000000000ULL,
                                            1000000000000000ULL,
                                            10000000000000000ULL,
                                            100000000000000000ULL,
                                            1000000000000000000ULL,
                                            10000000000000000000ULL};
    struct Parts {
        uint64_t coefficient;
        int exponent;
    };
    auto decode = [](uint64_t bits) {
        Parts p;
        if ((bits & 0x6000000000000000ULL) == 0x6000000000000000ULL) {
            p.exponent = static_cast<int>((bits >> 51) & 0x3FF) - 398;
            p.coefficient = (bits & 0x0007FFFFFFFFFFFFULL) | 0x0020000000000000ULL;
            if (p.coefficient > 9999999999999999ULL) {
                p.coefficient = 0; // non-canonical: reads as zero
            }
        } else {
            p.exponent = static_cast<int>((bits >> 53) & 0x3FF) - 398;
            p.coefficient = bits & 0x001FFFFFFFFFFFFFULL;
        }
        return p;
    };
    if ((x & 0x7800000000000000ULL) == 0x7800000000000000ULL) {
        return !IsNaNBits(x); // infinity exceeds everything, NaN nothing
    }
    Parts a = decode(x), m = decode(limit);
    if (a.coefficient == 0) {
        return false;
    }
    int shift = a.exponent - m.exponent;
    if (shift >= 0) {
        // a.coefficient >= 1, so a shift of 20 or more exceeds any coefficient below 10^16.
        return shift >= 20 ||
               static_cast<unsigned __int128>(a.coefficient) * kPow10[shift] > m.coefficient;
    }
    shift = -shift;
    return shift < 20 &&
           a.coefficient > static_cast<unsigned __int128>(m.coefficient) * kPow10[shift];
}

inline bool ExceedsDollarMax(const ZtDecimal64& x) {
    return MagnitudeExceeds(Bits(x), Bits(DollarMax()));
}
inline bool ExceedsQtyMax(const ZtDecimal64& x) {
    return MagnitudeExceeds(Bits(x), Bits(QtyMax()));
}

// Stores a number with its flags under the current limits: a quantity beyond its maximum is kept
// as a dollar amount on purpose, a dollar amount beyond its maximum becomes an error value.
// Rounds to 5 or 2 places when asked. The body of SetFromDecimalWithoutNANChecking, inline so
// that the arithmetic paths pay no call for it.
inline void StoreUnderLimits(BalType& target, const ZtDecimal64& number, bool qty, bool percent,
                             bool round) {
    unsigned char bits = static_cast<unsigned char>((percent ? BalType::kPercentBit : 0) | qty);
    if (qty) {
        if (!ExceedsQtyMax(number)) {
            ZtDecimal64 value = number;
            if (round) {
                value.RoundToPlace(-5);
            }
            target._SetRaw(bits, value);
            return;
        }
        bits &= static_cast<unsigned char>(~BalType::kQtyBit);
    }
    if (ExceedsDollarMax(number)) {
        target._SetRaw(static_cast<unsigned char>(bits | BalType::kErrorBit),
                       ZtDecimal64::m_internal_zero);
        RaiseOverflow();
        return;
    }
    ZtDecimal64 value = number;
    if (round) {
        value.RoundToPlace(-2);
    }
    target._SetRaw(bits, value);
}

} // namespace BalTypeInternal
