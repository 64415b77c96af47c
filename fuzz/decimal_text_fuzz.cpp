// Decimal text against an independent scan: whatever the text, a plain number (sign, digits, one
// optional point, optional exponent) must parse to the value this harness works out itself with
// exact big-number arithmetic on the digits, rounded to 16 digits (ties to even) within the
// decimal64 range. Anything else must not crash.
#include "Util/ZtDecimal64.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// The decimal64 value of the text as (sign, coefficient, exponent), or false when the text is
// not a plain number or its value needs more than the simple cases handled here (then only
// crashes are checked).
struct Expected {
    bool negative = false;
    bool zero = false;
    bool infinite = false;
    std::string digits; // significant digits after rounding, no trailing zeros removed
    long long exponent = 0;
};

bool Scan(const std::string& text, Expected& e) {
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        e.negative = text[i++] == '-';
    std::string digits;
    long long fraction = 0;
    bool point = false, any = false;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '.' && !point) {
            point = true;
        } else if (c >= '0' && c <= '9') {
            any = true;
            if (point)
                ++fraction;
            if (!digits.empty() || c != '0')
                digits += c;
        } else {
            break;
        }
    }
    if (!any)
        return false;
    long long exponent = 0;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        ++i;
        bool negative = false;
        if (i < text.size() && (text[i] == '+' || text[i] == '-'))
            negative = text[i++] == '-';
        if (i == text.size())
            return false;
        for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
            exponent = exponent > 100000000 ? exponent : exponent * 10 + (text[i] - '0');
        if (negative)
            exponent = -exponent;
    }
    if (i != text.size())
        return false;
    long long lowest = exponent - fraction;
    if (digits.empty()) {
        e.zero = true;
        return true;
    }
    // Round to 16 digits, and to the smallest exponent -398, ties to even.
    long long drop = digits.size() > 16 ? static_cast<long long>(digits.size()) - 16 : 0;
    if (-398 - lowest > drop)
        drop = -398 - lowest;
    if (drop > 0) {
        const long long keep = static_cast<long long>(digits.size()) - drop;
        std::string kept = keep > 0 ? digits.substr(0, static_cast<std::size_t>(keep)) : "";
        int round = keep >= 0 ? digits[static_cast<std::size_t>(keep)] - '0' : 0;
        bool sticky = keep < 0;
        for (long long j = keep + 1; j >= 0 && j < static_cast<long long>(digits.size()); ++j)
            sticky = sticky || digits[static_cast<std::size_t>(j)] != '0';
        const bool odd = !kept.empty() && ((kept.back() - '0') & 1);
        if (round > 5 || (round == 5 && (sticky || odd))) {
            int k = static_cast<int>(kept.size()) - 1;
            while (k >= 0 && kept[static_cast<std::size_t>(k)] == '9')
                kept[static_cast<std::size_t>(k--)] = '0';
            if (k < 0)
                kept.insert(kept.begin(), '1');
            else
                ++kept[static_cast<std::size_t>(k)];
        }
        lowest += drop;
        if (kept.size() > 16) {
            kept.pop_back();
            ++lowest;
        }
        while (!kept.empty() && kept[0] == '0')
            kept.erase(kept.begin());
        digits = kept;
    }
    if (digits.empty()) {
        e.zero = true;
        return true;
    }
    // Above the largest exponent the coefficient is padded with zeros while it still fits.
    while (lowest > 369 && digits.size() < 16) {
        digits += '0';
        --lowest;
    }
    if (lowest > 369) {
        e.infinite = true;
        return true;
    }
    e.digits = digits;
    e.exponent = lowest;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const ZtDecimal64 value(text.c_str());
    Expected e;
    if (text.size() != std::char_traits<char>::length(text.c_str()) || !Scan(text, e))
        return 0;
    if (value.IsNaN())
        std::abort();
    if (value.IsNegative() != e.negative)
        std::abort();
    if (e.infinite) {
        if (!value.IsInfinite())
            std::abort();
        return 0;
    }
    if (e.zero) {
        if (!value.IsZero())
            std::abort();
        return 0;
    }
    // The same value: compare with the text made from the expected digits and exponent.
    const ZtDecimal64 expected(
        ((e.negative ? "-" : "") + e.digits + "E" + std::to_string(e.exponent)).c_str());
    if (!(value == expected) || expected.IsNaN())
        std::abort();
    return 0;
}
