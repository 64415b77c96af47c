// POSIX emulation of the Win32 clocks on CLOCK_MONOTONIC.
#include "Util/Win32.h"
#include "Util/Win32Time.h"

#include <ctime>

namespace Util {
namespace Win32 {

namespace {
constexpr LONGLONG kNanosecondsPerSecond = 1000000000;

LONGLONG MonotonicNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<LONGLONG>(now.tv_sec) * kNanosecondsPerSecond + now.tv_nsec;
}
} // namespace

DWORD GetTickCount() {
    // Truncation to 32 bits is the documented wrap-around.
    return static_cast<DWORD>(MonotonicNanoseconds() / 1000000);
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    if (count == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    count->QuadPart = MonotonicNanoseconds();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    if (frequency == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    frequency->QuadPart = kNanosecondsPerSecond;
    return TRUE;
}

} // namespace Win32
} // namespace Util
