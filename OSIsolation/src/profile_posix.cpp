// POSIX profile functions: the INI engine of profiletext.h over real files, with Win32 results
// and last-error values. One process-wide lock serialises every file access, so a read never
// sees a write half done and two writers never lose each other's change.
#include "Util/Win32.h"

#include "profiletext.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Util {
namespace Win32 {

namespace {

using Profile::ProfileText;

std::mutex& FileLock() {
    static std::mutex lock;
    return lock;
}

bool UsesDefaultWindowsDirectory() {
    const char* dir = std::getenv("ZT_WINDOWS_DIR");
    return dir == nullptr || *dir == '\0';
}

std::string WindowsDirectory() {
    if (!UsesDefaultWindowsDirectory())
        return std::getenv("ZT_WINDOWS_DIR");
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.ztutil/Windows";
}

std::string DirectoryOf(const std::string& path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool SameNameIgnoringCase(const char* a, const std::string& b) {
    std::size_t i = 0;
    for (; a[i] != '\0' && i < b.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z')
            x = static_cast<char>(x - 'A' + 'a');
        if (y >= 'A' && y <= 'Z')
            y = static_cast<char>(y - 'A' + 'a');
        if (x != y)
            return false;
    }
    return a[i] == '\0' && i == b.size();
}

// Windows file names are case-blind: where the exact name does not exist, a name in the same
// directory that differs only in the case of its letters is taken instead ("Win.ini").
std::string MatchCase(const std::string& path) {
    struct stat st;
    if (::lstat(path.c_str(), &st) == 0)
        return path;
    std::size_t slash = path.rfind('/');
    const std::string dir = DirectoryOf(path);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    if (base.empty())
        return path;
    DIR* d = ::opendir(dir.c_str());
    if (d == nullptr)
        return path;
    std::string found = path;
    while (const dirent* entry = ::readdir(d)) {
        if (SameNameIgnoringCase(entry->d_name, base)) {
            found = (dir == "/" ? "" : dir) + "/" + entry->d_name;
            break;
        }
    }
    ::closedir(d);
    return found;
}

// The POSIX path of a profile file name. A null name is "win.ini"; a name without a directory
// part lies in the Windows directory (an empty name therefore names that directory itself).
std::string ResolvePath(LPCSTR fileName) {
    std::string name = fileName != nullptr ? fileName : "win.ini";
    for (char& c : name)
        if (c == '\\')
            c = '/';
    if (name.find('/') == std::string::npos)
        name = WindowsDirectory() + "/" + name;
    return MatchCase(name);
}

bool DirectoryExists(const std::string& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

DWORD ErrorForMissing(const std::string& path) {
    return DirectoryExists(DirectoryOf(path)) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

DWORD ErrorForErrno(int err, const std::string& path) {
    if (err == ENOENT)
        return ErrorForMissing(path);
    if (err == EISDIR)
        return ERROR_ACCESS_DENIED;
    return ErrorFromErrno(err);
}

struct LoadedFile {
    bool exists = false;
    DWORD error = ERROR_SUCCESS; // set where the file exists but cannot be read
    struct stat info {};
    std::string bytes;
};

LoadedFile Load(const std::string& path) {
    LoadedFile file;
    if (!path.empty() && path.back() == '/') {
        file.error = ERROR_ACCESS_DENIED; // an empty name: the Windows directory itself
        return file;
    }
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT)
            file.error = ErrorForErrno(errno, path);
        return file;
    }
    if (::fstat(fd, &file.info) != 0 || S_ISDIR(file.info.st_mode)) {
        file.error = S_ISDIR(file.info.st_mode) ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
        ::close(fd);
        return file;
    }
    file.exists = true;
    char chunk[65536];
    for (;;) {
        ssize_t n = ::read(fd, chunk, sizeof chunk);
        if (n > 0) {
            file.bytes.append(chunk, static_cast<std::size_t>(n));
        } else if (n == 0) {
            break;
        } else if (errno != EINTR) {
            file.error = ErrorFromErrno(errno);
            file.exists = false;
            break;
        }
    }
    ::close(fd);
    return file;
}

bool WriteAll(int fd, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

void MakeDirectories(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        ::mkdir(path.substr(0, slash).c_str(), 0777);
        if (slash == std::string::npos)
            break;
    }
}

// Writes bytes to a new file in the same directory, flushes it and renames it over path, so
// that the old file stays whole until the new one is complete. Returns a Win32 error.
DWORD SaveAtomically(const std::string& path, const std::string& bytes, const LoadedFile& old) {
    std::string target = path;
    struct stat link;
    if (::lstat(path.c_str(), &link) == 0 && S_ISLNK(link.st_mode)) {
        // Write through a symbolic link instead of replacing the link by a file.
        if (char* real = ::realpath(path.c_str(), nullptr)) {
            target = real;
            std::free(real);
        }
    }
    if (old.exists && ::access(target.c_str(), W_OK) != 0)
        return ErrorForErrno(errno, target);
    const std::string dir = DirectoryOf(target);
    static std::uint64_t counter = 0;
    std::string temp;
    int fd = -1;
    for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        temp = target + ".~" + std::to_string(::getpid()) + "." + std::to_string(++counter);
        fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            return ErrorForErrno(errno, target);
    }
    if (fd < 0)
        return ERROR_ACCESS_DENIED;
    if (old.exists) {
        (void)::fchmod(fd, old.info.st_mode & 07777);
        (void)::fchown(fd, old.info.st_uid, old.info.st_gid);
    }
    int err = 0;
    if (!WriteAll(fd, bytes) || ::fsync(fd) != 0)
        err = errno;
    if (::close(fd) != 0 && err == 0)
        err = errno;
    if (err == 0 && ::rename(temp.c_str(), target.c_str()) != 0)
        err = errno;
    if (err != 0) {
        ::unlink(temp.c_str());
        return ErrorFromErrno(err);
    }
    int dirFd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        (void)::fsync(dirFd);
        ::close(dirFd);
    }
    return ERROR_SUCCESS;
}

// Serialises writers of one directory across processes for as long as it lives, so that two
// processes updating one file both keep their change. The directory, unlike the file, is not
// replaced by a write. Where it cannot be locked the write goes ahead unlocked.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::string& dir)
        : m_fd(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (m_fd >= 0)
            while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR) {
            }
    }
    ~DirectoryLock() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

