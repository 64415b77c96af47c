// Page faults on Windows: the process memory counters.
#include "Util/ProcessInfo.h"

#include <psapi.h>

namespace Util {

long GetProcessPageFaultCount(HANDLE process) {
    if (process == nullptr)
        process = ::GetCurrentProcess();
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    if (!::GetProcessMemoryInfo(process, &counters, sizeof counters))
        return 0;
    return static_cast<long>(counters.PageFaultCount);
}

} // namespace Util
