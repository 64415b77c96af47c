// The Win32 file and directory functions the library calls, as Util::Win32::X on every platform.
//
// On Windows each name is the real function from <windows.h>/<shlobj.h>/<shellapi.h>. On POSIX
// the OS-isolation layer implements them with Windows' documented behaviour:
// - Names may use '\' as well as '/' as the separator; POSIX paths otherwise stay POSIX paths
//   (no drive letters). Directory components are looked up with the file system's case rules.
// - Every failure sets the thread's Win32 last error as Windows does: 2 file not found (the
//   last component is missing), 3 path not found (a directory on the way is missing or is a
//   file), 5 access denied, 32 sharing violation, 80 file exists, 183 already exists,
//   87 invalid parameter, 6 invalid handle, 18 no more files, 145 directory not empty.
// - FILE_ATTRIBUTE_READONLY is the owner's write permission bit. The emulation itself refuses to
//   delete, rename over, truncate or open for writing a read-only file (error 5), so that the
//   rule also holds for root, whom permission bits do not stop. Names that begin with '.'
//   report FILE_ATTRIBUTE_HIDDEN; regular files report FILE_ATTRIBUTE_ARCHIVE; the hidden,
//   system and archive bits cannot be changed (SetFileAttributesA accepts and ignores them).
// - Share modes are enforced between handles that CreateFileA opened in this process (error 32
//   on a conflict); other processes are not stopped, because POSIX has no mandatory locking.
// - FindFirstFileA matches the last component of its pattern the way Windows does ("*", "?",
//   "*.*" also matching names without a dot, "*." only names without one, trailing dots
//   ignored), case-blind for ASCII letters; "." and ".." are listed; entries come in a fixed
//   order ("." and ".." first, then case-blind by name). 8.3 short names do not exist.
// - Handles are entries of a process-wide table: a stale or foreign handle fails with error 6
//   instead of crashing. CloseHandle closes file and pipe handles; find and change-notification
//   handles close with their own functions. WaitForSingleObject waits on change notifications
//   (file handles are always signalled).
// - FindFirstChangeNotificationA uses inotify; a watch of a subtree watches the directories that
//   exist when it starts and those created below them afterwards.
// - ShellExecuteA opens a document or URL with the desktop's opener (xdg-open), detached; it
//   returns a value above 32 when the opener could be started (its own result is not awaited).
// - CreateNamedPipeA accepts only "\\.\pipe\NAME" and makes a FIFO for it in the run-time
//   directory ($XDG_RUNTIME_DIR, else /tmp); CreateFileA on the same name opens the other end.
//   A FIFO carries bytes one way: PIPE_ACCESS_DUPLEX and message mode fail with error 50.
// - GetDiskFreeSpaceExA reports statvfs figures of the file system holding the path.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#if defined(_WIN32)
#include <shellapi.h>
#include <shlobj.h>
#else

#include <cstdint>

namespace Util {
namespace Win32 {

typedef void* HWND;
typedef std::uintptr_t ULONG_PTR;
typedef std::int64_t LONG64;
typedef std::uint32_t* PULONG;

typedef struct _SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *PSECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;

typedef union _ULARGE_INTEGER {
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    ULONGLONG QuadPart;
} ULARGE_INTEGER, *PULARGE_INTEGER;

typedef union _LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
} LARGE_INTEGER, *PLARGE_INTEGER;

typedef struct _WIN32_FILE_ATTRIBUTE_DATA {
    ZT_WIN32_FILE_INFO_FIELDS;
} WIN32_FILE_ATTRIBUTE_DATA, *LPWIN32_FILE_ATTRIBUTE_DATA;

typedef enum _GET_FILEEX_INFO_LEVELS {
    GetFileExInfoStandard,
    GetFileExMaxInfoLevel
} GET_FILEEX_INFO_LEVELS;

// Only Offset/OffsetHigh are used: ReadFile and WriteFile at a given position (synchronously).
typedef struct _OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
} OVERLAPPED, *LPOVERLAPPED;

