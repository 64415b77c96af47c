// POSIX emulation of the Win32 directory, attribute and free-space functions.
#include "OSIsolation/src/win32filecommon_posix.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

DWORD MakeDirectory(const std::string& path, mode_t mode) {
    if (::mkdir(path.c_str(), mode) == 0)
        return ERROR_SUCCESS;
    switch (errno) {
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case ENOENT:
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    default:
        return ErrorFromErrno(errno);
    }
}

} // namespace

BOOL CreateDirectoryA(LPCSTR pathName, LPSECURITY_ATTRIBUTES) {
    const std::string path = NativePath(pathName);
    if (path.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    const DWORD error = MakeDirectory(path, 0777);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
}

BOOL CreateDirectoryExA(LPCSTR templateDirectory, LPCSTR newDirectory, LPSECURITY_ATTRIBUTES) {
    const std::string from = NativePath(templateDirectory);
    const std::string path = NativePath(newDirectory);
    if (from.empty() || path.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    struct stat model;
    if (::stat(from.c_str(), &model) != 0)
        return FailWith(ErrorForPath(errno, from));
    if (!S_ISDIR(model.st_mode))
        return FailWith(ERROR_DIRECTORY);
    const DWORD error = MakeDirectory(path, 0777);
    if (error != ERROR_SUCCESS)
        return FailWith(error);
    ::chmod(path.c_str(), model.st_mode & 07777);
    return TRUE;
}

BOOL RemoveDirectoryA(LPCSTR pathName) {
    const std::string path = NativePath(pathName);
    if (path.empty())
        return FailWith(ERROR_PATH_NOT_FOUND);
    struct stat info;
    if (::lstat(path.c_str(), &info) != 0)
        return FailWith(ErrorForPath(errno, path));
    if (!S_ISDIR(info.st_mode))
        return FailWith(ERROR_DIRECTORY);
    // Windows will not remove a process's current directory.
    struct stat current;
    if (::stat(".", &current) == 0 && current.st_dev == info.st_dev &&
        current.st_ino == info.st_ino)
        return FailWith(ERROR_SHARING_VIOLATION);
    if (::rmdir(path.c_str()) == 0)
        return TRUE;
    if (errno == ENOTEMPTY || errno == EEXIST)
        return FailWith(ERROR_DIR_NOT_EMPTY);
    return FailWith(ErrorForPath(errno, path));
}

int SHCreateDirectoryExA(HWND, LPCSTR pathName, const SECURITY_ATTRIBUTES*) {
    const std::string path = NativePath(pathName);
    if (path.empty() || path[0] != '/') {
        SetLastError(ERROR_BAD_PATHNAME);
        return ERROR_BAD_PATHNAME;
    }
    if (path.size() >= MAX_PATH) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return ERROR_FILENAME_EXCED_RANGE;
    }
    struct stat info;
    if (::stat(path.c_str(), &info) == 0) {
        const DWORD error = S_ISDIR(info.st_mode) ? ERROR_ALREADY_EXISTS : ERROR_FILE_EXISTS;
        SetLastError(error);
        return static_cast<int>(error);
    }
    // Make every missing directory from the top down.
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string prefix = path.substr(0, slash);
        if (!prefix.empty() && prefix.back() != '/') {
            const DWORD error = MakeDirectory(prefix, 0777);
            if (error != ERROR_SUCCESS &&
                !(error == ERROR_ALREADY_EXISTS && ::stat(prefix.c_str(), &info) == 0 &&
                  S_ISDIR(info.st_mode))) {
                const DWORD reported = error == ERROR_ALREADY_EXISTS
                                           ? static_cast<DWORD>(ERROR_PATH_NOT_FOUND)
                                           : error;
                SetLastError(reported);
                return static_cast<int>(reported);
            }
        }
        if (slash == std::string::npos)
            break;
    }
    SetLastError(ERROR_SUCCESS);
    return ERROR_SUCCESS;
}

DWORD GetFileAttributesA(LPCSTR fileName) {
    const std::string path = NativePath(fileName);
    if (path.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return INVALID_FILE_ATTRIBUTES;
    }
    struct stat info;
    if (::stat(path.c_str(), &info) != 0) {
        SetLastError(ErrorForPath(errno, path));
        return INVALID_FILE_ATTRIBUTES;
    }
    return AttributesOf(info, path);
}

BOOL SetFileAttributesA(LPCSTR fileName, DWORD fileAttributes) {
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailWith(ERROR_FILE_NOT_FOUND);
    struct stat info;
    if (::stat(path.c_str(), &info) != 0)
        return FailWith(ErrorForPath(errno, path));
    // Directories keep their permissions: on POSIX a directory without write permission would
    // refuse new files, which a read-only directory on Windows does not.
    if (S_ISDIR(info.st_mode))
        return TRUE;
    mode_t mode = info.st_mode & 07777;
    if (fileAttributes & FILE_ATTRIBUTE_READONLY)
        mode &= ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH);
    else if (!(mode & S_IWUSR))
        mode |= S_IWUSR;
    if (mode != (info.st_mode & 07777) && ::chmod(path.c_str(), mode) != 0)
        return FailWith(ErrorForPath(errno, path));
    return TRUE;
}

BOOL GetFileAttributesExA(LPCSTR fileName, GET_FILEEX_INFO_LEVELS infoLevelId,
                          LPVOID fileInformation) {
    if (infoLevelId != GetFileExInfoStandard || fileInformation == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailWith(ERROR_FILE_NOT_FOUND);
    struct stat info;
    if (::stat(path.c_str(), &info) != 0)
        return FailWith(ErrorForPath(errno, path));
    auto* data = static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(fileInformation);
    DescribeFile(*data, info, path);
    return TRUE;
}

BOOL GetDiskFreeSpaceExA(LPCSTR directoryName, PULARGE_INTEGER freeBytesAvailableToCaller,
                         PULARGE_INTEGER totalNumberOfBytes,
                         PULARGE_INTEGER totalNumberOfFreeBytes) {
    const std::string path = directoryName ? NativePath(directoryName) : std::string(".");
    struct statvfs info;
    if (path.empty() || ::statvfs(path.c_str(), &info) != 0)
        return FailWith(path.empty() ? static_cast<DWORD>(ERROR_PATH_NOT_FOUND)
                                     : ErrorForPath(errno, path));
    const ULONGLONG unit = info.f_frsize ? info.f_frsize : info.f_bsize;
    if (freeBytesAvailableToCaller != nullptr)
        freeBytesAvailableToCaller->QuadPart = unit * info.f_bavail;
    if (totalNumberOfBytes != nullptr)
        totalNumberOfBytes->QuadPart = unit * info.f_blocks;
    if (totalNumberOfFreeBytes != nullptr)
        totalNumberOfFreeBytes->QuadPart = unit * info.f_bfree;
    return TRUE;
}

} // namespace Win32
} // namespace Util
