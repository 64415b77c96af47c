// Repositories under crashes, competing processes, damage and a full disk. Children are forked
// processes working on the same directory.
#include "tests/DataAccessor/settingstest.h"
#include "tests/OperationsManager/ops_test_support.h"
#include "tests/test_platform.h"

#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using ztest::SettingsDir;

// Runs fn in a child process and returns the child's pid; the child exits with fn's result.
template <typename Fn> pid_t Spawn(Fn fn) {
    pid_t pid = ::fork();
    if (pid == 0) {
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        std::_Exit(fn());
    }
    return pid;
}

int WaitFor(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// A repository of count keys in section S of ZTW.INI, written directly as UTF-16.
std::string RepositoryText(int count, const std::string& value) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-16\"?><KeyValueRepository>"
                      "<IniFile name=\"ZTW.INI\"><Section name=\"S\">";
    for (int i = 0; i < count; ++i)
        xml += "<Key name=\"K" + std::to_string(i) + "\"><Value>" + value + "</Value></Key>";
    xml += "</Section></IniFile></KeyValueRepository>";
    return ztest::Utf16(xml, true);
}

bool HasCorruptCopy(const std::filesystem::path& dir) {
    for (const auto& entry : std::filesystem::directory_iterator(dir))
        if (entry.path().filename().string().find(".corrupt-") != std::string::npos)
            return true;
    return false;
}

using Durability = SettingsDir;

TEST_F(Durability, ValueSurvivesKillRightAfterSetReturns) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t child = Spawn([&] {
        const bool ok = Set("ZTW.INI", "Crash", "Key", "kept");
        char byte = ok ? 'y' : 'n';
        (void)::write(ready[1], &byte, 1);
        ::pause();
        return 0;
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ::kill(child, SIGKILL);
    WaitFor(child);
    ::close(ready[0]);
    ::close(ready[1]);
    ASSERT_EQ(byte, 'y');
    EXPECT_EQ(Get("ZTW.INI", "Crash", "Key"), "kept");
}

TEST_F(Durability, KillWhileWritingLeavesOldOrNewRepository) {
    WriteFile("ZTW.INI.XML", RepositoryText(3000, "0"));
    std::mt19937 random(12345);
    for (int round = 0; round < 25; ++round) {
        pid_t child = Spawn([] {
            for (long i = 1;; ++i)
                Set("ZTW.INI", "S", "Counter", std::to_string(i).c_str());
            return 0;
        });
        ::usleep(std::uniform_int_distribution<useconds_t>(1000, 30000)(random));
        ::kill(child, SIGKILL);
        WaitFor(child);
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        EXPECT_EQ(Get("ZTW.INI", "S", "K2999", "lost"), "0") << "round " << round;
        const std::string counter = Get("ZTW.INI", "S", "Counter", "0");
        EXPECT_EQ(counter.find_first_not_of("0123456789"), std::string::npos) << counter;
        ASSERT_FALSE(HasCorruptCopy(m_dir)) << "round " << round;
    }
}

TEST_F(Durability, TwoProcessesWritingDifferentKeysLoseNothing) {
    // In memory where the system has it: this is about the lock and the reload, and two thousand
    // flushes to disk would only make it slow.
    const std::filesystem::path shm = "/dev/shm";
    const std::filesystem::path dir =
        std::filesystem::is_directory(shm) ? shm / m_dir.filename() : m_dir / "shared";
    std::filesystem::create_directories(dir);
    const std::string dirText = dir.string() + "/";
    Util::ProfileLocations::SetDirectories(dirText.c_str(), dirText.c_str());
    struct Cleanup {
        std::filesystem::path dir;
        ~Cleanup() {
            std::error_code ignored;
            std::filesystem::remove_all(dir, ignored);
        }
    } cleanup{dir};
    const int kKeys = 1000;
    auto writer = [&](const char* prefix) {
        return [=] {
            for (int i = 0; i < kKeys; ++i) {
                const std::string key = prefix + std::to_string(i);
                if (!Set("ZTW.INI", "Shared", key.c_str(), key.c_str()))
                    return 1;
            }
            return 0;
        };
    };
    pid_t a = Spawn(writer("a"));
    pid_t b = Spawn(writer("b"));
    EXPECT_EQ(WaitFor(a), 0);
    EXPECT_EQ(WaitFor(b), 0);
    int present = 0;
    for (const char* prefix : {"a", "b"})
        for (int i = 0; i < kKeys; ++i) {
            const std::string key = prefix + std::to_string(i);
            present += Get("ZTW.INI", "Shared", key.c_str()) == key ? 1 : 0;
        }
    EXPECT_EQ(present, 2 * kKeys);
}

TEST_F(Durability, ReadsSeeAnotherProcessesWriteWithinASecond) {
    ASSERT_TRUE(Set("ZTW.INI", "S", "K", "old"));
    EXPECT_EQ(Get("ZTW.INI", "S", "K"), "old");
    pid_t child = Spawn([] { return Set("ZTW.INI", "S", "K", "new") ? 0 : 1; });
    ASSERT_EQ(WaitFor(child), 0);
    ::usleep(1000 * 1000);
    EXPECT_EQ(Get("ZTW.INI", "S", "K"), "new");
}

TEST_F(Durability, FullDiskFailsTheWriteAndKeepsTheOldFile) {
    ASSERT_TRUE(Set("ZTW.INI", "S", "K", "old"));
    const std::string before = ReadFile("ZTW.INI.XML");
    pid_t child = Spawn([] {
        std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit limit = {1024, 1024};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return Set("ZTW.INI", "S", "K", std::string(4096, 'x').c_str()) ? 1 : 0;
    });
    EXPECT_EQ(WaitFor(child), 0) << "the write should have failed";
    EXPECT_EQ(ReadFile("ZTW.INI.XML"), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_dir),
                            std::filesystem::directory_iterator()),
              2)
        << "only the repository and its lock file";
}

