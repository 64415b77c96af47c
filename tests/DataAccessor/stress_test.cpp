#include "tests/DataAccessor/settingstest.h"

#include "Util/UtilProfile.h"

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Stress = ztest::SettingsDir;

// Eight threads read, write and list while one of them keeps unloading the manager; every
// thread's last writes are there at the end and no read sees a value nobody wrote.
TEST_F(Stress, EightThreadsWithUnloadAndReload) {
    const int kThreads = 8, kRounds = 25;
    std::atomic<int> badReads{0}, failedWrites{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const std::string section = "T" + std::to_string(t);
            char buffer[256];
            for (int i = 0; i < kRounds; ++i) {
                const std::string value = std::to_string(i);
                const char* ini = t % 2 == 0 ? "ZTW.INI" : "PRCALC.LOG";
                if (!UtilWritePrivateProfileString(section.c_str(), "K", value.c_str(), ini))
                    ++failedWrites;
                UtilGetPrivateProfileString(section.c_str(), "K", "", buffer, sizeof buffer, ini);
                if (std::stoi(buffer) < i)
                    ++badReads;
                UtilGetPrivateProfileString("T0", "K", "0", buffer, sizeof buffer, "ZTW.INI");
                UtilGetPrivateProfileSectionNames(buffer, sizeof buffer, ini);
                UtilGetPrivateProfileSection(section.c_str(), buffer, sizeof buffer, ini);
                if (t == kThreads - 1 && i % 5 == 0)
                    UtilProfileUnload();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failedWrites.load(), 0);
    EXPECT_EQ(badReads.load(), 0);
    UtilProfileUnload();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(
            Get(t % 2 == 0 ? "ZTW.INI" : "PRCALC.LOG", ("T" + std::to_string(t)).c_str(), "K"),
            std::to_string(kRounds - 1));
}

} // namespace
