// BalType conversions: to and from double and text, creation from parts, kind changes,
// validation against the limits, and the stream operators.
#include "Util/BalType.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <istream>
#include <ostream>

#include "DataTypes/src/baltype_impl.h"
#include "Util/BalTypeUtils.h"

using namespace BalTypeInternal;

namespace {
int64_t Limit(BaltypeLimits::BalTypeLimitValueEnum index) {
    return BaltypeLimits::GetLimit(index);
}

BalType ErrorValue(BalKind kind) {
    BalType value(kind == BalKindQty ? BalType::ZeroQtyValue : BalType::ZeroDollarValue);
    value.SetError();
    return value;
}

BalType ParseText(const char* text, bool alwaysQty) {
    // Room for 511 characters: longer texts are cut, as a fixed record field would be.
    char buffer[512];
    // The text is parsed as it stands: blanks around a number make it invalid, as they do for
    // the decimal parser. Callers that accept padded input trim it themselves.
    const char* begin = text != nullptr ? text : "";
    size_t length = strnlen(begin, sizeof buffer - 1);
    std::memcpy(buffer, begin, length);
    buffer[length] = '\0';

    bool percent = false;
    if (length > 0 && buffer[length - 1] == '%') {
        percent = true;
        buffer[--length] = '\0';
    }
    bool qty = alwaysQty || percent;
    char* separator = std::strchr(buffer, GetBalTypeDecimalSeparator());
    if (separator != nullptr) {
        *separator = '.';
        size_t fromSeparator = std::strlen(separator);
        if (fromSeparator > static_cast<size_t>(Limit(BaltypeLimits::DollarFractionDigits) + 1)) {
            qty = true;
        }
    }
    ZtDecimal64 number;
    if (length > 0) {
        number.SetStringValue(buffer);
    }
    BalType value;
    value.SetFromDecimal(number, qty ? BalKindQty : BalKindDollar, percent, true);
    return value;
}

// The double as a decimal rounded to `digits` significant digits.
ZtDecimal64 RoundedFactor(double factor, int digits) {
    ZtDecimal64 d(factor);
    d.RoundToPlace(DecimalPlaceOfLeftmostDigit(factor) - digits);
    return d;
}
} // namespace

BalType Double2Bal(double value) {
    double magnitude = std::fabs(value);
    double cents = value * 100.0;
    bool qty = magnitude <= BaltypeLimits::GetFloatLimit(BaltypeLimits::FloatLimitQtyMax) &&
               std::fabs(cents - std::trunc(cents)) > 0.0005;
    return Double2Bal(value, qty ? BalKindQty : BalKindDollar);
}

BalType Double2Bal(double value, BalKind kind) {
    double limit = BaltypeLimits::GetFloatLimit(
        kind == BalKindQty ? BaltypeLimits::FloatLimitQtyMax : BaltypeLimits::FloatLimitDollarMax);
    // NaN fails this test too, so it never enters a value.
    if (!(std::fabs(value) <= limit)) {
        return ErrorValue(kind);
    }
    BalType result;
    result.SetFromDecimalWithoutLimitChecking(ZtDecimal64(value), kind, false, true);
    return result;
}

double Bal2Double(const BalType& value) {
    if (value.IsError() || value.IsEmpty()) {
        return 0.0;
    }
    ZtDecimal64 number = value.GetDecimalAmount();
    if (value.IsPercent()) {
        number.ScaleByPowerOf10(-2);
    }
    ZtDecimal64::Status status;
    double result = number.GetDoubleValue(status);
    return status == ZtDecimal64::Converted ? result : 0.0;
}

extern "C" double Bal2DoubleExternC(const BalType* value) {
    return value != nullptr ? Bal2Double(*value) : 0.0;
}

BalType String2Bal(const char* text) {
    return ParseText(text, false);
}
BalType String2Qnty(const char* text) {
    return ParseText(text, true);
}

BalType BalCreate(BalSign sign, uint64_t dollars, unsigned cents) {
    if (dollars > static_cast<uint64_t>(Limit(BaltypeLimits::DollarMaxWhole)) ||
        cents > static_cast<uint64_t>(Limit(BaltypeLimits::DollarMaxCents))) {
        return ErrorValue(BalKindDollar);
    }
    BalType value;
    value.SetDollarsAndCents(dollars, cents);
    value.SetSign(sign);
    return value;
}

BalType QntyCreate(BalSign sign, uint64_t whole, uint32_t fraction, bool percent) {
    if (whole > static_cast<uint64_t>(Limit(BaltypeLimits::QtyMaxWhole)) ||
        fraction > static_cast<uint64_t>(Limit(BaltypeLimits::QtyMaxFraction))) {
        return ErrorValue(BalKindQty);
    }
    BalType value(BalType::ZeroQtyValue);
    value.SetQty(whole, fraction);
    value.SetSign(sign);
    value.SetPercent(percent);
    return value;
}

