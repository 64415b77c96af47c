// BalType members: construction, queries, setters and storing a decimal under the limits.
#include "Util/BalType.h"

#include "DataTypes/src/baltype_impl.h"

using namespace BalTypeInternal;

namespace {
const ZtDecimal64& Hundredth() {
    static const ZtDecimal64 value("0.01");
    return value;
}

const ZtDecimal64& HundredThousandth() {
    static const ZtDecimal64 value("0.00001");
    return value;
}

uint64_t WholeOf(const ZtDecimal64& number) {
    ZtDecimal64::Status status;
    uint64_t whole = number.GetWhole().GetUInt64Value(status);
    return status == ZtDecimal64::Converted ? whole : 0;
}

// The first `digits` fraction digits of |number| as an integer (truncated).
uint32_t FractionDigits(const ZtDecimal64& number, int digits) {
    ZtDecimal64 scaled = ZtDecimal64::ScaleB(number.GetFraction(), digits);
    ZtDecimal64::Status status;
    uint32_t value = scaled.GetWhole().GetUInt32Value(status);
    return status == ZtDecimal64::Converted ? value : 0;
}

ZtDecimal64 WithSign(ZtDecimal64 number, bool negative) {
    number.MakeAbs();
    if (negative) {
        number.Negate();
    }
    return number;
}
} // namespace

BalType::BalType(BalTypeIntialValue initial) : m_mbits(kZeroDollarBits), m_number{} {
    static const unsigned char kFlags[] = {kZeroDollarBits, kZeroQtyBits, kEmptyDollarBits,
                                           kEmptyQtyBits};
    if (initial >= ZeroDollarValue && initial <= EmptyQtyValue) {
        m_mbits = kFlags[initial];
    }
}

void BalType::StoreNumber(const ZtDecimal64& number) {
    m_mbits &= static_cast<unsigned char>(~kUninitBit);
    _SetZtDecimal(number);
}

void BalType::StoreError() {
    m_mbits = static_cast<unsigned char>((m_mbits | kErrorBit) & ~kUninitBit);
    _SetZtDecimal(ZtDecimal64::m_internal_zero);
    RaiseOverflow();
}

void BalType::ApplyDollarMaximum() {
    if (ExceedsDollarMax(GetDecimalAmount())) {
        StoreError();
    }
}

bool BalType::IsZero() const {
    return (m_mbits & kUninitBit) || IsZeroBits(Bits(_GetZtDecimal()));
}

uint64_t BalType::GetDollars() const {
    return (m_mbits & kUninitBit) ? 0 : WholeOf(_GetZtDecimal());
}

unsigned BalType::GetCents() const {
    return FractionDigits(GetDecimalAmount(), 2);
}

void BalType::GetQty(uint64_t& whole, uint32_t& fraction) const {
    whole = GetDollars();
    fraction = FractionDigits(GetDecimalAmount(), 5);
}

uint64_t BalType::AsPennies() const {
    uint64_t whole = GetDollars();
    if (IsDollar()) {
        return whole * 100 + GetCents();
    }
    uint64_t fraction = FractionDigits(GetDecimalAmount(), 5);
    fraction = (fraction + 500) / 1000 * 1000;
    if (fraction >= 100000) {
        whole += 1;
        fraction -= 100000;
    }
    return whole * 100 + fraction / 1000;
}

void BalType::SetKind(BalKind kind) {
    m_mbits = static_cast<unsigned char>((m_mbits & ~kQtyBit) | (kind == BalKindQty ? 1 : 0));
}

void BalType::SetPercent(bool percent) {
    m_mbits = static_cast<unsigned char>((m_mbits & ~kPercentBit) | (percent ? kPercentBit : 0));
}

void BalType::SetSign(BalSign sign) {
    StoreNumber(WithSign(GetDecimalAmount(), sign == BalSignNegative));
}

void BalType::Negate() {
    StoreNumber(-GetDecimalAmount());
}

void BalType::Abs() {
    StoreNumber(GetDecimalAmount().Abs());
}

BalType BalType::operator-() const {
    BalType result(*this);
    result.Negate();
    return result;
}

void BalType::SetDollars(uint64_t dollars) {
    ClearEmpty();
    bool negative = IsNegative();
    ZtDecimal64 number = GetDecimalAmount();
    ZtDecimal64 whole;
    whole.SetUInt64Value(dollars);
    number.SetWhole(whole);
    StoreNumber(WithSign(number, negative));
    ApplyDollarMaximum();
}

