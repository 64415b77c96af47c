// What the POSIX emulation of the Win32 and C-runtime file functions shares: name conversion,
// error translation, attributes and the process-wide handle table.
#pragma once

#include "Util/Win32.h"
#include "Util/Win32File.h"

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Util {
namespace Platform {

// The name as POSIX wants it: '\' separators become '/'.
std::string NativePath(const char* name);

// The parent directory of a native path ("." for a bare name).
std::string ParentOf(const std::string& path);

// The last component of a native path, ignoring trailing separators.
std::string LastComponent(const std::string& path);

// The Win32 error for a failed call on `path`: a missing last component gives 2, a missing or
// non-directory component on the way gives 3; other errno values map as ErrorFromErrno.
DWORD ErrorForPath(int err, const std::string& path);

// Sets the last error and returns false / INVALID_HANDLE_VALUE / the code, for one-line exits.
BOOL FailWith(DWORD error);
HANDLE FailHandle(DWORD error);

// The errno value the Microsoft C runtime gives for a Win32 error.
int ErrnoFromError(DWORD error);

bool IsReadOnly(const struct stat& info);
DWORD AttributesOf(const struct stat& info, const std::string& path);
FILETIME FileTimeOf(const struct timespec& time);

// Fills the fields WIN32_FILE_ATTRIBUTE_DATA and WIN32_FIND_DATAA share.
template <typename Data>
void DescribeFile(Data& data, const struct stat& info, const std::string& path) {
    data.dwFileAttributes = AttributesOf(info, path);
    data.ftCreationTime = FileTimeOf(info.st_ctim);
    data.ftLastAccessTime = FileTimeOf(info.st_atim);
    data.ftLastWriteTime = FileTimeOf(info.st_mtim);
    const std::uint64_t size = S_ISDIR(info.st_mode) ? 0 : static_cast<std::uint64_t>(info.st_size);
    data.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFFu);
}

// Handles: entries of a process-wide table, so that a stale or made-up handle is recognised.
enum class HandleKind { File, Find, Change };

struct HandleObject {
    explicit HandleObject(HandleKind kind) : kind(kind) {}
    virtual ~HandleObject() = default;
    const HandleKind kind;
};

HANDLE AddHandle(std::shared_ptr<HandleObject> object);
// The object behind a handle of that kind, or null with the last error set to 6.
std::shared_ptr<HandleObject> LookUpHandle(HANDLE handle, HandleKind kind);
// Removes the handle from the table; the object dies with its last user.
std::shared_ptr<HandleObject> TakeHandle(HANDLE handle, HandleKind kind);

// Share modes of the files CreateFileA holds open in this process.
class ShareLock {
public:
    ShareLock() = default;
    ~ShareLock();
    ShareLock(const ShareLock&) = delete;
    ShareLock& operator=(const ShareLock&) = delete;
    // Registers an open of (device, inode); false when an existing open forbids it.
    bool Acquire(dev_t device, ino_t inode, DWORD access, DWORD share);
    void Release();

private:
    std::uint64_t m_token = 0;
};

// False when a handle open on the file does not share delete access (deleting or renaming it
// must then fail with error 32).
bool DeleteAllowed(const struct stat& info);

// A file, directory or pipe end opened by CreateFileA or CreateNamedPipeA.
struct FileObject : HandleObject {
    FileObject() : HandleObject(HandleKind::File) {}
    ~FileObject() override;
    int fd = -1;
    DWORD access = 0;
    bool isPipe = false;
    bool isDirectory = false;
    std::string deleteOnClose; // FILE_FLAG_DELETE_ON_CLOSE: unlinked when the handle closes
    ShareLock share;
    std::function<void()> onClose;
};

constexpr DWORD ReadRights = GENERIC_READ | GENERIC_ALL | FILE_READ_DATA | FILE_EXECUTE;
constexpr DWORD WriteRights = GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA;
constexpr DWORD DeleteRights = DELETE | GENERIC_ALL;

// "\\.\pipe\NAME" (either separator, after NativePath: "//./pipe/NAME").
bool IsPipeName(const std::string& nativePath);
// Opens the client end of a pipe that CreateNamedPipeA made.
HANDLE OpenPipeClient(const std::string& nativePath, DWORD access);

// write() that reports EPIPE instead of raising SIGPIPE.
long WriteNoSignal(int fd, const void* data, std::size_t size);

} // namespace Platform
} // namespace Util
