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

inline bool IsNaNBits(uint64_t bits) {
    return (bits & 0x7C00000000000000ULL) == 0x7C00000000000000ULL;
}

// The decimal maxima of the current limit mode (9999999999999.99 and 9999999999.99999 in 9-byte
// mode), converted once from the float limits.
const ZtDecimal64& DollarMax();
const ZtDecimal64& QtyMax();

} // namespace BalTypeInternal
