// The Win32 clocks the library reads, reached as Util::Win32::X on every platform.
//
// GetTickCount: milliseconds since an arbitrary start (system start on Windows), as a 32-bit
// value that wraps to 0 after about 49.7 days; differences are taken in 32-bit arithmetic.
// QueryPerformanceCounter / QueryPerformanceFrequency: a high-resolution monotonic counter and
// its ticks per second. On Windows these are the real functions. On POSIX both clocks read
// CLOCK_MONOTONIC, the counter in nanoseconds (frequency 1000000000), so that a tick count and
// a counter value taken together describe the same moment.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

// On POSIX, LARGE_INTEGER is declared with the file functions' types.
#include "Util/Win32File.h"

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::GetTickCount;
using ::QueryPerformanceCounter;
using ::QueryPerformanceFrequency;
#else
ZTUTIL_API DWORD GetTickCount();
// Both fail (FALSE, last error 87) only for a null argument.
ZTUTIL_API BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
ZTUTIL_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
#endif

} // namespace Win32
} // namespace Util
