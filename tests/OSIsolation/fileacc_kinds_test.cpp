// The file functions that report only failures, those passed through unredirected, and the
// silent ones, on the same directories as the traced table.
#include "tests/OSIsolation/fileacc_test_support.h"

#include <algorithm>
#include <cstring>

namespace FileAccTest {
namespace {

// A path text with '/' for every separator: Windows writes '\\' where POSIX writes '/'.
std::string Slashed(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

using namespace Util;

// Error-reporting kind: silent on success, one level-0 line per name after a failure.
class FailureReportingCalls : public Env, public ::testing::WithParamInterface<Row> {};

TEST_P(FailureReportingCalls, ReportOnlyFailuresWithTheWin32Error) {
    EXPECT_EQ(GetParam().call(*this), GetParam().result);
    EXPECT_EQ(Events(), GetParam().events);
    for (const OpsTest::Captured& event : capture->Events())
        EXPECT_EQ(event.level, Util::Ops::kLvlNA);
}

BOOL MakeReadOnly(Env& e, const char* rest) {
    return Win32::SetFileAttributesA(e.Real(rest), FILE_ATTRIBUTE_READONLY);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FailureReportingCalls,
    ::testing::Values(
        Row{"DeleteFileSucceedsSilently",
            [](Env& e) {
                return _ZtDeleteFile(e.Asked("a.txt"), ZT_TEST_CALLER) + 10 * e.Exists("a.txt");
            },
            1,
            {}},
        Row{"DeleteFileMissing",
            [](Env& e) {
                return _ZtDeleteFile(e.Asked("none.txt"), ZT_TEST_CALLER) +
                       10 * long(Win32::GetLastError());
            },
            20,
            {Failed("_ZtDeleteFile", "none.txt", 2)}},
        Row{"ForceDeleteLeavesAReadOnlyFile",
            [](Env& e) {
                MakeReadOnly(e, "a.txt");
                return _ZtForceDeleteFile(e.Asked("a.txt"), ZT_TEST_CALLER) +
                       10 * e.Exists("a.txt");
            },
            10,
            {Failed("_ZtDeleteFile", "a.txt", 5)}},
        Row{"MoveFileSucceedsSilently",
            [](Env& e) {
                return _ZtMoveFile(e.Asked("a.txt"), e.Asked("b.txt"), ZT_TEST_CALLER) +
                       10 * e.Exists("b.txt");
            },
            11,
            {}},
        Row{"MoveFileMissing",
            [](Env& e) {
                return long(_ZtMoveFile(e.Asked("none.txt"), e.Asked("b.txt"), ZT_TEST_CALLER));
            },
            0,
            {Failed("_ZtMoveFile", "none.txt", 2, "old ", " old "),
             Failed("_ZtMoveFile", "b.txt", 2, "new ", " new ")}},
        Row{"CopyFileSucceedsSilently",
            [](Env& e) {
                return _ZtCopyFile(e.Asked("a.txt"), e.Asked("b.txt"), TRUE, ZT_TEST_CALLER) +
                       10 * e.Exists("b.txt") + 100 * e.Exists("a.txt");
            },
            111,
            {}},
        Row{"CopyFileOntoExistingFile",
            [](Env& e) {
                return long(_ZtCopyFile(e.Asked("a.txt"), e.Asked("a.txt"), TRUE, ZT_TEST_CALLER));
            },
            0,
            {Failed("_ZtCopyFile", "a.txt", 80, "existing ", " existing "),
             Failed("_ZtCopyFile", "a.txt", 80, "new ", " new ")}},
        Row{"FindFirstFileFinds",
            [](Env& e) {
                WIN32_FIND_DATAA data{};
                const HANDLE h = _ZtFindFirstFile(e.Asked("*.txt"), &data, ZT_TEST_CALLER);
                const long found = h != INVALID_HANDLE_VALUE && Win32::FindClose(h);
                return found + 10 * (std::strcmp(data.cFileName, "a.txt") == 0);
            },
            11,
            {}},
        Row{"FindFirstFileMatchesNothing",
            [](Env& e) {
                WIN32_FIND_DATAA data{};
                return long(_ZtFindFirstFile(e.Asked("*.zzz"), &data, ZT_TEST_CALLER) ==
                            INVALID_HANDLE_VALUE);
            },
            1,
            {Failed("_ZtFindFirstFile", "*.zzz", 2)}},
        Row{"SetFileAttributesSucceedsSilently",
            [](Env& e) {
                return _ZtSetFileAttributes(e.Asked("a.txt"), FILE_ATTRIBUTE_READONLY,
                                            ZT_TEST_CALLER) +
                       10 * long(Win32::GetFileAttributesA(e.Real("a.txt")) &
                                 FILE_ATTRIBUTE_READONLY);
            },
            11,
            {}},
        Row{"SetFileAttributesMissing",
            [](Env& e) {
                return long(_ZtSetFileAttributes(e.Asked("none.txt"), FILE_ATTRIBUTE_NORMAL,
                                                 ZT_TEST_CALLER));
            },
            0,
            {Failed("_ZtSetFileAttributes", "none.txt", 2)}}),
    RowName);

// Pass-through kind: the arguments reach the real function as given, even where a rule applies.
class PassedThroughCalls : public Env, public ::testing::WithParamInterface<Row> {};

TEST_P(PassedThroughCalls, CallTheRealFunctionUnredirectedAndNameTheArguments) {
    EXPECT_EQ(GetParam().call(*this), GetParam().result);
    EXPECT_EQ(Events(), GetParam().events);
}

template <class Data> long FindFirst(std::intptr_t handle, const Data& data) {
    if (handle == -1)
        return 0;
    Win32::_findclose(handle);
    return 1 + 10 * (std::strcmp(data.name, "a.txt") == 0);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PassedThroughCalls,
    ::testing::Values(
        Row{"_Zt_findfirst_OnTheRequestedName",
            [](Env& e) {
                _finddata32_t data{};
                return FindFirst(_Zt_findfirst(e.Asked("*.txt"), &data, ZT_TEST_CALLER), data);
            },
            0,
            {",_Zt_findfirst(\"{A}/*.txt\"); w/ _finddata32_t *fileinfo on line caller.cpp-42"}},
        Row{"_Zt_findfirst_64i32",
            [](Env& e) {
                _finddata64i32_t data{};
                return FindFirst(_Zt_findfirst(e.Real("*.txt"), &data, ZT_TEST_CALLER), data);
            },
            11,
            {",_Zt_findfirst(\"{R}/*.txt\"); w/ _finddata64i32_t *fileinfo on line caller.cpp-42"}},
        Row{"_Zt_tfindfirst_32",
            [](Env& e) {
                _finddata32_t data{};
                return FindFirst(_Zt_tfindfirst(e.Real("*.txt"), &data, ZT_TEST_CALLER), data);
            },
            11,
            {",_Zt_tfindfirst(\"{R}/*.txt\"); w/ _finddata32_t *fileinfo  on line caller.cpp-42"}},
        Row{"_Zt_tfindfirst_64i32",
            [](Env& e) {
                _finddata64i32_t data{};
                return FindFirst(_Zt_tfindfirst(e.Asked("*.txt"), &data, ZT_TEST_CALLER), data);
            },
            0,
            {",_Zt_tfindfirst(\"{A}/*.txt\"); w/ _finddata64i32_t *fileinfo  on line "
             "caller.cpp-42"}},
        Row{"_Zt_fullpath",
            [](Env& e) {
                char full[260] = "";
                const char* got =
                    _Zt_fullpath(full, e.Asked("x/../a.txt"), sizeof full, ZT_TEST_CALLER);
                return long(got == full && Slashed(full) == Slashed(e.Asked("a.txt")));
            },
            1,
            {",_Zt_fullpath(relpath=\"{A}/x/../a.txt\"); on line caller.cpp-42"}},
        Row{"_Zt_tfullpath",
            [](Env& e) {
                char full[260] = "";
                _Zt_tfullpath(full, e.Asked("a.txt"), sizeof full, ZT_TEST_CALLER);
                return long(Slashed(full) == Slashed(e.Asked("a.txt")));
            },
            1,
            {",_Zt_tfullpath(relpath=\"{A}/a.txt\"); on line caller.cpp-42"}},
        Row{"_Zt_tmakepath_s",
            [](Env& e) {
                char path[260] = "";
                return _Zt_tmakepath_s(path, sizeof path, "", e.asked.c_str(), "x", "txt",
                                       ZT_TEST_CALLER) +
                       10 * (Slashed(path) == Slashed(e.Asked("x.txt")));
            },
            10,
            {",_Zt_tmakepath_s(drive=\"\", dir=\"{A}\", fname=\"x\", ext=\"txt\"); on line "
             "caller.cpp-42"}},
        Row{"_Zt_tsplitpath_s",
            [](Env& e) {
                char drive[4], dir[260], fname[64], ext[16];
                return _Zt_tsplitpath_s(e.Asked("x.txt"), drive, sizeof drive, dir, sizeof dir,
                                        fname, sizeof fname, ext, sizeof ext, ZT_TEST_CALLER) +
                       10 * (std::strcmp(fname, "x") == 0 && std::strcmp(ext, ".txt") == 0 &&
                             Slashed(std::string(drive) + dir) == Slashed(e.asked + "/"));
            },
            10,
            {",_Zt_tsplitpath_s(path=\"{A}/x.txt\"); on line caller.cpp-42"}},
        Row{"_Zt_tmktemp_s",
            [](Env& e) {
                char name[260];
                std::strcpy(name, e.Asked("tmXXXXXX"));
                return _Zt_tmktemp_s(name, std::strlen(name) + 1, ZT_TEST_CALLER) +
                       10 * (std::string(name).rfind(e.asked, 0) == 0);
            },
            10,
            {",_Zt_tmktemp_s(template=\"{A}/tmXXXXXX\"); on line caller.cpp-42"}},
        Row{"_ZtCreateNamedPipe",
            [](Env& e) {
                const HANDLE pipe =
                    _ZtCreateNamedPipe(e.pipe.c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE, 1, 0, 0,
                                       0, nullptr, ZT_TEST_CALLER);
                return long(pipe != INVALID_HANDLE_VALUE && Win32::CloseHandle(pipe));
            },
            1,
            {",_ZtCreateNamedPipe(name=\"{P}\"); on line caller.cpp-42"}}),
    RowName);

// Silent kind: the name is redirected and nothing is raised.
class SilentCalls : public Env, public ::testing::WithParamInterface<Row> {};

TEST_P(SilentCalls, RedirectAndRaiseNothing) {
    EXPECT_EQ(GetParam().call(*this), GetParam().result);
    EXPECT_EQ(Events(), GetParam().events);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SilentCalls,
    ::testing::Values(
        Row{"_ZtGetFileAttributes",
            [](Env& e) {
                return long(_ZtGetFileAttributes(e.Asked("sub"), ZT_TEST_CALLER) &
                            FILE_ATTRIBUTE_DIRECTORY);
            },
            FILE_ATTRIBUTE_DIRECTORY,
            {}},
        Row{"_ZtGetFileAttributesEx",
            [](Env& e) {
                WIN32_FILE_ATTRIBUTE_DATA data{};
                return _ZtGetFileAttributesEx(e.Asked("a.txt"), GetFileExInfoStandard, &data,
                                              ZT_TEST_CALLER) +
                       10 * long(data.nFileSizeLow);
            },
            51,
            {}},
        Row{"_ZtGetDiskFreeSpaceEx",
            [](Env& e) {
                ULARGE_INTEGER available{}, total{}, free{};
                return _ZtGetDiskFreeSpaceEx(e.Asked("sub"), &available, &total, &free,
                                             ZT_TEST_CALLER) +
                       10 * (total.QuadPart > 0);
            },
            11,
            {}},
        Row{"_ZtFindFirstChangeNotification",
            [](Env& e) {
                const HANDLE h = _ZtFindFirstChangeNotification(
                    e.Asked("sub"), FALSE, FILE_NOTIFY_CHANGE_FILE_NAME, ZT_TEST_CALLER);
                return long(h != INVALID_HANDLE_VALUE && Win32::FindCloseChangeNotification(h));
            },
            1,
            {}},
        Row{"_ZtSHCreateDirectoryEx",
            [](Env& e) {
                // Native separators: the shell splits at backslashes only.
                const std::string deep =
                    (std::filesystem::path(e.asked) / "x" / "y").make_preferred().string();
                return _ZtSHCreateDirectoryEx(nullptr, deep.c_str(), nullptr, ZT_TEST_CALLER) +
                       10 * e.Exists("x/y");
            },
            10,
            {}}),
    RowName);

} // namespace
} // namespace FileAccTest
