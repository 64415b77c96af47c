// The Win32 functions the library itself calls, reached as Util::Win32::X on every platform.
//
// On Windows the names are the real Win32 functions. On POSIX the OS-isolation layer
// implements them with Win32 semantics: the last-error value is kept per thread, and
// failures set Win32 error codes (2 file not found, 3 path not found, 5 access denied, ...).
// Later subsystems add the functions they call here; the rest of the library is written once.
// The file and directory functions live in Util/Win32File.h and the C runtime's file functions
// in Util/Win32Crt.h; include them where they are used (they bring in more of <windows.h> and
// the C runtime's macros than this header should).
//
// ErrorStateGuard saves the caller's error state (the Win32 last error and, on POSIX, errno
// as well) and restores it when it goes out of scope, so that reporting never disturbs it.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#include <cerrno>

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::GetLastError;
using ::SetLastError;
#else
ZTUTIL_API DWORD GetLastError();
ZTUTIL_API void SetLastError(DWORD error);
#endif

// The Win32 error code that stands for a C library errno value (ENOENT -> 2, EACCES -> 5, ...).
ZTUTIL_API DWORD ErrorFromErrno(int err);

} // namespace Win32

class ErrorStateGuard {
public:
    ErrorStateGuard() : m_lastError(Win32::GetLastError()), m_errno(errno) {}
    ~ErrorStateGuard() {
        errno = m_errno;
        Win32::SetLastError(m_lastError);
    }
    ErrorStateGuard(const ErrorStateGuard&) = delete;
    ErrorStateGuard& operator=(const ErrorStateGuard&) = delete;

private:
    DWORD m_lastError;
    int m_errno;
};

} // namespace Util

#include "Util/Win32Profile.h"
