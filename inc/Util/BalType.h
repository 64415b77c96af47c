// BalType: the application's balance value, a 9-byte packed flagged decimal.
//
// Contract:
// - One flag byte followed by the 8 raw bytes of a ZtDecimal64. The value is a dollar amount
//   (kept to 2 decimal places) or a quantity (5 places), may be a percent (100 = one whole),
//   and has explicit empty and error states. The sign lives in the number (-0 exists).
// - While the "not initialised" bit is set the number reads as ZtDecimal64::m_internal_zero and
//   the stored bytes are never looked at; every writer of the number clears that bit first.
// - Nothing throws and nothing returns a status: overflow and invalid operations produce an
//   error value (error bit, zero number) and raise the process-wide overflow flag, which no
//   operation clears again.
// - Limits follow the process-wide limit mode of BaltypeLimits (9-byte or the older 6-byte
//   layout). The limit mode, the overflow flags, the decimal separator and the cached largest
//   values are process-wide, lock-free and safe to use from any thread.
// - BalTypeLegacy_6Bytes reads and writes the 6-byte record layout of older data files.
#pragma once

#include <cstdint>
#include <cstring>
#include <iosfwd>

#include "Util/Export.h"
#include "Util/TString.h"
#include "Util/ZtDecimal64.h"

enum BalKind { BalKindDollar = 0, BalKindQty = 1 };
enum BalSign { BalSignPositive = 0, BalSignNegative = 1 };

class ZTUTIL_API BaltypeLimits {
public:
    enum LimitMode { LimitMode9Byte = 0, LimitMode6Byte = 1 };

    enum BalTypeLimitValueEnum {
        LimitZero = 0,
        DollarWholeBound = 1, // exclusive
        QtyWholeBound = 2,    // exclusive
        QtyMaxWhole = 3,
        QtyMaxFraction = 4, // in 1/100000
        DollarMaxWhole = 5,
        DollarMaxCents = 6,
        DollarWholeDigits = 7,
        DollarFractionDigits = 8,
        QtyWholeDigits = 9,
        QtyFractionDigits = 10,
        MaxFiveDigitFraction = 11,
        MaxMinute = 12,
        MaxHour = 13,
        RawDollarBound = 14, // used by BalTypeULAdd
        RawQtyBound = 15,
        RawQtyMaxWhole = 16,
        LimitCount = 17
    };

    enum BalTypeFloatLimitValueEnum {
        FloatLimitZero = 0,
        FloatLimitDollarMax = 1,
        FloatLimitQtyMax = 2,
        FloatLimitCount = 3
    };

    // Keeps the current mode unless mode is LimitMode9Byte or LimitMode6Byte.
    static void SetLimitMode(int mode);
    static LimitMode GetLimitMode();

    // Entries of the current mode's row, or of a fixed row; an unknown index reads 0.
    static int64_t GetLimit(BalTypeLimitValueEnum index);
    static int64_t GetLimit_9byteBalType(BalTypeLimitValueEnum index);
    static int64_t GetLimit_6byteBalType(BalTypeLimitValueEnum index);
    static double GetFloatLimit(BalTypeFloatLimitValueEnum index);
    static double GetFloatLimit_9byteBalType(BalTypeFloatLimitValueEnum index);
    static double GetFloatLimit_6byteBalType(BalTypeFloatLimitValueEnum index);
};

class ZTUTIL_API BalType {
public:
    enum BalTypeIntialValue {
        ZeroDollarValue = 0,
        ZeroQtyValue = 1,
        EmptyDollarValue = 2,
        EmptyQtyValue = 3
    };

    // Flag bits, and whole flag bytes: the initial values and the results of operations on error
    // values. Enumerators rather than static data members, so that a program using them through
    // the DLL on Windows needs no imported object.
    enum : unsigned char {
        kQtyBit = 0x01,
        kErrorBit = 0x04,
        kPercentBit = 0x08,
        kEmptyBit = 0x10,
        kUninitBit = 0x20,
        kZeroDollarBits = kUninitBit,
        kZeroQtyBits = kUninitBit | kQtyBit,
        kEmptyDollarBits = kUninitBit | kEmptyBit,
        kEmptyQtyBits = kUninitBit | kEmptyBit | kQtyBit,
        kErrorDollarBits = kUninitBit | kErrorBit,
        kErrorQtyBits = kUninitBit | kErrorBit | kQtyBit
    };

    BalType() : m_mbits(kZeroDollarBits), m_number{} {}
    // Zero dollar, zero quantity, empty dollar or empty quantity; any other value leaves the
    // flag byte as it was (unset bytes read as zero dollar).
    BalType(BalTypeIntialValue initial);
    BalType(const BalType&) = default;
    BalType& operator=(const BalType&) = default;
    ~BalType() = default;