void BalType::SetCents(unsigned cents) {
    ClearEmpty();
    bool negative = IsNegative();
    ZtDecimal64 number = GetDecimalAmount();
    ZtDecimal64 fraction;
    fraction.SetUInt32Value(cents);
    number.SetFraction(fraction * Hundredth());
    StoreNumber(WithSign(number, negative));
    ApplyDollarMaximum();
}

void BalType::SetDollarsAndCents(uint64_t dollars, unsigned cents) {
    ClearEmpty();
    bool negative = IsNegative();
    ZtDecimal64 whole, fraction;
    whole.SetUInt64Value(dollars);
    fraction.SetUInt32Value(cents);
    StoreNumber(WithSign(whole + fraction * Hundredth(), negative));
    ApplyDollarMaximum();
}

void BalType::SetFromPennies(uint64_t pennies) {
    SetDollarsAndCents(pennies / 100, static_cast<unsigned>(pennies % 100));
}

void BalType::SetQty(uint64_t whole, uint32_t fraction) {
    if (whole > static_cast<uint64_t>(BaltypeLimits::GetLimit(BaltypeLimits::QtyMaxWhole))) {
        // Too large for a quantity: kept as a dollar amount on purpose.
        SetKind(BalKindDollar);
        SetDollarsAndCents(whole, fraction / 1000);
        return;
    }
    SetKind(BalKindQty);
    ClearEmpty();
    bool negative = IsNegative();
    ZtDecimal64 w, f;
    w.SetUInt64Value(whole);
    f.SetUInt32Value(fraction);
    StoreNumber(WithSign(w + f * HundredThousandth(), negative));
    ApplyDollarMaximum();
}

void BalType::Compose(uint64_t whole, uint32_t fraction, BalKind kind) {
    SetKind(kind);
    if (kind == BalKindQty) {
        SetQty(whole, fraction);
    } else {
        SetDollarsAndCents(whole, static_cast<unsigned char>(fraction));
    }
}

void BalType::Decompose(uint64_t& whole, uint32_t& fraction, BalKind& kind) const {
    kind = GetKind();
    if (m_mbits & kUninitBit) {
        whole = 0;
        fraction = 0;
        return;
    }
    ZtDecimal64 number = _GetZtDecimal();
    whole = WholeOf(number);
    fraction = FractionDigits(number, kind == BalKindQty ? 5 : 2);
}

void BalType::SetFromDecimalWithoutLimitChecking(const ZtDecimal64& number, BalKind kind,
                                                 bool percent, bool round) {
    m_mbits = static_cast<unsigned char>((percent ? kPercentBit : 0) | (kind == BalKindQty));
    ZtDecimal64 value = number;
    if (round) {
        value.RoundToPlace(kind == BalKindQty ? -5 : -2);
    }
    _SetZtDecimal(value);
}

void BalType::SetFromDecimalWithoutNANChecking(const ZtDecimal64& number, BalKind kind,
                                               bool percent, bool round) {
    StoreUnderLimits(*this, number, kind == BalKindQty, percent, round);
}

void BalType::SetFromDecimal(const ZtDecimal64& number, BalKind kind, bool percent, bool round) {
    if (IsNaNBits(Bits(number))) {
        m_mbits = static_cast<unsigned char>((percent ? kPercentBit : 0) | (kind == BalKindQty));
        StoreError();
        return;
    }
    SetFromDecimalWithoutNANChecking(number, kind, percent, round);
}

void BalType::SetError() {
    StoreError();
}

void BalType::SetErrorDBReadError() {
    StoreError();
    g_dbOverflowFlag.store(1, std::memory_order_relaxed);
}

void BalType::String2Dollar(const Util::TString& text) {
    if (text.IsEmpty()) {
        SetEmptyDollar();
        return;
    }
    *this = String2Bal(text.c_str());
}

void BalType::String2Qty(const Util::TString& text) {
    if (text.IsEmpty()) {
        SetEmptyQty();
        return;
    }
    *this = String2Qnty(text.c_str());
}

