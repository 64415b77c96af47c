// String helpers shared across the library.
//
// CompareStrings orders two texts: a CaseSensitivity of 1 compares with case, any other value
// ignores case (ASCII letters fold to lower case; other bytes compare by value, as unsigned).
// The result is -1, 0 or 1, and a null argument gives -1. The case-blind order is the order of
// every name-keyed map of the library (CaseBlindLess). TrimRight removes trailing white space.
// The UTF conversions replace malformed input by U+FFFD and report whether any was found.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace Util {

enum CaseSensitivity { CaseInsensitive = 0, CaseSensitive = 1 };

ZTUTIL_API int CompareStrings(const char* a, const char* b, int caseSensitivity);

// CompareStrings' case-blind order for texts of known length without embedded nulls, eight
// bytes at a time over the equal start (name-keyed maps compare long shared prefixes).
inline int CompareCaseBlind(const char* a, std::size_t aLength, const char* b,
                            std::size_t bLength) {
    const std::size_t common = aLength < bLength ? aLength : bLength;
    std::size_t i = 0;
    for (; i + 8 <= common; i += 8) {
        std::uint64_t x, y;
        std::memcpy(&x, a + i, 8);
        std::memcpy(&y, b + i, 8);
        if (x != y)
            break;
    }
    for (; i < common; ++i) {
        unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
        if (x == y)
            continue;
        x = (x >= 'A' && x <= 'Z') ? static_cast<unsigned char>(x - 'A' + 'a') : x;
        y = (y >= 'A' && y <= 'Z') ? static_cast<unsigned char>(y - 'A' + 'a') : y;
        if (x != y)
            return x < y ? -1 : 1;
    }
    return aLength < bLength ? -1 : (aLength > bLength ? 1 : 0);
}

struct ZTUTIL_API CaseBlindLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return CompareStrings(a.c_str(), b.c_str(), CaseInsensitive) < 0;
    }
};

ZTUTIL_API void TrimRight(TString& text);
ZTUTIL_API void TrimRight(std::string& text);

// Appends the UTF-8 form of one code point (below 0x110000). A lone surrogate is written in the
// three-byte form, so that text carrying one comes back unchanged.
ZTUTIL_API void AppendUtf8(std::string& out, char32_t codePoint);

// UTF-8 to UTF-16; returns false when the input held malformed sequences (replaced by U+FFFD).
ZTUTIL_API bool Utf8ToUtf16(const std::string& in, std::u16string& out);
// UTF-16 to UTF-8; returns false when the input held unpaired surrogates (replaced by U+FFFD).
ZTUTIL_API bool Utf16ToUtf8(const std::u16string& in, std::string& out);

} // namespace Util
