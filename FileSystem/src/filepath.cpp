#include "Util/FilePath.h"

#include "FileSystem/src/filepath_platform.h"
#include "Util/DiskDevice.h"
#include "Util/FileAccReplace.h"
#include "Util/OSVersion.h"
#include "Util/OpsMacros.h"
#include "Util/StringHelpers.h"
#include "Util/Win32.h"
#include "Util/Win32File.h"

#include <cctype>
#include <cstring>
#include <string>

namespace FileSystem {

using namespace Util::Win32;

namespace {

constexpr DWORD kUniversalNameBuffer = 520;

bool TextsEqualIgnoringCase(const char* a, const char* b) {
    return Util::CompareStrings(a, b, Util::CaseInsensitive) == 0;
}

std::wstring Wide(const char* text) {
    int size = Util::Win32::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (size <= 0)
        return std::wstring();
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    Util::Win32::MultiByteToWideChar(CP_ACP, 0, text, -1, &wide[0], size);
    wide.resize(static_cast<std::size_t>(size - 1));
    return wide;
}

Util::TString Narrow(const WCHAR* wide) {
    int size = Util::Win32::WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0)
        return Util::TString();
    std::string text(static_cast<std::size_t>(size), '\0');
    Util::Win32::WideCharToMultiByte(CP_ACP, 0, wide, -1, &text[0], size, nullptr, nullptr);
    text.resize(static_cast<std::size_t>(size - 1));
    return Util::TString(text);
}

Util::Status WithWin32Error(const Util::Status& status, long error) {
    Util::Status result = status;
    result.SetAttribute("Win32Error", error);
    return result;
}

} // namespace

FilePath::FilePath(const char* path) : m_path(path) {
    FixupCurrentWorkingDirectory();
}

FilePath::FilePath(const FilePath& other) {
    CopyFrom(other);
}

FilePath& FilePath::operator=(const FilePath& other) {
    if (this != &other)
        CopyFrom(other);
    return *this;
}

FilePath::~FilePath() = default;

void FilePath::CopyFrom(const FilePath& other) {
    m_path = other.m_path;
    m_uncName = other.m_uncName;
}

void FilePath::FixupCurrentWorkingDirectory() {
    if (IsPathUNC())
        return;
    std::size_t start = HasDriveLetter() ? 2 : 0;
    char first = start < m_path.GetLength() ? m_path[start] : '\0';
    if (first == '\\' || first == '/')
        return;
    DiskDevice drive(GetDriveLetter());
    Util::TString directory;
    if (drive.IsValid())
        directory = drive.GetCurrentWorkingDirectory();
    if (first == '.' && start + 1 < m_path.GetLength() &&
        (m_path[start + 1] == '\\' || m_path[start + 1] == '/'))
        m_path.str().erase(start, 2);
    if (!directory.IsEmpty())
        m_path.str().insert(start, directory.str());
}

bool FilePath::IsPathUNC() const {
    return m_path.GetLength() >= 5 && m_path[0] == '\\' && m_path[1] == '\\' &&
           m_path.Find('\\', 2) != Util::TString::npos;
}

bool FilePath::HasDriveLetter() const {
    return m_path.GetLength() >= 2 && m_path[1] == ':';
}

char FilePath::GetDriveLetter() const {
    return HasDriveLetter() ? m_path[0] : DiskDevice::GetCurrentDriveLetter();
}

std::size_t FilePath::ServerEnd() const {
    return m_path.Find('\\', 2);
}

std::size_t FilePath::ShareEnd() const {
    std::size_t end = m_path.Find('\\', ServerEnd() + 1);
    return end == Util::TString::npos ? m_path.GetLength() : end;
}

Util::TString FilePath::GetUNCServerName() const {
    return IsPathUNC() ? m_path.Left(ServerEnd()) : Util::TString();
}

Util::TString FilePath::GetUNCShareName() const {
    if (!IsPathUNC() || ShareEnd() <= ServerEnd() + 1)
        return Util::TString();
    return m_path.Mid(ServerEnd() + 1, ShareEnd() - ServerEnd() - 1);
}

Util::TString FilePath::GetUNCPathName() const {
    if (!IsPathUNC() || ShareEnd() >= m_path.GetLength())
        return Util::TString();
    return m_path.Mid(ShareEnd() + 1);
}

