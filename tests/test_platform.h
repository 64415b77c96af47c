// What a test needs to know about the platform it runs on: Windows or POSIX, and whether the
// Windows it runs on is Wine. A test that cannot hold on one platform skips there and says why:
//     ZT_SKIP_ON_WINDOWS("Samba's configuration is the POSIX side's source of shares");
#pragma once

#include <gtest/gtest.h>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
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

} // namespace ZtTest

#define ZT_SKIP_ON_WINDOWS(reason)                                                                 \
    if (!ZtTest::kWindows) {                                                                       \
    } else                                                                                         \
        GTEST_SKIP() << "not on Windows: " << (reason)

#define ZT_SKIP_UNDER_WINE(reason)                                                                 \
    if (!ZtTest::UnderWine()) {                                                                    \
    } else                                                                                         \
        GTEST_SKIP() << "Wine differs from Windows: " << (reason)