    // Raw access.
    unsigned char _GetMbits() const { return m_mbits; }
    void _SetMbits(unsigned char bits) { m_mbits = bits; }
    ZtDecimal64 _GetZtDecimal() const {
        uint64_t bits;
        std::memcpy(&bits, m_number, sizeof bits);
        ZtDecimal64 number(ZtDecimal64::NoInit);
        number.SetInternallFromUInt64(bits);
        return number;
    }
    // Flag byte and number at once, written as one 8-byte and one 1-byte store so that a value
    // returned in registers right after it is read back without a store-forwarding stall.
    void _SetRaw(unsigned char bits, const ZtDecimal64& number) {
        const uint64_t value = number.GetInternalToUInt64();
        const uint64_t low = bits | (value << 8);
        const unsigned char high = static_cast<unsigned char>(value >> 56);
        std::memcpy(this, &low, sizeof low);
        std::memcpy(reinterpret_cast<unsigned char*>(this) + sizeof low, &high, 1);
    }
    void _SetZtDecimal(const ZtDecimal64& number) {
        uint64_t bits = number.GetInternalToUInt64();
        std::memcpy(m_number, &bits, sizeof bits);
    }

    // Queries.
    bool IsDollar() const { return (m_mbits & kQtyBit) == 0; }
    bool IsQty() const { return (m_mbits & kQtyBit) != 0; }
    bool IsPercent() const { return (m_mbits & kPercentBit) != 0; }
    bool IsEmpty() const { return (m_mbits & kEmptyBit) != 0; }
    bool IsError() const { return (m_mbits & kErrorBit) != 0; }
    bool IsZtDecimalInitilized() const { return (m_mbits & kUninitBit) == 0; }
    bool IsZero() const;
    bool IsNegative() const { return GetDecimalAmount().IsNegative(); }
    bool IsPositive() const { return !IsNegative(); }
    BalSign GetSign() const { return IsNegative() ? BalSignNegative : BalSignPositive; }
    BalKind GetKind() const { return IsQty() ? BalKindQty : BalKindDollar; }
    // The number; the shared zero while the number is not initialised. Returned by value: the
    // packed layout leaves the number unaligned.
    ZtDecimal64 GetDecimalAmount() const {
        return (m_mbits & kUninitBit) ? ZtDecimal64::m_internal_zero : _GetZtDecimal();
    }
    uint64_t GetDollars() const; // |whole part|; 0 if uninitialised or not convertible
    unsigned GetCents() const;   // first two fraction digits
    void GetQty(uint64_t& whole, uint32_t& fraction) const; // fraction in 1/100000
    uint64_t AsPennies() const;                             // ignores the sign

    // Setters.
    void SetKind(BalKind kind);
    void SetKindDollar() { SetKind(BalKindDollar); }
    void SetKindQty() { SetKind(BalKindQty); }
    void SetPercent(bool percent);
    void SetSign(BalSign sign);
    void SetNegative() { SetSign(BalSignNegative); }
    void SetPositive() { SetSign(BalSignPositive); }
    void Negate();
    void Abs();
    BalType operator-() const;
    void SetDollars(uint64_t dollars);
    void SetCents(unsigned cents);
    void SetDollarsAndCents(uint64_t dollars, unsigned cents);
    void SetFromPennies(uint64_t pennies);
    void SetQty(uint64_t whole, uint32_t fraction); // fraction in 1/100000
    void Compose(uint64_t whole, uint32_t fraction, BalKind kind);
    void Decompose(uint64_t& whole, uint32_t& fraction, BalKind& kind) const;
    void SetFromDecimal(const ZtDecimal64& number, BalKind kind, bool percent, bool round);
    void SetFromDecimalWithoutLimitChecking(const ZtDecimal64& number, BalKind kind, bool percent,
                                            bool round);
    void SetFromDecimalWithoutNANChecking(const ZtDecimal64& number, BalKind kind, bool percent,
                                          bool round);
    void SetError();
    void SetErrorDBReadError();
    void SetZeroDollar() { m_mbits = kZeroDollarBits; }
    void SetZeroQty() { m_mbits = kZeroQtyBits; }
    void SetEmptyDollar() { m_mbits = kEmptyDollarBits; }
    void SetEmptyQty() { m_mbits = kEmptyQtyBits; }
    void ClearEmpty() { m_mbits &= static_cast<unsigned char>(~kEmptyBit); }
    void LargePositiveDollar();
    void LargeNegativeDollar();
    void LargePositiveQty();
    void LargeNegativeQty();
    void String2Dollar(const Util::TString& text);
    void String2Qty(const Util::TString& text);

