// BalType arithmetic, comparison and rounding, with their empty, error and percent rules.
#include "Util/BalType.h"

#include "DataTypes/src/baltype_impl.h"
#include "DataTypes/src/ztdecimal64_bid.h"

using namespace BalTypeInternal;

namespace {
constexpr unsigned char kQty = BalType::kQtyBit;
constexpr unsigned char kError = BalType::kErrorBit;
constexpr unsigned char kPercent = BalType::kPercentBit;
constexpr unsigned char kEmpty = BalType::kEmptyBit;
constexpr unsigned char kUninit = BalType::kUninitBit;
constexpr uint64_t kSignBit = 0x8000000000000000ULL;

// The result of an operation on an error value, or an invalid one: zero with the error bit.
void SetErrorResult(BalType* result, unsigned char bits) {
    result->_SetRaw(bits, ZtDecimal64::m_internal_zero);
    RaiseOverflow();
}

ZtDecimal64 Percentage(const ZtDecimal64& number) {
    return ZtDecimal64::ScaleB(number, -2);
}

// With exactly one percent operand, that operand is taken as a fraction of one.
void ScaleLonePercent(unsigned char ma, unsigned char mb, ZtDecimal64& x, ZtDecimal64& y) {
    if ((ma ^ mb) & kPercent) {
        if (ma & kPercent) {
            x = Percentage(x);
        } else {
            y = Percentage(y);
        }
    }
}

} // namespace

namespace {
// The one addition behind BalAddPtr, BalSubtractPtr and the operators; the result may alias an
// operand. Subtraction adds b with its sign flipped (an uninitialised b stays as it is).
inline void AddInto(BalType* result, const BalType* a, const BalType* b, bool negateB) {
    const unsigned char ma = a->_GetMbits();
    const unsigned char mb = b->_GetMbits();
    if ((ma | mb) & (kError | kEmpty)) {
        if ((ma | mb) & kError) {
            SetErrorResult(result, BalType::kErrorDollarBits);
            return;
        }
        const bool aEmpty = (ma & kEmpty) != 0;
        BalType value = aEmpty ? *b : *a;
        if (aEmpty && negateB && !(mb & kUninit)) {
            value._SetZtDecimal(FromBits(Bits(value._GetZtDecimal()) ^ kSignBit));
        }
        const unsigned char otherBits = aEmpty ? ma : mb;
        if (!(otherBits & kQty)) {
            value.SetKindDollar();
        }
        *result = value;
        return;
    }

    const bool bothQty = (ma & mb & kQty) != 0;
    const bool bothPercent = (ma & mb & kPercent) != 0;
    const bool kindsDiffer = ((ma ^ mb) & kQty) != 0;
    ZtDecimal64 x = a->GetDecimalAmount();
    ZtDecimal64 y = b->GetDecimalAmount();
    if (negateB && !(mb & kUninit)) {
        y = FromBits(Bits(y) ^ kSignBit);
    }
    ScaleLonePercent(ma, mb, x, y);

    const bool aZero = (ma & kUninit) || IsZeroBits(Bits(x));
    const bool bZero = (mb & kUninit) || IsZeroBits(Bits(y));
    if (aZero || bZero) {
        ZtDecimal64 number = aZero ? y : x;
        if (kindsDiffer) {
            number.RoundToPlace(bothQty ? -5 : -2);
        }
        result->_SetRaw(static_cast<unsigned char>((bothPercent ? kPercent : 0) | bothQty), number);
        return;
    }
    StoreUnderLimits(*result, FromBits(bid64_add(Bits(x), Bits(y))), bothQty, bothPercent,
                     kindsDiffer);
}

} // namespace

void BalAddPtr(BalType* result, const BalType* a, const BalType* b) {
    AddInto(result, a, b, false);
}

BalType BalType::operator+(const BalType& rhs) const {
    BalType result;
    AddInto(&result, this, &rhs, false);
    return result;
}

BalType& BalType::operator+=(const BalType& rhs) {
    AddInto(this, this, &rhs, false);
    return *this;
}

BalType BalType::operator-(const BalType& rhs) const {
    BalType result;
    AddInto(&result, this, &rhs, true);
    return result;
}

BalType& BalType::operator-=(const BalType& rhs) {
    AddInto(this, this, &rhs, true);
    return *this;
}

BalType BalAdd(const BalType& a, const BalType& b) {
    BalType result;
    BalAddPtr(&result, &a, &b);
    return result;
}

void BalSubtractPtr(BalType* result, const BalType* a, const BalType* b) {
    AddInto(result, a, b, true);
}

BalType BalSubtract(const BalType& a, const BalType& b) {
    BalType result;
    BalSubtractPtr(&result, &a, &b);
    return result;
}

namespace {
BalType Multiply(const BalType& a, const BalType& b, bool qtyResult) {
    const unsigned char ma = a._GetMbits();
    const unsigned char mb = b._GetMbits();
    BalType result;
    if ((ma | mb) & kError) {
        SetErrorResult(&result, BalType::kErrorDollarBits);
        return result;
    }
    if (a.IsZero() || b.IsZero() || ((ma | mb) & kEmpty)) {
        if (ma & mb & kEmpty) {
            result._SetMbits(qtyResult ? BalType::kEmptyQtyBits : BalType::kEmptyDollarBits);
        } else {
            result._SetMbits(BalType::kZeroDollarBits);
        }
        return result;
    }
    ZtDecimal64 x = a.GetDecimalAmount();
    ZtDecimal64 y = b.GetDecimalAmount();
    ScaleLonePercent(ma, mb, x, y);
    ZtDecimal64 product = x * y;
    if (qtyResult && !ExceedsQtyMax(product)) {
        result._SetRaw(kQty, product.RoundToPlace(-5));
        return result;
    }
    if (ExceedsDollarMax(product) || IsNaNBits(Bits(product))) {
        SetErrorResult(&result, kError);
        return result;
    }
    result._SetRaw(0, product.RoundToPlace(-2));
    return result;
}
} // namespace

