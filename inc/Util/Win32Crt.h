// The Microsoft C-runtime file functions the library calls, as Util::Win32::X on every platform.
//
// On Windows each name is the real function from <io.h>, <stdio.h>, <stdlib.h>, <direct.h> and
// <sys/stat.h>. On POSIX the OS-isolation layer implements them with the documented Windows
// behaviour, on top of the Win32 emulation of Util/Win32File.h (the same read-only rule, the same
// wildcard matching, '\' accepted as a separator):
// - The flags keep their Windows values (_O_*, _SH_*, _S_*, _A_*) and are translated.
// - Failures set errno to the value the Windows CRT documents (ENOENT, EACCES, EEXIST, EINVAL,
//   ERANGE, ENOTEMPTY, EMFILE) and the Win32 last error to the code behind it.
// - The _s forms validate their parameters and return the errno_t value instead of calling an
//   invalid-parameter handler; output buffers are emptied on failure as Windows does.
// - fopen, freopen, remove and rename are given here as well because Windows differs from POSIX:
//   fopen refuses directories and read-only files for writing and accepts Windows mode letters;
//   remove never removes a directory; rename never replaces an existing file.
// - _makepath_s inserts '/' where it adds a separator on POSIX ('\' on Windows); _fullpath
//   resolves "." and ".." textually against the current directory and writes '/' separators.
// - _sopen's share flags are validated but not enforced (POSIX has no mandatory locking);
//   _O_TEXT and _O_BINARY are accepted and make no difference.
// - _mktemp_s keeps Windows' naming: the trailing "XXXXXX" becomes a letter and five digits of
//   the process id; the name is checked to be free but not created.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

#if defined(_WIN32)
#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/types.h>
#else

#include <cerrno>
#include <sys/stat.h>

typedef int errno_t;
typedef std::int32_t __time32_t;
typedef std::int64_t __time64_t;
typedef std::uint32_t _fsize_t;
typedef std::uint32_t _dev_t;
typedef std::uint16_t _ino_t;
typedef std::int32_t _off_t;

struct _finddata32_t {
    unsigned attrib;
    __time32_t time_create;
    __time32_t time_access;
    __time32_t time_write;
    _fsize_t size;
    char name[260];
};

struct _finddata64i32_t {
    unsigned attrib;
    __time64_t time_create;
    __time64_t time_access;
    __time64_t time_write;
    _fsize_t size;
    char name[260];
};

// As on 64-bit Windows: the plain names are the 64-bit-time forms.
#define _finddata_t _finddata64i32_t

// glibc makes st_atime, st_mtime and st_ctime macros for st_atim.tv_sec (and so on); the
// members are declared so that both spellings of the access work.
#if defined(st_atime)
#define ZTUTIL_CRT_TIME_MEMBER(type, name)                                                         \
    struct {                                                                                       \
        type tv_sec;                                                                               \
    } name
#define ZTUTIL_CRT_ATIME st_atim
#define ZTUTIL_CRT_MTIME st_mtim
#define ZTUTIL_CRT_CTIME st_ctim
#else
#define ZTUTIL_CRT_TIME_MEMBER(type, name) type name
#define ZTUTIL_CRT_ATIME st_atime
#define ZTUTIL_CRT_MTIME st_mtime
#define ZTUTIL_CRT_CTIME st_ctime
#endif

struct _stat32 {
    _dev_t st_dev;
    _ino_t st_ino;
    unsigned short st_mode;
    short st_nlink;
    short st_uid;
    short st_gid;
    _dev_t st_rdev;
    _off_t st_size;
    ZTUTIL_CRT_TIME_MEMBER(__time32_t, ZTUTIL_CRT_ATIME);
    ZTUTIL_CRT_TIME_MEMBER(__time32_t, ZTUTIL_CRT_MTIME);
    ZTUTIL_CRT_TIME_MEMBER(__time32_t, ZTUTIL_CRT_CTIME);
};

struct _stat64i32 {
    _dev_t st_dev;
    _ino_t st_ino;
    unsigned short st_mode;
    short st_nlink;
    short st_uid;
    short st_gid;
    _dev_t st_rdev;
    _off_t st_size;
    ZTUTIL_CRT_TIME_MEMBER(__time64_t, ZTUTIL_CRT_ATIME);
    ZTUTIL_CRT_TIME_MEMBER(__time64_t, ZTUTIL_CRT_MTIME);
    ZTUTIL_CRT_TIME_MEMBER(__time64_t, ZTUTIL_CRT_CTIME);
};

// As on 64-bit Windows: struct _stat and _stat() are the 64-bit-time, 32-bit-size forms.
#define _stat _stat64i32
#define _findfirst _findfirst64i32
#define _findnext _findnext64i32

// Open flags (Windows values).
#define _O_RDONLY 0x0000
#define _O_WRONLY 0x0001
#define _O_RDWR 0x0002
#define _O_APPEND 0x0008
#define _O_RANDOM 0x0010
#define _O_SEQUENTIAL 0x0020
#define _O_TEMPORARY 0x0040
#define _O_NOINHERIT 0x0080
#define _O_CREAT 0x0100
#define _O_TRUNC 0x0200
#define _O_EXCL 0x0400
#define _O_SHORT_LIVED 0x1000
#define _O_TEXT 0x4000
#define _O_BINARY 0x8000
#define _O_RAW _O_BINARY
#define _O_WTEXT 0x10000
#define _O_U16TEXT 0x20000
#define _O_U8TEXT 0x40000