// Access rights.
#ifndef GENERIC_READ
constexpr auto GENERIC_READ = 0x80000000u;
#endif
#ifndef GENERIC_WRITE
constexpr auto GENERIC_WRITE = 0x40000000u;
#endif
#ifndef GENERIC_EXECUTE
constexpr auto GENERIC_EXECUTE = 0x20000000u;
#endif
#ifndef GENERIC_ALL
constexpr auto GENERIC_ALL = 0x10000000u;
#endif
#ifndef FILE_READ_DATA
constexpr auto FILE_READ_DATA = 0x0001u;
#endif
#ifndef FILE_WRITE_DATA
constexpr auto FILE_WRITE_DATA = 0x0002u;
#endif
#ifndef FILE_APPEND_DATA
constexpr auto FILE_APPEND_DATA = 0x0004u;
#endif
#ifndef FILE_READ_EA
constexpr auto FILE_READ_EA = 0x0008u;
#endif
#ifndef FILE_WRITE_EA
constexpr auto FILE_WRITE_EA = 0x0010u;
#endif
#ifndef FILE_EXECUTE
constexpr auto FILE_EXECUTE = 0x0020u;
#endif
#ifndef FILE_READ_ATTRIBUTES
constexpr auto FILE_READ_ATTRIBUTES = 0x0080u;
#endif
#ifndef FILE_WRITE_ATTRIBUTES
constexpr auto FILE_WRITE_ATTRIBUTES = 0x0100u;
#endif
#ifndef DELETE
constexpr auto DELETE = 0x00010000u;
#endif
#ifndef READ_CONTROL
constexpr auto READ_CONTROL = 0x00020000u;
#endif
#ifndef SYNCHRONIZE
constexpr auto SYNCHRONIZE = 0x00100000u;
#endif
#ifndef FILE_GENERIC_READ
constexpr auto FILE_GENERIC_READ = 0x00120089u;
#endif
#ifndef FILE_GENERIC_WRITE
constexpr auto FILE_GENERIC_WRITE = 0x00120116u;
#endif

// Share modes.
#ifndef FILE_SHARE_READ
constexpr auto FILE_SHARE_READ = 0x00000001u;
#endif
#ifndef FILE_SHARE_WRITE
constexpr auto FILE_SHARE_WRITE = 0x00000002u;
#endif
#ifndef FILE_SHARE_DELETE
constexpr auto FILE_SHARE_DELETE = 0x00000004u;
#endif

// Creation dispositions.
#ifndef CREATE_NEW
constexpr auto CREATE_NEW = 1u;
#endif
#ifndef CREATE_ALWAYS
constexpr auto CREATE_ALWAYS = 2u;
#endif
#ifndef OPEN_EXISTING
constexpr auto OPEN_EXISTING = 3u;
#endif
#ifndef OPEN_ALWAYS
constexpr auto OPEN_ALWAYS = 4u;
#endif
#ifndef TRUNCATE_EXISTING
constexpr auto TRUNCATE_EXISTING = 5u;
#endif

// File attributes beyond those of Util/Win32Types.h.
#ifndef FILE_ATTRIBUTE_DEVICE
constexpr auto FILE_ATTRIBUTE_DEVICE = 0x00000040;
#endif
#ifndef FILE_ATTRIBUTE_TEMPORARY
constexpr auto FILE_ATTRIBUTE_TEMPORARY = 0x00000100;
#endif
#ifndef FILE_ATTRIBUTE_SPARSE_FILE
constexpr auto FILE_ATTRIBUTE_SPARSE_FILE = 0x00000200;
#endif
#ifndef FILE_ATTRIBUTE_REPARSE_POINT
constexpr auto FILE_ATTRIBUTE_REPARSE_POINT = 0x00000400;
#endif
#ifndef FILE_ATTRIBUTE_COMPRESSED
constexpr auto FILE_ATTRIBUTE_COMPRESSED = 0x00000800;
#endif
#ifndef FILE_ATTRIBUTE_OFFLINE
constexpr auto FILE_ATTRIBUTE_OFFLINE = 0x00001000;
#endif
#ifndef FILE_ATTRIBUTE_NOT_CONTENT_INDEXED
constexpr auto FILE_ATTRIBUTE_NOT_CONTENT_INDEXED = 0x00002000;
#endif
#ifndef FILE_ATTRIBUTE_ENCRYPTED
constexpr auto FILE_ATTRIBUTE_ENCRYPTED = 0x00004000;
#endif

