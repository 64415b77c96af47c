// POSIX emulation of the Win32 file functions: opening, reading and writing, deleting, moving
// and copying files.
#include "OSIsolation/src/win32filecommon_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <vector>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

int OpenFlags(DWORD access, LPSECURITY_ATTRIBUTES attributes) {
    int flags = O_CLOEXEC;
    if (attributes != nullptr && attributes->bInheritHandle)
        flags = 0;
    const bool read = (access & ReadRights) != 0;
    const bool write = (access & WriteRights) != 0;
    if (read && write)
        flags |= O_RDWR;
    else if (write)
        flags |= O_WRONLY;
    else
        flags |= O_RDONLY;
    // Append access alone writes every block at the current end of the file.
    if ((access & FILE_APPEND_DATA) && !(access & (FILE_WRITE_DATA | GENERIC_WRITE | GENERIC_ALL)))
        flags |= O_APPEND;
    return flags;
}

// Opens or creates the file as the disposition asks; `existed` tells which happened.
int OpenForDisposition(const std::string& path, int flags, DWORD disposition, mode_t mode,
                       bool& existed) {
    for (int attempt = 0; attempt < 8; ++attempt) {
        if (disposition == OPEN_EXISTING || disposition == TRUNCATE_EXISTING) {
            existed = true;
            return ::open(path.c_str(), flags);
        }
        const int created = ::open(path.c_str(), flags | O_CREAT | O_EXCL, mode);
        if (created >= 0 || errno != EEXIST || disposition == CREATE_NEW) {
            existed = created < 0 && errno == EEXIST;
            return created;
        }
        const int opened = ::open(path.c_str(), flags);
        if (opened >= 0 || errno != ENOENT) {
            existed = true;
            return opened;
        }
        // Removed between the two calls: try again.
    }
    errno = EBUSY;
    return -1;
}

bool CopyContents(int from, int to) {
    std::vector<char> buffer(1 << 16);
    for (;;) {
        const ssize_t got = ::read(from, buffer.data(), buffer.size());
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        if (got == 0)
            return true;
        for (ssize_t done = 0; done < got;) {
            const ssize_t put = ::write(to, buffer.data() + done, static_cast<size_t>(got - done));
            if (put < 0) {
                if (errno == EINTR)
                    continue;
                return false;
            }
            done += put;
        }
    }
}

std::shared_ptr<FileObject> LookUpFile(HANDLE handle) {
    return std::static_pointer_cast<FileObject>(LookUpHandle(handle, HandleKind::File));
}

} // namespace

