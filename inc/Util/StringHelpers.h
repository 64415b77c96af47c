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

#include <string>

namespace Util {

enum CaseSensitivity { CaseInsensitive = 0, CaseSensitive = 1 };

ZTUTIL_API int CompareStrings(const char* a, const char* b, int caseSensitivity);

struct ZTUTIL_API CaseBlindLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return CompareStrings(a.c_str(), b.c_str(), CaseInsensitive) < 0;
    }
};

ZTUTIL_API void TrimRight(TString& text);
ZTUTIL_API void TrimRight(std::string& text);

// UTF-8 to UTF-16; returns false when the input held malformed sequences (replaced by U+FFFD).
ZTUTIL_API bool Utf8ToUtf16(const std::string& in, std::u16string& out);
// UTF-16 to UTF-8; returns false when the input held unpaired surrogates (replaced by U+FFFD).
ZTUTIL_API bool Utf16ToUtf8(const std::u16string& in, std::string& out);

} // namespace Util
