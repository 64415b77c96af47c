// POSIX emulation of the Microsoft C runtime's stream, low-level I/O and name functions.
#include "Util/Win32Crt.h"

#include "OSIsolation/src/win32filecommon_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

// Fails a C-runtime call: errno, and the Win32 error behind it.
int FailErrno(int err, DWORD win32Error) {
    SetLastError(win32Error);
    errno = err;
    return -1;
}

int FailFromPath(int posixError, const std::string& path) {
    const DWORD error = ErrorForPath(posixError, path);
    return FailErrno(ErrnoFromError(error), error);
}

// Windows' fopen mode, checked and rewritten for glibc. False for a mode Windows rejects.
struct StreamMode {
    char native[5] = {}; // the access letter, '+', 'x', then 'e' (close on exec)
    bool writes = false;
    bool truncates = false;
    bool deleteOnClose = false;
};

bool ParseMode(const char* mode, StreamMode& parsed) {
    if (mode == nullptr || (mode[0] != 'r' && mode[0] != 'w' && mode[0] != 'a'))
        return false;
    parsed.writes = mode[0] != 'r';
    parsed.truncates = mode[0] == 'w';
    bool plus = false, exclusive = false, text = false, binary = false;
    for (const char* c = mode + 1; *c && *c != ','; ++c) {
        switch (*c) {
        case '+':
            if (plus)
                return false;
            plus = true;
            break;
        case 'b':
        case 't':
            if (text || binary)
                return false;
            (*c == 'b' ? binary : text) = true;
            break;
        case 'x':
            if (mode[0] != 'w' || exclusive)
                return false;
            exclusive = true;
            break;
        case 'D':
            parsed.deleteOnClose = true;
            break;
        case 'c':
        case 'n':
        case 'N':
        case 'S':
        case 'R':
        case 'T':
        case ' ':
            break;
        default:
            return false;
        }
    }
    char* out = parsed.native;
    *out++ = mode[0];
    if (plus) {
        *out++ = '+';
        parsed.writes = true;
    }
    if (exclusive)
        *out++ = 'x';
    *out = 'e';
    return true;
}

// What Windows refuses to open as a stream: a directory, or a read-only file for writing.
bool Refused(const struct stat& info, bool writes) {
    return S_ISDIR(info.st_mode) || (writes && IsReadOnly(info));
}

// The name as glibc wants it; copied only when it has '\' separators.
const char* NativeName(const char* name, std::string& storage) {
    if (std::strchr(name, '\\') == nullptr)
        return name;
    storage = NativePath(name);
    return storage.c_str();
}

