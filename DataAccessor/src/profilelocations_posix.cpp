#include "DataAccessor/src/profilelocations_platform.h"

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace Util {
namespace Platform {

const char kPathSeparator = '/';

std::string ExecutablePath() {
    char path[PATH_MAX];
    ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0)
        return std::string();
    return std::string(path, static_cast<std::size_t>(length));
}

std::string SharedAppDataDirectory() {
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg == '/')
        return std::string(xdg) + "/";
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/')
        return std::string(home) + "/.local/share/";
    return std::string();
}

} // namespace Platform
} // namespace Util