// Flags of CreateFileA.
#ifndef FILE_FLAG_WRITE_THROUGH
constexpr auto FILE_FLAG_WRITE_THROUGH = 0x80000000u;
#endif
#ifndef FILE_FLAG_OVERLAPPED
constexpr auto FILE_FLAG_OVERLAPPED = 0x40000000u;
#endif
#ifndef FILE_FLAG_NO_BUFFERING
constexpr auto FILE_FLAG_NO_BUFFERING = 0x20000000u;
#endif
#ifndef FILE_FLAG_RANDOM_ACCESS
constexpr auto FILE_FLAG_RANDOM_ACCESS = 0x10000000u;
#endif
#ifndef FILE_FLAG_SEQUENTIAL_SCAN
constexpr auto FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000u;
#endif
#ifndef FILE_FLAG_DELETE_ON_CLOSE
constexpr auto FILE_FLAG_DELETE_ON_CLOSE = 0x04000000u;
#endif
#ifndef FILE_FLAG_BACKUP_SEMANTICS
constexpr auto FILE_FLAG_BACKUP_SEMANTICS = 0x02000000u;
#endif
#ifndef FILE_FLAG_POSIX_SEMANTICS
constexpr auto FILE_FLAG_POSIX_SEMANTICS = 0x01000000u;
#endif

// File pointer moves.
#ifndef FILE_BEGIN
constexpr auto FILE_BEGIN = 0u;
#endif
#ifndef FILE_CURRENT
constexpr auto FILE_CURRENT = 1u;
#endif
#ifndef FILE_END
constexpr auto FILE_END = 2u;
#endif

// Change notification filters.
#ifndef FILE_NOTIFY_CHANGE_FILE_NAME
constexpr auto FILE_NOTIFY_CHANGE_FILE_NAME = 0x00000001u;
#endif
#ifndef FILE_NOTIFY_CHANGE_DIR_NAME
constexpr auto FILE_NOTIFY_CHANGE_DIR_NAME = 0x00000002u;
#endif
#ifndef FILE_NOTIFY_CHANGE_ATTRIBUTES
constexpr auto FILE_NOTIFY_CHANGE_ATTRIBUTES = 0x00000004u;
#endif
#ifndef FILE_NOTIFY_CHANGE_SIZE
constexpr auto FILE_NOTIFY_CHANGE_SIZE = 0x00000008u;
#endif
#ifndef FILE_NOTIFY_CHANGE_LAST_WRITE
constexpr auto FILE_NOTIFY_CHANGE_LAST_WRITE = 0x00000010u;
#endif
#ifndef FILE_NOTIFY_CHANGE_LAST_ACCESS
constexpr auto FILE_NOTIFY_CHANGE_LAST_ACCESS = 0x00000020u;
#endif
#ifndef FILE_NOTIFY_CHANGE_CREATION
constexpr auto FILE_NOTIFY_CHANGE_CREATION = 0x00000040u;
#endif
#ifndef FILE_NOTIFY_CHANGE_SECURITY
constexpr auto FILE_NOTIFY_CHANGE_SECURITY = 0x00000100u;
#endif

// Waiting.
#ifndef INFINITE
constexpr auto INFINITE = 0xFFFFFFFFu;
#endif
#ifndef WAIT_OBJECT_0
constexpr auto WAIT_OBJECT_0 = 0x00000000u;
#endif
#ifndef WAIT_TIMEOUT
constexpr auto WAIT_TIMEOUT = 0x00000102u;
#endif
#ifndef WAIT_FAILED
constexpr auto WAIT_FAILED = 0xFFFFFFFFu;
#endif

// Named pipes.
#ifndef PIPE_ACCESS_INBOUND
constexpr auto PIPE_ACCESS_INBOUND = 0x00000001u;
#endif
#ifndef PIPE_ACCESS_OUTBOUND
constexpr auto PIPE_ACCESS_OUTBOUND = 0x00000002u;
#endif
#ifndef PIPE_ACCESS_DUPLEX
constexpr auto PIPE_ACCESS_DUPLEX = 0x00000003u;
#endif
#ifndef PIPE_TYPE_BYTE
constexpr auto PIPE_TYPE_BYTE = 0x00000000u;
#endif
#ifndef PIPE_TYPE_MESSAGE
constexpr auto PIPE_TYPE_MESSAGE = 0x00000004u;
#endif
#ifndef PIPE_READMODE_BYTE
constexpr auto PIPE_READMODE_BYTE = 0x00000000u;
#endif
#ifndef PIPE_READMODE_MESSAGE
constexpr auto PIPE_READMODE_MESSAGE = 0x00000002u;
#endif
#ifndef PIPE_WAIT
constexpr auto PIPE_WAIT = 0x00000000u;
#endif
#ifndef PIPE_NOWAIT
constexpr auto PIPE_NOWAIT = 0x00000001u;
#endif
#ifndef PIPE_UNLIMITED_INSTANCES
constexpr auto PIPE_UNLIMITED_INSTANCES = 255u;
#endif
#ifndef NMPWAIT_USE_DEFAULT_WAIT
constexpr auto NMPWAIT_USE_DEFAULT_WAIT = 0x00000000u;
#endif

