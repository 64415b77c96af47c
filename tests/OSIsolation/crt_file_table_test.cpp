// Behaviour tables of the C-runtime file functions, written from the Microsoft C runtime's
// documented behaviour. The same rows run against the POSIX emulation and, on Windows, against
// the real functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Util/Win32Crt.h"
#include "tests/OSIsolation/file_table_support.h"
#include "tests/OSIsolation/wine_deviations.h"

namespace W = Util::Win32;
using FileTable::Layout;

namespace {

template <typename Row> std::string RowName(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

std::string Slashes(std::string text) {
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

// _access / _access_s: 0 or the errno value.
struct AccessRow {
    const char* name;
    const char* path;
    int mode;
    int error;
};

class Access : public ::testing::TestWithParam<AccessRow> {};

TEST_P(Access, ChecksExistenceAndReadOnly) {
    const AccessRow& row = GetParam();
    Layout layout;
    const std::string path = layout.Path(row.path);
    errno = 0;
    EXPECT_EQ(W::_access(path.c_str(), row.mode), row.error == 0 ? 0 : -1);
    EXPECT_EQ(row.error == 0 ? 0 : errno, row.error);
    EXPECT_EQ(W::_access_s(path.c_str(), row.mode), row.error);
}

INSTANTIATE_TEST_SUITE_P(Crt, Access,
                         ::testing::Values(AccessRow{"Exists", "file.txt", 0, 0},
                                           AccessRow{"ReadWrite", "file.txt", 6, 0},
                                           AccessRow{"ReadOnlyForReading", "readonly.txt", 4, 0},
                                           AccessRow{"ReadOnlyForWriting", "readonly.txt", 2,
                                                     EACCES},
                                           AccessRow{"DirectoryExists", "sub", 0, 0},
                                           AccessRow{"Missing", "missing.txt", 0, ENOENT},
                                           AccessRow{"MissingDirectory", "nodir/x", 0, ENOENT}),
                         RowName<AccessRow>);

// _sopen_s: 0 or the errno value, and the file's text afterwards.
struct OpenRow {
    const char* name;
    const char* path;
    int flags;
    int error;
    const char* after;
};

class Open : public ::testing::TestWithParam<OpenRow> {};

TEST_P(Open, OpensOrRefuses) {
    ZT_SKIP_WINE_DEVIATION();
    const OpenRow& row = GetParam();
    Layout layout;
    int fd = -2;
    EXPECT_EQ(W::_sopen_s(&fd, layout.Path(row.path).c_str(), row.flags, _SH_DENYNO,
                          _S_IREAD | _S_IWRITE),
              row.error);
    EXPECT_EQ(fd >= 0, row.error == 0);
    if (fd >= 0)
        W::_close(fd);
    if (row.after != nullptr) {
        EXPECT_EQ(layout.Read(row.path), row.after);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Crt, Open,
    ::testing::Values(
        OpenRow{"ReadExisting", "file.txt", _O_RDONLY | _O_BINARY, 0, "hello"},
        OpenRow{"CreateNew", "new.txt", _O_WRONLY | _O_CREAT | _O_EXCL, 0, ""},
        OpenRow{"CreateExclusiveExisting", "file.txt", _O_WRONLY | _O_CREAT | _O_EXCL, EEXIST,
                "hello"},
        OpenRow{"TruncateExisting", "file.txt", _O_WRONLY | _O_TRUNC, 0, ""},
        OpenRow{"Missing", "missing.txt", _O_RDONLY, ENOENT, "<absent>"},
        OpenRow{"MissingDirectory", "nodir/new.txt", _O_WRONLY | _O_CREAT, ENOENT, "<absent>"},
        OpenRow{"ReadOnlyForWriting", "readonly.txt", _O_WRONLY, EACCES, "keep"},
        OpenRow{"ReadOnlyTruncate", "readonly.txt", _O_RDWR | _O_TRUNC, EACCES, "keep"},
        OpenRow{"Directory", "sub", _O_RDONLY, EACCES, nullptr}),
    RowName<OpenRow>);

// fopen_s: 0 or the errno value.
struct StreamRow {
    const char* name;
    const char* path;
    const char* mode;
    int error;
    const char* after;
};

class Stream : public ::testing::TestWithParam<StreamRow> {};

TEST_P(Stream, OpensOrRefuses) {
    ZT_SKIP_WINE_DEVIATION();
    const StreamRow& row = GetParam();
    Layout layout;
    FILE* stream = reinterpret_cast<FILE*>(&layout);
    EXPECT_EQ(W::fopen_s(&stream, layout.Path(row.path).c_str(), row.mode), row.error);
    EXPECT_EQ(stream != nullptr, row.error == 0);
    if (stream != nullptr)
        std::fclose(stream);
    if (row.after != nullptr) {
        EXPECT_EQ(layout.Read(row.path), row.after);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Crt, Stream,
    ::testing::Values(StreamRow{"Read", "file.txt", "r", 0, "hello"},
                      StreamRow{"ReadBinary", "file.txt", "rb", 0, "hello"},
                      StreamRow{"WriteTruncates", "file.txt", "wt", 0, ""},
                      StreamRow{"AppendCreates", "new.txt", "a+", 0, ""},
                      StreamRow{"Missing", "missing.txt", "r", ENOENT, "<absent>"},
                      StreamRow{"ReadOnlyForWriting", "readonly.txt", "w", EACCES, "keep"},
                      StreamRow{"ReadOnlyForUpdate", "readonly.txt", "r+", EACCES, "keep"},
                      StreamRow{"ReadOnlyForAppend", "readonly.txt", "a", EACCES, "keep"},
                      StreamRow{"Directory", "sub", "r", EACCES, nullptr},
                      StreamRow{"DirectoryForUpdate", "sub", "r+", EACCES, nullptr},
                      StreamRow{"BackslashSeparator", "sub\\inner.dat", "rb", 0, nullptr},
                      StreamRow{"UnknownMode", "file.txt", "q", EINVAL, "hello"}),
    RowName<StreamRow>);

// _splitpath_s then _makepath_s: the parts, and the path put back together.
struct SplitRow {
    const char* name;
    const char* path;
    const char* drive;
    const char* dir;
    const char* fname;
    const char* ext;
};

class SplitPath : public ::testing::TestWithParam<SplitRow> {};

TEST_P(SplitPath, SplitsAndJoinsBack) {
    const SplitRow& row = GetParam();
    char drive[_MAX_DRIVE], dir[_MAX_DIR], fname[_MAX_FNAME], ext[_MAX_EXT];
    ASSERT_EQ(W::_splitpath_s(row.path, drive, sizeof drive, dir, sizeof dir, fname, sizeof fname,
                              ext, sizeof ext),
              0);
    EXPECT_STREQ(drive, row.drive);
    EXPECT_STREQ(dir, row.dir);
    EXPECT_STREQ(fname, row.fname);
    EXPECT_STREQ(ext, row.ext);
    char joined[_MAX_PATH];
    ASSERT_EQ(W::_makepath_s(joined, sizeof joined, drive, dir, fname, ext), 0);
    EXPECT_EQ(Slashes(joined), Slashes(row.path));
}

INSTANTIATE_TEST_SUITE_P(
    Crt, SplitPath,
    ::testing::Values(SplitRow{"AllParts", "C:\\dir\\sub\\name.ext", "C:", "\\dir\\sub\\", "name",
                               ".ext"},
                      SplitRow{"NameOnly", "name", "", "", "name", ""},
                      SplitRow{"LastDotStartsExtension", "a.b.c", "", "", "a.b", ".c"},
                      SplitRow{"DotInDirectoryOnly", "dir.d/name", "", "dir.d/", "name", ""},
                      SplitRow{"HiddenName", "dir/.hidden", "", "dir/", "", ".hidden"},
                      SplitRow{"DirectoryOnly", "/usr/lib/", "", "/usr/lib/", "", ""},
                      SplitRow{"Empty", "", "", "", "", ""}),
    RowName<SplitRow>);

TEST(Crt, SplitPathValidatesBuffers) {
    char drive[_MAX_DRIVE] = "x", dir[_MAX_DIR] = "x", fname[4] = "x", ext[_MAX_EXT] = "x";
    EXPECT_EQ(W::_splitpath_s("dir/longname.txt", drive, sizeof drive, dir, sizeof dir, fname,
                              sizeof fname, ext, sizeof ext),
              ERANGE);
    EXPECT_STREQ(dir, "");
    EXPECT_STREQ(ext, "");
    EXPECT_EQ(W::_splitpath_s(nullptr, drive, sizeof drive, dir, sizeof dir, fname, sizeof fname,
                              ext, sizeof ext),
              EINVAL);
    EXPECT_EQ(
        W::_splitpath_s("a.b", nullptr, 3, dir, sizeof dir, fname, sizeof fname, ext, sizeof ext),
        EINVAL);
    // Parts nobody asked for are skipped.
    EXPECT_EQ(W::_splitpath_s("dir/a.b", nullptr, 0, nullptr, 0, fname, sizeof fname, nullptr, 0),
              0);
    EXPECT_STREQ(fname, "a");
}

TEST(Crt, MakePathAddsSeparatorsAndValidates) {
    char path[_MAX_PATH];
    ASSERT_EQ(W::_makepath_s(path, sizeof path, "c", "dir", "name", "txt"), 0);
    EXPECT_EQ(Slashes(path), "c:dir/name.txt");
    ASSERT_EQ(W::_makepath_s(path, sizeof path, nullptr, nullptr, "name", nullptr), 0);
    EXPECT_STREQ(path, "name");
    char small[6] = "xxxxx";
    EXPECT_EQ(W::_makepath_s(small, sizeof small, nullptr, "dir", "name", "txt"), ERANGE);
    EXPECT_STREQ(small, "");
    EXPECT_EQ(W::_makepath_s(nullptr, 10, nullptr, nullptr, "a", nullptr), EINVAL);
}

TEST(Crt, StatReportsKindSizeAndReadOnly) {
    Layout layout;
    struct _stat64i32 info;
    ASSERT_EQ(W::_stat64i32(layout.Path("file.txt").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & _S_IFMT, _S_IFREG);
    EXPECT_NE(info.st_mode & _S_IWRITE, 0);
    EXPECT_EQ(info.st_size, 5);
    EXPECT_GT(info.st_mtime, 0);
    struct _stat32 small;
    ASSERT_EQ(W::_stat32(layout.Path("readonly.txt").c_str(), &small), 0);
    EXPECT_EQ(small.st_mode & _S_IWRITE, 0);
    ASSERT_EQ(W::_stat32(layout.Path("sub").c_str(), &small), 0);
    EXPECT_EQ(small.st_mode & _S_IFMT, _S_IFDIR);
    errno = 0;
    EXPECT_EQ(W::_stat32(layout.Path("missing").c_str(), &small), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Crt, NameFunctionsKeepWindowsRules) {
    Layout layout;
    const std::string file = layout.Path("file.txt"), readOnly = layout.Path("readonly.txt");
    // rename never replaces; remove never removes a directory or a read-only file.
    errno = 0;
    EXPECT_EQ(W::rename(file.c_str(), readOnly.c_str()), -1);
    if (!ZtTest::UnderWine()) { // Wine's msvcrt sets EEXIST here
        EXPECT_EQ(errno, EACCES);
    }
    EXPECT_EQ(layout.Read("readonly.txt"), "keep");
    EXPECT_EQ(W::rename(layout.Path("missing").c_str(), layout.Path("x").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(W::remove(layout.Path("empty").c_str()), -1);
    EXPECT_EQ(W::_unlink(readOnly.c_str()), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(W::_chmod(readOnly.c_str(), _S_IREAD | _S_IWRITE), 0);
    EXPECT_EQ(W::_unlink(readOnly.c_str()), 0);
    EXPECT_EQ(W::_chmod(layout.Path("missing").c_str(), _S_IREAD), -1);
    EXPECT_EQ(errno, ENOENT);

    EXPECT_EQ(W::_mkdir(layout.Path("sub").c_str()), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(W::_mkdir(layout.Path("nodir/x").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(W::_rmdir(layout.Path("sub").c_str()), -1);
    EXPECT_EQ(errno, ENOTEMPTY);
    EXPECT_EQ(W::_rmdir(layout.Path("empty").c_str()), 0);
    EXPECT_EQ(W::_chdir(layout.Path("missing").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Crt, FindFirstListsMatchesInBothForms) {
    Layout layout;
    struct _finddata64i32_t wide;
    std::intptr_t handle = W::_findfirst64i32(layout.Path("find/b*.txt").c_str(), &wide);
    ASSERT_NE(handle, -1);
    std::vector<std::string> names{wide.name};
    while (W::_findnext64i32(handle, &wide) == 0)
        names.push_back(wide.name);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(W::_findclose(handle), 0);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"b1.txt", "b22.txt"}));

    struct _finddata32_t narrow;
    handle = W::_findfirst32(layout.Path("find/readme").c_str(), &narrow);
    ASSERT_NE(handle, -1);
    EXPECT_EQ(narrow.size, 6u);
    EXPECT_EQ(narrow.attrib & _A_SUBDIR, 0u);
    W::_findclose(handle);
    EXPECT_EQ(W::_findfirst32(layout.Path("find/zz*").c_str(), &narrow), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(Crt, MakeTemporaryNamePicksAFreeName) {
    Layout layout;
    std::string first = layout.Path("tmpXXXXXX");
    ASSERT_EQ(W::_mktemp_s(&first[0], first.size() + 1), 0);
    EXPECT_EQ(first.find("XXXXXX"), std::string::npos);
    layout.Write(first.substr(layout.Root().size() + 1), "taken");
    std::string second = layout.Path("tmpXXXXXX");
    ASSERT_EQ(W::_mktemp_s(&second[0], second.size() + 1), 0);
    EXPECT_NE(second, first);
    std::string bad = layout.Path("tmpXX");
    EXPECT_EQ(W::_mktemp_s(&bad[0], bad.size() + 1), EINVAL);
    EXPECT_EQ(W::_mktemp_s(nullptr, 10), EINVAL);
}

TEST(Crt, FullPathResolvesDots) {
    Layout layout;
    char buffer[_MAX_PATH];
    const std::string relative = layout.Path("sub/../find/./readme");
    ASSERT_NE(W::_fullpath(buffer, relative.c_str(), sizeof buffer), nullptr);
    EXPECT_EQ(Slashes(buffer), Slashes(layout.Path("find/readme")));
    char* allocated = W::_fullpath(nullptr, relative.c_str(), 0);
    ASSERT_NE(allocated, nullptr);
    EXPECT_STREQ(allocated, buffer);
    std::free(allocated);
    char tiny[4];
    EXPECT_EQ(W::_fullpath(tiny, relative.c_str(), sizeof tiny), nullptr);
}

} // namespace
