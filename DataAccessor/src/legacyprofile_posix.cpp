#include "DataAccessor/src/legacyprofile_platform.h"

#include "Util/Win32.h"

namespace Norvane {
namespace Utilities {
namespace Platform {

using namespace Util::Win32;

DWORD ProfileGetString(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                       LPCSTR fileName) {
    return Util::Win32::GetPrivateProfileStringA(section, key, defaultValue, buffer, size,
                                                 fileName);
}

BOOL ProfileWriteString(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName) {
    return Util::Win32::WritePrivateProfileStringA(section, key, value, fileName);
}

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
