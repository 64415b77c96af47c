// Behaviour tables of the Win32 functions the library emulates on POSIX.
//
// Each win32_<area>_table_test.cpp holds one table per function: the inputs and the results and
// last-error values Windows documents. The same source runs on Linux against our emulation and
// on Windows (make windows, under Wine) against the real functions, so a row that passes on one
// platform and fails on the other is a bug in the emulation. Add a row for every behaviour the
// library relies on; keep the expected values those of Windows.
#include "Util/Win32.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Util::Win32;

namespace {

struct LastErrorRow {
    const char* name;
    DWORD value;
};

class Win32LastErrorTable : public ::testing::TestWithParam<LastErrorRow> {};

// Every value survives a round trip, on this thread only: another thread starts at 0 and its
// own value does not leak back.
TEST_P(Win32LastErrorTable, RoundTripsPerThread) {
    const DWORD value = GetParam().value;
    // Creating and joining a thread may change the caller's value on Windows: the threads take
    // turns while both run, and this thread reads its value back before the join.
    std::atomic<int> turn{0};
    DWORD fresh = 1, own = 0;
    std::thread other([&] {
        while (turn.load() != 1)
            std::this_thread::yield();
        fresh = Util::Win32::GetLastError();
        Util::Win32::SetLastError(value ^ 1u);
        own = Util::Win32::GetLastError();
        turn.store(2);
    });
    Util::Win32::SetLastError(value);
    turn.store(1);
    while (turn.load() != 2)
        std::this_thread::yield();
    const DWORD mine = Util::Win32::GetLastError();
    other.join();
    EXPECT_EQ(mine, value);
    EXPECT_EQ(fresh, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(own, value ^ 1u);
}

const LastErrorRow kLastErrorRows[] = {
    {"Success", ERROR_SUCCESS},
    {"FileNotFound", ERROR_FILE_NOT_FOUND},
    {"ProcNotFound", ERROR_PROC_NOT_FOUND},
    {"ApplicationDefinedBit", 0x20000000u},
    {"AllBitsSet", 0xFFFFFFFFu},
};

INSTANTIATE_TEST_SUITE_P(Values, Win32LastErrorTable, ::testing::ValuesIn(kLastErrorRows),
                         [](const ::testing::TestParamInfo<LastErrorRow>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
