#include "tools/ztutil/cmd_time_platform.h"

#include "Util/ProcessInfo.h"

#include <cerrno>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace ztutil {

bool RunChild(const std::vector<std::string>& command, ChildRun& run, std::string& error) {
    std::vector<char*> argv;
    for (const auto& arg : command)
        argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    int rc = posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ);
    if (rc != 0) {
        error = std::strerror(rc);
        return false;
    }
    // Wait without reaping, so that the finished child's counters can still be read.
    siginfo_t info{};
    while (waitid(P_PID, pid_t(pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    run.pageFaults = Util::GetProcessPageFaultCount(Util::ProcessHandleFromId(pid));
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status))
        run.exitCode = WEXITSTATUS(status);
    else if (WIFSIGNALED(status))
        run.exitCode = 128 + WTERMSIG(status);
    return true;
}

} // namespace ztutil