private:
    int m_fd;
};

enum class Edit { SetValue, RemoveKey, RemoveSection, ReplaceSection };

BOOL Modify(LPCSTR fileName, Edit edit, const std::string& section, const std::string& key,
            const std::string& value, const std::vector<std::string>& entries) {
    const std::string path = ResolvePath(fileName);
    std::lock_guard<std::mutex> guard(FileLock());
    DirectoryLock directoryLock(DirectoryOf(path));
    LoadedFile file = Load(path);
    if (file.error != ERROR_SUCCESS) {
        SetLastError(file.error);
        return FALSE;
    }
    ProfileText text = ProfileText::Parse(file.bytes);
    bool changed = false;
    switch (edit) {
    case Edit::SetValue:
        changed = text.SetValue(section, key, value);
        break;
    case Edit::RemoveKey:
        changed = text.RemoveKey(section, key);
        break;
    case Edit::RemoveSection:
        changed = text.RemoveSection(section);
        break;
    case Edit::ReplaceSection:
        changed = text.ReplaceSection(section, entries);
        break;
    }
    if (!changed) {
        SetLastError(ERROR_SUCCESS);
        return TRUE;
    }
    if (!file.exists && UsesDefaultWindowsDirectory() && DirectoryOf(path) == WindowsDirectory() &&
        !DirectoryExists(WindowsDirectory()))
        MakeDirectories(WindowsDirectory());
    if (!file.exists && !DirectoryExists(DirectoryOf(path))) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return FALSE;
    }
    DWORD error = SaveAtomically(path, text.Serialize(), file);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return FALSE;
    }
    // Windows reports a file it had to create as not found, even though the write succeeded.
    SetLastError(file.exists ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND);
    return TRUE;
}

// Copies one string with the truncation rule of a value: at most size - 1 characters and a null.
DWORD CopyString(const std::string& s, LPSTR buffer, DWORD size, DWORD errorWhenWhole) {
    if (s.size() >= size) {
        std::memcpy(buffer, s.data(), size - 1);
        buffer[size - 1] = '\0';
        SetLastError(ERROR_MORE_DATA);
        return size - 1;
    }
    std::memcpy(buffer, s.data(), s.size());
    buffer[s.size()] = '\0';
    SetLastError(errorWhenWhole);
    return static_cast<DWORD>(s.size());
}

// Copies a list of names, each followed by a null, the whole ended by a second null. A list that
// does not fit keeps size - 2 characters and two nulls, and the result is size - 2.
DWORD CopyList(const std::vector<std::string>& names, LPSTR buffer, DWORD size,
               DWORD errorWhenWhole) {
    std::string data;
    for (const std::string& name : names) {
        data += name;
        data += '\0';
    }
    if (size < 2) {
        if (size == 1)
            buffer[0] = '\0';
        SetLastError(data.empty() ? errorWhenWhole : ERROR_MORE_DATA);
        return 0;
    }
    if (data.size() + 1 < size) {
        std::memcpy(buffer, data.data(), data.size());
        buffer[data.size()] = '\0';
        SetLastError(errorWhenWhole);
        return static_cast<DWORD>(data.size());
    }
    std::memcpy(buffer, data.data(), size - 2);
    buffer[size - 2] = '\0';
    buffer[size - 1] = '\0';
    SetLastError(ERROR_MORE_DATA);
    return size - 2;
}

std::string DefaultText(LPCSTR def) {
    std::string s = def != nullptr ? def : "";
    while (!s.empty() && s.back() == ' ')
        s.pop_back();
    return s;
}

