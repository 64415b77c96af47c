#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
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
    // The kernel's thread id, the number tools such as top and gdb show. Kept per thread with the
    // process it was read in: the thread that forks has a new id in the child.
    struct Cached {
        unsigned long pid;
        unsigned long tid;
    };
    static thread_local Cached s_cached{0, 0};
    const unsigned long pid = CurrentProcessId();
    if (s_cached.pid != pid) {
        s_cached.tid = static_cast<unsigned long>(::syscall(SYS_gettid));
        s_cached.pid = pid;
    }
    return s_cached.tid;
}

bool ToLocalTime(std::time_t time, std::tm& out) {
    return ::localtime_r(&time, &out) != nullptr;
}

FileHandle OpenAppendFile(const char* path) {
    int fd;
    do
        fd = ::open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    while (fd < 0 && errno == EINTR);
    return fd < 0 ? kNoFile : static_cast<FileHandle>(fd);
}

bool AppendToFile(FileHandle file, const char* data, std::size_t size) {
    // O_APPEND: the kernel moves to the end and writes under the file's lock, so one write() of a
    // whole line is never split by another writer's line.
    while (size > 0) {
        const ssize_t written = ::write(static_cast<int>(file), data, size);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (written == 0)
            return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

void CloseFile(FileHandle file) {
    if (file != kNoFile)
        ::close(static_cast<int>(file));
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
