// ZtDecimal64: an IEEE 754-2008 decimal64 number (16 significant digits, binary-integer-decimal
// encoding) in one 64-bit word, with no other state.
//
// Contract:
// - All arithmetic, conversion and classification is done by the Intel decimal library with its
//   default rounding (to nearest, ties to even); results are rounded to 16 digits.
// - Nothing throws. Invalid operations yield NaN; the value getters report failure through
//   their Status out-parameter only (invalid, division by zero, overflow or underflow raised;
//   inexact alone is not a failure).
// - Zero is stored as +0 with exponent 0 (raw 0x31C0000000000000), the value of m_internal_zero.
// - The place-based rounding helpers round at the digit 10^place (place -2: hundredths).
//   RoundUp deliberately leaves the value unchanged.
// - Values are plain data; the library's status flags belong to the calling thread in the build
//   we link, so concurrent conversions on different threads do not see each other's flags.
#pragma once

#include <cstdint>

#include "Util/Export.h"
#include "Util/TString.h"

class ZTUTIL_API ZtDecimal64 {
public:
    // Out-parameter of the value getters.
    enum Status { Converted = 0, Failed = 1 };
    // Selects the constructor that leaves the bits unset.
    enum _NoInit { NoInit };

    ZtDecimal64() : m_value(kZeroBits) {}
    ZtDecimal64(int value);
    ZtDecimal64(long value); // so that a long (LONG on Windows) is not ambiguous
    ZtDecimal64(long long value);
    ZtDecimal64(double value);
    ZtDecimal64(const char* text);
    explicit ZtDecimal64(_NoInit) {}
    ZtDecimal64(const ZtDecimal64&) = default;
    ZtDecimal64& operator=(const ZtDecimal64&) = default;

    // Raw BID bits.
    uint64_t GetInternalToUInt64() const { return m_value; }
    void SetInternallFromUInt64(uint64_t bits) { m_value = bits; }
    static const ZtDecimal64& GetInternalZero() { return m_internal_zero; }

    // Setters.
    void SetInt32Value(int32_t value);
    void SetUInt32Value(uint32_t value);
    void SetInt64Value(int64_t value);
    void SetUInt64Value(uint64_t value);
    void SetDoubleValue(double value);
    void SetStringValue(const char* text);
    void SetZero() { m_value = kZeroBits; }
    void SetWhole(const ZtDecimal64& whole);
    void SetFraction(const ZtDecimal64& fraction);
    void MakeAbs();
    void Negate();

    // Getters reporting failure through status. Values with a fraction are truncated toward
    // zero; on failure the library's own result is returned.
    int32_t GetInt32Value(Status& status) const;
    uint32_t GetUInt32Value(Status& status) const;
    int64_t GetInt64Value(Status& status) const;
    uint64_t GetUInt64Value(Status& status) const;
    double GetDoubleValue(Status& status) const;

    // The library's own text form: sign, coefficient digits, "E", signed exponent (+1234E-2).
    Util::TString GetStringValue() const;
    ZtDecimal64 GetWhole() const;          // |trunc(x)|
    ZtDecimal64 GetSignedWhole() const;    // trunc(x)
    ZtDecimal64 GetFraction() const;       // |x - trunc(x)|
    ZtDecimal64 GetSignedFraction() const; // also non-negative: equals GetFraction
    ZtDecimal64 Abs() const;

    // Classification.
    bool IsZero() const;
    bool IsNegative() const { return (m_value >> 63) != 0; } // so -0 is negative
    bool IsNaN() const;
    bool IsSignaling() const;
    bool IsInfinite() const;
    bool IsSubnormal() const;
    bool IsCanonical() const;

    // Place-based rounding, in place.
    ZtDecimal64& RoundToPlace(int place);  // ties away from zero
    ZtDecimal64& RoundHalfUp(int place);   // ties away from zero
    ZtDecimal64& RoundHalfEven(int place); // ties to even
    ZtDecimal64& RoundDown(int place);     // toward zero
    ZtDecimal64& RoundUp(int place);       // leaves the value unchanged
    ZtDecimal64& ScaleByPowerOf10(int n);  // x * 10^n
    static ZtDecimal64 ScaleB(const ZtDecimal64& value, int n);
    static ZtDecimal64 FMA(const ZtDecimal64& a, const ZtDecimal64& b, const ZtDecimal64& c);

