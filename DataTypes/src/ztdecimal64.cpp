#include "Util/ZtDecimal64.h"

#include <cstring>
#include <string>

#include "DataTypes/src/ztdecimal64_bid.h"
#include "DataTypes/src/ztdecimal64_text.h"

// The hot operators are one library call each and nothing else, so that the compiler turns
// them into a tail call and they cost no more than calling the library directly.

namespace {
// Longer than any spelling of infinity or NaN the library knows, with a sign and a payload.
const std::size_t kMaxSpecialText = 64;

BID_UINT64 ScaledRound(BID_UINT64 x, int place, BID_UINT64 (*roundIntegral)(BID_UINT64)) {
    if (place == 0) {
        return roundIntegral(x);
    }
    BID_UINT64 scaled = bid64_scalbn(x, -place);
    return bid64_scalbn(roundIntegral(scaled), place);
}

BID_UINT64 Trunc(BID_UINT64 x) {
    return bid64_round_integral_zero(x);
}
} // namespace

const ZtDecimal64 ZtDecimal64::m_internal_zero(ZtDecimal64::kZeroBits, ZtDecimal64::Raw);

ZtDecimal64::ZtDecimal64(int value) : m_value(bid64_from_int32(value)) {}
ZtDecimal64::ZtDecimal64(long value) : m_value(bid64_from_int64(static_cast<long long>(value))) {}
ZtDecimal64::ZtDecimal64(long long value) : m_value(bid64_from_int64(value)) {}
ZtDecimal64::ZtDecimal64(double value) : m_value(binary64_to_bid64(value)) {}
ZtDecimal64::ZtDecimal64(const char* text) : m_value(kZeroBits) {
    SetStringValue(text);
}

void ZtDecimal64::SetInt32Value(int32_t value) {
    m_value = bid64_from_int32(value);
}
void ZtDecimal64::SetUInt32Value(uint32_t value) {
    m_value = bid64_from_uint32(value);
}
void ZtDecimal64::SetInt64Value(int64_t value) {
    m_value = bid64_from_int64(value);
}
void ZtDecimal64::SetUInt64Value(uint64_t value) {
    m_value = bid64_from_uint64(value);
}
void ZtDecimal64::SetDoubleValue(double value) {
    m_value = binary64_to_bid64(value);
}

void ZtDecimal64::SetStringValue(const char* text) {
    if (text == nullptr) {
        m_value = kZeroBits;
        return;
    }
    // Numbers reach the library's parser only in a short exact form (see ztdecimal64_text.h).
    // Other text (infinities, NaNs, mistakes) goes as it is when short; long text that is not a
    // number is not a number.
    std::string shortened;
    if (ZtDecimalText::Shorten(text, shortened)) {
        m_value = bid64_from_string(&shortened[0]);
    } else if (std::strlen(text) <= kMaxSpecialText) {
        // The library's parser takes a non-const pointer but only reads it.
        m_value = bid64_from_string(const_cast<char*>(text));
    } else {
        static char s_notANumber[] = "?"; // what the library answers for any text it rejects
        m_value = bid64_from_string(s_notANumber);
    }
}

void ZtDecimal64::SetWhole(const ZtDecimal64& whole) {
    BID_UINT64 fraction = bid64_abs(bid64_sub(m_value, Trunc(m_value)));
    BID_UINT64 result = bid64_add(whole.m_value, fraction);
    m_value = IsNegative() ? bid64_negate(result) : bid64_abs(result);
}

void ZtDecimal64::SetFraction(const ZtDecimal64& fraction) {
    BID_UINT64 result = bid64_add(bid64_abs(Trunc(m_value)), fraction.m_value);
    m_value = IsNegative() ? bid64_negate(result) : bid64_abs(result);
}

void ZtDecimal64::MakeAbs() {
    m_value = bid64_abs(m_value);
}
void ZtDecimal64::Negate() {
    m_value = bid64_negate(m_value);
}

namespace {
template <typename T, T (*Convert)(BID_UINT64)>
T ConvertWithStatus(BID_UINT64 value, ZtDecimal64::Status& status) {
    ZtBid::ClearFlags();
    T result = Convert(value);
    status = (ZtBid::Flags() & ZtBid::kConversionFailureMask) ? ZtDecimal64::Failed
                                                              : ZtDecimal64::Converted;
    return result;
}

int32_t ToInt32(BID_UINT64 x) {
    return bid64_to_int32_int(x);
}
uint32_t ToUInt32(BID_UINT64 x) {
    return bid64_to_uint32_int(x);
}
int64_t ToInt64(BID_UINT64 x) {
    return bid64_to_int64_int(x);
}
uint64_t ToUInt64(BID_UINT64 x) {
    return bid64_to_uint64_int(x);
}
double ToDouble(BID_UINT64 x) {
    return bid64_to_binary64(x);
}
} // namespace

int32_t ZtDecimal64::GetInt32Value(Status& status) const {
    return ConvertWithStatus<int32_t, ToInt32>(m_value, status);
}
uint32_t ZtDecimal64::GetUInt32Value(Status& status) const {
    return ConvertWithStatus<uint32_t, ToUInt32>(m_value, status);
}
int64_t ZtDecimal64::GetInt64Value(Status& status) const {
    return ConvertWithStatus<int64_t, ToInt64>(m_value, status);
}
uint64_t ZtDecimal64::GetUInt64Value(Status& status) const {
    return ConvertWithStatus<uint64_t, ToUInt64>(m_value, status);
}
double ZtDecimal64::GetDoubleValue(Status& status) const {
    return ConvertWithStatus<double, ToDouble>(m_value, status);
}

