#include "Util/DynamicLibrary.h"
#include "Util/Win32.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Util::Win32;

using Util::DynamicLibrary;

TEST(DynamicLibrary, LoadsARealLibraryAndFindsItsSymbols) {
    DynamicLibrary lib;
    ASSERT_TRUE(lib.Load(ZT_TEST_PLUGIN_PATH).Succeeded());
    EXPECT_TRUE(lib.IsLoaded());
    auto answer = lib.GetFunction<int (*)()>("zt_plugin_answer");
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    auto* counter = static_cast<int*>(lib.GetSymbol("zt_plugin_counter"));
    ASSERT_NE(counter, nullptr);
    EXPECT_EQ(*counter, 7);

    DynamicLibrary moved(std::move(lib));
    EXPECT_FALSE(lib.IsLoaded());
    EXPECT_TRUE(moved.IsLoaded());
    moved.Unload();
    EXPECT_FALSE(moved.IsLoaded());
}

TEST(DynamicLibrary, FailuresCarryWin32ErrorAndSetLastError) {
    DynamicLibrary lib;
    Util::Status status = lib.Load("/nonexistent/libnothing.so");
    EXPECT_TRUE(status.Failed());
    long error = 0;
    EXPECT_TRUE(status.GetLongAttribute("Win32Error", error));
    EXPECT_EQ(error, ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(Util::Win32::GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_NE(std::string(status.GetStatusMessage().c_str()).find("libnothing"), std::string::npos);

    EXPECT_TRUE(lib.Load(nullptr).Failed());

    ASSERT_TRUE(lib.Load(ZT_TEST_PLUGIN_PATH).Succeeded());
    Util::Status lookup;
    EXPECT_EQ(lib.GetSymbol("no_such_symbol", &lookup), nullptr);
    EXPECT_EQ(lookup.GetStatusCode(), Util::Status::GetNotFound().GetStatusCode());
    EXPECT_EQ(Util::Win32::GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
}

TEST(Win32LastError, IsPerThreadAndRestoredByTheGuard) {
    // Creating and joining a thread may change the caller's last error on Windows, so the
    // values are set and compared while both threads run, in turns.
    std::atomic<int> turn{0};
    DWORD seenByOther = 1234;
    std::thread other([&] {
        while (turn.load() != 1)
            std::this_thread::yield();
        seenByOther = Util::Win32::GetLastError();
        Util::Win32::SetLastError(ERROR_FILE_NOT_FOUND);
        turn.store(2);
    });
    Util::Win32::SetLastError(ERROR_ACCESS_DENIED);
    turn.store(1);
    while (turn.load() != 2)
        std::this_thread::yield();
    const DWORD seenHere = Util::Win32::GetLastError();
    other.join();
    EXPECT_EQ(seenByOther, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(seenHere, static_cast<DWORD>(ERROR_ACCESS_DENIED));

    Util::Win32::SetLastError(ERROR_ACCESS_DENIED);

    errno = ERANGE;
    {
        Util::ErrorStateGuard guard;
        Util::Win32::SetLastError(ERROR_INVALID_PARAMETER);
        errno = ENOENT;
    }
    EXPECT_EQ(Util::Win32::GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(errno, ERANGE);
}

TEST(Win32LastError, ErrnoMapsToWin32Codes) {
    const std::pair<int, DWORD> rows[] = {{0, ERROR_SUCCESS},
                                          {ENOENT, ERROR_FILE_NOT_FOUND},
                                          {ENOTDIR, ERROR_PATH_NOT_FOUND},
                                          {EACCES, ERROR_ACCESS_DENIED},
                                          {EEXIST, ERROR_ALREADY_EXISTS},
                                          {ENOSPC, ERROR_DISK_FULL}};
    for (const auto& [err, win32] : rows)
        EXPECT_EQ(Util::Win32::ErrorFromErrno(err), win32) << err;
}
