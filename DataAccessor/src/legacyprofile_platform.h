// The Win32 profile-string functions as each platform provides them: on Windows the real
// functions, looked up by name in "Kernel32" at each call (the library is released after use);
// on POSIX the OS-isolation layer's INI engine.
#pragma once

#include "Util/Win32Types.h"

namespace Norvane {
namespace Utilities {
namespace Platform {

// The Win32 names (global on Windows, in Util::Win32 elsewhere).
using namespace Util::Win32;

DWORD ProfileGetString(LPCSTR section, LPCSTR key, LPCSTR defaultValue, LPSTR buffer, DWORD size,
                       LPCSTR fileName);
BOOL ProfileWriteString(LPCSTR section, LPCSTR key, LPCSTR value, LPCSTR fileName);

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