// A directory the writer may not change: the child gives up root first (root ignores
// permission bits), so the directory's mode is what stops the temporary file. The repository and
// its lock file stay writable, so that nothing but the directory is in the way.
TEST_F(Durability, ReadOnlyDirectoryFailsTheWriteAndKeepsTheOldFile) {
    ASSERT_TRUE(Set("ZTW.INI", "S", "K", "old"));
    const std::string before = ReadFile("ZTW.INI.XML");
    for (const auto& entry : std::filesystem::directory_iterator(m_dir))
        std::filesystem::permissions(entry.path(), std::filesystem::perms(0666));
    std::filesystem::permissions(m_dir, std::filesystem::perms(0555));
    const int result = ZtTest::RunWithoutRoot([] {
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        return Set("ZTW.INI", "S", "K", "new") ? 1 : 0;
    });
    std::filesystem::permissions(m_dir, std::filesystem::perms(0755));
    EXPECT_EQ(result, 0) << "the write should have failed (" << ZtTest::kCouldNotDropRoot
                         << ": could not give up root)";
    EXPECT_EQ(ReadFile("ZTW.INI.XML"), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_dir),
                            std::filesystem::directory_iterator()),
              2)
        << "only the repository and its lock file";
    EXPECT_EQ(Get("ZTW.INI", "S", "K"), "old");
}

class Corrupt : public SettingsDir {
protected:
    void SetUp() override {
        SettingsDir::SetUp();
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
        Util::GetOps().BeginOperations(&m_context);
    }
    void TearDown() override {
        Util::GetOps().EndOperations();
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
        SettingsDir::TearDown();
    }
    OpsTest::TestContext m_context{std::filesystem::temp_directory_path().string()};
};

// Each damaged file is moved aside untouched, reported once, read as empty and replaced by a
// fresh repository on the next write.
TEST_F(Corrupt, RepositoryIsMovedAsideAndReported) {
    const std::string good = RepositoryText(2, "v");
    const struct {
        const char* what;
        std::string data;
    } cases[] = {
        {"truncated", good.substr(0, good.size() / 2)},
        {"not XML", "[Section]\r\nKey=Value\r\n"},
        {"wrong root", ztest::Utf16("<Settings><IniFile name=\"ZTW.INI\"/></Settings>", true)},
        {"UTF-16 garbage without BOM", std::string("\x3c\xd8\x00\xdc\x41\x00\xff\xfe\x12", 9)},
        {"empty", ""},
    };
    for (const auto& c : cases) {
        auto events = OpsTest::Subscribe("EVENT_TYPE_FILTER", "type", "MESSAGE");
        WriteFile("ZTW.INI.XML", c.data);
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        EXPECT_EQ(Get("ZTW.INI", "S", "K0", "default"), "default") << c.what;
        EXPECT_EQ(Get("ZTW.INI", "S", "K1", "default"), "default") << c.what;
        ASSERT_EQ(events->Count(), 1u) << c.what;
        const OpsTest::Captured event = events->Events()[0];
        EXPECT_EQ(event.level, Util::Ops::kLvlError);
        EXPECT_EQ(event.type, Util::Ops::kMessage);
        std::string aside;
        for (const auto& entry : std::filesystem::directory_iterator(m_dir))
            if (entry.path().filename().string().find(".corrupt-") != std::string::npos)
                aside = entry.path().filename().string();
        ASSERT_FALSE(aside.empty()) << c.what;
        EXPECT_EQ(ReadFile(aside), c.data) << c.what;
        EXPECT_NE(event.text.find(PathOf("ZTW.INI.XML")), std::string::npos) << event.text;
        EXPECT_NE(event.text.find(aside), std::string::npos) << event.text;
        EXPECT_TRUE(Set("ZTW.INI", "S", "New", "1")) << c.what;
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        EXPECT_EQ(Get("ZTW.INI", "S", "New"), "1") << c.what;
        std::filesystem::remove(PathOf(aside));
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    }
}

} // namespace