    // Arithmetic (BalAddPtr, BalSubtract, BalMultiply, BalDivide) and picky comparison.
    BalType operator+(const BalType& rhs) const;
    BalType operator-(const BalType& rhs) const;
    BalType operator*(const BalType& rhs) const;
    BalType operator/(const BalType& rhs) const;
    BalType& operator+=(const BalType& rhs);
    BalType& operator-=(const BalType& rhs);
    bool operator==(const BalType& rhs) const;
    bool operator!=(const BalType& rhs) const;
    bool operator<(const BalType& rhs) const;
    bool operator<=(const BalType& rhs) const;
    bool operator>(const BalType& rhs) const;
    bool operator>=(const BalType& rhs) const;

private:
    void StoreNumber(const ZtDecimal64& number); // clears the uninitialised bit
    void StoreError();                           // error bit, zero number, overflow flag
    void ApplyDollarMaximum();

    unsigned char m_mbits;
    unsigned char m_number[8];
};

static_assert(sizeof(BalType) == 9, "BalType is 9 packed bytes");
static_assert(alignof(BalType) == 1, "BalType has no alignment padding");

// The 6-byte record layout of older data files. Byte 0: bit 0 kind (1 = quantity), bit 1 sign,
// bit 2 error, bit 3 percent, bit 4 empty, bit 7 (quantity) bit 16 of the fraction. A dollar
// amount keeps its cents in byte 1 and whole dollars in bytes 2-5 (uint32, little-endian); a
// quantity keeps the low 16 bits of its fraction (1/100000) in bytes 1-2 and its whole part in
// bytes 3-5 (24-bit, little-endian).
class ZTUTIL_API BalTypeLegacy_6Bytes {
public:
    // Bits of byte 0.
    enum : unsigned char {
        kQtyBit = 0x01,
        kSignBit = 0x02,
        kErrorBit = 0x04,
        kPercentBit = 0x08,
        kEmptyBit = 0x10,
        kFractionBit16 = 0x80
    };

    BalTypeLegacy_6Bytes() : m_bytes{} {}
    explicit BalTypeLegacy_6Bytes(const BalType& value);
    BalTypeLegacy_6Bytes& operator=(const BalType& value);

    void Compose(uint32_t whole, uint32_t fraction, BalKind kind);
    void Decompose(uint32_t& whole, uint32_t& fraction, BalKind& kind) const;
    void GetQty(uint32_t& whole, uint32_t& fraction) const;
    bool IsZero() const;
    bool IsDollar() const { return (m_bytes[0] & kQtyBit) == 0; }
    bool IsEmpty() const { return (m_bytes[0] & kEmptyBit) != 0; }
    bool IsError() const { return (m_bytes[0] & kErrorBit) != 0; }
    bool IsPercent() const { return (m_bytes[0] & kPercentBit) != 0; }
    bool IsNegative() const { return (m_bytes[0] & kSignBit) != 0; }
    BalKind GetKind() const { return (m_bytes[0] & kQtyBit) ? BalKindQty : BalKindDollar; }

    void SetFromLegacy6Bytes(BalType& target) const;

    const unsigned char* GetBytes() const { return m_bytes; }
    void SetBytes(const unsigned char bytes[6]);

private:
    unsigned char m_bytes[6];
};

static_assert(sizeof(BalTypeLegacy_6Bytes) == 6, "BalTypeLegacy_6Bytes is 6 packed bytes");

ZTUTIL_API int BalPickyCompareLegacy6Bytes(const BalTypeLegacy_6Bytes& a,
                                           const BalTypeLegacy_6Bytes& b, bool ignoreEmpty);

// Arithmetic. The Ptr forms allow the result to alias an operand.
ZTUTIL_API BalType BalAdd(const BalType& a, const BalType& b);
ZTUTIL_API void BalAddPtr(BalType* result, const BalType* a, const BalType* b);
ZTUTIL_API BalType BalSubtract(const BalType& a, const BalType& b);
ZTUTIL_API void BalSubtractPtr(BalType* result, const BalType* a, const BalType* b);
ZTUTIL_API BalType BalMultiply(const BalType& a, const BalType& b);     // dollar result
ZTUTIL_API BalType BalMultiplyQnty(const BalType& a, const BalType& b); // quantity result
ZTUTIL_API BalType BalDivide(const BalType& a, const BalType& b);       // quantity result
ZTUTIL_API BalType BalScale(const BalType& a, const BalType& b, const BalType& c); // a*b/c
ZTUTIL_API BalType QtyScale(const BalType& a, const BalType& b, const BalType& c);
ZTUTIL_API BalType BalAbs(const BalType& a);
ZTUTIL_API BalType BalNegate(const BalType& a);
ZTUTIL_API void BalSetSign(BalType* value, short sign); // negative when sign < 0
ZTUTIL_API int BalAbsCompare(const BalType& a, const BalType& b);
ZTUTIL_API int BalPickyCompare(const BalType& a, const BalType& b, bool ignoreEmpty);
// Rounds (ties away from zero) to 10^places, or to decimals places after the point; at most one
// of the two may be non-zero. Error and empty values come back unchanged.
ZTUTIL_API BalType BalRound(const BalType& value, int places, int decimals);