// ShowWindow commands for ShellExecuteA.
#ifndef SW_HIDE
constexpr auto SW_HIDE = 0;
#endif
#ifndef SW_SHOWNORMAL
constexpr auto SW_SHOWNORMAL = 1;
#endif
#ifndef SW_NORMAL
constexpr auto SW_NORMAL = 1;
#endif
#ifndef SW_SHOWMINIMIZED
constexpr auto SW_SHOWMINIMIZED = 2;
#endif
#ifndef SW_SHOWMAXIMIZED
constexpr auto SW_SHOWMAXIMIZED = 3;
#endif
#ifndef SW_MAXIMIZE
constexpr auto SW_MAXIMIZE = 3;
#endif
#ifndef SW_SHOWNOACTIVATE
constexpr auto SW_SHOWNOACTIVATE = 4;
#endif
#ifndef SW_SHOW
constexpr auto SW_SHOW = 5;
#endif
#ifndef SW_MINIMIZE
constexpr auto SW_MINIMIZE = 6;
#endif
#ifndef SW_SHOWMINNOACTIVE
constexpr auto SW_SHOWMINNOACTIVE = 7;
#endif
#ifndef SW_SHOWNA
constexpr auto SW_SHOWNA = 8;
#endif
#ifndef SW_RESTORE
constexpr auto SW_RESTORE = 9;
#endif
#ifndef SW_SHOWDEFAULT
constexpr auto SW_SHOWDEFAULT = 10;
#endif

// ShellExecuteA results at or below 32.
#ifndef SE_ERR_FNF
constexpr auto SE_ERR_FNF = 2;
#endif
#ifndef SE_ERR_PNF
constexpr auto SE_ERR_PNF = 3;
#endif
#ifndef SE_ERR_ACCESSDENIED
constexpr auto SE_ERR_ACCESSDENIED = 5;
#endif
#ifndef SE_ERR_OOM
constexpr auto SE_ERR_OOM = 8;
#endif
#ifndef SE_ERR_NOASSOC
constexpr auto SE_ERR_NOASSOC = 31;
#endif

// Error codes beyond those of Util/Win32Types.h.
#ifndef ERROR_BAD_FORMAT
constexpr auto ERROR_BAD_FORMAT = 11L;
#endif
#ifndef ERROR_INVALID_DRIVE
constexpr auto ERROR_INVALID_DRIVE = 15L;
#endif
#ifndef ERROR_CURRENT_DIRECTORY
constexpr auto ERROR_CURRENT_DIRECTORY = 16L;
#endif
#ifndef ERROR_NOT_SAME_DEVICE
constexpr auto ERROR_NOT_SAME_DEVICE = 17L;
#endif
#ifndef ERROR_NEGATIVE_SEEK
constexpr auto ERROR_NEGATIVE_SEEK = 131L;
#endif
#ifndef ERROR_BAD_PATHNAME
constexpr auto ERROR_BAD_PATHNAME = 161L;
#endif
#ifndef ERROR_PIPE_BUSY
constexpr auto ERROR_PIPE_BUSY = 231L;
#endif
#ifndef ERROR_NO_DATA
constexpr auto ERROR_NO_DATA = 232L;
#endif
#ifndef ERROR_PIPE_CONNECTED
constexpr auto ERROR_PIPE_CONNECTED = 535L;
#endif

} // namespace Win32
} // namespace Util
#endif // !_WIN32

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::CloseHandle;
using ::CopyFileA;
using ::CreateDirectoryA;
using ::CreateDirectoryExA;
using ::CreateFileA;
using ::CreateNamedPipeA;
using ::DeleteFileA;
using ::FindClose;
using ::FindCloseChangeNotification;
using ::FindFirstChangeNotificationA;
using ::FindFirstFileA;
using ::FindNextChangeNotification;
using ::FindNextFileA;
using ::FlushFileBuffers;
using ::GetDiskFreeSpaceExA;
using ::GetFileAttributesA;
using ::GetFileAttributesExA;
using ::GetFileSizeEx;
using ::MoveFileA;
using ::ReadFile;
using ::RemoveDirectoryA;
using ::SetEndOfFile;
using ::SetFileAttributesA;
using ::SetFilePointerEx;
using ::SHCreateDirectoryExA;
using ::ShellExecuteA;
using ::WaitForSingleObject;
using ::WriteFile;
#else
// Files.
ZTUTIL_API HANDLE CreateFileA(LPCSTR fileName, DWORD desiredAccess, DWORD shareMode,
                              LPSECURITY_ATTRIBUTES securityAttributes, DWORD creationDisposition,
                              DWORD flagsAndAttributes, HANDLE templateFile);
