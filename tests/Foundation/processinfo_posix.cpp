#include "Util/ProcessInfo.h"
#include "Util/Win32.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <vector>

using namespace Util::Win32;

TEST(ProcessPageFaults, OwnProcessCountsGrowWithTouchedMemory) {
    const long before = Util::GetProcessPageFaultCount(Util::CurrentProcessHandle());
    EXPECT_GT(before, 0);
    std::vector<char> pages(8 << 20, 1);
    EXPECT_GT(Util::GetProcessPageFaultCount(nullptr), before);
    EXPECT_GE(Util::GetProcessPageFaultCount(Util::ProcessHandleFromId(getpid())), before);
}

TEST(ProcessPageFaults, AnotherProcessIsReadByIdAndAGoneOneFails) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::vector<char> pages(4 << 20, 1);
        char done = 1;
        (void)!write(ready[1], &done, 1);
        pause();
        _exit(0);
    }
    char done = 0;
    ASSERT_EQ(read(ready[0], &done, 1), 1);
    EXPECT_GT(Util::GetProcessPageFaultCount(Util::ProcessHandleFromId(child)),
              256); // a quarter of the touched pages at least
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);

    Util::Win32::SetLastError(0);
    EXPECT_EQ(Util::GetProcessPageFaultCount(Util::ProcessHandleFromId(child)), 0);
    EXPECT_EQ(Util::Win32::GetLastError(), DWORD(ERROR_INVALID_HANDLE));
}
