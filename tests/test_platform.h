// What a test needs to know about the platform it runs on: Windows or POSIX, and whether the
// Windows it runs on is Wine. A test that cannot hold on one platform skips there and says why:
//     ZT_SKIP_ON_WINDOWS("Samba's configuration is the POSIX side's source of shares");
#pragma once

#include <gtest/gtest.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#endif

namespace ZtTest {

#if defined(_WIN32)
constexpr bool kWindows = true;
// Wine's ntdll exports wine_get_version; Windows' does not.
inline bool RunsAsRoot() {
    return false;
}
inline bool UnderWine() {
    const HMODULE ntdll = GetModuleHandleA("ntdll.dll");
    return ntdll != nullptr && GetProcAddress(ntdll, "wine_get_version") != nullptr;
}
#else
constexpr bool kWindows = false;
// Root passes every permission check, so tests of refused access cannot hold.
inline bool RunsAsRoot() {
    return geteuid() == 0;
}
inline bool UnderWine() {
    return false;
}
#endif

// RunWithoutRoot's result when the child could not give up root.
constexpr int kCouldNotDropRoot = 125;

// Runs fn (returning an int from 0 to 124) where permission bits hold even when the tests run as
// root, as CI does: in a forked child that first becomes the user nobody (65534) if it is root.
// Returns fn's result, kCouldNotDropRoot, or 128 + the signal that ended the child. The child
// starts as a copy of this process, caches included. Windows has no root: fn runs here.
template <typename Fn> int RunWithoutRoot(Fn fn) {
#if defined(_WIN32)
    return fn();
#else
    const pid_t pid = ::fork();
    if (pid < 0)
        return kCouldNotDropRoot;
    if (pid == 0) {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 &&
            (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0))
            std::_Exit(kCouldNotDropRoot);
        std::_Exit(fn());
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0)
        if (errno != EINTR)
            return kCouldNotDropRoot;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
#endif
}

} // namespace ZtTest

#define ZT_SKIP_ON_WINDOWS(reason)                                                                 \
    if (!ZtTest::kWindows) {                                                                       \
    } else                                                                                         \
        GTEST_SKIP() << "not on Windows: " << (reason)

#define ZT_SKIP_UNDER_WINE(reason)                                                                 \
    if (!ZtTest::UnderWine()) {                                                                    \
    } else                                                                                         \
        GTEST_SKIP() << "Wine differs from Windows: " << (reason)
