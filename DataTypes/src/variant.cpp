#include "Util/Variant.h"

#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <limits>
#include <optional>
#include <utility>

#include "DataTypes/src/variantreport.h"
#include "Util/MemoryManager.h"

namespace Util {
namespace {

// Raised inside VariantChangeType when a value does not fit its target; caught there.

inline std::uint32_t ClassOf(VariantType type) {
    return type & 0xFF00u;
}

bool IsKnownType(VariantType type) {
    switch (type) {
    case UTIL_VT_EMPTY:
    case UTIL_VT_INT:
    case UTIL_VT_SHORT:
    case UTIL_VT_LONG:
    case UTIL_VT_INT64:
    case UTIL_VT_CHAR:
    case UTIL_VT_UINT:
    case UTIL_VT_UCHAR:
    case UTIL_VT_USHORT:
    case UTIL_VT_ULONG:
    case UTIL_VT_UINT64:
    case UTIL_VT_WCHAR:
    case UTIL_VT_DOUBLE:
    case UTIL_VT_BOOL:
    case UTIL_VT_STRING:
    case UTIL_VT_WSTRING:
        return true;
    default:
        return false;
    }
}

char* AllocNarrow(std::size_t length) {
    char* text = static_cast<char*>(GetMemoryManager().Allocate(length + 1));
    if (text != nullptr)
        text[length] = '\0';
    return text;
}

wchar_t* AllocWide(std::size_t length) {
    wchar_t* text =
        static_cast<wchar_t*>(GetMemoryManager().Allocate((length + 1) * sizeof(wchar_t)));
    if (text != nullptr)
        text[length] = L'\0';
    return text;
}

char* DupNarrow(const char* source) {
    const std::size_t length = std::strlen(source);
    char* text = AllocNarrow(length);
    if (text != nullptr)
        std::memcpy(text, source, length);
    return text;
}

wchar_t* DupWide(const wchar_t* source) {
    const std::size_t length = std::wcslen(source);
    wchar_t* text = AllocWide(length);
    if (text != nullptr)
        std::wmemcpy(text, source, length);
    return text;
}

// One character per character, so the length (and the allocation of length + 1) is kept.
char* NarrowFromWide(const wchar_t* source) {
    const std::size_t length = std::wcslen(source);
    char* text = AllocNarrow(length);
    if (text != nullptr) {
        for (std::size_t i = 0; i < length; ++i) {
            const auto code = static_cast<std::uint32_t>(source[i]);
            text[i] = code <= 0xFF ? static_cast<char>(code) : '?';
        }
    }
    return text;
}

wchar_t* WideFromNarrow(const char* source) {
    const std::size_t length = std::strlen(source);
    wchar_t* text = AllocWide(length);
    if (text != nullptr) {
        for (std::size_t i = 0; i < length; ++i)
            text[i] = static_cast<wchar_t>(static_cast<unsigned char>(source[i]));
    }
    return text;
}

void FreeString(__util_Variant& value) {
    if (ClassOf(value.vt) == UTIL_VT_STRING_CLASS)
        GetMemoryManager().Free(value.vt == UTIL_VT_STRING ? static_cast<void*>(value.pszVal)
                                                           : static_cast<void*>(value.pwszVal));
    value.vt = UTIL_VT_EMPTY;
    value.llVal = 0;
}

// Signed range of a signed target, or the unsigned maximum of an unsigned one.
void SignedRange(VariantType type, std::int64_t& low, std::int64_t& high) {
    switch (type) {
    case UTIL_VT_INT:
        low = INT_MIN, high = INT_MAX;
        break;
    case UTIL_VT_SHORT:
        low = SHRT_MIN, high = SHRT_MAX;
        break;
    case UTIL_VT_LONG:
        low = LONG_MIN, high = LONG_MAX;
        break;
    case UTIL_VT_CHAR:
        low = CHAR_MIN, high = CHAR_MAX;
        break;
    default:
        low = INT64_MIN, high = INT64_MAX;
        break;
    }
}

std::uint64_t UnsignedMax(VariantType type) {
    switch (type) {
    case UTIL_VT_UINT:
        return UINT_MAX;
    case UTIL_VT_UCHAR:
        return UCHAR_MAX;
    case UTIL_VT_USHORT:
    case UTIL_VT_WCHAR:
        return USHRT_MAX;
    case UTIL_VT_ULONG:
        return ULONG_MAX;
    default:
        return UINT64_MAX;
    }
}

// An integral value held exactly: magnitude plus sign, so that every signed and unsigned 64-bit
// value is representable while its range is checked.
struct Integral {
    bool negative;
    std::uint64_t magnitude;
};

Integral FromSigned(std::int64_t value) {
    return value < 0 ? Integral{true, 0 - static_cast<std::uint64_t>(value)}
                     : Integral{false, static_cast<std::uint64_t>(value)};
}

// False when the value does not fit the type (a loss of data).
bool StoreIntegral(__util_Variant& out, Integral value, VariantType type) {
    if (ClassOf(type) == UTIL_VT_UNSIGNED_CLASS) {
        if ((value.negative && value.magnitude != 0) || value.magnitude > UnsignedMax(type))
            return false;
        out.vt = type;
        out.ullVal = value.magnitude;
        return true;
    }
    std::int64_t low = 0, high = 0;
    SignedRange(type, low, high);
    std::int64_t signedValue = 0;
    if (value.negative) {
        if (value.magnitude > static_cast<std::uint64_t>(INT64_MAX) + 1)
            return false;
        signedValue = static_cast<std::int64_t>(0 - value.magnitude);
    } else {
        if (value.magnitude > static_cast<std::uint64_t>(INT64_MAX))
            return false;
        signedValue = static_cast<std::int64_t>(value.magnitude);
    }
    if (signedValue < low || signedValue > high)
        return false;
    out.vt = type;
    out.llVal = signedValue;
    return true;
}

// Each reader gives no value when the number fits no 64-bit integer.
std::optional<Integral> FromDouble(double value) {
    const double truncated = std::trunc(value);
    // 2^64 is exact as a double; anything at or beyond it (or NaN) fits no integer type.
    if (!(std::fabs(truncated) < 18446744073709551616.0))
        return std::nullopt;
    return truncated < 0 ? Integral{true, static_cast<std::uint64_t>(-truncated)}
                         : Integral{false, static_cast<std::uint64_t>(truncated)};
}

// Base-10 text to an integral value; text that is not a number reads as 0, as strtoll would.
std::optional<Integral> FromText(const char* text, bool forUnsigned) {
    while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
        ++text;
    const bool negative = *text == '-';
    errno = 0;
    char* end = nullptr;
    if (negative || !forUnsigned) {
        const long long value = std::strtoll(text, &end, 10);
        if (errno == ERANGE)
            return std::nullopt;
        return FromSigned(value);
    }
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (errno == ERANGE)
        return std::nullopt;
    return Integral{false, value};
}

std::optional<Integral> FromWideText(const wchar_t* text, bool forUnsigned) {
    while (std::iswspace(static_cast<wint_t>(*text)))
        ++text;
    const bool negative = *text == L'-';
    errno = 0;
    wchar_t* end = nullptr;
    if (negative || !forUnsigned) {
        const long long value = std::wcstoll(text, &end, 10);
        if (errno == ERANGE)
            return std::nullopt;
        return FromSigned(value);
    }
    const unsigned long long value = std::wcstoull(text, &end, 10);
    if (errno == ERANGE)
        return std::nullopt;
    return Integral{false, value};
}

bool EqualsTrueBlind(const char* text) {
    static const char kTrue[] = "true";
    for (int i = 0; i < 4; ++i) {
        if (text[i] == '\0' || (text[i] | 0x20) != kTrue[i])
            return false;
    }
    return text[4] == '\0';
}

bool EqualsTrueBlind(const wchar_t* text) {
    static const wchar_t kTrue[] = L"true";
    for (int i = 0; i < 4; ++i) {
        if (text[i] == L'\0' || (text[i] | 0x20) != kTrue[i])
            return false;
    }
    return text[4] == L'\0';
}

// Formats a number into a narrow or wide string of the destination.
void StoreText(__util_Variant& out, const char* text, VariantType type) {
    if (type == UTIL_VT_STRING) {
        out.pszVal = DupNarrow(text);
        out.vt = out.pszVal != nullptr ? UTIL_VT_STRING : UTIL_VT_EMPTY;
    } else {
        out.pwszVal = WideFromNarrow(text);
        out.vt = out.pwszVal != nullptr ? UTIL_VT_WSTRING : UTIL_VT_EMPTY;
    }
}

enum class Outcome { kConverted, kFailed, kLostData };

Outcome Stored(bool stored) {
    return stored ? Outcome::kConverted : Outcome::kFailed;
}

Outcome StoredIntegral(__util_Variant& out, const std::optional<Integral>& value,
                       VariantType type) {
    return value && StoreIntegral(out, *value, type) ? Outcome::kConverted : Outcome::kLostData;
}

// The conversion proper: out is empty on entry and source is not aliased with it.
Outcome Convert(__util_Variant& out, const __util_Variant& source, VariantType type) {
    const std::uint32_t from = ClassOf(source.vt);
    const std::uint32_t to = ClassOf(type);
    if (type == UTIL_VT_EMPTY)
        return Outcome::kConverted;

    if (from == UTIL_VT_STRING_CLASS) {
        const bool wide = source.vt == UTIL_VT_WSTRING;
        if (wide ? source.pwszVal == nullptr : source.pszVal == nullptr)
            return Outcome::kFailed;
        if (to == UTIL_VT_STRING_CLASS) {
            if (type == UTIL_VT_STRING)
                out.pszVal = wide ? NarrowFromWide(source.pwszVal) : DupNarrow(source.pszVal);
            else
                out.pwszVal = wide ? DupWide(source.pwszVal) : WideFromNarrow(source.pszVal);
            if (out.pszVal == nullptr)
                return Outcome::kFailed;
            out.vt = type;
            return Outcome::kConverted;
        }
        if (to == UTIL_VT_SIGNED_CLASS || to == UTIL_VT_UNSIGNED_CLASS) {
            const bool forUnsigned = to == UTIL_VT_UNSIGNED_CLASS;
            return StoredIntegral(out,
                                  wide ? FromWideText(source.pwszVal, forUnsigned)
                                       : FromText(source.pszVal, forUnsigned),
                                  type);
        }
        if (type == UTIL_VT_DOUBLE) {
            out.dblVal =
                wide ? std::wcstod(source.pwszVal, nullptr) : std::strtod(source.pszVal, nullptr);
            out.vt = type;
            return Outcome::kConverted;
        }
        out.boolVal = wide ? EqualsTrueBlind(source.pwszVal) : EqualsTrueBlind(source.pszVal);
        out.vt = UTIL_VT_BOOL;
        return Outcome::kConverted;
    }

    // Every non-string source reduces to one of: integral, double, bool (empty reads as 0).
    const bool isIntegral = from == UTIL_VT_SIGNED_CLASS || from == UTIL_VT_UNSIGNED_CLASS ||
                            source.vt == UTIL_VT_EMPTY;
    Integral integral{false, 0};
    if (from == UTIL_VT_SIGNED_CLASS)
        integral = FromSigned(source.llVal);
    else if (from == UTIL_VT_UNSIGNED_CLASS)
        integral = Integral{false, source.ullVal};

    if (to == UTIL_VT_STRING_CLASS) {
        char text[64];
        if (source.vt == UTIL_VT_EMPTY)
            text[0] = '\0';
        else if (isIntegral)
            // Unsigned values are written as signed 64-bit decimals, as every integer is.
            std::snprintf(text, sizeof text, "%" PRId64,
                          from == UTIL_VT_SIGNED_CLASS ? source.llVal
                                                       : static_cast<std::int64_t>(source.ullVal));
        else if (source.vt == UTIL_VT_DOUBLE)
            std::snprintf(text, sizeof text, "%.12g", source.dblVal);
        else
            std::snprintf(text, sizeof text, "%s", source.boolVal ? "true" : "false");
        StoreText(out, text, type);
        return Stored(out.vt != UTIL_VT_EMPTY);
    }

    if (to == UTIL_VT_SIGNED_CLASS || to == UTIL_VT_UNSIGNED_CLASS) {
        if (source.vt == UTIL_VT_DOUBLE)
            return StoredIntegral(out, FromDouble(source.dblVal), type);
        if (source.vt == UTIL_VT_BOOL)
            integral = Integral{false, source.boolVal ? 1u : 0u};
        return StoredIntegral(out, integral, type);
    }

    if (type == UTIL_VT_DOUBLE) {
        if (source.vt == UTIL_VT_DOUBLE)
            out.dblVal = source.dblVal;
        else if (source.vt == UTIL_VT_BOOL)
            out.dblVal = source.boolVal ? 1.0 : 0.0;
        else if (from == UTIL_VT_SIGNED_CLASS)
            out.dblVal = static_cast<double>(source.llVal);
        else
            out.dblVal = static_cast<double>(source.ullVal);
        out.vt = type;
        return Outcome::kConverted;
    }

    // Bool.
    if (source.vt == UTIL_VT_DOUBLE)
        out.boolVal = source.dblVal != 0.0;
    else if (source.vt == UTIL_VT_BOOL)
        out.boolVal = source.boolVal;
    else
        out.boolVal = integral.magnitude != 0;
    out.vt = UTIL_VT_BOOL;
    return Outcome::kConverted;
}

} // namespace

bool VariantChangeType(__util_Variant* destination, const __util_Variant* source,
                       VariantType type) {
    if (destination == nullptr || source == nullptr)
        return false;
    // Converting in place: work from a private copy of the structure and free the old string
    // only once the new value exists.
    __util_Variant input = *source;
    const bool inPlace = destination == source;
    if (!inPlace)
        FreeString(*destination);

    __util_Variant result;
    result.vt = UTIL_VT_EMPTY;
    result.llVal = 0;
    bool converted = false;
    if (IsKnownType(type) && IsKnownType(input.vt)) {
        const Outcome outcome = Convert(result, input, type);
        if (outcome == Outcome::kLostData)
            VariantDetail::ReportNarrowingLoss(__LINE__);
        converted = outcome == Outcome::kConverted;
    }
    if (!converted)
        FreeString(result);
    if (inPlace)
        FreeString(*destination);
    *destination = result;
    return converted;
}

} // namespace Util
