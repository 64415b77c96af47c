// Page faults on POSIX: getrusage for the calling process, /proc/<pid>/stat for another one.
#include "Util/ProcessInfo.h"
#include "Util/Win32.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace Util {

namespace {

long OwnPageFaults() {
    rusage usage{};
    if (getrusage(RUSAGE_SELF, &usage) != 0) {
        Win32::SetLastError(Win32::ErrorFromErrno(errno));
        return 0;
    }
    return static_cast<long>(usage.ru_minflt + usage.ru_majflt);
}

// Fields 10 (minflt) and 12 (majflt) of /proc/<pid>/stat. The command name (field 2) may hold
// blanks and parentheses, so parsing starts after its last ')'.
long OtherPageFaults(long pid) {
    std::string path = "/proc/" + std::to_string(pid) + "/stat";
    FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr) {
        Win32::SetLastError(errno == ENOENT ? ERROR_INVALID_HANDLE : Win32::ErrorFromErrno(errno));
        return 0;
    }
    char buffer[1024];
    size_t length = std::fread(buffer, 1, sizeof buffer - 1, file);
    std::fclose(file);
    buffer[length] = '\0';
    const char* rest = std::strrchr(buffer, ')');
    unsigned long minflt = 0, cminflt = 0, majflt = 0;
    if (rest == nullptr || std::sscanf(rest + 1, " %*c %*d %*d %*d %*d %*d %*u %lu %lu %lu",
                                       &minflt, &cminflt, &majflt) != 3) {
        Win32::SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return static_cast<long>(minflt + majflt);
}

} // namespace

long GetProcessPageFaultCount(HANDLE process) {
    std::intptr_t value = reinterpret_cast<std::intptr_t>(process);
    if (value == 0 || process == CurrentProcessHandle() || value == getpid())
        return OwnPageFaults();
    if (value < 0) {
        Win32::SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return OtherPageFaults(static_cast<long>(value));
}

} // namespace Util
