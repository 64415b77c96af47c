// The Win32 types, constants and error codes that the library's interfaces keep.
//
// On Windows they come from <windows.h>. On POSIX this header defines the same names with the
// same widths (DWORD and LONG are 32-bit even where long is 64-bit), so that the exported
// Win32-shaped functions are written once. There they live in namespace Util::Win32, which
// namespace Util uses, and never in the global namespace: a program that includes the library's
// headers keeps its own BYTE, DWORD, BOOL, HANDLE, TRUE or MAX_PATH. The constants are typed
// constants, not macros; one the program has already defined as a macro keeps its definition.
// Code outside namespace Util names them Util::DWORD, or with `using namespace Util::Win32`
// (which serves on Windows too, where the names are global).
#pragma once

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace Util {
namespace Win32 {
using ::BOOL;
using ::BYTE;
using ::CHAR;
using ::DWORD;
using ::FARPROC;
using ::FILETIME;
using ::GUID;
using ::HANDLE;
using ::HINSTANCE;
using ::HMODULE;
using ::INT;
using ::LONG;
using ::LONGLONG;
using ::LPCSTR;
using ::LPCVOID;
using ::LPDWORD;
using ::LPSTR;
using ::LPVOID;
using ::LPWIN32_FIND_DATAA;
using ::UINT;
using ::ULONG;
using ::ULONGLONG;
using ::WCHAR;
using ::WIN32_FIND_DATAA;
using ::WORD;
} // namespace Win32
} // namespace Util
#else

#include <cstdint>

namespace Util {
namespace Win32 {

typedef long long __int64;
typedef unsigned long long __uint64;

typedef std::uint8_t BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int32_t BOOL;
typedef std::int32_t LONG;
typedef std::uint32_t ULONG;
typedef std::int32_t INT;
typedef std::uint32_t UINT;
typedef std::int64_t LONGLONG;
typedef std::uint64_t ULONGLONG;
typedef char CHAR;
typedef wchar_t WCHAR;
typedef void* HANDLE;
typedef void* HMODULE;
typedef void* HINSTANCE;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef DWORD* LPDWORD;
typedef long (*FARPROC)();

#ifndef TRUE
constexpr BOOL TRUE = 1;
#endif
#ifndef FALSE
constexpr BOOL FALSE = 0;
#endif

#ifndef MAX_PATH
constexpr auto MAX_PATH = 260;
#endif
#ifndef INVALID_HANDLE_VALUE
const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));
#endif
#ifndef INVALID_FILE_ATTRIBUTES
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
#endif

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

// The fields a find-first entry shares, in the same order, with WIN32_FILE_ATTRIBUTE_DATA.
#define ZT_WIN32_FILE_INFO_FIELDS                                                                  \
    DWORD dwFileAttributes;                                                                        \
    FILETIME ftCreationTime;                                                                       \
    FILETIME ftLastAccessTime;                                                                     \
    FILETIME ftLastWriteTime;                                                                      \
    DWORD nFileSizeHigh;                                                                           \
    DWORD nFileSizeLow

struct WIN32_FIND_DATAA {
    ZT_WIN32_FILE_INFO_FIELDS;
    DWORD dwReserved0;
    DWORD dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
};
typedef WIN32_FIND_DATAA* LPWIN32_FIND_DATAA;

typedef struct _GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
} GUID;

#ifndef FILE_ATTRIBUTE_READONLY
constexpr auto FILE_ATTRIBUTE_READONLY = 0x00000001;
#endif
#ifndef FILE_ATTRIBUTE_HIDDEN
constexpr auto FILE_ATTRIBUTE_HIDDEN = 0x00000002;
#endif
#ifndef FILE_ATTRIBUTE_SYSTEM
constexpr auto FILE_ATTRIBUTE_SYSTEM = 0x00000004;
#endif
#ifndef FILE_ATTRIBUTE_DIRECTORY
constexpr auto FILE_ATTRIBUTE_DIRECTORY = 0x00000010;
#endif
#ifndef FILE_ATTRIBUTE_ARCHIVE
constexpr auto FILE_ATTRIBUTE_ARCHIVE = 0x00000020;
#endif
#ifndef FILE_ATTRIBUTE_NORMAL
constexpr auto FILE_ATTRIBUTE_NORMAL = 0x00000080;
#endif

