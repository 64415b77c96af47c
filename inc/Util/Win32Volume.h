// The Win32 volume, path-name and network functions that the file-path utilities call, reached
// as Util::Win32::X on every platform, with their Win32 shapes and error codes.
//
// On Windows, GetVolumeInformationA, GetShortPathNameA and GetLongPathNameA are the system's;
// GetFinalPathNameByHandleA (kernel32, Vista and later), NetShareGetInfo and NetApiBufferFree
// (netapi32) and WNetGetUniversalNameA (mpr) are looked up by name when called, and fail with
// the system's error 127 (procedure not found) or 126 (module not found) where missing.
//
// On POSIX they answer from what the system has in their place:
// - GetVolumeInformationA takes any existing path (a drive root "C:\" does not exist here) and
//   describes the mount that holds it: the file-system name is "NTFS" for ntfs/ntfs3, "FAT32"
//   or "FAT" for vfat/msdos (by cluster count), the Linux type name otherwise ("ext4",
//   "tmpfs", ...); the serial number folds the file-system id, the volume name is empty. A UNC
//   root "\\server\share\" names the CIFS/SMB mount of that share (53 when there is none).
// - NetShareGetInfo (level 502 only, else 124) reads Samba's configuration: the share is the
//   section of that name (case-blind) and its path the "path" (or "directory") value, blanks
//   trimmed as Samba does. The server must be this machine (null, empty, its host name with or
//   without "\\", "localhost" or a loopback address; else 53). A missing share gives 2310, an
//   unreadable configuration 5 and a missing one 2114 (server not started). The record is one
//   block that NetApiBufferFree releases. Wide text is wchar_t, converted from UTF-8.
// - WNetGetUniversalNameA (levels 1 and 2) maps a path on a CIFS/SMB mount listed in
//   /proc/self/mountinfo to "\\server\share\rest" (//server/share mounted at /mnt/x makes
//   /mnt/x/a/b \\server\share\a\b); a path on no such mount gives 2250 (not connected), a
//   buffer too small 234 with the size needed.
// - POSIX has no 8.3 or long/short aliases. GetShortPathNameA and GetLongPathNameA give an
//   existing file's canonical absolute path (symbolic links, "." and ".." resolved); a missing
//   file gives 2, a missing directory on the way 3. GetFinalPathNameByHandleA gives the
//   canonical path of the file a CreateFileA handle holds open (the flags are ignored). Buffer
//   sizes follow Win32: on success the length without the NUL, when too small the size needed
//   with the NUL.
// - MultiByteToWideChar and WideCharToMultiByte convert between UTF-8 (the ANSI code page
//   here) and wchar_t text, with the Win32 conventions for lengths (-1: up to and with the NUL;
//   an output size of 0 asks for the size needed; too small gives 0 and error 122).
// SetNetworkTables points the POSIX side at other copies of smb.conf and mountinfo (tests and
// tools); null restores the system's (/etc/samba/smb.conf, /proc/self/mountinfo). It does
// nothing on Windows.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#if defined(_WIN32)
#include <lm.h>
#include <winnetwk.h>
#else
namespace Util {
namespace Win32 {

typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef BYTE* LPBYTE;
typedef DWORD NET_API_STATUS;

struct SHARE_INFO_502 {
    LPWSTR shi502_netname;
    DWORD shi502_type;
    LPWSTR shi502_remark;
    DWORD shi502_permissions;
    DWORD shi502_max_uses;
    DWORD shi502_current_uses;
    LPWSTR shi502_path;
    LPWSTR shi502_passwd;
    DWORD shi502_reserved;
    void* shi502_security_descriptor;
};
typedef SHARE_INFO_502* LPSHARE_INFO_502;

struct UNIVERSAL_NAME_INFOA {
    LPSTR lpUniversalName;
};
struct REMOTE_NAME_INFOA {
    LPSTR lpUniversalName;
    LPSTR lpConnectionName;
    LPSTR lpRemainingPath;
};

#ifndef UNIVERSAL_NAME_INFO_LEVEL
constexpr auto UNIVERSAL_NAME_INFO_LEVEL = 0x00000001;
#endif
#ifndef REMOTE_NAME_INFO_LEVEL
constexpr auto REMOTE_NAME_INFO_LEVEL = 0x00000002;
#endif
#ifndef STYPE_DISKTREE
constexpr auto STYPE_DISKTREE = 0;
#endif
#ifndef STYPE_PRINTQ
constexpr auto STYPE_PRINTQ = 1;
#endif
#ifndef NERR_Success
constexpr auto NERR_Success = 0;
#endif
#ifndef NERR_ServerNotStarted
constexpr auto NERR_ServerNotStarted = 2114;
#endif
#ifndef NERR_NetNameNotFound
constexpr auto NERR_NetNameNotFound = 2310;
#endif
#ifndef ERROR_INVALID_LEVEL
constexpr auto ERROR_INVALID_LEVEL = 124L;
#endif
#ifndef ERROR_BAD_DEVICE
constexpr auto ERROR_BAD_DEVICE = 1200L;
#endif
#ifndef ERROR_NOT_CONNECTED
constexpr auto ERROR_NOT_CONNECTED = 2250L;
#endif
#ifndef FILE_CASE_SENSITIVE_SEARCH
constexpr auto FILE_CASE_SENSITIVE_SEARCH = 0x00000001;
#endif
#ifndef FILE_CASE_PRESERVED_NAMES
constexpr auto FILE_CASE_PRESERVED_NAMES = 0x00000002;
#endif
#ifndef FILE_READ_ONLY_VOLUME
constexpr auto FILE_READ_ONLY_VOLUME = 0x00080000;
#endif
#ifndef FILE_NAME_NORMALIZED
constexpr auto FILE_NAME_NORMALIZED = 0x0;
#endif
#ifndef VOLUME_NAME_DOS
constexpr auto VOLUME_NAME_DOS = 0x0;
#endif
#ifndef CP_ACP
constexpr auto CP_ACP = 0;
#endif
#ifndef CP_UTF8
constexpr auto CP_UTF8 = 65001;
#endif

} // namespace Win32
} // namespace Util
#endif

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::GetLongPathNameA;
using ::GetShortPathNameA;
using ::GetVolumeInformationA;
using ::MultiByteToWideChar;
using ::WideCharToMultiByte;
#else
// The ANSI code page is UTF-8 here; wide text is wchar_t (UTF-32). Malformed input becomes
// U+FFFD (or the default character). The flags are ignored.
ZTUTIL_API int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR wide,
                                   int wideLength);