bool FilePath::SplitUNCName(Util::TString& server, Util::TString& share,
                            Util::TString& rest) const {
    if (!IsPathUNC())
        return false;
    server = GetUNCServerName();
    share = GetUNCShareName();
    rest = GetUNCPathName();
    return true;
}

FilePath::ConvertResult FilePath::GetUNCName(Util::TString& uncName) {
    if (!m_uncName.IsEmpty()) {
        uncName = m_uncName;
        return CONVERTED;
    }
    if (IsPathUNC()) {
        m_uncName = m_path;
        uncName = m_uncName;
        return CONVERTED;
    }
    Util::ErrorStateGuard keepErrors;
    alignas(UNIVERSAL_NAME_INFOA) char buffer[kUniversalNameBuffer];
    DWORD size = kUniversalNameBuffer;
    DWORD error =
        Util::Win32::WNetGetUniversalNameA(m_path, UNIVERSAL_NAME_INFO_LEVEL, buffer, &size);
    if (error == ERROR_SUCCESS) {
        m_uncName = reinterpret_cast<UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName;
        uncName = m_uncName;
        return CONVERTED;
    }
    uncName = m_uncName;
    return error == ERROR_NOT_CONNECTED ? NOT_NETWORK_PATH : CONVERT_FAILED;
}

Util::Status FilePath::ConvertUNCToLocalPath(Util::TString& localPath) const {
    ZT_FUNC_OPS();
    Util::TString server, share, rest;
    if (!SplitUNCName(server, share, rest))
        ZT_RETURN(Util::Status::GetFailed());
    DWORD platform = Util::GetOSVersion().m_platformId;
    if (platform != Util::OSPlatformWin9x && platform != Util::OSPlatformWinNT &&
        platform != Util::OSPlatformPosix) {
        ZT_ERROR("Running on unsupported Operating System.\nSystem May be unstable.");
        ZT_RETURN(Util::Status::GetSystemConfigError());
    }
    ZT_RETURN(ConvertUNCToLocalPathNTLater(server, share, rest, localPath));
}

Util::Status ConvertUNCToLocalPathNTLater(const Util::TString& server, const Util::TString& share,
                                          const Util::TString& rest, Util::TString& localPath) {
    ZT_FUNC_OPS();
    Util::ErrorStateGuard keepErrors;
    std::wstring wideServer = Wide(server);
    std::wstring wideShare = Wide(share);
    Util::DynamicLibrary library;
    PathPlatform::ShareInfoFn getInfo = nullptr;
    PathPlatform::BufferFreeFn bufferFree = nullptr;
    switch (PathPlatform::LoadShareFunctions(library, getInfo, bufferFree)) {
    case PathPlatform::LibraryMissing:
        ZT_ERROR("Could not load NETAPI32 on NT+ machine");
        ZT_RETURN(WithWin32Error(Util::Status::GetSystemConfigError(),
                                 static_cast<long>(Util::Win32::GetLastError())));
    case PathPlatform::FunctionMissing:
        ZT_ERROR("Could not load NetShareGetInfo from NETAPI32 on NT+ machine");
        ZT_RETURN(WithWin32Error(Util::Status::GetSystemConfigError(),
                                 static_cast<long>(Util::Win32::GetLastError())));
    case PathPlatform::Loaded:
        break;
    }

    LPBYTE record = nullptr;
    NET_API_STATUS error = getInfo(&wideServer[0], &wideShare[0], 502, &record);
    if (error != NERR_Success) {
        Util::TString path = server + "\\" + share;
        ZT_ERROR("Got unexpected error %d in call to NetShareGetInfo for path %s",
                 static_cast<int>(error), path.c_str());
        if (record != nullptr)
            bufferFree(record);
        ZT_RETURN(WithWin32Error(error == ERROR_ACCESS_DENIED
                                     ? Util::Status::GetSystemAccessDenied()
                                     : Util::Status::GetFailed(),
                                 static_cast<long>(error)));
    }
    const auto* info = reinterpret_cast<const SHARE_INFO_502*>(record);
    if (info != nullptr && info->shi502_path != nullptr && info->shi502_path[0] != 0) {
        Util::TString directory = Narrow(info->shi502_path);
        if (!directory.IsEmpty() &&
            std::isspace(static_cast<unsigned char>(directory[directory.GetLength() - 1])))
            Util::TrimRight(directory);
        // A POSIX directory (a Samba share) takes POSIX separators.
        char separator = !directory.IsEmpty() && directory[0] == '/' ? '/' : '\\';
        Util::TString tail = rest;
        if (separator == '/')
            for (char& c : tail.str())
                if (c == '\\')
                    c = '/';
        if (directory.IsEmpty() || directory[directory.GetLength() - 1] != separator)
            directory += separator;
        localPath = directory + tail;
    }
    bufferFree(record);
    ZT_RETURN_OK();
}