    // Arithmetic and quiet comparison are free functions (below) taking values: a ZtDecimal64
    // travels in a register, so each is a single jump into the library (+ and - first try the
    // exact inline case of two numbers with the same exponent).
    friend ZTUTIL_API ZtDecimal64 operator*(ZtDecimal64 lhs, ZtDecimal64 rhs);
    friend ZTUTIL_API ZtDecimal64 operator/(ZtDecimal64 lhs, ZtDecimal64 rhs);
    friend ZTUTIL_API ZtDecimal64 operator%(ZtDecimal64 lhs, ZtDecimal64 rhs);
    ZtDecimal64 operator-() const;
    ZtDecimal64& operator+=(const ZtDecimal64& rhs);
    ZtDecimal64& operator-=(const ZtDecimal64& rhs);
    ZtDecimal64& operator*=(const ZtDecimal64& rhs);
    ZtDecimal64& operator/=(const ZtDecimal64& rhs);
    ZtDecimal64& operator%=(const ZtDecimal64& rhs);

    // Shared constants, built on first use.
    static const ZtDecimal64& Zero();
    static const ZtDecimal64& GetMax(); // 9999999999999.99
    static const ZtDecimal64& GetMin(); // -9999999999999.99

    static const ZtDecimal64 m_internal_zero;

private:
    static constexpr uint64_t kZeroBits = 0x31C0000000000000ULL;
    enum RawBits { Raw };
    constexpr ZtDecimal64(uint64_t bits, RawBits) : m_value(bits) {}
    bool IsPositive() const { return (m_value >> 63) == 0; }

    uint64_t m_value;
};

static_assert(sizeof(ZtDecimal64) == 8, "ZtDecimal64 is one 64-bit word");

// Arithmetic, rounded to 16 digits. % is the truncating remainder (sign of the dividend).
// ZtDecimal64Add and ZtDecimal64Subtract are the library's addition and subtraction; the
// operators + and - call them unless the inline case below gives the same result.
ZTUTIL_API ZtDecimal64 ZtDecimal64Add(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API ZtDecimal64 ZtDecimal64Subtract(ZtDecimal64 lhs, ZtDecimal64 rhs);

namespace ZtDecimal64Inline {

constexpr uint64_t kSignBit = 1ULL << 63;
constexpr uint64_t kLongForm = 3ULL << 61; // both set: a long coefficient, infinity or NaN
constexpr uint64_t kExponentBits = 0x3FFULL << 53;
constexpr uint64_t kShortCoefficient = (1ULL << 53) - 1;

// The sum of two numbers (BID bits) that both have the short encoding and the same exponent:
// exact, with that exponent and no status flag, as the library computes it. False (and the
// library decides) when the sum needs the long encoding or is a zero from opposite signs, whose
// sign depends on the rounding mode.
inline bool AddSameExponent(uint64_t a, uint64_t b, uint64_t& sum) {
    if ((a & kLongForm) == kLongForm || (b & kLongForm) == kLongForm ||
        ((a ^ b) & kExponentBits) != 0)
        return false;
    const uint64_t ca = a & kShortCoefficient;
    const uint64_t cb = b & kShortCoefficient;
    if (((a ^ b) & kSignBit) == 0) {
        if (ca + cb > kShortCoefficient)
            return false;
        sum = (a & ~kShortCoefficient) | (ca + cb);
        return true;
    }
    if (ca == cb)
        return false;
    sum = ca > cb ? (a & ~kShortCoefficient) | (ca - cb) : (b & ~kShortCoefficient) | (cb - ca);
    return true;
}

} // namespace ZtDecimal64Inline

inline ZtDecimal64 operator+(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    uint64_t bits;
    if (!ZtDecimal64Inline::AddSameExponent(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64(),
                                            bits))
        return ZtDecimal64Add(lhs, rhs);
    ZtDecimal64 sum(ZtDecimal64::NoInit);
    sum.SetInternallFromUInt64(bits);
    return sum;
}

inline ZtDecimal64 operator-(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    uint64_t bits;
    if (!ZtDecimal64Inline::AddSameExponent(lhs.GetInternalToUInt64(),
                                            rhs.GetInternalToUInt64() ^ ZtDecimal64Inline::kSignBit,
                                            bits))
        return ZtDecimal64Subtract(lhs, rhs);
    ZtDecimal64 difference(ZtDecimal64::NoInit);
    difference.SetInternallFromUInt64(bits);
    return difference;
}
ZTUTIL_API ZtDecimal64 operator*(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API ZtDecimal64 operator/(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API ZtDecimal64 operator%(ZtDecimal64 lhs, ZtDecimal64 rhs);

// Quiet comparisons: every comparison with a NaN is false except !=; -0 equals +0.
ZTUTIL_API bool operator==(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API bool operator!=(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API bool operator<(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API bool operator<=(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API bool operator>(ZtDecimal64 lhs, ZtDecimal64 rhs);
ZTUTIL_API bool operator>=(ZtDecimal64 lhs, ZtDecimal64 rhs);
