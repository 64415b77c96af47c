#include "OperationsManager/src/opsfilelist.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace Util {
namespace OpsDetail {

namespace {

// '*' matches any run of characters and '?' one character; the rest compares exactly.
bool WildcardMatch(const char* pattern, const char* name) {
    const char* starPattern = nullptr;
    const char* starName = nullptr;
    while (*name) {
        if (*pattern == '*') {
            starPattern = pattern++;
            starName = name;
        } else if (*pattern == '?' || *pattern == *name) {
            ++pattern;
            ++name;
        } else if (starPattern) {
            pattern = starPattern + 1;
            name = ++starName;
        } else {
            return false;
        }
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == '\0';
}

} // namespace

std::string JoinPath(const std::string& directory, const std::string& name) {
    if (directory.empty())
        return name;
    if (std::filesystem::path(name).is_absolute())
        return name;
    return (std::filesystem::path(directory) / name).string();
}

std::vector<std::string> ListMatchingFiles(const char* directory, const char* pattern) {
    std::vector<std::string> names;
    const std::string dir = directory && *directory ? directory : ".";
    std::error_code error;
    std::filesystem::directory_iterator it(dir, error), end;
    for (; !error && it != end; it.increment(error)) {
        std::error_code statError;
        if (!it->is_regular_file(statError))
            continue;
        const std::string name = it->path().filename().string();
        if (WildcardMatch(pattern, name.c_str()))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    const std::string prefix = directory && *directory ? directory : "";
    for (std::string& name : names)
        name = JoinPath(prefix, name);
    return names;
}

} // namespace OpsDetail
} // namespace Util
