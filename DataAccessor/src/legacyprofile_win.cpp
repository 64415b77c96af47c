#include "DataAccessor/src/legacyprofile_platform.h"

#include "Util/DynamicLibrary.h"

#include <windows.h>

namespace Norvane {
namespace Utilities {
namespace Platform {

namespace {
using GetStringFn = DWORD(WINAPI*)(LPCSTR, LPCSTR, LPCSTR, LPSTR, DWORD, LPCSTR);
using WriteStringFn = BOOL(WINAPI*)(LPCSTR, LPCSTR, LPCSTR, LPCSTR);
} // namespace

DWORD ProfileGetString(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                       LPCSTR fileName) {
    Util::DynamicLibrary kernel;
    if (kernel.Load("Kernel32").Failed())
        return 0;
    auto fn = kernel.GetFunction<GetStringFn>("GetPrivateProfileStringA");
    if (fn == nullptr)
        return 0;
    return fn(section, key, defaultValue, buffer, size, fileName);
}

BOOL ProfileWriteString(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName) {
    Util::DynamicLibrary kernel;
    if (kernel.Load("Kernel32").Failed())
        return FALSE;
    auto fn = kernel.GetFunction<WriteStringFn>("WritePrivateProfileStringA");
    if (fn == nullptr)
        return FALSE;
    return fn(section, key, value, fileName);
}

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
