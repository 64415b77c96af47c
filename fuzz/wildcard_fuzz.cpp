// Feeds arbitrary bytes to the find-first wildcard matcher and to the path splitting functions.
// The first line is a pattern, the rest a name; the whole input is also split as a path and put
// back together, which must give the same text.
#include "Util/Win32Crt.h"
#include "Util/Win32Wildcard.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string input = text.substr(0, text.find('\0'));
    const std::size_t newline = input.find('\n');
    const std::string pattern = input.substr(0, newline);
    const std::string name = newline == std::string::npos ? "" : input.substr(newline + 1);

    const bool matches = Util::MatchesWin32Wildcard(pattern.c_str(), name.c_str());
    // A pattern without wildcards and trailing dots matches exactly its own text (case-blind).
    if (!Util::HasWin32Wildcard(pattern.c_str()) && !pattern.empty() && pattern.back() != '.' &&
        !matches && pattern == name)
        std::abort();
    if (!Util::MatchesWin32Wildcard("*", name.c_str()))
        std::abort();

    std::vector<char> drive(input.size() + 3), dir(input.size() + 1), fname(input.size() + 1),
        ext(input.size() + 1);
    if (Util::Win32::_splitpath_s(input.c_str(), drive.data(), drive.size(), dir.data(), dir.size(),
                                  fname.data(), fname.size(), ext.data(), ext.size()) != 0)
        std::abort();
    std::vector<char> joined(input.size() + 2);
    if (Util::Win32::_makepath_s(joined.data(), joined.size(), drive.data(), dir.data(),
                                 fname.data(), ext.data()) != 0 ||
        input != joined.data())
        std::abort();
    // Too small a buffer is refused, never overrun.
    if (!input.empty() && Util::Win32::_makepath_s(joined.data(), input.size(), drive.data(),
                                                   dir.data(), fname.data(), ext.data()) != ERANGE)
        std::abort();
    return 0;
}
