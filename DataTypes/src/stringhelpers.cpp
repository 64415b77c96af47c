#include "Util/StringHelpers.h"

#include <cstdint>
#include <cstring>

namespace Util {

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

int CompareStrings(const char* a, const char* b, int caseSensitivity) {
    if (a == nullptr || b == nullptr)
        return -1;
    if (caseSensitivity == CaseSensitive) {
        const int order = std::strcmp(a, b); // compares as unsigned char
        return (order > 0) - (order < 0);
    }
    return CompareCaseBlind(a, std::strlen(a), b, std::strlen(b));
}

void TrimRight(std::string& text) {
    std::size_t end = text.size();
    while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\t' || text[end - 1] == '\r' ||
                       text[end - 1] == '\n' || text[end - 1] == '\v' || text[end - 1] == '\f'))
        --end;
    text.resize(end);
}

void TrimRight(TString& text) {
    std::string s = text.ToStdString();
    TrimRight(s);
    text = s.c_str();
}

bool Utf8ToUtf16(const std::string& in, std::u16string& out) {
    out.clear();
    out.reserve(in.size());
    bool clean = true;
    const auto* p = reinterpret_cast<const unsigned char*>(in.data());
    const auto* end = p + in.size();
    while (p < end) {
        unsigned char c = *p;
        char32_t cp = 0;
        int extra = 0;
        if (c < 0x80) {
            cp = c;
        } else if (c >= 0xC2 && c <= 0xDF) {
            cp = c & 0x1F;
            extra = 1;
        } else if (c >= 0xE0 && c <= 0xEF) {
            cp = c & 0x0F;
            extra = 2;
        } else if (c >= 0xF0 && c <= 0xF4) {
            cp = c & 0x07;
            extra = 3;
        } else {
            out += u'\uFFFD';
            clean = false;
            ++p;
            continue;
        }
        bool ok = end - p > extra;
        for (int i = 1; ok && i <= extra; ++i) {
            if ((p[i] & 0xC0) != 0x80) {
                ok = false;
                break;
            }
            cp = (cp << 6) | (p[i] & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are malformed.
        if (ok && ((extra == 2 && cp < 0x800) || (extra == 3 && (cp < 0x10000 || cp > 0x10FFFF)) ||
                   (cp >= 0xD800 && cp <= 0xDFFF)))
            ok = false;
        if (!ok) {
            out += u'\uFFFD';
            clean = false;
            ++p;
            continue;
        }
        p += extra + 1;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (cp >> 10));
            out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return clean;
}

bool Utf16ToUtf8(const std::u16string& in, std::string& out) {
    out.clear();
    out.reserve(in.size());
    bool clean = true;
    for (std::size_t i = 0; i < in.size(); ++i) {
        char32_t cp = in[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < in.size() && in[i + 1] >= 0xDC00 &&
            in[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (in[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD;
            clean = false;
        }
        AppendUtf8(out, cp);
    }
    return clean;
}

} // namespace Util
