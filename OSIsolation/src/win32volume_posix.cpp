// POSIX answers to the Win32 volume, path-name and network queries: statfs and the mount
// table for volumes, Samba's configuration for shares, CIFS/SMB mounts for universal names.
#include "Util/Win32Volume.h"

#include "OSIsolation/src/mounttable_posix.h"
#include "OSIsolation/src/win32filecommon_posix.h"
#include "Util/StringHelpers.h"
#include "Util/Win32.h"

#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>
#include <string>

namespace Util {
namespace Win32 {

namespace {

std::mutex g_tablesMutex;
std::string g_sambaConfiguration; // empty: the system's
std::string g_mountTable;

std::string SambaConfigurationPath() {
    std::lock_guard<std::mutex> lock(g_tablesMutex);
    return g_sambaConfiguration.empty() ? "/etc/samba/smb.conf" : g_sambaConfiguration;
}

// Copies text out with the Win32 length conventions of the path-name functions.
DWORD CopyOut(const std::string& text, LPSTR buffer, DWORD size) {
    if (buffer == nullptr || size <= text.size())
        return static_cast<DWORD>(text.size() + 1);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

DWORD CanonicalName(LPCSTR path, LPSTR buffer, DWORD size) {
    if (path == nullptr || *path == '\0') {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::string native = Platform::NativePath(path);
    char* resolved = realpath(native.c_str(), nullptr);
    if (resolved == nullptr) {
        SetLastError(Platform::ErrorForPath(errno, native));
        return 0;
    }
    std::string text(resolved);
    std::free(resolved);
    return CopyOut(text, buffer, size);
}

std::string FileSystemName(const struct statfs& info, const MountEntry* mount) {
    std::string type = mount != nullptr ? mount->fsType : std::string();
    if (type == "ntfs" || type == "ntfs3" || info.f_type == 0x5346544e)
        return "NTFS";
    if (type == "vfat" || type == "msdos" || info.f_type == 0x4d44)
        return info.f_blocks >= 65525 ? "FAT32" : "FAT";
    if (type == "exfat")
        return "exFAT";
    if (!type.empty())
        return type;
    switch (info.f_type) {
    case 0xEF53:
        return "ext4";
    case 0x01021994:
        return "tmpfs";
    case 0x9123683E:
        return "btrfs";
    case 0x58465342:
        return "xfs";
    default:
        return "unknown";
    }
}

// ---- Samba's configuration -------------------------------------------------------------

std::string Trim(const std::string& text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Parameter names ignore case, blanks and underscores, as Samba's do.
std::string ParameterName(const std::string& text) {
    std::string name;
    for (char c : text)
        if (c != ' ' && c != '\t' && c != '_')
            name += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return name;
}

struct ShareEntry {
    std::string path, comment;
    bool printable = false;
};

// Reads the section of the share; returns a NET_API_STATUS.
NET_API_STATUS ReadShare(const std::string& share, ShareEntry& entry) {
    std::ifstream in(SambaConfigurationPath());
    if (!in)
        return errno == ENOENT ? NERR_ServerNotStarted : ErrorFromErrno(errno);
    bool inShare = false, found = false;
    std::string line, physical;
    while (std::getline(in, physical)) {
        line += physical;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line.back() == '\\') { // continued on the next line
            line.pop_back();
            continue;
        }
        std::string text = Trim(line);
        line.clear();
        if (text.empty() || text[0] == '#' || text[0] == ';')
            continue;
        if (text[0] == '[') {
            std::size_t close = text.find(']');
            std::string name = Trim(text.substr(1, close == std::string::npos ? close : close - 1));
            inShare = CompareStrings(name.c_str(), share.c_str(), CaseInsensitive) == 0 &&
                      ParameterName(name) != "global";
            found = found || inShare;
            continue;
        }
        std::size_t equals = text.find('=');
        if (!inShare || equals == std::string::npos)
            continue;
        std::string name = ParameterName(text.substr(0, equals));
        std::string value = Trim(text.substr(equals + 1));
        if (name == "path" || name == "directory")
            entry.path = value;
        else if (name == "comment")
            entry.comment = value;
        else if (name == "printable" || name == "printok")
            entry.printable =
                ParameterName(value) == "yes" || value == "1" || ParameterName(value) == "true";
    }
    return found ? NERR_Success : NERR_NetNameNotFound;
}

bool IsThisMachine(std::string server) {
    while (!server.empty() && (server[0] == '\\' || server[0] == '/'))
        server.erase(0, 1);
    if (server.empty() || server == "." || server == "::1" || server.rfind("127.", 0) == 0 ||
        CompareStrings(server.c_str(), "localhost", CaseInsensitive) == 0)
        return true;
    char host[256] = {};
    if (gethostname(host, sizeof host - 1) != 0)
        return false;
    std::string name(host);
    std::string shortName = name.substr(0, name.find('.'));
    return CompareStrings(server.c_str(), name.c_str(), CaseInsensitive) == 0 ||
           CompareStrings(server.c_str(), shortName.c_str(), CaseInsensitive) == 0;
}

std::string Narrow(LPCWSTR wide) {
    std::string text;
    if (wide == nullptr)
        return text;
    int size = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    text.resize(static_cast<std::size_t>(size));
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, &text[0], size, nullptr, nullptr);
    text.resize(std::strlen(text.c_str()));
    return text;
}

// Appends the wide form of text to a record block; returns its offset.
std::size_t AppendWide(std::wstring& block, const std::string& text) {
    std::size_t offset = block.size();
    int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
    block.resize(offset + static_cast<std::size_t>(size));
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, &block[offset], size);
    return offset;
}

} // namespace

DWORD GetFinalPathNameByHandleA(HANDLE file, LPSTR filePath, DWORD bufferLength, DWORD) {
    auto object = Platform::LookUpHandle(file, Platform::HandleKind::File);
    if (!object)
        return 0; // the last error is 6
    auto* opened = static_cast<Platform::FileObject*>(object.get());
    std::string link = "/proc/self/fd/" + std::to_string(opened->fd);
    char* resolved = realpath(link.c_str(), nullptr);
    if (resolved == nullptr) {
        SetLastError(ErrorFromErrno(errno));
        return 0;
    }
    std::string text(resolved);
    std::free(resolved);
    return CopyOut(text, filePath, bufferLength);
}

// ---- wide text -----------------------------------------------------------------------------

int MultiByteToWideChar(UINT, DWORD, LPCSTR text, int length, LPWSTR wide, int wideLength) {
    if (text == nullptr || length == 0 || wideLength < 0 || (wide == nullptr && wideLength != 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto* in = reinterpret_cast<const unsigned char*>(text);
    std::size_t size = length < 0 ? std::strlen(text) + 1 : static_cast<std::size_t>(length);
    std::wstring out;
    for (std::size_t i = 0; i < size;) {
        unsigned char c = in[i];
        int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        std::uint32_t code = extra == 0 ? c : extra == 1 ? c & 0x1F : extra == 2 ? c & 0x0F : c & 7;
        bool valid = extra >= 0 && i + static_cast<std::size_t>(extra) < size;
        for (int k = 1; valid && k <= extra; ++k) {
            valid = (in[i + k] & 0xC0) == 0x80;
            code = (code << 6) | (in[i + k] & 0x3F);
        }
        static const std::uint32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
        if (valid &&
            (code < kMinimum[extra] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)))
            valid = false;
        out += static_cast<wchar_t>(valid ? code : 0xFFFD);
        i += valid ? static_cast<std::size_t>(extra) + 1 : 1;
    }
    if (wideLength == 0)
        return static_cast<int>(out.size());
    if (out.size() > static_cast<std::size_t>(wideLength)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(out.begin(), out.end(), wide);
    return static_cast<int>(out.size());
}

int WideCharToMultiByte(UINT, DWORD, LPCWSTR wide, int length, LPSTR text, int textLength,
                        LPCSTR defaultChar, BOOL* usedDefault) {
    if (wide == nullptr || length == 0 || textLength < 0 || (text == nullptr && textLength != 0)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::size_t size = length < 0 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(length);
    std::string out;
    if (usedDefault != nullptr)
        *usedDefault = FALSE;
    for (std::size_t i = 0; i < size; ++i) {
        auto code = static_cast<std::uint32_t>(wide[i]);
        if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
            if (usedDefault != nullptr)
                *usedDefault = TRUE;
            if (defaultChar != nullptr) {
                out += *defaultChar;
                continue;
            }
            code = 0xFFFD;
        }
        Util::AppendUtf8(out, code);
    }
    if (textLength == 0)
        return static_cast<int>(out.size());
    if (out.size() > static_cast<std::size_t>(textLength)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(text, out.data(), out.size());
    return static_cast<int>(out.size());
}

// ---- volumes and path names ----------------------------------------------------------------

BOOL GetVolumeInformationA(LPCSTR rootPathName, LPSTR volumeNameBuffer, DWORD volumeNameSize,
                           LPDWORD volumeSerialNumber, LPDWORD maximumComponentLength,
                           LPDWORD fileSystemFlags, LPSTR fileSystemNameBuffer,
                           DWORD fileSystemNameSize) {
    std::string path = rootPathName != nullptr && *rootPathName != '\0' ? rootPathName : ".";
    MountTable mounts(MountTablePath());
    if (path.size() > 2 && path[0] == '\\' && path[1] == '\\') {
        const MountEntry* share = mounts.FindShare(path);
        if (share == nullptr) {
            SetLastError(ERROR_BAD_NETPATH);
            return FALSE;
        }
        path = share->mountPoint;
    }
    struct statfs info;
    if (statfs(path.c_str(), &info) != 0) {
        SetLastError(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
        return FALSE;
    }
    char* resolved = realpath(path.c_str(), nullptr);
    const MountEntry* mount = mounts.FindMount(resolved != nullptr ? resolved : path.c_str());
    std::free(resolved);
    std::string name = FileSystemName(info, mount);
    if ((fileSystemNameBuffer != nullptr && fileSystemNameSize <= name.size()) ||
        (volumeNameBuffer != nullptr && volumeNameSize == 0)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    if (fileSystemNameBuffer != nullptr)
        std::memcpy(fileSystemNameBuffer, name.c_str(), name.size() + 1);
    if (volumeNameBuffer != nullptr)
        volumeNameBuffer[0] = '\0';
    if (volumeSerialNumber != nullptr) {
        int fsid[2];
        std::memcpy(fsid, &info.f_fsid, sizeof fsid);
        *volumeSerialNumber = static_cast<DWORD>(fsid[0]) ^ static_cast<DWORD>(fsid[1]);
    }
    if (maximumComponentLength != nullptr)
        *maximumComponentLength = static_cast<DWORD>(info.f_namelen);
    if (fileSystemFlags != nullptr) {
        bool fat = name == "FAT" || name == "FAT32" || name == "exFAT";
        *fileSystemFlags = (fat ? 0 : FILE_CASE_SENSITIVE_SEARCH) | FILE_CASE_PRESERVED_NAMES |
                           ((info.f_flags & ST_RDONLY) != 0 ? FILE_READ_ONLY_VOLUME : 0);
    }
    return TRUE;
}

DWORD GetShortPathNameA(LPCSTR longPath, LPSTR shortPath, DWORD bufferLength) {
    return CanonicalName(longPath, shortPath, bufferLength);
}

DWORD GetLongPathNameA(LPCSTR shortPath, LPSTR longPath, DWORD bufferLength) {
    return CanonicalName(shortPath, longPath, bufferLength);
}

// ---- network -------------------------------------------------------------------------------

NET_API_STATUS NetShareGetInfo(LPWSTR serverName, LPWSTR netName, DWORD level, LPBYTE* buffer) {
    if (buffer == nullptr || netName == nullptr)
        return ERROR_INVALID_PARAMETER;
    *buffer = nullptr;
    if (level != 502)
        return ERROR_INVALID_LEVEL;
    if (!IsThisMachine(Narrow(serverName)))
        return ERROR_BAD_NETPATH;
    std::string share = Narrow(netName);
    ShareEntry entry;
    NET_API_STATUS result = ReadShare(share, entry);
    if (result != NERR_Success)
        return result;

    // One block: the record, then its strings.
    std::wstring strings;
    std::size_t name = AppendWide(strings, share);
    std::size_t remark = AppendWide(strings, entry.comment);
    std::size_t path = AppendWide(strings, entry.path);
    std::size_t head = (sizeof(SHARE_INFO_502) + sizeof(wchar_t) - 1) / sizeof(wchar_t);
    auto* block = static_cast<wchar_t*>(std::calloc(head + strings.size(), sizeof(wchar_t)));
    if (block == nullptr)
        return ERROR_NOT_ENOUGH_MEMORY;
    std::copy(strings.begin(), strings.end(), block + head);
    auto* info = reinterpret_cast<SHARE_INFO_502*>(block);
    info->shi502_netname = block + head + name;
    info->shi502_type = entry.printable ? STYPE_PRINTQ : STYPE_DISKTREE;
    info->shi502_remark = block + head + remark;
    info->shi502_max_uses = static_cast<DWORD>(-1);
    info->shi502_path = block + head + path;
    *buffer = reinterpret_cast<LPBYTE>(block);
    return NERR_Success;
}

NET_API_STATUS NetApiBufferFree(LPVOID buffer) {
    std::free(buffer);
    return NERR_Success;
}

DWORD WNetGetUniversalNameA(LPCSTR localPath, DWORD infoLevel, LPVOID buffer, LPDWORD bufferSize) {
    if (localPath == nullptr || bufferSize == nullptr || (buffer == nullptr && *bufferSize != 0))
        return ERROR_INVALID_PARAMETER;
    if (infoLevel != UNIVERSAL_NAME_INFO_LEVEL && infoLevel != REMOTE_NAME_INFO_LEVEL)
        return ERROR_INVALID_LEVEL;
    MountTable mounts(MountTablePath());
    std::string connection, rest;
    if (!mounts.UniversalName(localPath, connection, rest))
        return ERROR_NOT_CONNECTED;
    std::string universal = connection + rest;
    std::size_t head = infoLevel == UNIVERSAL_NAME_INFO_LEVEL ? sizeof(UNIVERSAL_NAME_INFOA)
                                                              : sizeof(REMOTE_NAME_INFOA);
    std::size_t needed = head + universal.size() + 1;
    if (infoLevel == REMOTE_NAME_INFO_LEVEL)
        needed += connection.size() + 1 + rest.size() + 1;
    if (*bufferSize < needed) {
        *bufferSize = static_cast<DWORD>(needed);
        return ERROR_MORE_DATA;
    }
    char* text = static_cast<char*>(buffer) + head;
    auto put = [&text](const std::string& value) {
        char* start = text;
        std::memcpy(text, value.c_str(), value.size() + 1);
        text += value.size() + 1;
        return start;
    };
    if (infoLevel == UNIVERSAL_NAME_INFO_LEVEL) {
        static_cast<UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName = put(universal);
    } else {
        auto* info = static_cast<REMOTE_NAME_INFOA*>(buffer);
        info->lpUniversalName = put(universal);
        info->lpConnectionName = put(connection);
        info->lpRemainingPath = put(rest);
    }
    return ERROR_SUCCESS;
}

void SetNetworkTables(const char* sambaConfiguration, const char* mountTable) {
    std::lock_guard<std::mutex> lock(g_tablesMutex);
    g_sambaConfiguration = sambaConfiguration != nullptr ? sambaConfiguration : "";
    g_mountTable = mountTable != nullptr ? mountTable : "";
}

std::string MountTablePath() {
    std::lock_guard<std::mutex> lock(g_tablesMutex);
    return g_mountTable.empty() ? "/proc/self/mountinfo" : g_mountTable;
}

} // namespace Win32
} // namespace Util
