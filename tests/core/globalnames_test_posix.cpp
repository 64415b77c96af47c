// Every public header at once, then a program's own Win32-looking names in the global namespace.
// This file compiles only while the library keeps its BYTE, DWORD, BOOL, HANDLE, TRUE, MAX_PATH,
// GUID, ... inside namespace Util (each definition below differs from the library's, so a global
// one of ours would clash, and a macro of ours would turn it into nonsense).
#include ZT_ALL_PUBLIC_HEADERS

#include <gtest/gtest.h>

#include <type_traits>

typedef char BYTE;
typedef unsigned long DWORD;
typedef bool BOOL;
typedef long LONG;
typedef long __int64;
struct HandleBody;
typedef HandleBody* HANDLE;
enum UserTruth { FALSE = 7, TRUE = 8 };
constexpr int MAX_PATH = 4096;
struct GUID {
    int part;
};
const char* const INVALID_HANDLE_VALUE = "no handle";
constexpr int ERROR_FILE_NOT_FOUND = -2;
constexpr int GENERIC_READ = -3;

TEST(PublicHeaders, LeaveWin32NamesToTheProgram) {
    EXPECT_TRUE((std::is_same<DWORD, unsigned long>::value));
    EXPECT_EQ(TRUE, 8);
    EXPECT_EQ(MAX_PATH, 4096);
    EXPECT_EQ(sizeof(GUID), sizeof(int));
    // The library's own keep their Win32 shapes inside Util.
    EXPECT_EQ(sizeof(Util::DWORD), 4u);
    EXPECT_EQ(sizeof(Util::Win32::LONG), 4u);
    EXPECT_EQ(Util::Win32::TRUE, 1);
    EXPECT_EQ(Util::Win32::MAX_PATH, 260);
    EXPECT_EQ(sizeof(Util::GUID), 16u);
    EXPECT_EQ(Util::Win32::ERROR_FILE_NOT_FOUND, 2);
}