Util::TString FilePath::GetMachineName() const {
    DiskDevice device(m_path.c_str());
    return device.IsValid() ? device.GetMachineName() : Util::TString();
}

Util::TString FilePath::GetMachineIPAddress() const {
    DiskDevice device(m_path.c_str());
    return device.IsValid() ? device.GetMachineIPAddress() : Util::TString();
}

bool FilePath::CompareFilePaths(const char* a, const char* b) {
    if (a == nullptr || b == nullptr)
        return false;
    if (TextsEqualIgnoringCase(a, b))
        return true;
    Util::ErrorStateGuard keepErrors;
    char first[MAX_PATH], second[MAX_PATH];
    if (Util::Win32::GetShortPathNameA(a, first, MAX_PATH) - 1 < MAX_PATH - 1 &&
        Util::Win32::GetShortPathNameA(b, second, MAX_PATH) - 1 < MAX_PATH - 1)
        return PathPlatform::SameFileNames(first, second);
    {
        Util::DynamicLibrary kernel;
        if (PathPlatform::PathNameFn longPathName = PathPlatform::FindLongPathName(kernel)) {
            bool both = longPathName(a, first, MAX_PATH) - 1 < MAX_PATH - 1 &&
                        longPathName(b, second, MAX_PATH) - 1 < MAX_PATH - 1;
            kernel.Unload();
            if (both)
                return PathPlatform::SameFileNames(first, second);
        }
    }
    if (!Util::IsWindowsVistaorLater())
        return false;
    Util::DynamicLibrary kernel;
    PathPlatform::FinalPathFn finalPathName = PathPlatform::FindFinalPathName(kernel);
    if (finalPathName == nullptr)
        return false;
    HANDLE fileA = Util::Win32::CreateFileA(a, 0, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                            FILE_ATTRIBUTE_NORMAL, nullptr);
    HANDLE fileB = Util::Win32::CreateFileA(b, 0, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                            FILE_ATTRIBUTE_NORMAL, nullptr);
    bool both = fileA != INVALID_HANDLE_VALUE && fileB != INVALID_HANDLE_VALUE &&
                finalPathName(fileA, first, MAX_PATH, 0) - 1 < MAX_PATH - 1 &&
                finalPathName(fileB, second, MAX_PATH, 0) - 1 < MAX_PATH - 1;
    kernel.Unload();
    if (fileA != INVALID_HANDLE_VALUE)
        PathPlatform::ReleaseComparedFile(fileA);
    if (fileB != INVALID_HANDLE_VALUE)
        PathPlatform::ReleaseComparedFile(fileB);
    return both && PathPlatform::SameFileNames(first, second);
}

int FilePath::FindMatchingFiles(const char* pattern, std::vector<Util::TString>& files) {
    files.clear();
    if (pattern == nullptr || *pattern == '\0')
        return 0;
    Util::TString text(pattern);
    std::size_t last = text.str().find_last_of(PathPlatform::PatternSeparators());
    Util::TString directory = last == std::string::npos ? Util::TString() : text.Left(last + 1);
    Util::ErrorStateGuard keepErrors;
    WIN32_FIND_DATAA entry;
    // The traced find-first: the directory searched is the redirected one, the names returned
    // keep the directory as the caller wrote it.
    HANDLE search = ZtFindFirstFile(pattern, &entry);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    do {
        files.push_back(directory + entry.cFileName);
    } while (Util::Win32::FindNextFileA(search, &entry));
    Util::Win32::FindClose(search);
    return static_cast<int>(files.size());
}

} // namespace FileSystem
