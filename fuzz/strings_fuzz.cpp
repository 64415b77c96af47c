// The string helpers on arbitrary bytes: UTF-8 to UTF-16 and back gives the same bytes whenever
// the first step succeeds; CompareStrings is antisymmetric and reflexive in both modes; TrimRight
// only removes trailing white space.
#include "Util/StringHelpers.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::u16string wide;
    if (Util::Utf8ToUtf16(bytes, wide)) {
        std::string back;
        if (!Util::Utf16ToUtf8(wide, back) || back != bytes)
            std::abort();
    }
    // The same bytes read as UTF-16 code units (lone surrogates included).
    std::u16string units(size / 2, u'\0');
    for (std::size_t i = 0; i + 1 < size; i += 2)
        units[i / 2] = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
    std::string narrow;
    if (Util::Utf16ToUtf8(units, narrow)) {
        std::u16string again;
        if (!Util::Utf8ToUtf16(narrow, again) || again != units)
            std::abort();
    }

    const std::size_t cut = bytes.find('\0');
    const std::string a = bytes.substr(0, cut);
    const std::string b = cut == std::string::npos ? std::string() : bytes.substr(cut + 1);
    for (int mode : {1, 0}) {
        const int ab = Util::CompareStrings(a.c_str(), b.c_str(), mode);
        const int ba = Util::CompareStrings(b.c_str(), a.c_str(), mode);
        if (ab < -1 || ab > 1 || ab != -ba || Util::CompareStrings(a.c_str(), a.c_str(), mode) != 0)
            std::abort();
    }
    if (Util::CompareStrings(nullptr, a.c_str(), 1) != -1)
        std::abort();

    std::string trimmed = a;
    Util::TrimRight(trimmed);
    if (a.compare(0, trimmed.size(), trimmed) != 0)
        std::abort();
    Util::TString text(a.c_str());
    Util::TrimRight(text);
    if (trimmed != text.c_str())
        std::abort();
    return 0;
}
