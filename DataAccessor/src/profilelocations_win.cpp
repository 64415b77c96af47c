#include "DataAccessor/src/profilelocations_platform.h"

#include <windows.h>

#include <cstdlib>

namespace Util {
namespace Platform {

const char kPathSeparator = '\\';

std::string ExecutablePath() {
    char path[MAX_PATH + 1] = {};
    DWORD length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return std::string();
    return std::string(path, length);
}

std::string SharedAppDataDirectory() {
    char buffer[MAX_PATH + 1] = {};
    DWORD length = ::GetEnvironmentVariableA("ProgramData", buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return std::string();
    std::string dir(buffer, length);
    if (dir.back() != '\\')
        dir += '\\';
    return dir;
}

} // namespace Platform
} // namespace Util