namespace {
// The largest values of each limit mode, built once per mode.
struct LargeValues {
    BalType positiveDollar, negativeDollar, positiveQty, negativeQty;
};

LargeValues BuildLargeValues(BaltypeLimits::LimitMode mode) {
    auto entry = [mode](BaltypeLimits::BalTypeLimitValueEnum index) {
        return static_cast<uint64_t>(mode == BaltypeLimits::LimitMode6Byte
                                         ? BaltypeLimits::GetLimit_6byteBalType(index)
                                         : BaltypeLimits::GetLimit_9byteBalType(index));
    };
    LargeValues v;
    ZtDecimal64 dollarWhole, cents, qtyWhole, qtyFraction;
    dollarWhole.SetUInt64Value(entry(BaltypeLimits::DollarMaxWhole));
    cents.SetUInt64Value(entry(BaltypeLimits::DollarMaxCents));
    qtyWhole.SetUInt64Value(entry(BaltypeLimits::QtyMaxWhole));
    qtyFraction.SetUInt64Value(entry(BaltypeLimits::QtyMaxFraction));
    ZtDecimal64 dollar = dollarWhole + ZtDecimal64::ScaleB(cents, -2);
    ZtDecimal64 qty = qtyWhole + ZtDecimal64::ScaleB(qtyFraction, -5);
    v.positiveDollar.SetFromDecimalWithoutLimitChecking(dollar, BalKindDollar, false, false);
    v.negativeDollar.SetFromDecimalWithoutLimitChecking(-dollar, BalKindDollar, false, false);
    v.positiveQty.SetFromDecimalWithoutLimitChecking(qty, BalKindQty, false, false);
    v.negativeQty.SetFromDecimalWithoutLimitChecking(-qty, BalKindQty, false, false);
    return v;
}

const LargeValues& CurrentLargeValues() {
    static const LargeValues values[2] = {BuildLargeValues(BaltypeLimits::LimitMode9Byte),
                                          BuildLargeValues(BaltypeLimits::LimitMode6Byte)};
    return values[BaltypeLimits::GetLimitMode()];
}
} // namespace

void BalType::LargePositiveDollar() {
    *this = CurrentLargeValues().positiveDollar;
}
void BalType::LargeNegativeDollar() {
    *this = CurrentLargeValues().negativeDollar;
}
void BalType::LargePositiveQty() {
    *this = CurrentLargeValues().positiveQty;
}
void BalType::LargeNegativeQty() {
    *this = CurrentLargeValues().negativeQty;
}

BalType BalType::operator*(const BalType& rhs) const {
    return BalMultiply(*this, rhs);
}
BalType BalType::operator/(const BalType& rhs) const {
    return BalDivide(*this, rhs);
}

// Shared values.
const ZtDecimal64& BalTypeZeroValue() {
    return ZtDecimal64::m_internal_zero;
}
uint64_t ZtDecimalZeroValue() {
    return ZtDecimal64::m_internal_zero.GetInternalToUInt64();
}

const BalType& BalType_ZERO_DOLLAR() {
    static const BalType value(BalType::ZeroDollarValue);
    return value;
}

const BalType& BalType_NEG_ZERO() {
    static const BalType value = [] {
        BalType v(BalType::ZeroDollarValue);
        v.SetNegative();
        return v;
    }();
    return value;
}

const BalType& BalType_ONE_DOLLAR() {
    static const BalType value = [] {
        BalType v;
        if (BaltypeLimits::GetLimit(BaltypeLimits::DollarMaxWhole) == 0) {
            v.SetError();
        } else {
            v.SetDollarsAndCents(1, 0);
        }
        return v;
    }();
    return value;
}

const BalType& BalType_ONE_QUANTITY() {
    static const BalType value = [] {
        BalType v(BalType::ZeroQtyValue);
        v.SetQty(1, 0);
        return v;
    }();
    return value;
}

const BalType& BalType_ZERO_PCT() {
    static const BalType value = [] {
        BalType v(BalType::ZeroQtyValue);
        v.SetPercent(true);
        return v;
    }();
    return value;
}

const BalType& BalType_HUNDRED_PCT() {
    static const BalType value = [] {
        BalType v(BalType::ZeroQtyValue);
        if (BaltypeLimits::GetLimit(BaltypeLimits::QtyMaxWhole) < 100) {
            v.SetError();
        } else {
            v.SetQty(100, 0);
        }
        v.SetPercent(true);
        return v;
    }();
    return value;
}

const BalType& refBalEmptyDollar() {
    static const BalType value(BalType::EmptyDollarValue);
    return value;
}

const BalType& refBalEmptyQty() {
    static const BalType value(BalType::EmptyQtyValue);
    return value;
}

BalType BalEmptyDollar() {
    return BalType(BalType::EmptyDollarValue);
}
BalType BalEmptyQty() {
    return BalType(BalType::EmptyQtyValue);
}
