// Fuzzes the INI engine behind the profile functions: any file content must be read (sections,
// keys, values, numbers, section lines) without a crash, reads must leave the file as it was,
// and a value written into the file must read back.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

#include "Util/Win32.h"
#include "fuzz/scratch_dir.h"

namespace W = Util::Win32;

namespace {

std::string FuzzFile() {
    static const std::string path = (ZtFuzz::ScratchDir() / "fuzz.ini").string();
    return path;
}

void WriteBytes(const std::string& path, const uint8_t* data, size_t size) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr)
        std::abort();
    if (size > 0 && std::fwrite(data, 1, size, f) != size)
        std::abort();
    std::fclose(f);
}

std::string ReadBytes(const std::string& path) {
    std::string bytes;
    FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr)
        std::abort();
    char chunk[4096];
    for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, f)) > 0;)
        bytes.append(chunk, n);
    std::fclose(f);
    return bytes;
}

// The names of a double-null list of at most size characters.
std::vector<std::string> SplitList(const char* buffer, W::DWORD length) {
    std::vector<std::string> names;
    for (W::DWORD at = 0; at < length;) {
        names.emplace_back(buffer + at);
        at += static_cast<W::DWORD>(names.back().size()) + 1;
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = FuzzFile();
    const char* file = path.c_str();
    WriteBytes(path, data, size);

    static char buffer[8192];
    W::DWORD n = W::GetPrivateProfileSectionNamesA(buffer, sizeof buffer, file);
    if (n >= sizeof buffer || buffer[n] != '\0')
        __builtin_trap();
    const std::vector<std::string> sections = SplitList(buffer, n);
    for (size_t i = 0; i < sections.size() && i < 4; ++i) {
        const char* section = sections[i].c_str();
        n = W::GetPrivateProfileSectionA(section, buffer, sizeof buffer, file);
        if (n >= sizeof buffer)
            __builtin_trap();
        n = W::GetPrivateProfileStringA(section, nullptr, "", buffer, sizeof buffer, file);
        const std::vector<std::string> keys = SplitList(buffer, n);
        for (size_t k = 0; k < keys.size() && k < 4; ++k) {
            char value[64];
            n = W::GetPrivateProfileStringA(section, keys[k].c_str(), "d", value, sizeof value,
                                            file);
            if (n >= sizeof value || value[n] != '\0')
                __builtin_trap();
            (void)W::GetPrivateProfileIntA(section, keys[k].c_str(), 7, file);
        }
    }
    if (ReadBytes(path) != std::string(reinterpret_cast<const char*>(data), size))
        __builtin_trap(); // reading changed the file

    // A value written under the first section (or a new one) reads back as written.
    // (A listed name may be cut at a null byte of the file and so end in a tab, which a name in
    // the file loses on read: such a name is not written.)
    const std::string section = sections.empty() ? "fuzz" : sections.front();
    const bool blankAtEnd = !section.empty() && (std::strchr(" \t\v", section.front()) != nullptr ||
                                                 std::strchr(" \t\v", section.back()) != nullptr);
    if (!blankAtEnd && section.find_first_of("\r\n]") == std::string::npos) {
        if (!W::WritePrivateProfileStringA(section.c_str(), "fuzzkey", "v a l", file))
            __builtin_trap();
        char value[16];
        n = W::GetPrivateProfileStringA(section.c_str(), "fuzzkey", "", value, sizeof value, file);
        if (n != 5 || std::strcmp(value, "v a l") != 0)
            __builtin_trap();
        if (!W::WritePrivateProfileStringA(section.c_str(), "fuzzkey", nullptr, file))
            __builtin_trap();
        n = W::GetPrivateProfileStringA(section.c_str(), "fuzzkey", "gone", value, sizeof value,
                                        file);
        if (std::strcmp(value, "gone") != 0)
            __builtin_trap();
    }
    return 0;
}
