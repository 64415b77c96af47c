// POSIX emulation of the C runtime's _findfirst family, on top of FindFirstFileA.
#include "Util/Win32Crt.h"

#include "OSIsolation/src/win32filecommon_posix.h"

#include <cerrno>
#include <cstring>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

std::int64_t UnixTime(const FILETIME& time) {
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return static_cast<std::int64_t>(ticks / 10000000ULL) - 11644473600LL;
}

template <typename FindData> void Convert(const WIN32_FIND_DATAA& from, FindData& to) {
    std::memset(&to, 0, sizeof to);
    to.attrib = from.dwFileAttributes & (_A_RDONLY | _A_HIDDEN | _A_SYSTEM | _A_SUBDIR | _A_ARCH);
    to.time_create = static_cast<decltype(to.time_create)>(UnixTime(from.ftCreationTime));
    to.time_access = static_cast<decltype(to.time_access)>(UnixTime(from.ftLastAccessTime));
    to.time_write = static_cast<decltype(to.time_write)>(UnixTime(from.ftLastWriteTime));
    to.size = from.nFileSizeLow;
    std::memcpy(to.name, from.cFileName, sizeof to.name);
    to.name[sizeof to.name - 1] = '\0';
}

int SetErrno(int err) {
    errno = err;
    return -1;
}

template <typename FindData> std::intptr_t FindFirst(const char* fileSpec, FindData* fileInfo) {
    if (fileSpec == nullptr || fileInfo == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return SetErrno(EINVAL);
    }
    WIN32_FIND_DATAA data;
    const HANDLE handle = FindFirstFileA(fileSpec, &data);
    if (handle == INVALID_HANDLE_VALUE)
        return SetErrno(ErrnoFromError(GetLastError()));
    Convert(data, *fileInfo);
    return reinterpret_cast<std::intptr_t>(handle);
}

template <typename FindData> int FindNext(std::intptr_t handle, FindData* fileInfo) {
    if (fileInfo == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return SetErrno(EINVAL);
    }
    WIN32_FIND_DATAA data;
    if (!FindNextFileA(reinterpret_cast<HANDLE>(handle), &data))
        return SetErrno(GetLastError() == ERROR_INVALID_HANDLE ? EINVAL : ENOENT);
    Convert(data, *fileInfo);
    return 0;
}

} // namespace

std::intptr_t _findfirst32(const char* fileSpec, struct _finddata32_t* fileInfo) {
    return FindFirst(fileSpec, fileInfo);
}

std::intptr_t _findfirst64i32(const char* fileSpec, struct _finddata64i32_t* fileInfo) {
    return FindFirst(fileSpec, fileInfo);
}

int _findnext32(std::intptr_t handle, struct _finddata32_t* fileInfo) {
    return FindNext(handle, fileInfo);
}

int _findnext64i32(std::intptr_t handle, struct _finddata64i32_t* fileInfo) {
    return FindNext(handle, fileInfo);
}

int _findclose(std::intptr_t handle) {
    if (FindClose(reinterpret_cast<HANDLE>(handle)))
        return 0;
    return SetErrno(ENOENT);
}

} // namespace Win32
} // namespace Util
