#include <windows.h>

#include <string>

#include "OperationsManager/src/opsreadfile.h"

namespace Util {
namespace OpsDetail {

namespace {

bool Fail(DWORD error, ReadFileFailure& failure) {
    failure.win32Error = error;
    char* text = nullptr;
    const DWORD length = ::FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, 0, reinterpret_cast<LPSTR>(&text), 0, nullptr);
    if (length != 0 && text != nullptr) {
        failure.reason.assign(text, length);
        while (!failure.reason.empty() &&
               (failure.reason.back() == '\n' || failure.reason.back() == '\r' ||
                failure.reason.back() == ' ' || failure.reason.back() == '.'))
            failure.reason.pop_back();
    } else {
        failure.reason = "error " + std::to_string(error);
    }
    if (text != nullptr)
        ::LocalFree(text);
    return false;
}

bool Refuse(const std::string& reason, ReadFileFailure& failure) {
    failure.win32Error = 0;
    failure.reason = reason;
    return false;
}

class Handle {
public:
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    ~Handle() {
        if (m_handle != INVALID_HANDLE_VALUE)
            ::CloseHandle(m_handle);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

} // namespace

bool ReadRegularFile(const char* path, std::size_t maxSize, std::string& content,
                     ReadFileFailure& failure) {
    content.clear();
    const DWORD attributes = ::GetFileAttributesA(path);
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return Fail(ERROR_DIRECTORY, failure);
    Handle file(::CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file.Get() == INVALID_HANDLE_VALUE)
        return Fail(::GetLastError(), failure);
    if (::GetFileType(file.Get()) != FILE_TYPE_DISK)
        return Refuse("not a regular file", failure);
    LARGE_INTEGER size;
    if (!::GetFileSizeEx(file.Get(), &size))
        return Fail(::GetLastError(), failure);
    if (size.QuadPart < 0 || static_cast<unsigned long long>(size.QuadPart) > maxSize)
        return Refuse("larger than " + std::to_string(maxSize) + " bytes", failure);
    content.resize(static_cast<std::size_t>(size.QuadPart) + 1);
    std::size_t used = 0;
    for (;;) {
        if (used == content.size()) {
            if (content.size() > maxSize) {
                content.clear();
                return Refuse("larger than " + std::to_string(maxSize) + " bytes", failure);
            }
            content.resize(content.size() * 2 > maxSize + 1 ? maxSize + 1 : content.size() * 2);
        }
        DWORD got = 0;
        if (!::ReadFile(file.Get(), &content[used], static_cast<DWORD>(content.size() - used), &got,
                        nullptr)) {
            const DWORD error = ::GetLastError();
            content.clear();
            return Fail(error, failure);
        }
        if (got == 0)
            break;
        used += got;
    }
    content.resize(used);
    return true;
}

} // namespace OpsDetail
} // namespace Util
