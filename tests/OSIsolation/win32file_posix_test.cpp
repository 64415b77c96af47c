// What the POSIX emulation does where Windows has no counterpart to compare with: named pipes
// as FIFOs and ShellExecuteA through the desktop's opener.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "Util/Win32.h"
#include "Util/Win32File.h"
#include "tests/OSIsolation/file_table_support.h"

using namespace Util::Win32;

namespace W = Util::Win32;
using FileTable::Layout;

namespace {

TEST(Win32FilePosix, NamedPipeCarriesBytesOneWay) {
    const std::string name = "\\\\.\\pipe\\zt-test-" + std::to_string(::getpid());
    const HANDLE server = W::CreateNamedPipeA(name.c_str(), PIPE_ACCESS_INBOUND,
                                              PIPE_TYPE_BYTE | PIPE_WAIT, 1, 512, 512, 0, nullptr);
    ASSERT_NE(server, INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::CreateNamedPipeA(name.c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, 1, 512, 512, 0,
                                  nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_PIPE_BUSY));

    const HANDLE client =
        W::CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(client, INVALID_HANDLE_VALUE);
    DWORD count = 0;
    EXPECT_TRUE(W::WriteFile(client, "ping", 4, &count, nullptr));
    char buffer[8] = {};
    EXPECT_TRUE(W::ReadFile(server, buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ(std::string(buffer, count), "ping");
    W::CloseHandle(client);
    W::CloseHandle(server);
    EXPECT_EQ(W::CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));

    const struct {
        const char* name;
        DWORD openMode, pipeMode;
        DWORD error;
    } refused[] = {
        {"NotAPipeName", PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, ERROR_INVALID_NAME},
        {"Duplex", PIPE_ACCESS_DUPLEX, PIPE_TYPE_BYTE, ERROR_NOT_SUPPORTED},
        {"MessageMode", PIPE_ACCESS_OUTBOUND, PIPE_TYPE_MESSAGE, ERROR_NOT_SUPPORTED},
    };
    for (const auto& row : refused) {
        const std::string pipe = row.error == ERROR_INVALID_NAME ? "/tmp/zt-not-a-pipe" : name;
        EXPECT_EQ(
            W::CreateNamedPipeA(pipe.c_str(), row.openMode, row.pipeMode, 1, 0, 0, 0, nullptr),
            INVALID_HANDLE_VALUE)
            << row.name;
        EXPECT_EQ(W::GetLastError(), row.error) << row.name;
    }
}

class ShellExecute : public ::testing::Test {
protected:
    void SetUp() override {
        m_path = std::getenv("PATH") ? std::getenv("PATH") : "";
        // A stand-in for the desktop's opener, and a program: both record their arguments.
        for (const char* name : {"xdg-open", "prog"}) {
            const std::string script = m_layout.Path(name);
            std::ofstream(script) << "#!/bin/sh\nprintf '%s|' \"$@\" > \"" << m_layout.Root() << "/"
                                  << name << ".out.tmp\"\nmv \"" << m_layout.Root() << "/" << name
                                  << ".out.tmp\" \"" << m_layout.Root() << "/" << name
                                  << ".out\"\n";
            ::chmod(script.c_str(), 0755);
        }
        ::setenv("PATH", (m_layout.Root() + ":" + m_path).c_str(), 1);
    }
    void TearDown() override { ::setenv("PATH", m_path.c_str(), 1); }

    std::string WaitForOutput(const char* name) {
        for (int i = 0; i < 1000; ++i) {
            const std::string text = m_layout.Read(std::string(name) + ".out");
            if (text != "<absent>")
                return text;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return "<absent>";
    }

    Layout m_layout;
    std::string m_path;
};

TEST_F(ShellExecute, OpensDocumentsWithTheOpenerAndRunsPrograms) {
    const std::string document = m_layout.Path("file.txt");
    const HINSTANCE opened =
        W::ShellExecuteA(nullptr, "open", document.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    EXPECT_GT(reinterpret_cast<std::intptr_t>(opened), 32);
    EXPECT_EQ(WaitForOutput("xdg-open"), document + "|");

    const HINSTANCE ran =
        W::ShellExecuteA(nullptr, nullptr, "prog", "a \"b c\"", m_layout.Root().c_str(), SW_HIDE);
    EXPECT_GT(reinterpret_cast<std::intptr_t>(ran), 32);
    EXPECT_EQ(WaitForOutput("prog"), "a|b c|");
}

TEST_F(ShellExecute, ReportsMissingFilesAndUnknownVerbs) {
    const std::string missing = m_layout.Path("missing.txt");
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(
                  W::ShellExecuteA(nullptr, "open", missing.c_str(), nullptr, nullptr, SW_SHOW)),
              SE_ERR_FNF);
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(W::ShellExecuteA(
                  nullptr, "print", m_layout.Path("file.txt").c_str(), nullptr, nullptr, SW_SHOW)),
              SE_ERR_NOASSOC);
}

} // namespace