HANDLE CreateFileA(LPCSTR fileName, DWORD desiredAccess, DWORD shareMode,
                   LPSECURITY_ATTRIBUTES securityAttributes, DWORD creationDisposition,
                   DWORD flagsAndAttributes, HANDLE) {
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailHandle(ERROR_PATH_NOT_FOUND);
    if (creationDisposition < CREATE_NEW || creationDisposition > TRUNCATE_EXISTING)
        return FailHandle(ERROR_INVALID_PARAMETER);
    if (IsPipeName(path))
        return OpenPipeClient(path, desiredAccess);
    if (creationDisposition == TRUNCATE_EXISTING &&
        !(desiredAccess & (GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA)))
        return FailHandle(ERROR_INVALID_PARAMETER);

    struct stat info;
    if (::stat(path.c_str(), &info) == 0) {
        if (S_ISDIR(info.st_mode)) {
            if (creationDisposition == CREATE_NEW)
                return FailHandle(ERROR_FILE_EXISTS);
            if (!(flagsAndAttributes & FILE_FLAG_BACKUP_SEMANTICS) ||
                creationDisposition == CREATE_ALWAYS || creationDisposition == TRUNCATE_EXISTING ||
                (desiredAccess & WriteRights))
                return FailHandle(ERROR_ACCESS_DENIED);
        } else if (creationDisposition == CREATE_NEW) {
            return FailHandle(ERROR_FILE_EXISTS);
        } else if (IsReadOnly(info) && ((desiredAccess & (WriteRights | DeleteRights)) ||
                                        creationDisposition == CREATE_ALWAYS ||
                                        creationDisposition == TRUNCATE_EXISTING)) {
            return FailHandle(ERROR_ACCESS_DENIED);
        }
    } else if (errno != ENOENT || creationDisposition == OPEN_EXISTING ||
               creationDisposition == TRUNCATE_EXISTING) {
        return FailHandle(ErrorForPath(errno, path));
    }

    int flags = OpenFlags(desiredAccess, securityAttributes);
    if (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        flags = (flags & O_CLOEXEC) | O_RDONLY | O_DIRECTORY;
    const mode_t mode = (flagsAndAttributes & FILE_ATTRIBUTE_READONLY) ? 0444 : 0666;
    bool existed = false;
    int fd = OpenForDisposition(path, flags, creationDisposition, mode, existed);
    if (fd < 0 && errno == EACCES && !(desiredAccess & (ReadRights | WriteRights)))
        fd = OpenForDisposition(path, (flags & O_CLOEXEC) | O_PATH, creationDisposition, mode,
                                existed);
    if (fd < 0) {
        if (errno == EEXIST)
            return FailHandle(ERROR_FILE_EXISTS);
        // A missing parent makes open() fail with ENOENT whatever the disposition.
        return FailHandle(errno == ENOENT && existed == false ? ERROR_PATH_NOT_FOUND
                                                              : ErrorForPath(errno, path));
    }

    auto file = std::make_shared<FileObject>();
    file->fd = fd;
    file->access = desiredAccess;
    ::fstat(fd, &info);
    file->isDirectory = S_ISDIR(info.st_mode);
    if (!file->share.Acquire(info.st_dev, info.st_ino, desiredAccess, shareMode)) {
        if (!existed)
            ::unlink(path.c_str());
        return FailHandle(ERROR_SHARING_VIOLATION);
    }
    if (existed && !file->isDirectory &&
        (creationDisposition == CREATE_ALWAYS || creationDisposition == TRUNCATE_EXISTING) &&
        ::ftruncate(fd, 0) != 0)
        return FailHandle(ErrorFromErrno(errno));
    if (flagsAndAttributes & FILE_FLAG_DELETE_ON_CLOSE)
        file->deleteOnClose = path;
    HANDLE handle = AddHandle(file);
    const bool reportExisting =
        existed && (creationDisposition == CREATE_ALWAYS || creationDisposition == OPEN_ALWAYS);
    SetLastError(reportExisting ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

BOOL CloseHandle(HANDLE object) {
    const DWORD previousError = GetLastError();
    if (TakeHandle(object, HandleKind::File) || TakeHandle(object, HandleKind::Change)) {
        SetLastError(previousError);
        return TRUE;
    }
    return FailWith(ERROR_INVALID_HANDLE);
}

BOOL ReadFile(HANDLE handle, LPVOID buffer, DWORD bytesToRead, LPDWORD bytesRead,
              LPOVERLAPPED overlapped) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    if (bytesRead != nullptr)
        *bytesRead = 0;
    if ((bytesRead == nullptr && overlapped == nullptr) || (buffer == nullptr && bytesToRead > 0))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (file->isDirectory)
        return FailWith(ERROR_INVALID_FUNCTION);
    if (!(file->access & ReadRights))
        return FailWith(ERROR_ACCESS_DENIED);
    char* out = static_cast<char*>(buffer);
    off_t offset =
        overlapped ? static_cast<off_t>((static_cast<std::uint64_t>(overlapped->OffsetHigh) << 32) |
                                        overlapped->Offset)
                   : 0;
    DWORD total = 0;
    while (total < bytesToRead) {
        const ssize_t got = overlapped ? ::pread(file->fd, out + total, bytesToRead - total, offset)
                                       : ::read(file->fd, out + total, bytesToRead - total);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return FailWith(ErrorFromErrno(errno));
        }
        if (got == 0)
            break;
        total += static_cast<DWORD>(got);
        offset += got;
        if (file->isPipe)
            break; // a pipe delivers what is there
    }
    if (bytesRead != nullptr)
        *bytesRead = total;
    if (overlapped != nullptr)
        overlapped->InternalHigh = total;
    if (file->isPipe && total == 0 && bytesToRead > 0)
        return FailWith(ERROR_BROKEN_PIPE);
    return TRUE;
}

BOOL WriteFile(HANDLE handle, LPCVOID buffer, DWORD bytesToWrite, LPDWORD bytesWritten,
               LPOVERLAPPED overlapped) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    if (bytesWritten != nullptr)
        *bytesWritten = 0;
    if ((bytesWritten == nullptr && overlapped == nullptr) ||
        (buffer == nullptr && bytesToWrite > 0))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (file->isDirectory || !(file->access & WriteRights))
        return FailWith(ERROR_ACCESS_DENIED);
    const char* in = static_cast<const char*>(buffer);
    off_t offset =
        overlapped ? static_cast<off_t>((static_cast<std::uint64_t>(overlapped->OffsetHigh) << 32) |
                                        overlapped->Offset)
                   : 0;
    DWORD total = 0;
    while (total < bytesToWrite) {
        const long put =
            overlapped
                ? static_cast<long>(::pwrite(file->fd, in + total, bytesToWrite - total, offset))
                : WriteNoSignal(file->fd, in + total, bytesToWrite - total);
        if (put < 0) {
            if (errno == EINTR)
                continue;
            if (bytesWritten != nullptr)
                *bytesWritten = total;
            return FailWith(errno == EPIPE ? static_cast<DWORD>(ERROR_NO_DATA)
                                           : ErrorFromErrno(errno));
        }
        total += static_cast<DWORD>(put);
        offset += put;
    }
    if (bytesWritten != nullptr)
        *bytesWritten = total;
    if (overlapped != nullptr)
        overlapped->InternalHigh = total;
    return TRUE;
}

