#include "OSIsolation/src/win32filecommon_posix.h"

#include <csignal>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace Util {
namespace Platform {

std::string NativePath(const char* name) {
    std::string path(name ? name : "");
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string ParentOf(const std::string& path) {
    std::size_t end = path.size();
    while (end > 1 && path[end - 1] == '/')
        --end;
    const std::size_t slash = path.rfind('/', end - 1);
    if (slash == std::string::npos)
        return ".";
    if (slash == 0)
        return "/";
    return path.substr(0, slash);
}

std::string LastComponent(const std::string& path) {
    std::size_t end = path.size();
    while (end > 1 && path[end - 1] == '/')
        --end;
    const std::size_t slash = path.rfind('/', end - 1);
    const std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(begin, end - begin);
}

DWORD ErrorForPath(int err, const std::string& path) {
    if (err == ENOTDIR)
        return ERROR_PATH_NOT_FOUND;
    if (err == ENOENT) {
        struct stat parent;
        if (path.empty() || ::stat(ParentOf(path).c_str(), &parent) != 0 ||
            !S_ISDIR(parent.st_mode))
            return ERROR_PATH_NOT_FOUND;
        return ERROR_FILE_NOT_FOUND;
    }
    return Win32::ErrorFromErrno(err);
}

BOOL FailWith(DWORD error) {
    Win32::SetLastError(error);
    return FALSE;
}

HANDLE FailHandle(DWORD error) {
    Win32::SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

int ErrnoFromError(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_NO_MORE_FILES:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
        return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_CURRENT_DIRECTORY:
    case ERROR_WRITE_PROTECT:
        return EACCES;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return EEXIST;
    case ERROR_DIR_NOT_EMPTY:
        return ENOTEMPTY;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    case ERROR_INVALID_HANDLE:
        return EBADF;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return ENOMEM;
    case ERROR_DISK_FULL:
        return ENOSPC;
    case ERROR_NOT_SAME_DEVICE:
        return EXDEV;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
        return EPIPE;
    default:
        return EINVAL;
    }
}

bool IsReadOnly(const struct stat& info) {
    return !S_ISDIR(info.st_mode) && (info.st_mode & S_IWUSR) == 0;
}

DWORD AttributesOf(const struct stat& info, const std::string& path) {
    DWORD attributes = 0;
    if (S_ISDIR(info.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else
        attributes |= FILE_ATTRIBUTE_ARCHIVE;
    if (IsReadOnly(info))
        attributes |= FILE_ATTRIBUTE_READONLY;
    const std::string name = LastComponent(path);
    if (name.size() > 1 && name[0] == '.' && name != "..")
        attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes;
}

FILETIME FileTimeOf(const struct timespec& time) {
    // 100-nanosecond intervals since 1601-01-01.
    constexpr std::int64_t epochDifference = 11644473600LL;
    const std::int64_t ticks =
        (static_cast<std::int64_t>(time.tv_sec) + epochDifference) * 10000000LL +
        time.tv_nsec / 100;
    const std::uint64_t value = ticks < 0 ? 0 : static_cast<std::uint64_t>(ticks);
    FILETIME result;
    result.dwLowDateTime = static_cast<DWORD>(value & 0xFFFFFFFFu);
    result.dwHighDateTime = static_cast<DWORD>(value >> 32);
    return result;
}

namespace {

struct HandleTable {
    std::mutex mutex;
    std::unordered_map<std::uintptr_t, std::shared_ptr<HandleObject>> objects;
    // Handle values are never reused, so a stale handle cannot reach a newer object.
    std::uintptr_t next = 0x1000;
};

HandleTable& Handles() {
    static HandleTable* table = new HandleTable; // outlives every static destructor
    return *table;
}

struct ShareEntry {
    std::uint64_t token;
    dev_t device;
    ino_t inode;
    DWORD access;
    DWORD share;
};

struct ShareTable {
    std::mutex mutex;
    std::vector<ShareEntry> entries;
    std::uint64_t next = 1;
};

ShareTable& Shares() {
    static ShareTable* table = new ShareTable;
    return *table;
}

bool Conflicts(DWORD access, DWORD share, const ShareEntry& other) {
    if ((access & ReadRights) && !(other.share & FILE_SHARE_READ))
        return true;
    if ((access & WriteRights) && !(other.share & FILE_SHARE_WRITE))
        return true;
    if ((access & DeleteRights) && !(other.share & FILE_SHARE_DELETE))
        return true;
    if ((other.access & ReadRights) && !(share & FILE_SHARE_READ))
        return true;
    if ((other.access & WriteRights) && !(share & FILE_SHARE_WRITE))
        return true;
    if ((other.access & DeleteRights) && !(share & FILE_SHARE_DELETE))
        return true;
    return false;
}

} // namespace

HANDLE AddHandle(std::shared_ptr<HandleObject> object) {
    HandleTable& table = Handles();
    std::lock_guard<std::mutex> lock(table.mutex);
    const std::uintptr_t value = table.next;
    table.next += 4;
    table.objects.emplace(value, std::move(object));
    return reinterpret_cast<HANDLE>(value);
}

std::shared_ptr<HandleObject> LookUpHandle(HANDLE handle, HandleKind kind) {
    HandleTable& table = Handles();
    {
        std::lock_guard<std::mutex> lock(table.mutex);
        auto found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
        if (found != table.objects.end() && found->second->kind == kind)
            return found->second;
    }
    Win32::SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

std::shared_ptr<HandleObject> TakeHandle(HANDLE handle, HandleKind kind) {
    HandleTable& table = Handles();
    {
        std::lock_guard<std::mutex> lock(table.mutex);
        auto found = table.objects.find(reinterpret_cast<std::uintptr_t>(handle));
        if (found != table.objects.end() && found->second->kind == kind) {
            std::shared_ptr<HandleObject> object = std::move(found->second);
            table.objects.erase(found);
            return object;
        }
    }
    Win32::SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

ShareLock::~ShareLock() {
    Release();
}

bool ShareLock::Acquire(dev_t device, ino_t inode, DWORD access, DWORD share) {
    ShareTable& table = Shares();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const ShareEntry& entry : table.entries)
        if (entry.device == device && entry.inode == inode && Conflicts(access, share, entry))
            return false;
    m_token = table.next++;
    table.entries.push_back(ShareEntry{m_token, device, inode, access, share});
    return true;
}

void ShareLock::Release() {
    if (m_token == 0)
        return;
    ShareTable& table = Shares();
    std::lock_guard<std::mutex> lock(table.mutex);
    table.entries.erase(std::remove_if(table.entries.begin(), table.entries.end(),
                                       [&](const ShareEntry& e) { return e.token == m_token; }),
                        table.entries.end());
    m_token = 0;
}

FileObject::~FileObject() {
    if (fd >= 0)
        ::close(fd);
    if (!deleteOnClose.empty())
        ::unlink(deleteOnClose.c_str());
    if (onClose)
        onClose();
}

long WriteNoSignal(int fd, const void* data, std::size_t size) {
    sigset_t pipeSignal, previous;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    const long written = static_cast<long>(::write(fd, data, size));
    const int err = errno;
    if (written < 0 && err == EPIPE && !sigismember(&previous, SIGPIPE)) {
        const struct timespec zero = {0, 0};
        sigtimedwait(&pipeSignal, nullptr, &zero);
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = err;
    return written;
}

bool DeleteAllowed(const struct stat& info) {
    ShareTable& table = Shares();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const ShareEntry& entry : table.entries)
        if (entry.device == info.st_dev && entry.inode == info.st_ino &&
            !(entry.share & FILE_SHARE_DELETE))
            return false;
    return true;
}

} // namespace Platform
} // namespace Util
