#include "DataAccessor/src/legacyprofile_platform.h"

#include "Util/Win32.h"

#if __has_include("Util/Win32Profile.h")
#include "Util/Win32Profile.h"
#define ZT_HAVE_INI_ENGINE 1
#endif

namespace Norvane {
namespace Utilities {
namespace Platform {

#if defined(ZT_HAVE_INI_ENGINE)
DWORD ProfileGetString(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                       LPCSTR fileName) {
    return Util::Win32::GetPrivateProfileStringA(section, key, defaultValue, buffer, size,
                                                 fileName);
}

BOOL ProfileWriteString(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName) {
    return Util::Win32::WritePrivateProfileStringA(section, key, value, fileName);
}
#else
// Until the INI engine is part of the build: nothing is found and nothing can be written.
DWORD ProfileGetString(LPCSTR, LPCSTR, LPCSTR, LPSTR buffer, DWORD size, LPCSTR) {
    if (buffer != nullptr && size > 0)
        buffer[0] = '\0';
    Util::Win32::SetLastError(ERROR_NOT_SUPPORTED);
    return 0;
}

BOOL ProfileWriteString(LPCSTR, LPCSTR, LPCSTR, LPCSTR) {
    Util::Win32::SetLastError(ERROR_NOT_SUPPORTED);
    return FALSE;
}
#endif

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
