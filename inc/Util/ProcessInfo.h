// Util::GetProcessPageFaultCount: how many page faults a process has taken so far.
//
// The count includes soft faults (pages found in memory) as well as hard ones, as Windows'
// process memory counters do. The process is named by a handle: on Windows a process handle
// with query access; on POSIX a process id carried in the handle value (ProcessHandleFromId).
// A null handle or CurrentProcessHandle() means the calling process on both platforms. For a
// process that cannot be read (gone, no access, bad handle) the result is 0 and the Win32 last
// error says why (6 invalid handle, 5 access denied, 87 invalid parameter).
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#include <cstdint>

namespace Util {

// The pseudo handle that stands for the calling process ((HANDLE)-1, as GetCurrentProcess).
inline HANDLE CurrentProcessHandle() {
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));
}

// POSIX: the handle that names a process id for GetProcessPageFaultCount.
inline HANDLE ProcessHandleFromId(long processId) {
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(processId));
}

ZTUTIL_API long GetProcessPageFaultCount(HANDLE process);

} // namespace Util