BalType BalMultiply(const BalType& a, const BalType& b) {
    return Multiply(a, b, false);
}

BalType BalMultiplyQnty(const BalType& a, const BalType& b) {
    // Even error and dollar fall-back results read as quantities here; callers rely on it.
    BalType result = Multiply(a, b, true);
    result.SetKindQty();
    return result;
}

BalType BalDivide(const BalType& a, const BalType& b) {
    const unsigned char ma = a._GetMbits();
    const unsigned char mb = b._GetMbits();
    BalType result;
    if (((ma | mb) & kError) || b.IsZero()) {
        SetErrorResult(&result, BalType::kErrorQtyBits);
        return result;
    }
    if (a.IsZero()) {
        result._SetMbits(BalType::kZeroQtyBits);
        return result;
    }
    ZtDecimal64 x = a.GetDecimalAmount();
    ZtDecimal64 y = b.GetDecimalAmount();
    ScaleLonePercent(ma, mb, x, y);
    result.SetFromDecimal(x / y, BalKindQty, false, true);
    return result;
}

BalType BalScale(const BalType& a, const BalType& b, const BalType& c) {
    BalType result;
    result.SetFromDecimal(a.GetDecimalAmount() * b.GetDecimalAmount() / c.GetDecimalAmount(),
                          BalKindDollar, false, true);
    return result;
}

BalType QtyScale(const BalType& a, const BalType& b, const BalType& c) {
    BalType result;
    result.SetFromDecimal(a.GetDecimalAmount() * b.GetDecimalAmount() / c.GetDecimalAmount(),
                          BalKindQty, false, true);
    return result;
}

BalType BalAbs(const BalType& a) {
    BalType result(a);
    result.Abs();
    return result;
}

BalType BalNegate(const BalType& a) {
    BalType result(a);
    result.Negate();
    return result;
}

void BalSetSign(BalType* value, short sign) {
    if (value != nullptr) {
        value->SetSign(sign < 0 ? BalSignNegative : BalSignPositive);
    }
}

namespace {
inline int PickyCompare(const BalType& a, const BalType& b, bool ignoreEmpty) {
    if (a.IsError()) {
        return b.IsError() ? 0 : 1;
    }
    if (b.IsError()) {
        return -1;
    }
    if (a.IsPercent() != b.IsPercent()) {
        return a.IsPercent() ? -1 : 1;
    }
    if (a.IsEmpty() && b.IsEmpty()) {
        return 0;
    }
    const uint64_t x = Bits(a.GetDecimalAmount());
    const uint64_t y = Bits(b.GetDecimalAmount());
    if (bid64_quiet_equal(x, y)) {
        if (ignoreEmpty) {
            return 0;
        }
        if (!a.IsEmpty()) {
            return b.IsEmpty() ? 1 : 0;
        }
        return -1;
    }
    return bid64_quiet_greater(x, y) ? 1 : -1;
}
} // namespace

int BalPickyCompare(const BalType& a, const BalType& b, bool ignoreEmpty) {
    return PickyCompare(a, b, ignoreEmpty);
}

bool BalType::operator==(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) == 0;
}
bool BalType::operator!=(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) != 0;
}
bool BalType::operator<(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) < 0;
}
bool BalType::operator<=(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) <= 0;
}
bool BalType::operator>(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) > 0;
}
bool BalType::operator>=(const BalType& rhs) const {
    return PickyCompare(*this, rhs, true) >= 0;
}

int BalAbsCompare(const BalType& a, const BalType& b) {
    if (a.IsError() || b.IsError()) {
        return -1;
    }
    if (a.IsEmpty()) {
        return b.IsEmpty() ? 0 : -1;
    }
    if (b.IsEmpty()) {
        return 1;
    }
    ZtDecimal64 x = Magnitude(a.GetDecimalAmount());
    ZtDecimal64 y = Magnitude(b.GetDecimalAmount());
    if (x == y) {
        return 0;
    }
    return x > y ? 1 : -1;
}

BalType BalRound(const BalType& value, int places, int decimals) {
    BalType result(value);
    if (places != 0 && decimals != 0) {
        result.SetError();
        return result;
    }
    if (value.IsError() || value.IsEmpty()) {
        return result;
    }
    ZtDecimal64 number = value.GetDecimalAmount();
    number.RoundToPlace(decimals != 0 ? -decimals : places);
    result.SetFromDecimal(number, value.GetKind(), value.IsPercent(), decimals != 0);
    return result;
}

bool IsZero(const BalType& value) {
    return value.IsZero();
}

bool IsNonZero(const BalType& value) {
    return !value.IsEmpty() && !value.IsZero();
}

bool IsGTZero(const BalType& value) {
    return !value.IsEmpty() && !value.IsZero() && !value.IsNegative();
}

bool IsLTZero(const BalType& value) {
    return !value.IsEmpty() && !value.IsZero() && value.IsNegative();
}
