// Util::GetOSVersion and Util::IsWindowsVistaorLater: what the running system is.
//
// Contract: both answer from the running system, every time they are called. The platform
// family numbers the systems the library knows: 1 the Windows 9x family, 2 the Windows NT
// family (every Windows the library runs on today), 3 POSIX systems; 0 when it cannot be told.
// On Windows the version is the system's true one (RtlGetVersion, not the compatibility
// figure). On POSIX the version is the kernel release (uname: "6.1.0-18" gives 6, 1, 0) and
// the name is the system's ("Linux"). IsWindowsVistaorLater is true on Windows 6.0 and later,
// and on POSIX systems, which offer what the library relies on from Vista (final path names of
// open files, symbolic links).
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"
#include "Util/Win32Types.h"

namespace Util {

enum OSPlatform {
    OSPlatformUnknown = 0,
    OSPlatformWin9x = 1,
    OSPlatformWinNT = 2,
    OSPlatformPosix = 3
};

struct OSVersionInfo {
    DWORD m_platformId = OSPlatformUnknown;
    DWORD m_majorVersion = 0;
    DWORD m_minorVersion = 0;
    DWORD m_buildNumber = 0;
    TString m_name;
};

ZTUTIL_API OSVersionInfo GetOSVersion();
ZTUTIL_API bool IsWindowsVistaorLater();

} // namespace Util
