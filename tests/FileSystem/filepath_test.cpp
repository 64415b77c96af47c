#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Util/FilePath.h"
#include "Util/ReDirectFile.h"
#include "Util/Win32Volume.h"
#include "tests/FileSystem/fs_test_support.h"
#include "tests/test_platform.h"

using FileSystem::FilePath;

namespace {

struct UncCase {
    const char* name;
    const char* path;
    bool unc;
    const char* server;
    const char* share;
    const char* rest;
};

class FilePathUnc : public ::testing::TestWithParam<UncCase> {};

TEST_P(FilePathUnc, Splits) {
    const UncCase& c = GetParam();
    FilePath path(c.path);
    Util::TString server("x"), share("x"), rest("x");
    EXPECT_EQ(path.SplitUNCName(server, share, rest), c.unc);
    EXPECT_STREQ(path.GetUNCServerName(), c.server);
    EXPECT_STREQ(path.GetUNCShareName(), c.share);
    EXPECT_STREQ(path.GetUNCPathName(), c.rest);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FilePathUnc,
    ::testing::Values(UncCase{"Full", "\\\\srv\\data\\a\\b.txt", true, "\\\\srv", "data",
                              "a\\b.txt"},
                      UncCase{"ShareOnly", "\\\\srv\\data", true, "\\\\srv", "data", ""},
                      UncCase{"ShareWithSeparator", "\\\\srv\\data\\", true, "\\\\srv", "data", ""},
                      UncCase{"ServerWithSeparator", "\\\\srv\\", true, "\\\\srv", "", ""},
                      UncCase{"ThirdBackslash", "\\\\\\abc", true, "\\\\", "abc", ""},
                      UncCase{"FourCharactersIsNot", "\\\\srv", false, "", "", ""},
                      UncCase{"DrivePathIsNot", "C:\\dir\\file", false, "", "", ""}),
    [](const ::testing::TestParamInfo<UncCase>& info) { return std::string(info.param.name); });

TEST(FilePath, RelativePathsTakeTheCurrentDirectory) {
    // The current directory of the drive, without the drive ("\\dir\\" on Windows, "/dir/" on
    // POSIX).
    std::string cwd = std::filesystem::current_path().string();
    if (cwd.size() >= 2 && cwd[1] == ':')
        cwd.erase(0, 2);
    cwd += std::filesystem::path::preferred_separator;
    EXPECT_EQ(std::string(FilePath(".\\file.txt")), cwd + "file.txt");
    EXPECT_EQ(std::string(FilePath("./file.txt")), cwd + "file.txt");
    EXPECT_EQ(std::string(FilePath("sub/file.txt")), cwd + "sub/file.txt");
    EXPECT_STREQ(FilePath("/abs/file").GetPath(), "/abs/file");
    EXPECT_STREQ(FilePath("C:\\dir").GetPath(), "C:\\dir");
    EXPECT_EQ(FilePath("C:\\dir").GetDriveLetter(), 'C');
}

// Samba's configuration and a mount table of the test's own.
class FilePathNetwork : public ::testing::Test {
protected:
    void SetUp() override {
        ZT_SKIP_ON_WINDOWS("shares and mounts come from Samba's configuration and the mount "
                           "table on POSIX only");
        m_smbConf = m_dir.Write("smb.conf", "[global]\n   workgroup = W\n"
                                            "[data]\n   path = D:\\Shares\\Data   \n"
                                            "[Root]\npath=D:\\ \n"
                                            "[posix]\n  path = /srv/posix\n");
        std::filesystem::create_directories(m_dir.File("mnt/a"));
        m_dir.Write("mnt/a/b.txt", "");
        std::string mounts = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n"
                             "2 1 0:50 / " +
                             m_dir.File("mnt") +
                             " rw - cifs //Srv/Share rw\n"
                             "3 1 0:51 / " +
                             m_dir.Path() + " rw - ntfs3 /dev/sdb1 rw\n";
        Util::Win32::SetNetworkTables(m_smbConf.c_str(), m_dir.Write("mountinfo", mounts).c_str());
    }
    void TearDown() override { Util::Win32::SetNetworkTables(nullptr, nullptr); }