// A truncating mode is checked by name before the open, since opening would already destroy the
// read-only file. Every other mode is checked on the open stream: no second lookup of the name,
// and the file checked is the file opened.
FILE* OpenStream(const char* fileName, const char* mode, FILE* reopen, bool isReopen) {
    StreamMode parsed;
    if (fileName == nullptr || fileName[0] == '\0' || !ParseMode(mode, parsed) ||
        (isReopen && reopen == nullptr)) {
        FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::string storage;
    const char* path = NativeName(fileName, storage);
    struct stat info;
    if (parsed.truncates && ::stat(path, &info) == 0 && Refused(info, true)) {
        if (isReopen)
            std::fclose(reopen);
        FailErrno(EACCES, ERROR_ACCESS_DENIED);
        return nullptr;
    }
    FILE* stream =
        isReopen ? std::freopen(path, parsed.native, reopen) : std::fopen(path, parsed.native);
    if (stream == nullptr) {
        if (errno == EEXIST)
            FailErrno(EEXIST, ERROR_FILE_EXISTS);
        else if (errno == EISDIR)
            FailErrno(EACCES, ERROR_ACCESS_DENIED);
        else
            FailFromPath(errno, path);
        return nullptr;
    }
    if (!parsed.truncates && ::fstat(::fileno(stream), &info) == 0 &&
        Refused(info, parsed.writes)) {
        std::fclose(stream);
        FailErrno(EACCES, ERROR_ACCESS_DENIED);
        return nullptr;
    }
    if (parsed.deleteOnClose)
        ::unlink(path);
    return stream;
}

int NativeOpenFlags(int openFlag) {
    int flags = O_CLOEXEC;
    if (!(openFlag & _O_NOINHERIT))
        flags = 0;
    switch (openFlag & (_O_WRONLY | _O_RDWR)) {
    case _O_WRONLY:
        flags |= O_WRONLY;
        break;
    case _O_RDWR:
        flags |= O_RDWR;
        break;
    default:
        flags |= O_RDONLY;
        break;
    }
    if (openFlag & _O_APPEND)
        flags |= O_APPEND;
    if (openFlag & _O_CREAT)
        flags |= O_CREAT;
    if (openFlag & _O_TRUNC)
        flags |= O_TRUNC;
    if (openFlag & _O_EXCL)
        flags |= O_EXCL;
    return flags;
}

bool ValidShareFlag(int shareFlag) {
    switch (shareFlag & ~_SH_SECURE) {
    case _SH_DENYRW:
    case _SH_DENYWR:
    case _SH_DENYRD:
    case _SH_DENYNO:
        return true;
    default:
        return false;
    }
}

// st_mode as Windows reports it: the owner's bits copied to group and others.
unsigned short WindowsMode(const struct stat& info) {
    unsigned short mode = S_ISDIR(info.st_mode) ? (_S_IFDIR | _S_IEXEC) : _S_IFREG;
    if (S_ISFIFO(info.st_mode))
        mode = _S_IFIFO;
    else if (S_ISCHR(info.st_mode))
        mode = _S_IFCHR;
    mode |= _S_IREAD;
    if (!IsReadOnly(info))
        mode |= _S_IWRITE;
    if (S_ISREG(info.st_mode) && (info.st_mode & S_IXUSR))
        mode |= _S_IEXEC;
    const unsigned short owner = mode & 0700;
    return static_cast<unsigned short>(mode | (owner >> 3) | (owner >> 6));
}

template <typename Stat> int FillStat(const char* path, Stat* buffer) {
    if (path == nullptr || buffer == nullptr || path[0] == '\0')
        return FailErrno(path && buffer ? ENOENT : EINVAL,
                         path && buffer ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_PARAMETER);
    const std::string native = NativePath(path);
    struct stat info;
    if (::stat(native.c_str(), &info) != 0)
        return FailFromPath(errno, native);
    if (!S_ISDIR(info.st_mode) && info.st_size > INT32_MAX)
        return FailErrno(EOVERFLOW, ERROR_INVALID_PARAMETER);
    std::memset(buffer, 0, sizeof *buffer);
    buffer->st_mode = WindowsMode(info);
    buffer->st_nlink = 1;
    buffer->st_size = S_ISDIR(info.st_mode) ? 0 : static_cast<_off_t>(info.st_size);
    buffer->st_atime = static_cast<decltype(buffer->st_atime)>(info.st_atim.tv_sec);
    buffer->st_mtime = static_cast<decltype(buffer->st_mtime)>(info.st_mtim.tv_sec);
    buffer->st_ctime = static_cast<decltype(buffer->st_ctime)>(info.st_ctim.tv_sec);
    return 0;
}

errno_t AccessError(const char* path, int mode) {
    if (path == nullptr || (mode & ~6) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return EINVAL;
    }
    const std::string native = NativePath(path);
    struct stat info;
    if (native.empty() || ::stat(native.c_str(), &info) != 0) {
        const DWORD error =
            native.empty() ? static_cast<DWORD>(ERROR_FILE_NOT_FOUND) : ErrorForPath(errno, native);
        SetLastError(error);
        return ErrnoFromError(error);
    }
    if ((mode & 2) && IsReadOnly(info)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return EACCES;
    }
    return 0;
}

// Runs a Win32 emulation call and turns its failure into errno.
int FromWin32(BOOL ok) {
    if (ok)
        return 0;
    errno = ErrnoFromError(GetLastError());
    return -1;
}

} // namespace

FILE* fopen(const char* fileName, const char* mode) {
    return OpenStream(fileName, mode, nullptr, false);
}

errno_t fopen_s(FILE** file, const char* fileName, const char* mode) {
    if (file == nullptr) {
        FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
        return EINVAL;
    }
    *file = OpenStream(fileName, mode, nullptr, false);
    return *file ? 0 : errno;
}

FILE* freopen(const char* fileName, const char* mode, FILE* stream) {
    return OpenStream(fileName, mode, stream, true);
}

errno_t freopen_s(FILE** file, const char* fileName, const char* mode, FILE* stream) {
    if (file == nullptr) {
        FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
        return EINVAL;
    }
    *file = OpenStream(fileName, mode, stream, true);
    return *file ? 0 : errno;
}