BOOL FlushFileBuffers(HANDLE handle) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    if (file->isPipe)
        return TRUE;
    if (!(file->access & WriteRights))
        return FailWith(ERROR_ACCESS_DENIED);
    return ::fsync(file->fd) == 0 ? TRUE : FailWith(ErrorFromErrno(errno));
}

BOOL GetFileSizeEx(HANDLE handle, PLARGE_INTEGER fileSize) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    struct stat info;
    if (fileSize == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (::fstat(file->fd, &info) != 0)
        return FailWith(ErrorFromErrno(errno));
    fileSize->QuadPart = static_cast<LONGLONG>(info.st_size);
    return TRUE;
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distanceToMove, PLARGE_INTEGER newFilePointer,
                      DWORD moveMethod) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    if (file->isPipe)
        return FailWith(ERROR_INVALID_FUNCTION);
    int whence = SEEK_SET;
    if (moveMethod == FILE_CURRENT)
        whence = SEEK_CUR;
    else if (moveMethod == FILE_END)
        whence = SEEK_END;
    else if (moveMethod != FILE_BEGIN)
        return FailWith(ERROR_INVALID_PARAMETER);
    const off_t current = ::lseek(file->fd, 0, SEEK_CUR);
    const off_t position = ::lseek(file->fd, static_cast<off_t>(distanceToMove.QuadPart), whence);
    if (position < 0) {
        ::lseek(file->fd, current, SEEK_SET);
        return FailWith(errno == EINVAL ? static_cast<DWORD>(ERROR_NEGATIVE_SEEK)
                                        : ErrorFromErrno(errno));
    }
    if (newFilePointer != nullptr)
        newFilePointer->QuadPart = static_cast<LONGLONG>(position);
    return TRUE;
}

BOOL SetEndOfFile(HANDLE handle) {
    auto file = LookUpFile(handle);
    if (!file)
        return FALSE;
    if (!(file->access & WriteRights))
        return FailWith(ERROR_ACCESS_DENIED);
    const off_t position = ::lseek(file->fd, 0, SEEK_CUR);
    if (position < 0 || ::ftruncate(file->fd, position) != 0)
        return FailWith(ErrorFromErrno(errno));
    return TRUE;
}

BOOL DeleteFileA(LPCSTR fileName) {
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    struct stat info;
    if (::lstat(path.c_str(), &info) != 0)
        return FailWith(ErrorForPath(errno, path));
    if (S_ISDIR(info.st_mode) || IsReadOnly(info))
        return FailWith(ERROR_ACCESS_DENIED);
    if (!DeleteAllowed(info))
        return FailWith(ERROR_SHARING_VIOLATION);
    if (::unlink(path.c_str()) != 0)
        return FailWith(ErrorForPath(errno, path));
    return TRUE;
}