Util::TString ZtDecimal64::GetStringValue() const {
    // The longest text the library writes is a sign, 16 digits, "E", a sign and 3 digits; the
    // buffer is generous so that no input can overrun it.
    char text[64] = {0};
    bid64_to_string(text, m_value);
    return Util::TString(text);
}

ZtDecimal64 ZtDecimal64::GetWhole() const {
    return ZtDecimal64(bid64_abs(Trunc(m_value)), Raw);
}
ZtDecimal64 ZtDecimal64::GetSignedWhole() const {
    return ZtDecimal64(Trunc(m_value), Raw);
}

ZtDecimal64 ZtDecimal64::GetFraction() const {
    return ZtDecimal64(bid64_abs(bid64_sub(m_value, Trunc(m_value))), Raw);
}

ZtDecimal64 ZtDecimal64::GetSignedFraction() const {
    BID_UINT64 t = Trunc(m_value);
    return ZtDecimal64(IsNegative() ? bid64_sub(t, m_value) : bid64_sub(m_value, t), Raw);
}

ZtDecimal64 ZtDecimal64::Abs() const {
    return ZtDecimal64(bid64_abs(m_value), Raw);
}

bool ZtDecimal64::IsZero() const {
    return bid64_isZero(m_value) != 0;
}
bool ZtDecimal64::IsNaN() const {
    return bid64_isNaN(m_value) != 0;
}
bool ZtDecimal64::IsSignaling() const {
    return bid64_isSignaling(m_value) != 0;
}
bool ZtDecimal64::IsInfinite() const {
    return bid64_isInf(m_value) != 0;
}
bool ZtDecimal64::IsSubnormal() const {
    return bid64_isSubnormal(m_value) != 0;
}
bool ZtDecimal64::IsCanonical() const {
    return bid64_isCanonical(m_value) != 0;
}

namespace {
BID_UINT64 RoundAway(BID_UINT64 x) {
    return bid64_round_integral_nearest_away(x);
}
BID_UINT64 RoundEven(BID_UINT64 x) {
    return bid64_round_integral_nearest_even(x);
}
} // namespace

ZtDecimal64& ZtDecimal64::RoundToPlace(int place) {
    m_value = ScaledRound(m_value, place, RoundAway);
    return *this;
}

ZtDecimal64& ZtDecimal64::RoundHalfUp(int place) {
    return RoundToPlace(place);
}

ZtDecimal64& ZtDecimal64::RoundHalfEven(int place) {
    m_value = ScaledRound(m_value, place, RoundEven);
    return *this;
}

ZtDecimal64& ZtDecimal64::RoundDown(int place) {
    m_value = ScaledRound(m_value, place, Trunc);
    return *this;
}

// Callers that need rounding away from zero do not rely on this; it keeps the value as it is.
ZtDecimal64& ZtDecimal64::RoundUp(int /*place*/) {
    return *this;
}

ZtDecimal64& ZtDecimal64::ScaleByPowerOf10(int n) {
    m_value = bid64_scalbn(m_value, n);
    return *this;
}

ZtDecimal64 ZtDecimal64::ScaleB(const ZtDecimal64& value, int n) {
    return ZtDecimal64(bid64_scalbn(value.m_value, n), Raw);
}

ZtDecimal64 ZtDecimal64::FMA(const ZtDecimal64& a, const ZtDecimal64& b, const ZtDecimal64& c) {
    return ZtDecimal64(bid64_fma(a.m_value, b.m_value, c.m_value), Raw);
}

ZtDecimal64 ZtDecimal64::operator-() const {
    return ZtDecimal64(bid64_negate(m_value), Raw);
}

ZtDecimal64& ZtDecimal64::operator+=(const ZtDecimal64& rhs) {
    m_value = bid64_add(m_value, rhs.m_value);
    return *this;
}
ZtDecimal64& ZtDecimal64::operator-=(const ZtDecimal64& rhs) {
    m_value = bid64_sub(m_value, rhs.m_value);
    return *this;
}
ZtDecimal64& ZtDecimal64::operator*=(const ZtDecimal64& rhs) {
    m_value = bid64_mul(m_value, rhs.m_value);
    return *this;
}
ZtDecimal64& ZtDecimal64::operator/=(const ZtDecimal64& rhs) {
    m_value = bid64_div(m_value, rhs.m_value);
    return *this;
}
ZtDecimal64& ZtDecimal64::operator%=(const ZtDecimal64& rhs) {
    m_value = bid64_fmod(m_value, rhs.m_value);
    return *this;
}

bool operator==(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_equal(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}
bool operator!=(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_not_equal(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}
bool operator<(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_less(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}
bool operator<=(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_less_equal(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}
bool operator>(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_greater(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}
bool operator>=(ZtDecimal64 lhs, ZtDecimal64 rhs) {
    return bid64_quiet_greater_equal(lhs.GetInternalToUInt64(), rhs.GetInternalToUInt64()) != 0;
}

const ZtDecimal64& ZtDecimal64::Zero() {
    static const ZtDecimal64 zero;
    return zero;
}

const ZtDecimal64& ZtDecimal64::GetMax() {
    static const ZtDecimal64 max("9999999999999.99");
    return max;
}

const ZtDecimal64& ZtDecimal64::GetMin() {
    static const ZtDecimal64 min("-9999999999999.99");
    return min;
}
