// What the POSIX profile engine adds to Windows' behaviour: where bare names live, POSIX line
// ends, atomic replacement of the file, and many threads writing one file.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "Util/Win32.h"

using namespace Util::Win32;

namespace fs = std::filesystem;
namespace W = Util::Win32;

namespace {

class ProfilePosix : public ::testing::Test {
protected:
    void SetUp() override {
        char dir[] = "/tmp/zt_profile_XXXXXX";
        ASSERT_NE(::mkdtemp(dir), nullptr);
        m_dir = dir;
    }
    void TearDown() override {
        ::unsetenv("ZT_WINDOWS_DIR");
        fs::remove_all(m_dir);
    }
    std::string Path(const char* name) const { return (m_dir / name).string(); }
    static void Put(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string Get(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    static std::string Read(const char* section, const char* key, const char* file) {
        char buffer[256];
        W::GetPrivateProfileStringA(section, key, "<none>", buffer, sizeof buffer, file);
        return buffer;
    }
    fs::path m_dir;
};

TEST_F(ProfilePosix, BareNamesLiveInTheWindowsDirectoryAndMatchCaseBlind) {
    ::setenv("ZT_WINDOWS_DIR", m_dir.c_str(), 1);
    ASSERT_TRUE(W::WritePrivateProfileStringA("s", "k", "v", "Win.ini"));
    EXPECT_EQ(Get(Path("Win.ini")), "[s]\r\nk=v\r\n");
    EXPECT_EQ(Read("s", "k", "WIN.INI"), "v");
    EXPECT_EQ(Read("s", "k", nullptr), "v"); // a null name is win.ini
    // Backslashes separate directories like slashes.
    std::string backslashed = Path("Win.ini");
    for (char& c : backslashed)
        if (c == '/')
            c = '\\';
    EXPECT_EQ(Read("s", "k", backslashed.c_str()), "v");
}

TEST_F(ProfilePosix, LfFileGetsLfLines) {
    const std::string file = Path("lf.ini");
    Put(file, "[s]\nk=1");
    ASSERT_TRUE(W::WritePrivateProfileStringA("s", "j", "2", file.c_str()));
    ASSERT_TRUE(W::WritePrivateProfileStringA("t", "k", "3", file.c_str()));
    EXPECT_EQ(Get(file), "[s]\nk=1\nj=2\n[t]\nk=3\n");
}

TEST_F(ProfilePosix, NewKeyGoesBeforeBlankLinesEndingItsSection) {
    const std::string file = Path("blank.ini");
    Put(file, "[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
    ASSERT_TRUE(W::WritePrivateProfileStringA("a", "z", "3", file.c_str()));
    EXPECT_EQ(Get(file), "[a]\r\nx=1\r\nz=3\r\n\r\n[b]\r\ny=2\r\n");
}

TEST_F(ProfilePosix, FailuresNameTheCauseAndCreateNothing) {
    SCOPED_TRACE("missing directory");
    EXPECT_FALSE(W::WritePrivateProfileStringA("s", "k", "v", Path("none/x.ini").c_str()));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(fs::exists(m_dir / "none"));

    SCOPED_TRACE("file name is a directory");
    fs::create_directory(m_dir / "dir.ini");
    EXPECT_FALSE(W::WritePrivateProfileStringA("s", "k", "v", Path("dir.ini").c_str()));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST_F(ProfilePosix, WriteKeepsModeAndWritesThroughSymbolicLinks) {
    const std::string target = Path("target.ini");
    Put(target, "[s]\r\nk=1\r\n");
    ::chmod(target.c_str(), 0640);
    fs::create_symlink(target, m_dir / "link.ini");
    ASSERT_TRUE(W::WritePrivateProfileStringA("s", "k", "2", Path("link.ini").c_str()));
    EXPECT_TRUE(fs::is_symlink(m_dir / "link.ini"));
    EXPECT_EQ(Get(target), "[s]\r\nk=2\r\n");
    struct stat st;
    ASSERT_EQ(::stat(target.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
}

// A write that cannot complete (here: the file-size limit, as on a full disk) leaves the old file
// whole and no temporary file behind.
TEST_F(ProfilePosix, FailedWriteLeavesOldFileWhole) {
    const std::string file = Path("keep.ini");
    const std::string old = "[s]\r\nk=old\r\n";
    Put(file, old);
    pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit limit = {64, 64};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const std::string big(4096, 'x');
        BOOL ok = W::WritePrivateProfileStringA("s", "k", big.c_str(), file.c_str());
        ::_exit(ok ? 1 : (W::GetLastError() == ERROR_SUCCESS ? 2 : 0));
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(Get(file), old);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 1);
}

TEST_F(ProfilePosix, ThreadsWritingOneFileLoseNothing) {
    const std::string file = Path("threads.ini");
    const int kThreads = 8, kKeys = 15;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const std::string section = "s" + std::to_string(t % 3);
            for (int k = 0; k < kKeys; ++k) {
                const std::string key = "k" + std::to_string(t) + "_" + std::to_string(k);
                W::WritePrivateProfileStringA(section.c_str(), key.c_str(), key.c_str(),
                                              file.c_str());
                char names[4096];
                W::GetPrivateProfileStringA(section.c_str(), nullptr, "", names, sizeof names,
                                            file.c_str());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t) {
        for (int k = 0; k < kKeys; ++k) {
            const std::string key = "k" + std::to_string(t) + "_" + std::to_string(k);
            EXPECT_EQ(Read(("s" + std::to_string(t % 3)).c_str(), key.c_str(), file.c_str()), key);
        }
    }
}

TEST_F(ProfilePosix, TwoProcessesWritingOneFileLoseNothing) {
    const std::string file = Path("processes.ini");
    const int kKeys = 40;
    pid_t children[2];
    for (int p = 0; p < 2; ++p) {
        children[p] = ::fork();
        ASSERT_GE(children[p], 0);
        if (children[p] == 0) {
            bool ok = true;
            for (int k = 0; k < kKeys; ++k) {
                const std::string key = "p" + std::to_string(p) + "_" + std::to_string(k);
                ok = W::WritePrivateProfileStringA("s", key.c_str(), "v", file.c_str()) && ok;
            }
            ::_exit(ok ? 0 : 1);
        }
    }
    for (pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    char names[4096];
    const DWORD n =
        W::GetPrivateProfileStringA("s", nullptr, "", names, sizeof names, file.c_str());
    int count = 0;
    for (DWORD at = 0; at < n; at += static_cast<DWORD>(std::strlen(names + at)) + 1)
        ++count;
    EXPECT_EQ(count, 2 * kKeys);
}

} // namespace