// Construction and conversion.
ZTUTIL_API BalType BalCreate(BalSign sign, uint64_t dollars, unsigned cents);
ZTUTIL_API BalType QntyCreate(BalSign sign, uint64_t whole, uint32_t fraction, bool percent);
ZTUTIL_API void ExtractBal(const BalType& value, uint64_t& whole, uint32_t& fraction,
                           uint32_t& fractionMax, BalKind& kind);
ZTUTIL_API BalType Bal2Percent(const BalType& value);
ZTUTIL_API BalType Bal2Qnty(const BalType& value);
ZTUTIL_API BalType Qnty2Bal(const BalType& value);
ZTUTIL_API BalType Double2Bal(double value);
ZTUTIL_API BalType Double2Bal(double value, BalKind kind);
ZTUTIL_API double Bal2Double(const BalType& value);
extern "C" ZTUTIL_API double Bal2DoubleExternC(const BalType* value);
ZTUTIL_API BalType MultiplyWithDouble(const BalType& value, double factor, int digits,
                                      BalKind kind);
ZTUTIL_API BalType DivideWithDouble(const BalType& value, double divisor, int digits, BalKind kind);
ZTUTIL_API BalType String2Bal(const char* text);
ZTUTIL_API BalType String2Qnty(const char* text);
ZTUTIL_API void SetBalTypeTypeBasedOnZerosAfterDecimal(BalType& value);

// Tests.
ZTUTIL_API bool IsZero(const BalType& value);
ZTUTIL_API bool IsNonZero(const BalType& value);
ZTUTIL_API bool IsGTZero(const BalType& value);
ZTUTIL_API bool IsLTZero(const BalType& value);
ZTUTIL_API bool ValidateAmount(BalType* value);
ZTUTIL_API bool ValidateMaxLimit(const BalType& value);
ZTUTIL_API bool BalTypeULAdd(uint64_t a, uint64_t b, uint64_t& sum);

// Process-wide flags. The overflow flag is raised by every operation that produces an error
// value; only ResetBalTypeOverflowFlag lowers it. The DB overflow flag marks values that could
// not be read from a data file.
ZTUTIL_API bool GetBalTypeOverflowFlag();
ZTUTIL_API void ResetBalTypeOverflowFlag();
ZTUTIL_API bool GetBalTypeDBOverflowFlag();
ZTUTIL_API void ClearDBOverflowFlag();

// The decimal separator String2Bal and String2Qnty accept: the first character of the user's
// monetary decimal separator, read on first use; SetBalTypeDecimalSeparator overrides it.
ZTUTIL_API char GetBalTypeDecimalSeparator();
ZTUTIL_API void SetBalTypeDecimalSeparator(char separator);

// Shared values.
ZTUTIL_API const ZtDecimal64& BalTypeZeroValue(); // ZtDecimal64::m_internal_zero
ZTUTIL_API uint64_t ZtDecimalZeroValue();         // raw bits of decimal zero
ZTUTIL_API const ZtDecimal64& BalTypeDollarMaxValue();
ZTUTIL_API const ZtDecimal64& BalTypeQtyMaxValue();
ZTUTIL_API const BalType& BalType_ZERO_DOLLAR();
ZTUTIL_API const BalType& BalType_NEG_ZERO();
ZTUTIL_API const BalType& BalType_ONE_DOLLAR();
ZTUTIL_API const BalType& BalType_ONE_QUANTITY();
ZTUTIL_API const BalType& BalType_ZERO_PCT();
ZTUTIL_API const BalType& BalType_HUNDRED_PCT();
ZTUTIL_API const BalType& refBalEmptyDollar();
ZTUTIL_API const BalType& refBalEmptyQty();
ZTUTIL_API BalType BalEmptyDollar();
ZTUTIL_API BalType BalEmptyQty();

// "Dollars <n>\nCents <n>\n"; operator>> reads that text back (any label before each number).
ZTUTIL_API std::ostream& operator<<(std::ostream& out, const BalType& value);
ZTUTIL_API std::istream& operator>>(std::istream& in, BalType& value);