ZTUTIL_API BOOL CloseHandle(HANDLE object);
ZTUTIL_API BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytesToRead, LPDWORD bytesRead,
                         LPOVERLAPPED overlapped);
ZTUTIL_API BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytesToWrite, LPDWORD bytesWritten,
                          LPOVERLAPPED overlapped);
ZTUTIL_API BOOL FlushFileBuffers(HANDLE file);
ZTUTIL_API BOOL GetFileSizeEx(HANDLE file, PLARGE_INTEGER fileSize);
ZTUTIL_API BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distanceToMove,
                                 PLARGE_INTEGER newFilePointer, DWORD moveMethod);
ZTUTIL_API BOOL SetEndOfFile(HANDLE file);
ZTUTIL_API BOOL DeleteFileA(LPCSTR fileName);
ZTUTIL_API BOOL MoveFileA(LPCSTR existingFileName, LPCSTR newFileName);
ZTUTIL_API BOOL CopyFileA(LPCSTR existingFileName, LPCSTR newFileName, BOOL failIfExists);

// Directories.
ZTUTIL_API BOOL CreateDirectoryA(LPCSTR pathName, LPSECURITY_ATTRIBUTES securityAttributes);
ZTUTIL_API BOOL CreateDirectoryExA(LPCSTR templateDirectory, LPCSTR newDirectory,
                                   LPSECURITY_ATTRIBUTES securityAttributes);
ZTUTIL_API BOOL RemoveDirectoryA(LPCSTR pathName);
// Creates the directory and every missing parent. pathName must be absolute (else 161).
// Returns ERROR_SUCCESS or the error (183 when the directory exists, 80 when a file of that
// name exists, 3 when a parent cannot be made, 206 when the name is too long).
ZTUTIL_API int SHCreateDirectoryExA(HWND window, LPCSTR pathName,
                                    const SECURITY_ATTRIBUTES* securityAttributes);

// Attributes and space.
ZTUTIL_API DWORD GetFileAttributesA(LPCSTR fileName);
ZTUTIL_API BOOL SetFileAttributesA(LPCSTR fileName, DWORD fileAttributes);
ZTUTIL_API BOOL GetFileAttributesExA(LPCSTR fileName, GET_FILEEX_INFO_LEVELS infoLevelId,
                                     LPVOID fileInformation);
ZTUTIL_API BOOL GetDiskFreeSpaceExA(LPCSTR directoryName,
                                    PULARGE_INTEGER freeBytesAvailableToCaller,
                                    PULARGE_INTEGER totalNumberOfBytes,
                                    PULARGE_INTEGER totalNumberOfFreeBytes);

// Searching.
ZTUTIL_API HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findFileData);
ZTUTIL_API BOOL FindNextFileA(HANDLE findFile, LPWIN32_FIND_DATAA findFileData);
ZTUTIL_API BOOL FindClose(HANDLE findFile);

// Change notifications.
ZTUTIL_API HANDLE FindFirstChangeNotificationA(LPCSTR pathName, BOOL watchSubtree,
                                               DWORD notifyFilter);
ZTUTIL_API BOOL FindNextChangeNotification(HANDLE changeHandle);
ZTUTIL_API BOOL FindCloseChangeNotification(HANDLE changeHandle);
ZTUTIL_API DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

// Shell.
ZTUTIL_API HINSTANCE ShellExecuteA(HWND window, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                                   LPCSTR directory, INT showCommand);

// Pipes.
ZTUTIL_API HANDLE CreateNamedPipeA(LPCSTR name, DWORD openMode, DWORD pipeMode, DWORD maxInstances,
                                   DWORD outBufferSize, DWORD inBufferSize, DWORD defaultTimeOut,
                                   LPSECURITY_ATTRIBUTES securityAttributes);
#endif

} // namespace Win32
} // namespace Util
