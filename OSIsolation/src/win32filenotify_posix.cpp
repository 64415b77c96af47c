// POSIX emulation of the Win32 change notifications on inotify. A handle is signalled by the
// first change that its filter selects and stays signalled until FindNextChangeNotification;
// WaitForSingleObject reads the queued events and waits on the inotify descriptor.
#include "OSIsolation/src/win32filecommon_posix.h"

#include <dirent.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <map>
#include <mutex>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

constexpr DWORD AllFilters = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                             FILE_NOTIFY_CHANGE_ATTRIBUTES | FILE_NOTIFY_CHANGE_SIZE |
                             FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_LAST_ACCESS |
                             FILE_NOTIFY_CHANGE_CREATION | FILE_NOTIFY_CHANGE_SECURITY;
constexpr std::uint32_t NameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;

struct ChangeObject : HandleObject {
    ChangeObject() : HandleObject(HandleKind::Change) {}
    ~ChangeObject() override {
        if (fd >= 0)
            ::close(fd);
    }
    std::mutex mutex;
    int fd = -1;
    DWORD filter = 0;
    bool subtree = false;
    std::uint32_t mask = 0;
    bool signalled = false;
    std::map<int, std::string> watches;
};

std::uint32_t KernelMask(DWORD filter, bool subtree) {
    std::uint32_t mask = 0;
    if (filter & (FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME))
        mask |= NameEvents;
    if (filter & (FILE_NOTIFY_CHANGE_ATTRIBUTES | FILE_NOTIFY_CHANGE_SECURITY))
        mask |= IN_ATTRIB;
    if (filter & (FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE))
        mask |= IN_MODIFY | IN_CLOSE_WRITE;
    if (filter & FILE_NOTIFY_CHANGE_LAST_ACCESS)
        mask |= IN_ACCESS;
    if (filter & FILE_NOTIFY_CHANGE_CREATION)
        mask |= IN_CREATE;
    if (subtree)
        mask |= IN_CREATE | IN_MOVED_TO; // to follow new directories
    return mask;
}

bool Selected(DWORD filter, std::uint32_t event) {
    if (event & IN_Q_OVERFLOW)
        return true;
    const bool isDirectory = (event & IN_ISDIR) != 0;
    if ((event & NameEvents) &&
        (filter & (isDirectory ? FILE_NOTIFY_CHANGE_DIR_NAME : FILE_NOTIFY_CHANGE_FILE_NAME)))
        return true;
    if ((event & IN_CREATE) && (filter & FILE_NOTIFY_CHANGE_CREATION))
        return true;
    if ((event & IN_ATTRIB) &&
        (filter & (FILE_NOTIFY_CHANGE_ATTRIBUTES | FILE_NOTIFY_CHANGE_SECURITY)))
        return true;
    if ((event & (IN_MODIFY | IN_CLOSE_WRITE)) &&
        (filter & (FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE)))
        return true;
    return (event & IN_ACCESS) && (filter & FILE_NOTIFY_CHANGE_LAST_ACCESS);
}

// Watches a directory and, for a subtree watch, every directory below it.
void AddWatches(ChangeObject& change, const std::string& directory, int depth) {
    const int watch = ::inotify_add_watch(change.fd, directory.c_str(), change.mask | IN_ONLYDIR);
    if (watch < 0)
        return;
    change.watches[watch] = directory;
    if (!change.subtree || depth > 64)
        return;
    DIR* listing = ::opendir(directory.c_str());
    if (listing == nullptr)
        return;
    while (const struct dirent* entry = ::readdir(listing)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string path = directory + "/" + name;
        struct stat info;
        if (::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
            AddWatches(change, path, depth + 1);
    }
    ::closedir(listing);
}

// Reads what is queued; called with the object's mutex held.
void Drain(ChangeObject& change) {
    alignas(struct inotify_event) char buffer[16384];
    for (;;) {
        const ssize_t got = ::read(change.fd, buffer, sizeof buffer);
        if (got <= 0)
            return;
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const struct inotify_event*>(buffer + at);
            at += static_cast<ssize_t>(sizeof(struct inotify_event) + event->len);
            if (event->mask & IN_IGNORED) {
                change.watches.erase(event->wd);
                continue;
            }
            if (change.subtree && (event->mask & (IN_CREATE | IN_MOVED_TO)) &&
                (event->mask & IN_ISDIR) && event->len > 0) {
                auto parent = change.watches.find(event->wd);
                if (parent != change.watches.end())
                    AddWatches(change, parent->second + "/" + event->name, 1);
            }
            if (Selected(change.filter, event->mask))
                change.signalled = true;
        }
    }
}

std::shared_ptr<ChangeObject> LookUpChange(HANDLE handle) {
    return std::static_pointer_cast<ChangeObject>(LookUpHandle(handle, HandleKind::Change));
}

} // namespace

HANDLE FindFirstChangeNotificationA(LPCSTR pathName, BOOL watchSubtree, DWORD notifyFilter) {
    if (notifyFilter == 0 || (notifyFilter & ~AllFilters))
        return FailHandle(ERROR_INVALID_PARAMETER);
    const std::string path = NativePath(pathName);
    if (path.empty())
        return FailHandle(ERROR_PATH_NOT_FOUND);
    struct stat info;
    if (::stat(path.c_str(), &info) != 0)
        return FailHandle(ErrorForPath(errno, path));
    if (!S_ISDIR(info.st_mode))
        return FailHandle(ERROR_DIRECTORY);
    auto change = std::make_shared<ChangeObject>();
    change->fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (change->fd < 0)
        return FailHandle(ErrorFromErrno(errno));
    change->filter = notifyFilter;
    change->subtree = watchSubtree != FALSE;
    change->mask = KernelMask(notifyFilter, change->subtree);
    AddWatches(*change, path, 0);
    if (change->watches.empty())
        return FailHandle(ErrorFromErrno(errno));
    SetLastError(ERROR_SUCCESS);
    return AddHandle(change);
}

BOOL FindNextChangeNotification(HANDLE changeHandle) {
    auto change = LookUpChange(changeHandle);
    if (!change)
        return FALSE;
    std::lock_guard<std::mutex> lock(change->mutex);
    change->signalled = false;
    return TRUE;
}

BOOL FindCloseChangeNotification(HANDLE changeHandle) {
    return TakeHandle(changeHandle, HandleKind::Change) ? TRUE : FALSE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const DWORD previousError = GetLastError();
    auto change = LookUpChange(handle);
    if (!change) {
        if (!LookUpHandle(handle, HandleKind::File))
            return WAIT_FAILED;
        SetLastError(previousError);
        return WAIT_OBJECT_0; // a file handle is always signalled
    }
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        {
            std::lock_guard<std::mutex> lock(change->mutex);
            Drain(*change);
            if (change->signalled)
                return WAIT_OBJECT_0;
        }
        int timeout = -1;
        if (milliseconds != INFINITE) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0)
                return WAIT_TIMEOUT;
            timeout = static_cast<int>(std::min<long long>(left.count(), 1000));
        } else {
            timeout = 1000;
        }
        struct pollfd wait = {change->fd, POLLIN, 0};
        if (::poll(&wait, 1, timeout) < 0 && errno != EINTR) {
            SetLastError(ErrorFromErrno(errno));
            return WAIT_FAILED;
        }
    }
}

} // namespace Win32
} // namespace Util
