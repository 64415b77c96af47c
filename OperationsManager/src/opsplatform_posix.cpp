#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <pthread.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>

#include "OperationsManager/src/opsplatform.h"

namespace Util {
namespace OpsDetail {

namespace {

// getpid is a system call on current C libraries and log lines ask for it on every event, so the
// value is kept, and forgotten in a forked child.
std::atomic<unsigned long> g_pid{0};

void ForgetPid() {
    g_pid.store(0, std::memory_order_relaxed);
}

} // namespace

unsigned long CurrentProcessId() {
    unsigned long pid = g_pid.load(std::memory_order_relaxed);
    if (pid == 0) {
        static const int s_registered = ::pthread_atfork(nullptr, nullptr, ForgetPid);
        (void)s_registered;
        pid = static_cast<unsigned long>(::getpid());
        g_pid.store(pid, std::memory_order_relaxed);
    }
    return pid;
}

unsigned long CurrentThreadId() {
    // The kernel's thread id, the number tools such as top and gdb show.
    static thread_local const unsigned long s_tid =
        static_cast<unsigned long>(::syscall(SYS_gettid));
    return s_tid;
}

bool ToLocalTime(std::time_t time, std::tm& out) {
    return ::localtime_r(&time, &out) != nullptr;
}

void WriteDebugOutput(const char* text) {
    std::fputs(text, stderr);
    std::fflush(stderr);
}

void SoundBeep(unsigned long, unsigned long) {
    if (::isatty(STDERR_FILENO)) {
        std::fputc('\a', stderr);
        std::fflush(stderr);
    }
}

bool IsDebuggerAttached() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, 10, "TracerPid:") == 0)
            return std::strtol(line.c_str() + 10, nullptr, 10) != 0;
    }
    return false;
}

void BreakIntoDebugger() {
    std::raise(SIGTRAP);
}

bool AlertUser(const char* title, const char* message, bool) {
    std::fprintf(stderr, "%s: %s\n", title ? title : "", message ? message : "");
    std::fflush(stderr);
    return false;
}

bool IsNumLockOn() {
    return false;
}

void EndProcess(int exitStatus) {
    std::fflush(nullptr);
    std::_Exit(exitStatus);
}

} // namespace OpsDetail
} // namespace Util
