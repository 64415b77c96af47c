#include "Util/OSVersion.h"

#include <sys/utsname.h>

#include <cstdlib>

namespace Util {

OSVersionInfo GetOSVersion() {
    OSVersionInfo info;
    struct utsname names;
    if (uname(&names) != 0)
        return info;
    info.m_platformId = OSPlatformPosix;
    info.m_name = names.sysname;
    // "6.1.0-18-amd64": the leading numbers are major, minor and build.
    char* next = names.release;
    DWORD* parts[] = {&info.m_majorVersion, &info.m_minorVersion, &info.m_buildNumber};
    for (DWORD* part : parts) {
        char* end = nullptr;
        *part = static_cast<DWORD>(std::strtoul(next, &end, 10));
        if (end == next || *end != '.')
            break;
        next = end + 1;
    }
    return info;
}

bool IsWindowsVistaorLater() {
    return GetOSVersion().m_platformId == OSPlatformPosix;
}

} // namespace Util
