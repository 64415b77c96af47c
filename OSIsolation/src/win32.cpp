// Platform-independent parts of the Win32 layer.
#include "Util/Win32.h"

#include <cerrno>

namespace Util {
namespace Win32 {

DWORD ErrorFromErrno(int err) {
    switch (err) {
    case 0:
        return ERROR_SUCCESS;
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
        return ERROR_ACCESS_DENIED;
    case EEXIST:
        return ERROR_ALREADY_EXISTS;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    case ENOSPC:
        return ERROR_DISK_FULL;
    case EINVAL:
        return ERROR_INVALID_PARAMETER;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case ENOTEMPTY:
        return ERROR_DIR_NOT_EMPTY;
    case EBUSY:
        return ERROR_BUSY;
    case EISDIR:
        return ERROR_DIRECTORY;
    case EPIPE:
        return ERROR_BROKEN_PIPE;
    case ENOTSUP:
        return ERROR_NOT_SUPPORTED;
    default:
        return ERROR_INVALID_FUNCTION;
    }
}

} // namespace Win32
} // namespace Util