// The number at the start of a value as Windows reads it: blanks, a sign, a "0x", "0o" or "0b"
// prefix, then digits, accumulated in 32 bits with wrap-around.
UINT ReadNumber(const char* s) {
    while (*s == ' ' || *s == '\t')
        ++s;
    bool negative = false;
    if (*s == '+' || *s == '-') {
        negative = *s == '-';
        ++s;
    }
    unsigned base = 10;
    if (s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) {
        base = 16;
        s += 2;
    } else if (s[0] == '0' && (s[1] == 'o' || s[1] == 'O')) {
        base = 8;
        s += 2;
    } else if (s[0] == '0' && (s[1] == 'b' || s[1] == 'B')) {
        base = 2;
        s += 2;
    }
    std::uint32_t value = 0;
    for (;; ++s) {
        unsigned digit;
        if (*s >= '0' && *s <= '9')
            digit = static_cast<unsigned>(*s - '0');
        else if (*s >= 'a' && *s <= 'f')
            digit = static_cast<unsigned>(*s - 'a' + 10);
        else if (*s >= 'A' && *s <= 'F')
            digit = static_cast<unsigned>(*s - 'A' + 10);
        else
            break;
        if (digit >= base)
            break;
        value = value * base + digit;
    }
    return negative ? 0u - value : value;
}

} // namespace

DWORD GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                               LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName) {
    if (lpReturnedString == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (nSize == 0)
        return 0;
    const std::string path = ResolvePath(lpFileName);
    std::unique_lock<std::mutex> guard(FileLock());
    LoadedFile file = Load(path);
    guard.unlock();
    const DWORD missing = file.exists                   ? ERROR_FILE_NOT_FOUND
                          : file.error != ERROR_SUCCESS ? file.error
                                                        : ErrorForMissing(path);
    if (lpAppName == nullptr || lpKeyName == nullptr) {
        if (!file.exists) {
            lpReturnedString[0] = '\0';
            SetLastError(missing);
            return 0;
        }
        ProfileText text = ProfileText::Parse(file.bytes);
        std::vector<std::string> names;
        if (lpAppName == nullptr)
            names = text.SectionNames();
        else if (!text.KeyNames(lpAppName, names))
            return CopyList(names, lpReturnedString, nSize, ERROR_FILE_NOT_FOUND);
        return CopyList(names, lpReturnedString, nSize, ERROR_SUCCESS);
    }
    std::string value;
    if (file.exists && ProfileText::Parse(file.bytes).FindValue(lpAppName, lpKeyName, value))
        return CopyString(value, lpReturnedString, nSize, ERROR_SUCCESS);
    return CopyString(DefaultText(lpDefault), lpReturnedString, nSize, missing);
}

UINT GetPrivateProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault, LPCSTR lpFileName) {
    char buffer[256];
    if (GetPrivateProfileStringA(lpAppName, lpKeyName, "", buffer, sizeof buffer, lpFileName) == 0)
        return static_cast<UINT>(nDefault);
    return ReadNumber(buffer);
}

DWORD GetPrivateProfileSectionA(LPCSTR lpAppName, LPSTR lpReturnedString, DWORD nSize,
                                LPCSTR lpFileName) {
    if (lpAppName == nullptr || lpReturnedString == nullptr || nSize == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::string path = ResolvePath(lpFileName);
    std::unique_lock<std::mutex> guard(FileLock());
    LoadedFile file = Load(path);
    guard.unlock();
    std::vector<std::string> entries;
    if (!file.exists) {
        lpReturnedString[0] = '\0';
        SetLastError(file.error != ERROR_SUCCESS ? file.error : ErrorForMissing(path));
        return 0;
    }
    if (!ProfileText::Parse(file.bytes).SectionEntries(lpAppName, entries))
        return CopyList(entries, lpReturnedString, nSize, ERROR_FILE_NOT_FOUND);
    return CopyList(entries, lpReturnedString, nSize, ERROR_SUCCESS);
}

DWORD GetPrivateProfileSectionNamesA(LPSTR lpszReturnBuffer, DWORD nSize, LPCSTR lpFileName) {
    return GetPrivateProfileStringA(nullptr, nullptr, nullptr, lpszReturnBuffer, nSize, lpFileName);
}

BOOL WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                LPCSTR lpFileName) {
    if (lpAppName == nullptr) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    if (lpKeyName == nullptr)
        return Modify(lpFileName, Edit::RemoveSection, lpAppName, "", "", {});
    if (lpString == nullptr)
        return Modify(lpFileName, Edit::RemoveKey, lpAppName, lpKeyName, "", {});
    return Modify(lpFileName, Edit::SetValue, lpAppName, lpKeyName, lpString, {});
}

BOOL WritePrivateProfileSectionA(LPCSTR lpAppName, LPCSTR lpString, LPCSTR lpFileName) {
    if (lpAppName == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (lpString == nullptr)
        return Modify(lpFileName, Edit::RemoveSection, lpAppName, "", "", {});
    std::vector<std::string> entries;
    for (const char* p = lpString; *p != '\0'; p += std::strlen(p) + 1)
        entries.emplace_back(p);
    return Modify(lpFileName, Edit::ReplaceSection, lpAppName, "", "", entries);
}

} // namespace Win32
} // namespace Util