    FsTest::TempDir m_dir;
    std::string m_smbConf;
};

struct ShareCase {
    const char* name;
    const char* path;
    long code;
    const char* local;
};

class FilePathShares : public FilePathNetwork, public ::testing::WithParamInterface<ShareCase> {};

TEST_P(FilePathShares, ConvertToLocalPath) {
    const ShareCase& c = GetParam();
    Util::TString local("unchanged");
    Util::Status status = FilePath(c.path).ConvertUNCToLocalPath(local);
    EXPECT_EQ(status.GetStatusCode(), c.code) << status.GetStatusMessage();
    EXPECT_STREQ(local, c.local);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FilePathShares,
    ::testing::Values(
        ShareCase{"TrailingBlanksTrimmed", "\\\\localhost\\data\\x\\y", 0,
                  "D:\\Shares\\Data\\x\\y"},
        ShareCase{"RootNotDoubled", "\\\\LOCALHOST\\root\\x\\y", 0, "D:\\x\\y"},
        ShareCase{"PosixRootTakesSlashes", "\\\\127.0.0.1\\posix\\x\\y", 0, "/srv/posix/x/y"},
        ShareCase{"NoRest", "\\\\localhost\\posix", 0, "/srv/posix/"},
        ShareCase{"MissingShare", "\\\\localhost\\nothere\\x", -1, "unchanged"},
        ShareCase{"GlobalIsNoShare", "\\\\localhost\\global\\x", -1, "unchanged"},
        ShareCase{"OtherMachine", "\\\\no-such-host.invalid\\data\\x", -1, "unchanged"},
        ShareCase{"NotUnc", "/srv/data", -1, "unchanged"}),
    [](const ::testing::TestParamInfo<ShareCase>& info) { return std::string(info.param.name); });

TEST_F(FilePathNetwork, ShareErrorsCarryTheirWin32Error) {
    Util::TString local;
    long error = 0;
    FilePath("\\\\localhost\\nothere\\x")
        .ConvertUNCToLocalPath(local)
        .GetLongAttribute("Win32Error", error);
    EXPECT_EQ(error, 2310);

    Util::Win32::SetNetworkTables(m_dir.Path().c_str(), nullptr); // a directory cannot be read
    Util::Status unreadable = FilePath("\\\\localhost\\data\\x").ConvertUNCToLocalPath(local);
    EXPECT_TRUE(unreadable.Failed());

    // A configuration the process may not read. Root reads it anyway, so the query runs in a
    // child that is no longer root.
    std::filesystem::permissions(m_smbConf, std::filesystem::perms::none);
    Util::Win32::SetNetworkTables(m_smbConf.c_str(), nullptr);
    const int result = ZtTest::RunWithoutRoot([] {
        Util::TString path;
        const Util::Status denied = FilePath("\\\\localhost\\data\\x").ConvertUNCToLocalPath(path);
        long win32Error = 0;
        if (denied.GetStatusCode() != Util::Status::GetSystemAccessDenied().GetStatusCode())
            return 1;
        if (!denied.GetLongAttribute("Win32Error", win32Error) || win32Error != 5)
            return 2;
        return path.IsEmpty() ? 0 : 3;
    });
    EXPECT_EQ(result, 0) << "1: not the access-denied status, 2: Win32Error is not 5, "
                         << "3: a local path was given, " << ZtTest::kCouldNotDropRoot
                         << ": could not give up root";
}

TEST_F(FilePathNetwork, UniversalNamesComeFromShareMounts) {
    Util::TString name;
    FilePath onShare(m_dir.File("mnt/a/b.txt").c_str());
    EXPECT_EQ(onShare.GetUNCName(name), FilePath::CONVERTED);
    EXPECT_STREQ(name, "\\\\Srv\\Share\\a\\b.txt");
    EXPECT_STREQ(onShare.GetMachineName(), "Srv");

    Util::TString other("x");
    EXPECT_EQ(FilePath(m_dir.File("local.txt").c_str()).GetUNCName(other),
              FilePath::NOT_NETWORK_PATH);
    EXPECT_STREQ(other, "");
    EXPECT_EQ(FilePath("\\\\srv\\share\\f").GetUNCName(other), FilePath::CONVERTED);
    EXPECT_STREQ(other, "\\\\srv\\share\\f");
}

TEST_F(FilePathNetwork, FileSystemFormatOfTheHoldingVolume) {
    EXPECT_EQ(FileSystem::GetFileSystemFormat(m_dir.Path().c_str()), FileSystem::FSF_NTFS);
    EXPECT_EQ(FileSystem::GetFileSystemFormat("file.txt"), FileSystem::FSF_UNKNOWN);
    EXPECT_EQ(FileSystem::GetFileSystemFormat("\\\\none\\share\\f"), FileSystem::FSF_UNKNOWN);
    EXPECT_EQ(FileSystem::GetFileSystemFormat("Q:\\f"), FileSystem::FSF_UNKNOWN);
}

int OpenDescriptors() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        count += entry.path().empty() ? 0 : 1;
    return count;
}