int _sopen(const char* fileName, int openFlag, int shareFlag, int permissionMode) {
    if (fileName == nullptr || !ValidShareFlag(shareFlag) ||
        (openFlag & (_O_WRONLY | _O_RDWR)) == (_O_WRONLY | _O_RDWR) ||
        ((openFlag & _O_TRUNC) && !(openFlag & (_O_WRONLY | _O_RDWR))))
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailErrno(ENOENT, ERROR_PATH_NOT_FOUND);
    const bool writes = (openFlag & (_O_WRONLY | _O_RDWR | _O_TRUNC)) != 0;
    struct stat info;
    if (::stat(path.c_str(), &info) == 0) {
        if ((openFlag & _O_CREAT) && (openFlag & _O_EXCL))
            return FailErrno(EEXIST, ERROR_FILE_EXISTS);
        if (S_ISDIR(info.st_mode) || (writes && IsReadOnly(info)))
            return FailErrno(EACCES, ERROR_ACCESS_DENIED);
    }
    const mode_t mode = (permissionMode & _S_IWRITE) ? 0666 : 0444;
    const int fd = ::open(path.c_str(), NativeOpenFlags(openFlag), mode);
    if (fd < 0) {
        if (errno == EEXIST)
            return FailErrno(EEXIST, ERROR_FILE_EXISTS);
        if (errno == EISDIR)
            return FailErrno(EACCES, ERROR_ACCESS_DENIED);
        return FailFromPath(errno, path);
    }
    if (openFlag & _O_TEMPORARY)
        ::unlink(path.c_str());
    return fd;
}

int _open(const char* fileName, int openFlag, int permissionMode) {
    return _sopen(fileName, openFlag, _SH_DENYNO, permissionMode);
}

errno_t _sopen_s(int* fileHandle, const char* fileName, int openFlag, int shareFlag,
                 int permissionMode) {
    if (fileHandle == nullptr) {
        FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
        return EINVAL;
    }
    *fileHandle = _sopen(fileName, openFlag, shareFlag, permissionMode);
    return *fileHandle >= 0 ? 0 : errno;
}

int _creat(const char* fileName, int permissionMode) {
    return _sopen(fileName, _O_CREAT | _O_TRUNC | _O_RDWR, _SH_DENYNO, permissionMode);
}

int _close(int fileHandle) {
    if (::close(fileHandle) == 0)
        return 0;
    return FailErrno(EBADF, ERROR_INVALID_HANDLE);
}

int _stat32(const char* path, struct _stat32* buffer) {
    return FillStat(path, buffer);
}

int _stat64i32(const char* path, struct _stat64i32* buffer) {
    return FillStat(path, buffer);
}

int _access(const char* path, int mode) {
    const errno_t error = AccessError(path, mode);
    if (error == 0)
        return 0;
    errno = error;
    return -1;
}

errno_t _access_s(const char* path, int mode) {
    const errno_t error = AccessError(path, mode);
    if (error != 0)
        errno = error;
    return error;
}

int _chmod(const char* fileName, int permissionMode) {
    if (fileName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    const DWORD attributes = GetFileAttributesA(fileName);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return FromWin32(FALSE);
    const DWORD wanted = (permissionMode & _S_IWRITE) ? (attributes & ~FILE_ATTRIBUTE_READONLY)
                                                      : (attributes | FILE_ATTRIBUTE_READONLY);
    return FromWin32(SetFileAttributesA(fileName, wanted));
}

int _mkdir(const char* dirName) {
    if (dirName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    return FromWin32(CreateDirectoryA(dirName, nullptr));
}

int _rmdir(const char* dirName) {
    if (dirName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    if (RemoveDirectoryA(dirName))
        return 0;
    switch (GetLastError()) {
    case ERROR_DIR_NOT_EMPTY:
    case ERROR_DIRECTORY:
    case ERROR_SHARING_VIOLATION:
        errno = ENOTEMPTY;
        break;
    default:
        errno = ErrnoFromError(GetLastError());
        break;
    }
    return -1;
}

int _chdir(const char* dirName) {
    if (dirName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    const std::string path = NativePath(dirName);
    if (path.empty())
        return FailErrno(ENOENT, ERROR_PATH_NOT_FOUND);
    if (::chdir(path.c_str()) != 0)
        return FailFromPath(errno, path);
    return 0;
}

int _unlink(const char* fileName) {
    if (fileName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    return FromWin32(DeleteFileA(fileName));
}

int remove(const char* path) {
    return _unlink(path);
}

int rename(const char* oldName, const char* newName) {
    if (oldName == nullptr || newName == nullptr)
        return FailErrno(EINVAL, ERROR_INVALID_PARAMETER);
    if (MoveFileA(oldName, newName))
        return 0;
    const DWORD error = GetLastError();
    struct stat info;
    if (error == ERROR_FILE_NOT_FOUND ||
        (error == ERROR_PATH_NOT_FOUND && ::lstat(NativePath(oldName).c_str(), &info) != 0))
        errno = ENOENT;
    else if (error == ERROR_NOT_SAME_DEVICE)
        errno = EXDEV;
    else if (error == ERROR_INVALID_PARAMETER)
        errno = EINVAL;
    else
        errno = EACCES;
    return -1;
}

} // namespace Win32
} // namespace Util