void ExtractBal(const BalType& value, uint64_t& whole, uint32_t& fraction, uint32_t& fractionMax,
                BalKind& kind) {
    value.Decompose(whole, fraction, kind);
    fractionMax = static_cast<uint32_t>(
        Limit(kind == BalKindQty ? BaltypeLimits::QtyMaxFraction : BaltypeLimits::DollarMaxCents));
}

BalType Bal2Percent(const BalType& value) {
    BalType result;
    result.SetFromDecimal(value.GetDecimalAmount(), BalKindQty, true, true);
    return result;
}

BalType Bal2Qnty(const BalType& value) {
    if (!value.IsDollar() || value.IsError() || !value.IsZtDecimalInitilized() ||
        ExceedsQtyMax(value.GetDecimalAmount())) {
        return value;
    }
    BalType result(value);
    result.SetKindQty();
    return result;
}

BalType Qnty2Bal(const BalType& value) {
    if (!value.IsQty() || value.IsError()) {
        return value;
    }
    BalType result(value);
    result.SetKindDollar();
    if (result.IsZtDecimalInitilized()) {
        result._SetZtDecimal(value.GetDecimalAmount().RoundToPlace(-2));
    }
    return result;
}

void SetBalTypeTypeBasedOnZerosAfterDecimal(BalType& value) {
    if (!value.IsQty() || value.IsPercent()) {
        return;
    }
    ZtDecimal64 number = value.GetDecimalAmount();
    ZtDecimal64 cents = number;
    cents.RoundDown(-2);
    if (cents == number) {
        value.SetKindDollar();
    }
}

BalType MultiplyWithDouble(const BalType& value, double factor, int digits, BalKind kind) {
    if (value.IsError()) {
        return value;
    }
    BalType result;
    result.SetFromDecimal(value.GetDecimalAmount() * RoundedFactor(factor, digits), kind, false,
                          true);
    return result;
}

BalType DivideWithDouble(const BalType& value, double divisor, int digits, BalKind kind) {
    if (value.IsError()) {
        return value;
    }
    BalType result;
    result.SetFromDecimal(value.GetDecimalAmount() / RoundedFactor(divisor, digits), kind, false,
                          true);
    return result;
}

bool ValidateAmount(BalType* value) {
    if (value == nullptr || value->IsError()) {
        return false;
    }
    if (value->IsDollar() && value->IsPercent()) {
        uint64_t dollars = value->GetDollars();
        unsigned cents = value->GetCents();
        if (dollars > static_cast<uint64_t>(Limit(BaltypeLimits::QtyMaxWhole)) ||
            cents * 1000 > static_cast<uint64_t>(Limit(BaltypeLimits::QtyMaxFraction))) {
            *value = ErrorValue(BalKindQty);
            value->SetPercent(true);
        } else {
            *value = QntyCreate(value->GetSign(), dollars, cents * 1000, true);
        }
        return false;
    }
    const ZtDecimal64 number = value->GetDecimalAmount();
    if (value->IsQty() ? ExceedsQtyMax(number) : ExceedsDollarMax(number)) {
        BalKind kind = value->GetKind();
        *value = ErrorValue(kind);
        return false;
    }
    return true;
}

bool ValidateMaxLimit(const BalType& value) {
    if (value.IsError() || value.IsEmpty()) {
        return true;
    }
    double bound = static_cast<double>(Limit(value.IsPercent() || value.IsQty()
                                                 ? BaltypeLimits::QtyWholeBound
                                                 : BaltypeLimits::DollarWholeBound));
    return std::fabs(Bal2Double(value)) < bound;
}

std::ostream& operator<<(std::ostream& out, const BalType& value) {
    out << "Dollars " << value.GetDollars() << '\n' << std::flush;
    out << "Cents " << value.GetCents() << '\n' << std::flush;
    return out;
}

namespace {
// Skips whatever label stands before the next number.
bool SkipToDigit(std::istream& in) {
    while (in.good()) {
        int next = in.peek();
        if (next == std::char_traits<char>::eof()) {
            return false;
        }
        if (std::isdigit(next)) {
            return true;
        }
        in.get();
    }
    return false;
}
} // namespace

std::istream& operator>>(std::istream& in, BalType& value) {
    uint64_t dollars = 0;
    unsigned cents = 0;
    if (!SkipToDigit(in) || !(in >> dollars) || !SkipToDigit(in) || !(in >> cents)) {
        in.setstate(std::ios::failbit);
        return in;
    }
    value.SetDollars(dollars);
    value.SetCents(cents);
    return in;
}