TEST(FilePath, CompareFilePathsTellsNamesOfOneFile) {
    ZT_SKIP_ON_WINDOWS("symbolic links need a privilege there, and the compared files stay open "
                       "by design");
    FsTest::TempDir dir;
    std::string file = dir.Write("file.txt", "x");
    std::string other = dir.Write("other.txt", "y");
    std::filesystem::create_directory(dir.File("sub"));
    std::filesystem::create_symlink(file, dir.File("link.txt"));
    std::filesystem::create_hard_link(file, dir.File("hard.txt"));
    struct Case {
        const char* what;
        std::string a, b;
        bool same;
    } cases[] = {
        {"case-blind text", "C:\\A\\B.TXT", "c:\\a\\b.txt", true},
        {"symbolic link", file, dir.File("link.txt"), true},
        {"dot-dot", file, dir.File("sub/../file.txt"), true},
        {"hard link", file, dir.File("hard.txt"), true},
        {"different files", file, other, false},
        {"missing file", file, dir.File("missing.txt"), false},
        {"both missing", dir.File("m1"), dir.File("m2"), false},
    };
    int before = OpenDescriptors();
    for (const Case& c : cases)
        EXPECT_EQ(FilePath::CompareFilePaths(c.a.c_str(), c.b.c_str()), c.same) << c.what;
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(FilePath, FindMatchingFilesListsEveryEntry) {
    FsTest::TempDir dir;
    dir.Write("a.txt", "");
    dir.Write("b.log", "");
    std::filesystem::create_directory(dir.File("sub"));
    std::vector<Util::TString> files{"stale"};
    // The pattern's directory ends at a backslash on Windows.
    std::string prefix = dir.Path() + std::string(1, std::filesystem::path::preferred_separator);
    ASSERT_EQ(FilePath::FindMatchingFiles((prefix + "*").c_str(), files), 5);
    std::vector<std::string> names(files.begin(), files.end());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{prefix + ".", prefix + "..", prefix + "a.txt",
                                               prefix + "b.log", prefix + "sub"}));
    EXPECT_EQ(FilePath::FindMatchingFiles((prefix + "*.txt").c_str(), files), 1);
    EXPECT_EQ(FilePath::FindMatchingFiles((prefix + "*.none").c_str(), files), 0);
    EXPECT_EQ(FilePath::FindMatchingFiles("", files), 0);
    EXPECT_TRUE(files.empty());
}

// The search runs in the directory a redirection rule names; the names keep the directory the
// caller asked for.
TEST(FilePath, FindMatchingFilesSearchesTheRedirectedDirectory) {
    FsTest::TempDir dir;
    std::filesystem::create_directory(dir.File("real"));
    dir.Write("real/ledger.dat", "");
    dir.Write("real/notes.txt", "");
    struct RuleGuard {
        ~RuleGuard() { Util::ReDirectFile::ClearRules(); }
    } guard;
    ASSERT_TRUE(
        Util::ReDirectFile::SetRules({{dir.File("asked").c_str(), dir.File("real").c_str()}})
            .Succeeded());
    std::vector<Util::TString> files;
    // The pattern's directory ends at a backslash on Windows.
    const std::string prefix =
        dir.File("asked") + std::string(1, std::filesystem::path::preferred_separator);
    ASSERT_EQ(FilePath::FindMatchingFiles((prefix + "*.dat").c_str(), files), 1);
    EXPECT_EQ(std::string(files[0].c_str()), prefix + "ledger.dat");
}

} // namespace
