// Behaviour tables of the Win32 file functions, written from Windows' documented behaviour. The
// same rows run against the POSIX emulation and, on Windows, against the real functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Util/Win32.h"
#include "Util/Win32File.h"
#include "tests/OSIsolation/file_table_support.h"
#include "tests/OSIsolation/wine_deviations.h"

using namespace Util::Win32;

namespace W = Util::Win32;
using FileTable::Layout;

namespace {

constexpr DWORD AnyError = 0xFFFFFFFEu; // the row does not check the last error

template <typename Row> std::string RowName(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

// GetFileAttributesA: the read-only and directory bits, or the error.
struct AttributeRow {
    const char* name;
    const char* path;
    DWORD attributes; // masked with READONLY | DIRECTORY; INVALID_FILE_ATTRIBUTES on failure
    DWORD error;
};

class Attributes : public ::testing::TestWithParam<AttributeRow> {};

TEST_P(Attributes, AsWindowsReportsThem) {
    const AttributeRow& row = GetParam();
    Layout layout;
    W::SetLastError(0);
    DWORD got = W::GetFileAttributesA(layout.Path(row.path).c_str());
    if (got != INVALID_FILE_ATTRIBUTES)
        got &= FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    EXPECT_EQ(got, row.attributes);
    if (row.error != AnyError) {
        EXPECT_EQ(W::GetLastError(), row.error);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Win32File, Attributes,
    ::testing::Values(
        AttributeRow{"PlainFile", "file.txt", 0, AnyError},
        AttributeRow{"ReadOnlyFile", "readonly.txt", FILE_ATTRIBUTE_READONLY, AnyError},
        AttributeRow{"Directory", "sub", FILE_ATTRIBUTE_DIRECTORY, AnyError},
        AttributeRow{"BackslashSeparator", "sub\\inner.dat", 0, AnyError},
        AttributeRow{"MissingFile", "missing.txt", INVALID_FILE_ATTRIBUTES, ERROR_FILE_NOT_FOUND},
        AttributeRow{"MissingDirectory", "nodir/x.txt", INVALID_FILE_ATTRIBUTES,
                     ERROR_PATH_NOT_FOUND},
        AttributeRow{"FileAsDirectory", "file.txt/x", INVALID_FILE_ATTRIBUTES,
                     ERROR_PATH_NOT_FOUND}),
    RowName<AttributeRow>);

// CreateFileA: dispositions, access and the read-only rule, with the file's text afterwards.
struct CreateRow {
    const char* name;
    const char* path;
    DWORD access;
    DWORD disposition;
    bool opens;
    DWORD error;       // last error after the call
    const char* after; // the file's text once the handle is closed (null: not checked)
};

class CreateFileTable : public ::testing::TestWithParam<CreateRow> {};

TEST_P(CreateFileTable, FollowsTheDisposition) {
    ZT_SKIP_WINE_DEVIATION();
    const CreateRow& row = GetParam();
    Layout layout;
    W::SetLastError(12345);
    const HANDLE handle = W::CreateFileA(layout.Path(row.path).c_str(), row.access, FILE_SHARE_READ,
                                         nullptr, row.disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    const DWORD error = W::GetLastError();
    EXPECT_EQ(handle != INVALID_HANDLE_VALUE, row.opens);
    if (row.error != AnyError) {
        EXPECT_EQ(error, row.error);
    }
    if (handle != INVALID_HANDLE_VALUE) {
        EXPECT_TRUE(W::CloseHandle(handle));
    }
    if (row.after != nullptr) {
        EXPECT_EQ(layout.Read(row.path), row.after);
    }
}

constexpr DWORD R = GENERIC_READ, Wr = GENERIC_WRITE;

INSTANTIATE_TEST_SUITE_P(
    Win32File, CreateFileTable,
    ::testing::Values(
        CreateRow{"CreateNewMakesFile", "new.txt", Wr, CREATE_NEW, true, AnyError, ""},
        CreateRow{"CreateNewRefusesExisting", "file.txt", Wr, CREATE_NEW, false, ERROR_FILE_EXISTS,
                  "hello"},
        CreateRow{"CreateAlwaysTruncatesExisting", "file.txt", Wr, CREATE_ALWAYS, true,
                  ERROR_ALREADY_EXISTS, ""},
        CreateRow{"CreateAlwaysMakesFile", "new.txt", Wr, CREATE_ALWAYS, true, 0, ""},
        CreateRow{"OpenExistingKeepsText", "file.txt", R, OPEN_EXISTING, true, AnyError, "hello"},
        CreateRow{"OpenExistingMissingFile", "new.txt", R, OPEN_EXISTING, false,
                  ERROR_FILE_NOT_FOUND, "<absent>"},
        CreateRow{"OpenExistingMissingDirectory", "nodir/new.txt", R, OPEN_EXISTING, false,
                  ERROR_PATH_NOT_FOUND, "<absent>"},
        CreateRow{"OpenAlwaysExisting", "file.txt", R, OPEN_ALWAYS, true, ERROR_ALREADY_EXISTS,
                  "hello"},
        CreateRow{"OpenAlwaysMakesFile", "new.txt", R | Wr, OPEN_ALWAYS, true, 0, ""},
        CreateRow{"TruncateExisting", "file.txt", Wr, TRUNCATE_EXISTING, true, AnyError, ""},
        CreateRow{"TruncateExistingMissing", "new.txt", Wr, TRUNCATE_EXISTING, false,
                  ERROR_FILE_NOT_FOUND, "<absent>"},
        CreateRow{"TruncateNeedsWriteAccess", "file.txt", R, TRUNCATE_EXISTING, false,
                  ERROR_INVALID_PARAMETER, "hello"},
        CreateRow{"ReadOnlyRefusesWriting", "readonly.txt", Wr, OPEN_EXISTING, false,
                  ERROR_ACCESS_DENIED, "keep"},
        CreateRow{"ReadOnlyOpensForReading", "readonly.txt", R, OPEN_EXISTING, true, AnyError,
                  "keep"},
        CreateRow{"ReadOnlyRefusesCreateAlways", "readonly.txt", R, CREATE_ALWAYS, false,
                  ERROR_ACCESS_DENIED, "keep"},
        CreateRow{"DirectoryNeedsBackupSemantics", "empty", R, OPEN_EXISTING, false,
                  ERROR_ACCESS_DENIED, nullptr},
        CreateRow{"CreateInMissingDirectory", "nodir/new.txt", Wr, CREATE_ALWAYS, false,
                  ERROR_PATH_NOT_FOUND, "<absent>"},
        CreateRow{"UnknownDisposition", "file.txt", R, 0, false, ERROR_INVALID_PARAMETER, "hello"}),
    RowName<CreateRow>);

// Name operations: result and last error, with the layout's names relative to its root.
struct NameRow {
    const char* name;
    BOOL (*call)(const Layout&);
    bool succeeds;
    DWORD error;
};

class NameOperation : public ::testing::TestWithParam<NameRow> {};

TEST_P(NameOperation, SucceedsOrFailsAsWindows) {
    ZT_SKIP_WINE_DEVIATION();
    const NameRow& row = GetParam();
    Layout layout;
    W::SetLastError(0);
    EXPECT_EQ(row.call(layout) != FALSE, row.succeeds);
    if (!row.succeeds) {
        EXPECT_EQ(W::GetLastError(), row.error);
    }
}

std::string At(const Layout& layout, const char* relative) {
    return layout.Path(relative);
}

#define NAME_ROW(rowName, expression, ok, error)                                                   \
    NameRow {                                                                                      \
        rowName, [](const Layout& l) -> BOOL { return expression; }, ok, error                     \
    }

INSTANTIATE_TEST_SUITE_P(
    Win32File, NameOperation,
    ::testing::Values(
        NAME_ROW("DeleteFile", W::DeleteFileA(At(l, "file.txt").c_str()), true, 0),
        NAME_ROW("DeleteReadOnly", W::DeleteFileA(At(l, "readonly.txt").c_str()), false,
                 ERROR_ACCESS_DENIED),
        NAME_ROW("DeleteMissing", W::DeleteFileA(At(l, "missing").c_str()), false,
                 ERROR_FILE_NOT_FOUND),
        NAME_ROW("DeleteInMissingDirectory", W::DeleteFileA(At(l, "nodir/x").c_str()), false,
                 ERROR_PATH_NOT_FOUND),
        NAME_ROW("DeleteDirectory", W::DeleteFileA(At(l, "empty").c_str()), false,
                 ERROR_ACCESS_DENIED),
        NAME_ROW("MoveFile", W::MoveFileA(At(l, "file.txt").c_str(), At(l, "moved").c_str()), true,
                 0),
        NAME_ROW("MoveReadOnlyFile",
                 W::MoveFileA(At(l, "readonly.txt").c_str(), At(l, "moved").c_str()), true, 0),
        NAME_ROW("MoveOntoExisting",
                 W::MoveFileA(At(l, "file.txt").c_str(), At(l, "readonly.txt").c_str()), false,
                 ERROR_ALREADY_EXISTS),
        NAME_ROW("MoveMissing", W::MoveFileA(At(l, "missing").c_str(), At(l, "x").c_str()), false,
                 ERROR_FILE_NOT_FOUND),
        NAME_ROW("MoveDirectory", W::MoveFileA(At(l, "sub").c_str(), At(l, "sub2").c_str()), true,
                 0),
        NAME_ROW("CopyFile", W::CopyFileA(At(l, "file.txt").c_str(), At(l, "copy").c_str(), TRUE),
                 true, 0),
        NAME_ROW("CopyFailIfExists",
                 W::CopyFileA(At(l, "file.txt").c_str(), At(l, "sub/inner.dat").c_str(), TRUE),
                 false, ERROR_FILE_EXISTS),
        NAME_ROW("CopyOverExisting",
                 W::CopyFileA(At(l, "file.txt").c_str(), At(l, "sub/inner.dat").c_str(), FALSE),
                 true, 0),
        NAME_ROW("CopyOverReadOnly",
                 W::CopyFileA(At(l, "file.txt").c_str(), At(l, "readonly.txt").c_str(), FALSE),
                 false, ERROR_ACCESS_DENIED),
        NAME_ROW("CopyMissing",
                 W::CopyFileA(At(l, "missing").c_str(), At(l, "copy").c_str(), FALSE), false,
                 ERROR_FILE_NOT_FOUND),
        NAME_ROW("CreateDirectory", W::CreateDirectoryA(At(l, "newdir").c_str(), nullptr), true, 0),
        NAME_ROW("CreateDirectoryExisting", W::CreateDirectoryA(At(l, "sub").c_str(), nullptr),
                 false, ERROR_ALREADY_EXISTS),
        NAME_ROW("CreateDirectoryOverFile", W::CreateDirectoryA(At(l, "file.txt").c_str(), nullptr),
                 false, ERROR_ALREADY_EXISTS),
        NAME_ROW("CreateDirectoryMissingParent",
                 W::CreateDirectoryA(At(l, "nodir/new").c_str(), nullptr), false,
                 ERROR_PATH_NOT_FOUND),
        NAME_ROW("CreateDirectoryEx",
                 W::CreateDirectoryExA(At(l, "sub").c_str(), At(l, "newdir").c_str(), nullptr),
                 true, 0),
        NAME_ROW("RemoveEmptyDirectory", W::RemoveDirectoryA(At(l, "empty").c_str()), true, 0),
        NAME_ROW("RemoveDirectoryNotEmpty", W::RemoveDirectoryA(At(l, "sub").c_str()), false,
                 ERROR_DIR_NOT_EMPTY),
        NAME_ROW("RemoveDirectoryMissing", W::RemoveDirectoryA(At(l, "missing").c_str()), false,
                 ERROR_FILE_NOT_FOUND),
        NAME_ROW("RemoveDirectoryOnFile", W::RemoveDirectoryA(At(l, "file.txt").c_str()), false,
                 ERROR_DIRECTORY),
        NAME_ROW("SetAttributesMissing",
                 W::SetFileAttributesA(At(l, "missing").c_str(), FILE_ATTRIBUTE_NORMAL), false,
                 ERROR_FILE_NOT_FOUND)),
    RowName<NameRow>);

// FindFirstFileA / FindNextFileA over find/: the names a pattern lists ("." and ".." aside).
struct FindRow {
    const char* name;
    const char* pattern;
    const char* names; // sorted, comma-separated; empty when the search fails
    DWORD error;
};

class FindFiles : public ::testing::TestWithParam<FindRow> {};

TEST_P(FindFiles, ListsWhatWindowsLists) {
    ZT_SKIP_WINE_DEVIATION();
    const FindRow& row = GetParam();
    Layout layout;
    WIN32_FIND_DATAA data;
    W::SetLastError(0);
    const HANDLE find = W::FindFirstFileA(layout.Path(row.pattern).c_str(), &data);
    std::vector<std::string> names;
    if (find == INVALID_HANDLE_VALUE) {
        EXPECT_EQ(W::GetLastError(), row.error);
    } else {
        do {
            const std::string name = data.cFileName;
            if (name != "." && name != "..")
                names.push_back(name);
        } while (W::FindNextFileA(find, &data));
        EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
        EXPECT_TRUE(W::FindClose(find));
    }
    std::sort(names.begin(), names.end());
    std::string joined;
    for (const std::string& name : names)
        joined += (joined.empty() ? "" : ",") + name;
    EXPECT_EQ(joined, row.names) << row.pattern;
}

INSTANTIATE_TEST_SUITE_P(
    Win32File, FindFiles,
    ::testing::Values(FindRow{"Star", "find/*",
                              "b1.txt,b22.txt,data.tar.gz,notes.txt,notes.txt.bak,readme", 0},
                      FindRow{"StarDotStar", "find/*.*",
                              "b1.txt,b22.txt,data.tar.gz,notes.txt,notes.txt.bak,readme", 0},
                      FindRow{"StarDot", "find/*.", "readme", 0},
                      FindRow{"Extension", "find/*.txt", "b1.txt,b22.txt,notes.txt", 0},
                      FindRow{"ExtensionCaseBlind", "find\\*.TXT", "b1.txt,b22.txt,notes.txt", 0},
                      FindRow{"OneQuestionMark", "find/b?.txt", "b1.txt", 0},
                      FindRow{"TwoQuestionMarks", "find/b??.txt", "b1.txt,b22.txt", 0},
                      FindRow{"NameDotStar", "find/data.*", "data.tar.gz", 0},
                      FindRow{"ExactNameCaseBlind", "find/NOTES.TXT", "notes.txt", 0},
                      FindRow{"NoMatch", "find/zz*", "", ERROR_FILE_NOT_FOUND},
                      FindRow{"MissingDirectory", "nodir/*", "", ERROR_PATH_NOT_FOUND}),
    RowName<FindRow>);

TEST(Win32File, FindListsDotEntriesAndRejectsBadHandles) {
    ZT_SKIP_WINE_DEVIATION();
    Layout layout;
    WIN32_FIND_DATAA data;
    const HANDLE find = W::FindFirstFileA(layout.Path("empty/*").c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    std::vector<std::string> names{data.cFileName};
    while (W::FindNextFileA(find, &data))
        names.push_back(data.cFileName);
    EXPECT_EQ(names, (std::vector<std::string>{".", ".."}));
    EXPECT_NE(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_TRUE(W::FindClose(find));
    EXPECT_FALSE(W::FindClose(find));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Win32File, ShareModesBetweenHandles) {
    Layout layout;
    const std::string path = layout.Path("file.txt");
    const HANDLE reader = W::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    const HANDLE second = W::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                         OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                             0, nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(W::DeleteFileA(path.c_str()));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    W::CloseHandle(second);
    W::CloseHandle(reader);
    EXPECT_TRUE(W::DeleteFileA(path.c_str()));
}

TEST(Win32File, ReadWriteAndStaleHandles) {
    Layout layout;
    const std::string path = layout.Path("data.bin");
    HANDLE file = W::CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD count = 0;
    EXPECT_TRUE(W::WriteFile(file, "abcdef", 6, &count, nullptr));
    EXPECT_EQ(count, 6u);
    char buffer[16] = {};
    EXPECT_FALSE(W::ReadFile(file, buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(W::CloseHandle(file));
    EXPECT_FALSE(W::CloseHandle(file));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));

    file = W::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                          nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    LARGE_INTEGER size, to, at;
    EXPECT_TRUE(W::GetFileSizeEx(file, &size));
    EXPECT_EQ(size.QuadPart, 6);
    to.QuadPart = 2;
    EXPECT_TRUE(W::SetFilePointerEx(file, to, &at, FILE_BEGIN));
    EXPECT_TRUE(W::ReadFile(file, buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ(std::string(buffer, count), "cdef");
    EXPECT_TRUE(W::ReadFile(file, buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ(count, 0u); // end of file is success with nothing read
    W::CloseHandle(file);
}

TEST(Win32File, AttributesChangeAndDetails) {
    Layout layout;
    const std::string path = layout.Path("file.txt");
    ASSERT_TRUE(W::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_NE(W::GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_FALSE(W::DeleteFileA(path.c_str()));
    ASSERT_TRUE(W::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(W::GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);

    WIN32_FILE_ATTRIBUTE_DATA data;
    ASSERT_TRUE(W::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ(data.nFileSizeLow, 5u);
    EXPECT_EQ(data.nFileSizeHigh, 0u);
    EXPECT_NE(data.ftLastWriteTime.dwHighDateTime, 0u);

    ULARGE_INTEGER available, total, freeBytes;
    ASSERT_TRUE(W::GetDiskFreeSpaceExA(layout.Root().c_str(), &available, &total, &freeBytes));
    EXPECT_GT(total.QuadPart, 0u);
    EXPECT_LE(available.QuadPart, total.QuadPart);
    EXPECT_FALSE(W::GetDiskFreeSpaceExA(layout.Path("nodir/deeper").c_str(), &available, &total,
                                        &freeBytes));
    EXPECT_EQ(W::GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST(Win32File, CopyKeepsTargetWhenRefused) {
    ZT_SKIP_WINE_DEVIATION();
    Layout layout;
    EXPECT_FALSE(
        W::CopyFileA(layout.Path("file.txt").c_str(), layout.Path("readonly.txt").c_str(), FALSE));
    EXPECT_EQ(layout.Read("readonly.txt"), "keep");
    EXPECT_TRUE(
        W::CopyFileA(layout.Path("readonly.txt").c_str(), layout.Path("copy").c_str(), TRUE));
    EXPECT_EQ(layout.Read("copy"), "keep");
    // The copy carries the read-only attribute along.
    EXPECT_NE(W::GetFileAttributesA(layout.Path("copy").c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
}

TEST(Win32File, ShellCreatesEveryMissingDirectory) {
    Layout layout;
    const std::string deep = layout.Path("a/b/c");
    EXPECT_EQ(W::SHCreateDirectoryExA(nullptr, deep.c_str(), nullptr), ERROR_SUCCESS);
    EXPECT_NE(W::GetFileAttributesA(deep.c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    EXPECT_EQ(W::SHCreateDirectoryExA(nullptr, deep.c_str(), nullptr), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(W::SHCreateDirectoryExA(nullptr, "relative/dir", nullptr), ERROR_BAD_PATHNAME);
}

TEST(Win32File, ChangeNotificationSignalsOnNewFile) {
    Layout layout;
    const HANDLE change = W::FindFirstChangeNotificationA(layout.Path("empty").c_str(), FALSE,
                                                          FILE_NOTIFY_CHANGE_FILE_NAME);
    ASSERT_NE(change, INVALID_HANDLE_VALUE);
    EXPECT_EQ(W::WaitForSingleObject(change, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    layout.Write("empty/new.txt", "x");
    EXPECT_EQ(W::WaitForSingleObject(change, 10000), static_cast<DWORD>(WAIT_OBJECT_0));
    EXPECT_TRUE(W::FindNextChangeNotification(change));
    EXPECT_TRUE(W::FindCloseChangeNotification(change));
    EXPECT_EQ(W::FindFirstChangeNotificationA(layout.Path("nodir").c_str(), FALSE,
                                              FILE_NOTIFY_CHANGE_FILE_NAME),
              INVALID_HANDLE_VALUE);
    const DWORD error = W::GetLastError();
    EXPECT_TRUE(error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) << error;
}

// Handles are opened, used and closed from several threads at once; none is lost or mixed up.
TEST(Win32File, HandlesFromManyThreads) {
    Layout layout;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&layout, &failures, t] {
            const std::string path = layout.Path("thread" + std::to_string(t));
            for (int i = 0; i < 100; ++i) {
                const HANDLE file = W::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                                   nullptr, CREATE_ALWAYS, 0, nullptr);
                DWORD count = 0;
                char byte = static_cast<char>('a' + t);
                if (file == INVALID_HANDLE_VALUE || !W::WriteFile(file, &byte, 1, &count, nullptr))
                    ++failures;
                WIN32_FIND_DATAA data;
                const HANDLE find = W::FindFirstFileA(path.c_str(), &data);
                if (find == INVALID_HANDLE_VALUE || !W::FindClose(find))
                    ++failures;
                if (!W::CloseHandle(file) ||
                    layout.Read("thread" + std::to_string(t)) != std::string(1, byte))
                    ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures.load(), 0);
}

} // namespace