BOOL MoveFileA(LPCSTR existingFileName, LPCSTR newFileName) {
    const std::string from = NativePath(existingFileName);
    const std::string to = NativePath(newFileName);
    if (from.empty() || to.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    struct stat info;
    if (::lstat(from.c_str(), &info) != 0)
        return FailWith(ErrorForPath(errno, from));
    if (!DeleteAllowed(info))
        return FailWith(ERROR_SHARING_VIOLATION);
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return TRUE;
    int err = errno;
    if (err == EINVAL || err == ENOSYS) {
        // The file system cannot refuse to replace: check first.
        struct stat target;
        if (::lstat(to.c_str(), &target) == 0)
            return FailWith(ERROR_ALREADY_EXISTS);
        if (::rename(from.c_str(), to.c_str()) == 0)
            return TRUE;
        err = errno;
    }
    if (err == EEXIST || err == ENOTEMPTY)
        return FailWith(ERROR_ALREADY_EXISTS);
    if (err == EXDEV) {
        // Files move across file systems as a copy; directories do not.
        if (S_ISDIR(info.st_mode))
            return FailWith(ERROR_NOT_SAME_DEVICE);
        if (!CopyFileA(existingFileName, newFileName, TRUE))
            return FALSE;
        if (::unlink(from.c_str()) != 0) {
            const DWORD error = ErrorFromErrno(errno);
            ::unlink(to.c_str());
            return FailWith(error);
        }
        return TRUE;
    }
    return FailWith(ErrorForPath(err, to));
}

BOOL CopyFileA(LPCSTR existingFileName, LPCSTR newFileName, BOOL failIfExists) {
    const std::string from = NativePath(existingFileName);
    const std::string to = NativePath(newFileName);
    if (from.empty() || to.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    struct stat source;
    if (::stat(from.c_str(), &source) != 0)
        return FailWith(ErrorForPath(errno, from));
    if (S_ISDIR(source.st_mode))
        return FailWith(ERROR_ACCESS_DENIED);

    ShareLock targetLock;
    struct stat target;
    if (::stat(to.c_str(), &target) == 0) {
        if (failIfExists)
            return FailWith(ERROR_FILE_EXISTS);
        if (S_ISDIR(target.st_mode) || IsReadOnly(target))
            return FailWith(ERROR_ACCESS_DENIED);
        if (target.st_dev == source.st_dev && target.st_ino == source.st_ino)
            return FailWith(ERROR_SHARING_VIOLATION);
        if (!targetLock.Acquire(target.st_dev, target.st_ino, GENERIC_WRITE, 0))
            return FailWith(ERROR_SHARING_VIOLATION);
    } else if (errno != ENOENT) {
        return FailWith(ErrorForPath(errno, to));
    }

    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0)
        return FailWith(ErrorForPath(errno, from));
    ShareLock sourceLock;
    if (!sourceLock.Acquire(source.st_dev, source.st_ino, GENERIC_READ,
                            FILE_SHARE_READ | FILE_SHARE_DELETE)) {
        ::close(in);
        return FailWith(ERROR_SHARING_VIOLATION);
    }

    // Written beside the target and renamed over it, so that a failed copy leaves the old
    // target as it was.
    std::string temporary = to + ".ztcopy-XXXXXX";
    const int out = ::mkstemp(&temporary[0]);
    if (out < 0) {
        const int err = errno;
        ::close(in);
        return FailWith(err == ENOENT ? static_cast<DWORD>(ERROR_PATH_NOT_FOUND)
                                      : ErrorForPath(err, to));
    }
    bool copied = CopyContents(in, out);
    int err = errno;
    ::close(in);
    if (copied) {
        const struct timespec times[2] = {source.st_atim, source.st_mtim};
        ::futimens(out, times);
        copied = ::fchmod(out, source.st_mode & 07777) == 0;
        err = errno;
    }
    if (::close(out) != 0 && copied) {
        copied = false;
        err = errno;
    }
    if (copied) {
        const int renamed = failIfExists ? ::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD,
                                                       to.c_str(), RENAME_NOREPLACE)
                                         : ::rename(temporary.c_str(), to.c_str());
        if (renamed == 0)
            return TRUE;
        err = errno;
        if (failIfExists && (err == EINVAL || err == ENOSYS)) {
            if (::link(temporary.c_str(), to.c_str()) == 0) {
                ::unlink(temporary.c_str());
                return TRUE;
            }
            err = errno;
        }
    }
    ::unlink(temporary.c_str());
    return FailWith(err == EEXIST ? static_cast<DWORD>(ERROR_FILE_EXISTS) : ErrorFromErrno(err));
}

} // namespace Win32
} // namespace Util