// Share flags.
#define _SH_DENYRW 0x10
#define _SH_DENYWR 0x20
#define _SH_DENYRD 0x30
#define _SH_DENYNO 0x40
#define _SH_SECURE 0x80

// Permission and type bits.
#define _S_IFMT 0xF000
#define _S_IFDIR 0x4000
#define _S_IFCHR 0x2000
#define _S_IFIFO 0x1000
#define _S_IFREG 0x8000
#define _S_IREAD 0x0100
#define _S_IWRITE 0x0080
#define _S_IEXEC 0x0040

// Attributes of _finddata_t.
#define _A_NORMAL 0x00
#define _A_RDONLY 0x01
#define _A_HIDDEN 0x02
#define _A_SYSTEM 0x04
#define _A_SUBDIR 0x10
#define _A_ARCH 0x20

// Buffer sizes of the path functions.
#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

#ifndef STRUNCATE
#define STRUNCATE 80
#endif

#endif // !_WIN32

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::_access;
using ::_access_s;
using ::_chdir;
using ::_chmod;
using ::_close;
using ::_creat;
using ::_findclose;
using ::_findfirst64i32;
using ::_findnext64i32;
using ::_fullpath;
using ::_makepath_s;
using ::_mkdir;
using ::_mktemp_s;
using ::_open;
using ::_rmdir;
using ::_sopen;
using ::_sopen_s;
using ::_splitpath_s;
using ::_stat64i32;
using ::_unlink;
using ::fopen;
using ::fopen_s;
using ::freopen;
using ::freopen_s;
using ::remove;
using ::rename;
#if defined(_UCRT)
using ::_findfirst32;
using ::_findnext32;
using ::_stat32;
#else
// The msvcrt.dll of 64-bit Windows has only the 64-bit-time forms; these call them and narrow the
// times (-1 and errno EOVERFLOW for a time past January 2038).
ZTUTIL_API int _stat32(const char* path, struct _stat32* buffer);
ZTUTIL_API std::intptr_t _findfirst32(const char* fileSpec, struct _finddata32_t* fileInfo);
ZTUTIL_API int _findnext32(std::intptr_t handle, struct _finddata32_t* fileInfo);
#endif
#else
// Streams.
ZTUTIL_API FILE* fopen(const char* fileName, const char* mode);
ZTUTIL_API errno_t fopen_s(FILE** file, const char* fileName, const char* mode);
ZTUTIL_API FILE* freopen(const char* fileName, const char* mode, FILE* stream);
ZTUTIL_API errno_t freopen_s(FILE** file, const char* fileName, const char* mode, FILE* stream);

// Low-level I/O. The descriptors are POSIX descriptors; _close closes one.
ZTUTIL_API int _open(const char* fileName, int openFlag, int permissionMode = 0);
ZTUTIL_API int _sopen(const char* fileName, int openFlag, int shareFlag, int permissionMode = 0);
ZTUTIL_API errno_t _sopen_s(int* fileHandle, const char* fileName, int openFlag, int shareFlag,
                            int permissionMode);
ZTUTIL_API int _creat(const char* fileName, int permissionMode);
ZTUTIL_API int _close(int fileHandle);

// Names.
ZTUTIL_API int _stat32(const char* path, struct _stat32* buffer);
ZTUTIL_API int _stat64i32(const char* path, struct _stat64i32* buffer);
ZTUTIL_API int _access(const char* path, int mode);
ZTUTIL_API errno_t _access_s(const char* path, int mode);
ZTUTIL_API int _chmod(const char* fileName, int permissionMode);
ZTUTIL_API int _mkdir(const char* dirName);
ZTUTIL_API int _rmdir(const char* dirName);
ZTUTIL_API int _chdir(const char* dirName);
ZTUTIL_API int _unlink(const char* fileName);
ZTUTIL_API int remove(const char* path);
ZTUTIL_API int rename(const char* oldName, const char* newName);

// Searching: -1 and errno ENOENT when nothing matches (or no more entries), EINVAL for bad
// arguments. The handle closes with _findclose.
ZTUTIL_API std::intptr_t _findfirst32(const char* fileSpec, struct _finddata32_t* fileInfo);
ZTUTIL_API std::intptr_t _findfirst64i32(const char* fileSpec, struct _finddata64i32_t* fileInfo);
ZTUTIL_API int _findnext32(std::intptr_t handle, struct _finddata32_t* fileInfo);
ZTUTIL_API int _findnext64i32(std::intptr_t handle, struct _finddata64i32_t* fileInfo);
ZTUTIL_API int _findclose(std::intptr_t handle);

// Path texts.
// The absolute form of relPath; a null absPath gets a malloc'd buffer (free it with free()).
ZTUTIL_API char* _fullpath(char* absPath, const char* relPath, std::size_t maxLength);
ZTUTIL_API errno_t _makepath_s(char* path, std::size_t sizeInCharacters, const char* drive,
                               const char* dir, const char* fname, const char* ext);
ZTUTIL_API errno_t _splitpath_s(const char* path, char* drive, std::size_t driveNumberOfElements,
                                char* dir, std::size_t dirNumberOfElements, char* fname,
                                std::size_t nameNumberOfElements, char* ext,
                                std::size_t extNumberOfElements);
ZTUTIL_API errno_t _mktemp_s(char* nameTemplate, std::size_t sizeInChars);
#endif

} // namespace Win32
} // namespace Util
