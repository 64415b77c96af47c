// The 32-bit-time C-runtime forms on a runtime that lacks them (msvcrt.dll of 64-bit Windows):
// each calls the 64-bit-time form and narrows the times, failing as the narrow form documents
// when a time does not fit.
#include "Util/Win32Crt.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#if !defined(_UCRT)
namespace Util {
namespace Win32 {
namespace {

bool Fits(__time64_t value) {
    return value >= INT32_MIN && value <= INT32_MAX;
}

// False (errno EOVERFLOW) when a time needs more than 32 bits.
bool Narrow(const struct _finddata64i32_t& wide, struct _finddata32_t& narrow) {
    if (!Fits(wide.time_create) || !Fits(wide.time_access) || !Fits(wide.time_write)) {
        errno = EOVERFLOW;
        return false;
    }
    narrow.attrib = wide.attrib;
    narrow.time_create = static_cast<__time32_t>(wide.time_create);
    narrow.time_access = static_cast<__time32_t>(wide.time_access);
    narrow.time_write = static_cast<__time32_t>(wide.time_write);
    narrow.size = wide.size;
    static_assert(sizeof narrow.name == sizeof wide.name, "both forms keep MAX_PATH names");
    std::memcpy(narrow.name, wide.name, sizeof narrow.name);
    return true;
}

} // namespace

int _stat32(const char* path, struct _stat32* buffer) {
    if (buffer == nullptr)
        return ::_stat64i32(path, nullptr);
    struct _stat64i32 wide;
    if (::_stat64i32(path, &wide) != 0)
        return -1;
    if (!Fits(wide.st_atime) || !Fits(wide.st_mtime) || !Fits(wide.st_ctime)) {
        errno = EOVERFLOW;
        return -1;
    }
    buffer->st_dev = wide.st_dev;
    buffer->st_ino = wide.st_ino;
    buffer->st_mode = wide.st_mode;
    buffer->st_nlink = wide.st_nlink;
    buffer->st_uid = wide.st_uid;
    buffer->st_gid = wide.st_gid;
    buffer->st_rdev = wide.st_rdev;
    buffer->st_size = wide.st_size;
    buffer->st_atime = static_cast<__time32_t>(wide.st_atime);
    buffer->st_mtime = static_cast<__time32_t>(wide.st_mtime);
    buffer->st_ctime = static_cast<__time32_t>(wide.st_ctime);
    return 0;
}

std::intptr_t _findfirst32(const char* fileSpec, struct _finddata32_t* fileInfo) {
    if (fileInfo == nullptr)
        return ::_findfirst64i32(fileSpec, nullptr);
    struct _finddata64i32_t wide;
    const std::intptr_t handle = ::_findfirst64i32(fileSpec, &wide);
    if (handle == -1)
        return -1;
    if (!Narrow(wide, *fileInfo)) {
        const int error = errno;
        ::_findclose(handle);
        errno = error;
        return -1;
    }
    return handle;
}

int _findnext32(std::intptr_t handle, struct _finddata32_t* fileInfo) {
    if (fileInfo == nullptr)
        return ::_findnext64i32(handle, nullptr);
    struct _finddata64i32_t wide;
    if (::_findnext64i32(handle, &wide) != 0)
        return -1;
    return Narrow(wide, *fileInfo) ? 0 : -1;
}

} // namespace Win32
} // namespace Util
#endif
