// POSIX emulation of the Win32 error state: one last-error value per thread.
#include "Util/Win32.h"

namespace Util {
namespace Win32 {

namespace {
thread_local DWORD t_lastError = ERROR_SUCCESS;
}

DWORD GetLastError() {
    return t_lastError;
}

void SetLastError(DWORD error) {
    t_lastError = error;
}

} // namespace Win32
} // namespace Util
