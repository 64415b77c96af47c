// POSIX emulation of FindFirstFileA / FindNextFileA / FindClose. The directory is read once
// when the search starts; each entry is described when it is handed out, and entries removed in
// between are skipped. Like the Windows find handle, the search holds its directory open: entries
// are described relative to it, which spares the kernel a walk of the whole path per entry.
#include "OSIsolation/src/win32filecommon_posix.h"

#include "Util/Win32Wildcard.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>

namespace Util {
namespace Win32 {

using namespace Util::Platform;

namespace {

struct FindObject : HandleObject {
    explicit FindObject(DIR* listing) : HandleObject(HandleKind::Find), listing(listing) {}
    ~FindObject() override { ::closedir(listing); }
    FindObject(const FindObject&) = delete;
    FindObject& operator=(const FindObject&) = delete;
    std::mutex mutex;
    DIR* const listing;
    std::vector<std::string> names;
    std::size_t next = 0;
};

int DotRank(const std::string& name) {
    if (name == ".")
        return 0;
    if (name == "..")
        return 1;
    return 2;
}

bool ListedBefore(const std::string& a, const std::string& b) {
    const int rankA = DotRank(a), rankB = DotRank(b);
    if (rankA != rankB)
        return rankA < rankB;
    const int blind = ::strcasecmp(a.c_str(), b.c_str());
    return blind != 0 ? blind < 0 : a < b;
}

// A symbolic link is described by its target; a dangling one by the link itself.
bool Describe(int directory, const std::string& name, WIN32_FIND_DATAA& data) {
    struct stat info;
    if (::fstatat(directory, name.c_str(), &info, 0) != 0 &&
        ::fstatat(directory, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    std::memset(&data, 0, sizeof data);
    DescribeFile(data, info, name);
    const std::size_t length = std::min(name.size(), sizeof data.cFileName - 1);
    std::memcpy(data.cFileName, name.data(), length);
    return true;
}

// Hands out the next entry that still exists; false when none is left.
bool NextEntry(FindObject& find, WIN32_FIND_DATAA& data) {
    std::lock_guard<std::mutex> lock(find.mutex);
    while (find.next < find.names.size())
        if (Describe(::dirfd(find.listing), find.names[find.next++], data))
            return true;
    return false;
}

} // namespace

HANDLE FindFirstFileA(LPCSTR fileName, LPWIN32_FIND_DATAA findFileData) {
    const std::string path = NativePath(fileName);
    if (path.empty())
        return FailHandle(ERROR_PATH_NOT_FOUND);
    if (findFileData == nullptr)
        return FailHandle(ERROR_INVALID_PARAMETER);
    const std::size_t slash = path.rfind('/');
    const std::string pattern = slash == std::string::npos ? path : path.substr(slash + 1);
    std::string directory = slash == std::string::npos ? "." : path.substr(0, slash);
    if (directory.empty())
        directory = "/";
    if (pattern.empty())
        return FailHandle(ERROR_FILE_NOT_FOUND);

    DIR* listing = ::opendir(directory.c_str());
    if (listing == nullptr)
        return FailHandle(errno == ENOENT || errno == ENOTDIR
                              ? static_cast<DWORD>(ERROR_PATH_NOT_FOUND)
                              : ErrorFromErrno(errno));
    auto find = std::make_shared<FindObject>(listing);
    const Win32Wildcard wildcard(pattern.c_str());
    while (const struct dirent* entry = ::readdir(listing))
        if (wildcard.Matches(entry->d_name))
            find->names.emplace_back(entry->d_name);
    std::sort(find->names.begin(), find->names.end(), ListedBefore);

    if (!NextEntry(*find, *findFileData))
        return FailHandle(ERROR_FILE_NOT_FOUND);
    return AddHandle(find);
}

BOOL FindNextFileA(HANDLE findFile, LPWIN32_FIND_DATAA findFileData) {
    auto find = std::static_pointer_cast<FindObject>(LookUpHandle(findFile, HandleKind::Find));
    if (!find)
        return FALSE;
    if (findFileData == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (!NextEntry(*find, *findFileData))
        return FailWith(ERROR_NO_MORE_FILES);
    return TRUE;
}

BOOL FindClose(HANDLE findFile) {
    return TakeHandle(findFile, HandleKind::Find) ? TRUE : FALSE;
}

} // namespace Win32
} // namespace Util
