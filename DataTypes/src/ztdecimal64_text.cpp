#include "DataTypes/src/ztdecimal64_text.h"

#include <cstdint>
#include <cstring>

namespace ZtDecimalText {

namespace {

constexpr int kDigits = 16;
// The exponent of the smallest decimal64 coefficient step (subnormal 1E-398).
constexpr std::int64_t kMinExponent = -398;
// Beyond this an exponent's exact value no longer matters: every non-zero coefficient overflows
// or vanishes. It keeps the arithmetic below far from int64 limits whatever the text length.
constexpr std::int64_t kExponentCap = 1000000000000LL;
// What the library is handed: far enough outside the range (-398..369, 16 digits) that the
// result is the same as for any larger exponent, and short enough for its parser.
constexpr std::int64_t kHandedExponentLimit = 1000;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

bool Shorten(const char* text, std::string& out) {
    if (text == nullptr)
        return false;
    const char* p = text;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-')
        ++p;

    // Significant digits are kept up to one past the 16 that can be kept; beyond that only
    // whether any is non-zero matters.
    char kept[kDigits + 2];
    int keptCount = 0;
    bool sticky = false;
    std::int64_t significant = 0; // significant digits seen (from the first non-zero one)
    std::int64_t fractionDigits = 0;
    bool anyDigit = false;
    bool inFraction = false;
    for (;; ++p) {
        if (*p == '.' && !inFraction) {
            inFraction = true;
            continue;
        }
        if (!IsDigit(*p))
            break;
        anyDigit = true;
        if (inFraction)
            ++fractionDigits;
        if (significant == 0 && *p == '0')
            continue;
        if (keptCount < kDigits + 1)
            kept[keptCount++] = *p;
        else if (*p != '0')
            sticky = true;
        ++significant;
    }
    if (!anyDigit)
        return false;

    std::int64_t exponent = 0;
    if (*p == 'e' || *p == 'E') {
        ++p;
        const bool negativeExponent = *p == '-';
        if (*p == '+' || *p == '-')
            ++p;
        if (!IsDigit(*p))
            return false;
        for (; IsDigit(*p); ++p) {
            if (exponent < kExponentCap)
                exponent = exponent * 10 + (*p - '0');
        }
        if (negativeExponent)
            exponent = -exponent;
    }
    if (*p != '\0')
        return false;

    const char* sign = negative ? "-" : "";
    if (significant == 0) {
        // Zero keeps its sign and its exponent, which the library clamps to the range.
        exponent -= fractionDigits;
        if (exponent < -kHandedExponentLimit)
            exponent = -kHandedExponentLimit;
        if (exponent > kHandedExponentLimit)
            exponent = kHandedExponentLimit;
        out = std::string(sign) + "0E" + std::to_string(exponent);
        return true;
    }

    // value = digits (all `significant` of them) * 10^lowest
    std::int64_t lowest = exponent - fractionDigits;
    std::int64_t drop = significant > kDigits ? significant - kDigits : 0;
    if (kMinExponent - lowest > drop)
        drop = kMinExponent - lowest;
    std::uint64_t coefficient = 0;
    if (drop == 0) {
        for (int i = 0; i < keptCount; ++i)
            coefficient = coefficient * 10 + static_cast<unsigned>(kept[i] - '0');
    } else {
        // Keep the first `keep` digits; round on the next one and the rest.
        const std::int64_t keep = significant - drop;
        int roundDigit = 0;
        if (keep >= 0) {
            for (std::int64_t i = 0; i < keep; ++i)
                coefficient = coefficient * 10 + static_cast<unsigned>(kept[i] - '0');
            roundDigit = kept[keep] - '0';
            for (int i = static_cast<int>(keep) + 1; i < keptCount; ++i)
                sticky = sticky || kept[i] != '0';
        } else {
            sticky = true; // the value is below a tenth of the last step: it rounds to zero
        }
        if (roundDigit > 5 || (roundDigit == 5 && (sticky || (coefficient & 1) != 0)))
            ++coefficient;
        lowest += drop;
        if (coefficient == 10000000000000000ULL) {
            coefficient /= 10;
            ++lowest;
        }
    }
    if (lowest > kHandedExponentLimit)
        lowest = kHandedExponentLimit;
    out = std::string(sign) + std::to_string(coefficient) + "E" + std::to_string(lowest);
    return true;
}

} // namespace ZtDecimalText