#ifndef ERROR_SUCCESS
constexpr auto ERROR_SUCCESS = 0L;
#endif
#ifndef ERROR_INVALID_FUNCTION
constexpr auto ERROR_INVALID_FUNCTION = 1L;
#endif
#ifndef ERROR_FILE_NOT_FOUND
constexpr auto ERROR_FILE_NOT_FOUND = 2L;
#endif
#ifndef ERROR_PATH_NOT_FOUND
constexpr auto ERROR_PATH_NOT_FOUND = 3L;
#endif
#ifndef ERROR_TOO_MANY_OPEN_FILES
constexpr auto ERROR_TOO_MANY_OPEN_FILES = 4L;
#endif
#ifndef ERROR_ACCESS_DENIED
constexpr auto ERROR_ACCESS_DENIED = 5L;
#endif
#ifndef ERROR_INVALID_HANDLE
constexpr auto ERROR_INVALID_HANDLE = 6L;
#endif
#ifndef ERROR_NOT_ENOUGH_MEMORY
constexpr auto ERROR_NOT_ENOUGH_MEMORY = 8L;
#endif
#ifndef ERROR_INVALID_DATA
constexpr auto ERROR_INVALID_DATA = 13L;
#endif
#ifndef ERROR_OUTOFMEMORY
constexpr auto ERROR_OUTOFMEMORY = 14L;
#endif
#ifndef ERROR_NO_MORE_FILES
constexpr auto ERROR_NO_MORE_FILES = 18L;
#endif
#ifndef ERROR_WRITE_PROTECT
constexpr auto ERROR_WRITE_PROTECT = 19L;
#endif
#ifndef ERROR_NOT_READY
constexpr auto ERROR_NOT_READY = 21L;
#endif
#ifndef ERROR_SHARING_VIOLATION
constexpr auto ERROR_SHARING_VIOLATION = 32L;
#endif
#ifndef ERROR_LOCK_VIOLATION
constexpr auto ERROR_LOCK_VIOLATION = 33L;
#endif
#ifndef ERROR_HANDLE_EOF
constexpr auto ERROR_HANDLE_EOF = 38L;
#endif
#ifndef ERROR_NOT_SUPPORTED
constexpr auto ERROR_NOT_SUPPORTED = 50L;
#endif
#ifndef ERROR_BAD_NETPATH
constexpr auto ERROR_BAD_NETPATH = 53L;
#endif
#ifndef ERROR_FILE_EXISTS
constexpr auto ERROR_FILE_EXISTS = 80L;
#endif
#ifndef ERROR_INVALID_PARAMETER
constexpr auto ERROR_INVALID_PARAMETER = 87L;
#endif
#ifndef ERROR_BROKEN_PIPE
constexpr auto ERROR_BROKEN_PIPE = 109L;
#endif
#ifndef ERROR_DISK_FULL
constexpr auto ERROR_DISK_FULL = 112L;
#endif
#ifndef ERROR_INSUFFICIENT_BUFFER
constexpr auto ERROR_INSUFFICIENT_BUFFER = 122L;
#endif
#ifndef ERROR_INVALID_NAME
constexpr auto ERROR_INVALID_NAME = 123L;
#endif
#ifndef ERROR_MOD_NOT_FOUND
constexpr auto ERROR_MOD_NOT_FOUND = 126L;
#endif
#ifndef ERROR_PROC_NOT_FOUND
constexpr auto ERROR_PROC_NOT_FOUND = 127L;
#endif
#ifndef ERROR_DIR_NOT_EMPTY
constexpr auto ERROR_DIR_NOT_EMPTY = 145L;
#endif
#ifndef ERROR_BUSY
constexpr auto ERROR_BUSY = 170L;
#endif
#ifndef ERROR_ALREADY_EXISTS
constexpr auto ERROR_ALREADY_EXISTS = 183L;
#endif
#ifndef ERROR_BAD_EXE_FORMAT
constexpr auto ERROR_BAD_EXE_FORMAT = 193L;
#endif
#ifndef ERROR_FILENAME_EXCED_RANGE
constexpr auto ERROR_FILENAME_EXCED_RANGE = 206L;
#endif
#ifndef ERROR_MORE_DATA
constexpr auto ERROR_MORE_DATA = 234L;
#endif
#ifndef ERROR_NO_MORE_ITEMS
constexpr auto ERROR_NO_MORE_ITEMS = 259L;
#endif
#ifndef ERROR_DIRECTORY
constexpr auto ERROR_DIRECTORY = 267L;
#endif
#ifndef ERROR_NOT_FOUND
constexpr auto ERROR_NOT_FOUND = 1168L;
#endif
#ifndef ERROR_CANCELLED
constexpr auto ERROR_CANCELLED = 1223L;
#endif

} // namespace Win32
} // namespace Util
#endif

namespace Util {
using namespace Win32;
} // namespace Util
