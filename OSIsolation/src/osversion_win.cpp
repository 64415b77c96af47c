#include "Util/OSVersion.h"

namespace Util {

namespace {
typedef LONG(WINAPI* RtlGetVersionFn)(OSVERSIONINFOW*);
}

OSVersionInfo GetOSVersion() {
    OSVersionInfo info;
    OSVERSIONINFOW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    // GetVersionEx reports what the application's manifest allows; ntdll tells the truth.
    HMODULE ntdll = GetModuleHandleA("ntdll.dll");
    auto rtlGetVersion = ntdll != nullptr
                             ? reinterpret_cast<RtlGetVersionFn>(
                                   reinterpret_cast<void*>(GetProcAddress(ntdll, "RtlGetVersion")))
                             : nullptr;
    if (rtlGetVersion == nullptr || rtlGetVersion(&version) != 0)
        return info;
    info.m_platformId = version.dwPlatformId == VER_PLATFORM_WIN32_NT        ? OSPlatformWinNT
                        : version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS ? OSPlatformWin9x
                                                                             : OSPlatformUnknown;
    info.m_majorVersion = version.dwMajorVersion;
    info.m_minorVersion = version.dwMinorVersion;
    info.m_buildNumber = version.dwBuildNumber;
    info.m_name = "Windows";
    return info;
}

bool IsWindowsVistaorLater() {
    OSVersionInfo info = GetOSVersion();
    return info.m_platformId == OSPlatformWinNT && info.m_majorVersion >= 6;
}

} // namespace Util
