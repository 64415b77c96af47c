// The traced file functions: each row calls one wrapper on names below the requested directory,
// which does not exist, so only a call on the redirected names gives the expected result; the
// events must show every requested and redirected name in the wrapper's own wording.
#include "tests/OSIsolation/fileacc_test_support.h"

#include <cerrno>

using namespace Util::Win32;

namespace FileAccTest {
namespace {

class TracedCalls : public Env, public ::testing::WithParamInterface<Row> {};

TEST_P(TracedCalls, RedirectEveryNameAndTraceItBeforeTheCall) {
    EXPECT_EQ(GetParam().call(*this), GetParam().result);
    EXPECT_EQ(Events(), GetParam().events);
    for (const OpsTest::Captured& event : capture->Events()) {
        EXPECT_EQ(event.level, Util::Ops::kLvlInfoDetail);
        const std::string fn = event.text.substr(1, event.text.find(',', 1) - 1);
        EXPECT_EQ(event.function, "Util::" + fn);
    }
}

long Closed(FILE* stream) {
    return stream != nullptr && std::fclose(stream) == 0;
}
long ClosedFd(int fd) {
    return fd >= 0 && Util::Win32::_close(fd) == 0;
}
long ClosedHandle(HANDLE handle) {
    return handle != INVALID_HANDLE_VALUE && Util::Win32::CloseHandle(handle);
}
// Runs a call that changes the working directory and goes back.
template <class Fn> long InOtherDirectory(Fn fn) {
    const std::filesystem::path before = std::filesystem::current_path();
    const long result = fn();
    std::filesystem::current_path(before);
    return result;
}

const int kCreate = _O_CREAT | _O_WRONLY;    // 257
const int kReadWrite = _S_IREAD | _S_IWRITE; // 384
using namespace Util;

INSTANTIATE_TEST_SUITE_P(
    Table, TracedCalls,
    ::testing::Values(
        Row{"_Ztfopen",
            [](Env& e) { return Closed(_Ztfopen(e.Asked("a.txt"), "r", ZT_TEST_CALLER)); }, 1,
            {",_Ztfopen, Original,\"{A}/a.txt\",Redirected ,\"{R}/a.txt\" ,mode, r,  source, "
             "caller.cpp,line, 42"}},
        Row{"_Zt_tfopen",
            [](Env& e) { return Closed(_Zt_tfopen(e.Asked("a.txt"), "r", ZT_TEST_CALLER)); }, 1,
            {Traced("_Zt_tfopen", "a.txt", ",mode, r")}},
        Row{"_Ztfopen_s",
            [](Env& e) {
                FILE* f = nullptr;
                return _Ztfopen_s(&f, e.Asked("n.txt"), "w", ZT_TEST_CALLER) + Closed(f) +
                       10 * e.Exists("n.txt");
            },
            11, {Traced("_Ztfopen_s", "n.txt", ",mode, w")}},
        Row{"_Zt_tfopen_s_NullName",
            [](Env&) {
                FILE* f = nullptr;
                return long(_Zt_tfopen_s(&f, nullptr, "r", ZT_TEST_CALLER));
            },
            EINVAL,
            {",_Zt_tfopen_s, Original,\"(null)\",Redirected ,\"(null)\" ,mode, r,  source, "
             "caller.cpp,line, 42"}},
        Row{"_Ztfreopen",
            [](Env& e) {
                return Closed(_Ztfreopen(e.Asked("a.txt"), "r", std::tmpfile(), ZT_TEST_CALLER));
            },
            1, {Traced("_Ztfreopen", "a.txt", ",mode,r ")}},
        Row{"_Zt_tfreopen",
            [](Env& e) {
                return Closed(
                    _Zt_tfreopen(e.Asked("a.txt"), "r", std::tmpfile(), ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_tfreopen", "a.txt", ",mode,r ")}},
        Row{"_Ztfreopen_s",
            [](Env& e) {
                FILE* f = nullptr;
                return _Ztfreopen_s(&f, e.Asked("a.txt"), "r", std::tmpfile(), ZT_TEST_CALLER) +
                       Closed(f);
            },
            1, {Traced("_Ztfreopen_s", "a.txt", ",mode,r ")}},
        Row{"_Zt_tfreopen_s",
            [](Env& e) {
                FILE* f = nullptr;
                return _Zt_tfreopen_s(&f, e.Asked("a.txt"), "r", std::tmpfile(),
                                      ZT_TEST_CALLER) +
                       Closed(f);
            },
            1, {Traced("_Zt_tfreopen_s", "a.txt", ",mode,r ")}},
        Row{"_Zt_open",
            [](Env& e) {
                return ClosedFd(_Zt_open(e.Asked("n.txt"), kCreate, kReadWrite, ZT_TEST_CALLER)) +
                       10 * e.Exists("n.txt");
            },
            11, {Traced("_Zt_open", "n.txt", ",oflag, 257")}},
        Row{"_Zt_open2",
            [](Env& e) { return ClosedFd(_Zt_open2(e.Asked("a.txt"), _O_RDWR, ZT_TEST_CALLER)); },
            1, {Traced("_Zt_open2", "a.txt", ",oflag, 2")}},
        Row{"_Zt_topen",
            [](Env& e) {
                return ClosedFd(_Zt_topen(e.Asked("a.txt"), _O_RDWR, kReadWrite, ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_topen", "a.txt", ",oflag, 2")}},
        Row{"_Zt_topen2",
            [](Env& e) {
                return ClosedFd(_Zt_topen2(e.Asked("a.txt"), _O_RDWR, ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_topen2", "a.txt", ",oflag, 2")}},
        Row{"_Ztopen",
            [](Env& e) {
                return ClosedFd(_Ztopen(e.Asked("a.txt"), _O_RDWR, kReadWrite, ZT_TEST_CALLER));
            },
            1, {Traced("_Ztopen", "a.txt", ",mode, 2")}},
        Row{"_Ztopen2",
            [](Env& e) { return ClosedFd(_Ztopen2(e.Asked("a.txt"), _O_RDWR, ZT_TEST_CALLER)); },
            1, {Traced("_Ztopen2", "a.txt", ",mode, 2")}},
        Row{"_Zt_sopen",
            [](Env& e) {
                return ClosedFd(_Zt_sopen(e.Asked("n.txt"), kCreate, _SH_DENYNO, kReadWrite,
                                          ZT_TEST_CALLER)) +
                       10 * e.Exists("n.txt");
            },
            11, {Traced("_Zt_sopen", "n.txt", ",mode, 257")}},
        Row{"_Zt_sopen2",
            [](Env& e) {
                return ClosedFd(_Zt_sopen2(e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_sopen2", "a.txt", ",mode, 2")}},
        Row{"_Zt_tsopen",
            [](Env& e) {
                return ClosedFd(_Zt_tsopen(e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, kReadWrite,
                                           ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_tsopen", "a.txt", ",mode, 2")}},
        Row{"_Zt_tsopen2",
            [](Env& e) {
                return ClosedFd(
                    _Zt_tsopen2(e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_tsopen2", "a.txt", ",mode, 2")}},
        Row{"_Ztsopen",
            [](Env& e) {
                return ClosedFd(
                    _Ztsopen(e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, kReadWrite, ZT_TEST_CALLER));
            },
            1, {Traced("_Ztsopen", "a.txt", ",mode, 2")}},
        Row{"_Ztsopen2",
            [](Env& e) {
                return ClosedFd(_Ztsopen2(e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, ZT_TEST_CALLER));
            },
            1, {Traced("_Ztsopen2", "a.txt", ",mode, 2")}},
        Row{"_Zt_sopen_s",
            [](Env& e) {
                int fd = -1;
                return _Zt_sopen_s(&fd, e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, kReadWrite,
                                   ZT_TEST_CALLER) +
                       ClosedFd(fd);
            },
            1, {Traced("_Zt_sopen_s", "a.txt", ",mode, 2")}},
        Row{"_Zt_tsopen_s",
            [](Env& e) {
                int fd = -1;
                return _Zt_tsopen_s(&fd, e.Asked("a.txt"), _O_RDWR, _SH_DENYNO, kReadWrite,
                                    ZT_TEST_CALLER) +
                       ClosedFd(fd);
            },
            1, {Traced("_Zt_tsopen_s", "a.txt", ",mode, 2")}},
        Row{"_Zt_creat",
            [](Env& e) {
                return ClosedFd(_Zt_creat(e.Asked("n.txt"), kReadWrite, ZT_TEST_CALLER)) +
                       10 * e.Exists("n.txt");
            },
            11, {Traced("_Zt_creat", "n.txt", ",mode, 384 ")}},
        Row{"_Zt_tcreat",
            [](Env& e) {
                return ClosedFd(_Zt_tcreat(e.Asked("n.txt"), kReadWrite, ZT_TEST_CALLER));
            },
            1, {Traced("_Zt_tcreat", "n.txt", ",mode, 384 ")}},
        Row{"_Ztcreat",
            [](Env& e) {
                return ClosedFd(_Ztcreat(e.Asked("n.txt"), kReadWrite, ZT_TEST_CALLER));
            },
            1, {Traced("_Ztcreat", "n.txt", ",mode, 384")}},
        Row{"_Zt_stat_32",
            [](Env& e) {
                struct _stat32 st {};
                return _Zt_stat(e.Asked("a.txt"), &st, ZT_TEST_CALLER) + long(st.st_size);
            },
            5, {Traced("_Zt_stat", "a.txt", ",, ")}},
        Row{"_Zt_stat_64i32",
            [](Env& e) {
                struct _stat64i32 st {};
                return _Zt_stat(e.Asked("a.txt"), &st, ZT_TEST_CALLER) + long(st.st_size);
            },
            5, {Traced("_Zt_stat", "a.txt", ",, ")}},
        Row{"_Zt_tstat_32",
            [](Env& e) {
                struct _stat32 st {};
                return _Zt_tstat(e.Asked("a.txt"), &st, ZT_TEST_CALLER) + long(st.st_size);
            },
            5, {Traced("_Zt_tstat", "a.txt", ",, ")}},
        Row{"_Zt_tstat_64i32",
            [](Env& e) {
                struct _stat64i32 st {};
                return _Zt_tstat(e.Asked("a.txt"), &st, ZT_TEST_CALLER) + long(st.st_size);
            },
            5, {Traced("_Zt_tstat", "a.txt", ",, ")}},
        Row{"_Zt_access",
            [](Env& e) { return long(_Zt_access(e.Asked("a.txt"), 4, ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_access", "a.txt", ",mode, 4 ")}},
        Row{"_Zt_taccess",
            [](Env& e) { return long(_Zt_taccess(e.Asked("a.txt"), 6, ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_taccess", "a.txt", ",mode, 6 ")}},
        Row{"_Ztaccess",
            [](Env& e) { return long(_Ztaccess(e.Asked("a.txt"), 0, ZT_TEST_CALLER)); }, 0,
            {Traced("_Ztaccess", "a.txt", ",mode, 0 ")}},
        Row{"_Zt_access_s",
            [](Env& e) { return long(_Zt_access_s(e.Asked("a.txt"), 4, ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_access_s", "a.txt", ",mode, 4 ")}},
        Row{"_Zt_taccess_s",
            [](Env& e) { return long(_Zt_taccess_s(e.Asked("a.txt"), 4, ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_taccess_s", "a.txt", ",mode, 4 ")}},
        Row{"_Zt_chmod",
            [](Env& e) { return long(_Zt_chmod(e.Asked("a.txt"), _S_IREAD, ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_chmod", "a.txt", ",pmode,256 ")}},
        Row{"_Zt_tchmod",
            [](Env& e) { return long(_Zt_tchmod(e.Asked("a.txt"), kReadWrite, ZT_TEST_CALLER)); },
            0, {Traced("_Zt_tchmod", "a.txt", ",pmode,384 ")}},
        Row{"_Ztchmod",
            [](Env& e) { return long(_Ztchmod(e.Asked("a.txt"), kReadWrite, ZT_TEST_CALLER)); },
            0, {Traced("_Ztchmod", "a.txt", ",mode, 384 ")}},
        Row{"_Zt_mkdir",
            [](Env& e) { return _Zt_mkdir(e.Asked("d"), ZT_TEST_CALLER) + 10 * e.Exists("d"); },
            10, {Traced("_Zt_mkdir", "d", ",, ")}},
        Row{"_Zt_tmkdir", [](Env& e) { return long(_Zt_tmkdir(e.Asked("d"), ZT_TEST_CALLER)); },
            0, {Traced("_Zt_tmkdir", "d", ",, ")}},
        Row{"_Ztmkdir", [](Env& e) { return long(_Ztmkdir(e.Asked("d"), ZT_TEST_CALLER)); }, 0,
            {Traced("_Ztmkdir", "d", ",, ")}},
        Row{"_Zt_rmdir",
            [](Env& e) {
                return _Zt_rmdir(e.Asked("sub"), ZT_TEST_CALLER) + 10 * e.Exists("sub");
            },
            0, {Traced("_Zt_rmdir", "sub", ",, ")}},
        Row{"_Zt_trmdir", [](Env& e) { return long(_Zt_trmdir(e.Asked("sub"), ZT_TEST_CALLER)); },
            0, {Traced("_Zt_trmdir", "sub", ",, ")}},
        Row{"_Ztrmdir", [](Env& e) { return long(_Ztrmdir(e.Asked("sub"), ZT_TEST_CALLER)); }, 0,
            {Traced("_Ztrmdir", "sub", ",, ")}},
        Row{"_Zt_chdir",
            [](Env& e) {
                return InOtherDirectory([&] {
                    return _Zt_chdir(e.Asked("sub"), ZT_TEST_CALLER) +
                           10 * (std::filesystem::current_path() ==
                                 std::filesystem::path(e.Real("sub")));
                });
            },
            10, {Traced("_Zt_chdir", "sub", ",, ")}},
        Row{"_Zt_tchdir",
            [](Env& e) {
                return InOtherDirectory([&] { return _Zt_tchdir(e.Asked("sub"), ZT_TEST_CALLER); });
            },
            0, {Traced("_Zt_tchdir", "sub", ",, ")}},
        Row{"_Ztchdir",
            [](Env& e) {
                return InOtherDirectory([&] { return _Ztchdir(e.Asked("sub"), ZT_TEST_CALLER); });
            },
            0, {Traced("_Ztchdir", "sub", ",, ")}},
        Row{"_Zt_unlink",
            [](Env& e) {
                return _Zt_unlink(e.Asked("a.txt"), ZT_TEST_CALLER) + 10 * e.Exists("a.txt");
            },
            0, {Traced("_Zt_unlink", "a.txt", ",, ")}},
        Row{"_Zt_tunlink",
            [](Env& e) { return long(_Zt_tunlink(e.Asked("a.txt"), ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_tunlink", "a.txt", ",, ")}},
        Row{"_Ztunlink", [](Env& e) { return long(_Ztunlink(e.Asked("a.txt"), ZT_TEST_CALLER)); },
            0, {Traced("_Ztunlink", "a.txt", ",, ")}},
        Row{"_Ztremove",
            [](Env& e) {
                return _Ztremove(e.Asked("a.txt"), ZT_TEST_CALLER) + 10 * e.Exists("a.txt");
            },
            0, {Traced("_Ztremove", "a.txt", ",, ")}},
        Row{"_Zt_tremove",
            [](Env& e) { return long(_Zt_tremove(e.Asked("a.txt"), ZT_TEST_CALLER)); }, 0,
            {Traced("_Zt_tremove", "a.txt", ",, ")}},
        Row{"_Ztrename",
            [](Env& e) {
                return _Ztrename(e.Asked("a.txt"), e.Asked("b.txt"), ZT_TEST_CALLER) +
                       10 * e.Exists("b.txt");
            },
            10,
            {",_Ztrename, old Original,\"{A}/a.txt\", old Redirected ,\"{R}/a.txt\" ,, ,  "
             "source, caller.cpp,line, 42",
             ",_Ztrename, new Original,\"{A}/b.txt\", old Redirected ,\"{R}/b.txt\" ,, ,  "
             "source, caller.cpp,line, 42"}},
        Row{"_Zt_trename",
            [](Env& e) {
                return _Zt_trename(e.Asked("a.txt"), e.Asked("b.txt"), ZT_TEST_CALLER) +
                       10 * e.Exists("b.txt");
            },
            10, {Traced("_Zt_trename", "a.txt", ",, ", "old ", " old ")}},
        Row{"_ZtCreateFile",
            [](Env& e) {
                return ClosedHandle(_ZtCreateFile(e.Asked("a.txt"), GENERIC_READ, FILE_SHARE_READ,
                                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                                  nullptr, ZT_TEST_CALLER));
            },
            1, {Traced("_ZtCreateFile", "a.txt", ",DesiredAccess, 80000000")}},
        Row{"_ZtCreateDirectory",
            [](Env& e) {
                return _ZtCreateDirectory(e.Asked("d"), nullptr, ZT_TEST_CALLER) +
                       10 * e.Exists("d");
            },
            11, {Traced("_ZtCreateDirectory", "d", ",, ")}},
        Row{"_ZtCreateDirectoryEx",
            [](Env& e) {
                return _ZtCreateDirectoryEx(e.Asked("sub"), e.Asked("d"), nullptr,
                                            ZT_TEST_CALLER) +
                       10 * e.Exists("d");
            },
            11,
            {Traced("_ZtCreateDirectoryEx", "sub", ",, ", "template ", " template "),
             Traced("_ZtCreateDirectoryEx", "d", ",, ", "new ", " new ")}},
        Row{"_ZtRemoveDirectory",
            [](Env& e) {
                return _ZtRemoveDirectory(e.Asked("sub"), ZT_TEST_CALLER) + 10 * e.Exists("sub");
            },
            1, {Traced("_ZtRemoveDirectory", "sub", ",, ")}}),
    RowName);

// The caller macros hand the wrapper the caller's own file and line.
TEST_F(Env, MacrosPassTheCallersFileAndLine) {
    const int line = __LINE__ + 1;
    EXPECT_EQ(Closed(Ztfopen(Asked("a.txt"), "r")), 1);
    ASSERT_EQ(Events().size(), 1u);
    EXPECT_NE(Events()[0].find(",  source, tests/OSIsolation/fileacc_traced_test.cpp,line, " +
                               std::to_string(line)),
              std::string::npos)
        << Events()[0];
}

} // namespace
} // namespace FileAccTest