ZTUTIL_API int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int length, LPSTR text,
                                   int textLength, LPCSTR defaultChar, BOOL* usedDefault);
ZTUTIL_API BOOL GetVolumeInformationA(LPCSTR rootPathName, LPSTR volumeNameBuffer,
                                      DWORD volumeNameSize, LPDWORD volumeSerialNumber,
                                      LPDWORD maximumComponentLength, LPDWORD fileSystemFlags,
                                      LPSTR fileSystemNameBuffer, DWORD fileSystemNameSize);
ZTUTIL_API DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD bufferLength);
ZTUTIL_API DWORD GetLongPathNameA(LPCSTR shortPath, LPSTR longPath, DWORD bufferLength);
#endif
ZTUTIL_API DWORD GetFinalPathNameByHandleA(HANDLE file, LPSTR filePath, DWORD bufferLength,
                                           DWORD flags);
ZTUTIL_API NET_API_STATUS NetShareGetInfo(LPWSTR serverName, LPWSTR netName, DWORD level,
                                          LPBYTE* buffer);
ZTUTIL_API NET_API_STATUS NetApiBufferFree(LPVOID buffer);
ZTUTIL_API DWORD WNetGetUniversalNameA(LPCSTR localPath, DWORD infoLevel, LPVOID buffer,
                                       LPDWORD bufferSize);

ZTUTIL_API void SetNetworkTables(const char* sambaConfiguration, const char* mountTable);

} // namespace Win32
} // namespace Util
