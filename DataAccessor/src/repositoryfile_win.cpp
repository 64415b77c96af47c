#include "DataAccessor/src/repositoryfile_platform.h"

#include <windows.h>

#include <vector>

namespace Norvane {
namespace Utilities {
namespace Platform {

const char* const kLineBreak = "\r\n";

namespace {

std::uint64_t Combine(DWORD high, DWORD low) {
    return (static_cast<std::uint64_t>(high) << 32) | low;
}

std::wstring Widen(const char* text, UINT codePage) {
    int length = ::MultiByteToWideChar(codePage, 0, text, -1, nullptr, 0);
    if (length <= 0)
        return std::wstring();
    std::vector<wchar_t> wide(static_cast<std::size_t>(length));
    ::MultiByteToWideChar(codePage, 0, text, -1, wide.data(), length);
    return std::wstring(wide.data());
}

std::string Narrow(const std::wstring& wide, UINT codePage) {
    int length = ::WideCharToMultiByte(codePage, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    if (length <= 0)
        return std::string();
    std::vector<char> text(static_cast<std::size_t>(length));
    ::WideCharToMultiByte(codePage, 0, wide.c_str(), -1, text.data(), length, nullptr, nullptr);
    return std::string(text.data());
}

DWORD WriteAll(HANDLE file, const char* data, std::size_t size) {
    while (size > 0) {
        DWORD chunk = size > 0x40000000u ? 0x40000000u : static_cast<DWORD>(size);
        DWORD written = 0;
        if (!::WriteFile(file, data, chunk, &written, nullptr))
            return ::GetLastError();
        data += written;
        size -= written;
    }
    return 0;
}

} // namespace

FileStamp StampOf(const std::string& path) {
    FileStamp stamp;
    WIN32_FILE_ATTRIBUTE_DATA info;
    if (!::GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &info))
        return stamp;
    stamp.exists = true;
    stamp.size = Combine(info.nFileSizeHigh, info.nFileSizeLow);
    stamp.modified =
        Combine(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
    stamp.changed = Combine(info.ftCreationTime.dwHighDateTime, info.ftCreationTime.dwLowDateTime);
    return stamp;
}

DWORD ReadWholeFile(const std::string& path, std::string& data) {
    data.clear();
    HANDLE file = ::CreateFileA(path.c_str(), GENERIC_READ,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return ::GetLastError();
    char chunk[65536];
    DWORD error = 0;
    for (;;) {
        DWORD got = 0;
        if (!::ReadFile(file, chunk, sizeof chunk, &got, nullptr)) {
            error = ::GetLastError();
            break;
        }
        if (got == 0)
            break;
        data.append(chunk, got);
    }
    ::CloseHandle(file);
    return error;
}

DWORD WriteFileDurably(const std::string& path, const std::string& data) {
    const std::string temp = path + "." + std::to_string(::GetCurrentProcessId()) + ".tmp";
    HANDLE file = ::CreateFileA(temp.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return ::GetLastError();
    DWORD error = WriteAll(file, data.data(), data.size());
    if (error == 0 && !::FlushFileBuffers(file))
        error = ::GetLastError();
    ::CloseHandle(file);
    if (error == 0 && !::MoveFileExA(temp.c_str(), path.c_str(),
                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        error = ::GetLastError();
    if (error != 0)
        ::DeleteFileA(temp.c_str());
    return error;
}

DWORD MoveFileAside(const std::string& from, const std::string& to) {
    if (::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH))
        return 0;
    DWORD error = ::GetLastError();
    return error == ERROR_FILE_EXISTS ? ERROR_ALREADY_EXISTS : error;
}

DWORD AppendToFile(const std::string& path, const std::string& text) {
    const std::wstring wide = Widen(path.c_str(), CP_ACP);
    HANDLE file = ::CreateFileW(wide.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return ::GetLastError();
    DWORD error = WriteAll(file, text.data(), text.size());
    ::CloseHandle(file);
    return error;
}

void LocalTime(std::time_t when, std::tm& local) {
    ::localtime_s(&local, &when);
}

std::string ToUtf8(const char* text) {
    return text != nullptr ? Narrow(Widen(text, CP_ACP), CP_UTF8) : std::string();
}

std::string FromUtf8(const char* text) {
    return text != nullptr ? Narrow(Widen(text, CP_UTF8), CP_ACP) : std::string();
}

DWORD FileLock::Acquire(const std::string& lockPath) {
    Release();
    HANDLE file = ::CreateFileA(lockPath.c_str(), GENERIC_READ | GENERIC_WRITE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return ::GetLastError();
    OVERLAPPED whole = {};
    if (!::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &whole)) {
        DWORD error = ::GetLastError();
        ::CloseHandle(file);
        return error;
    }
    m_handle = reinterpret_cast<std::intptr_t>(file);
    return 0;
}

void FileLock::Release() {
    if (m_handle != -1) {
        HANDLE file = reinterpret_cast<HANDLE>(m_handle);
        OVERLAPPED whole = {};
        ::UnlockFileEx(file, 0, MAXDWORD, MAXDWORD, &whole);
        ::CloseHandle(file);
        m_handle = -1;
    }
}

} // namespace Platform
} // namespace Utilities
} // namespace Norvane
