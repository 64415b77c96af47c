#include "Util/DynamicLibrary.h"

#include "OSIsolation/src/dynamiclibrary_platform.h"

#include <utility>

namespace Util {

DynamicLibrary::~DynamicLibrary() {
    Unload();
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : m_handle(std::exchange(other.m_handle, nullptr)) {}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept {
    if (this != &other) {
        Unload();
        m_handle = std::exchange(other.m_handle, nullptr);
    }
    return *this;
}

Status DynamicLibrary::Load(const char* path) {
    Unload();
    if (path == nullptr || *path == '\0')
        return Status::GetNullPtrArg();
    TString reason;
    m_handle = Platform::OpenLibrary(path, reason);
    if (m_handle != nullptr)
        return Status::GetSucceeded();
    Status status(Status::GetFailed().GetStatusCode(), "Cannot load library %Library%: %Reason%");
    status.SetAttribute("Library", path);
    status.SetAttribute("Reason", reason.c_str());
    status.SetAttribute("Win32Error", static_cast<long>(Win32::GetLastError()));
    return status;
}

void DynamicLibrary::Unload() {
    if (m_handle != nullptr) {
        Platform::CloseLibrary(m_handle);
        m_handle = nullptr;
    }
}

void* DynamicLibrary::GetSymbol(const char* name, Status* status) const {
    if (m_handle == nullptr || name == nullptr) {
        Win32::SetLastError(ERROR_INVALID_HANDLE);
        if (status != nullptr)
            *status = Status::GetNotInitialized();
        return nullptr;
    }
    void* symbol = Platform::FindSymbol(m_handle, name);
    if (status != nullptr) {
        if (symbol != nullptr) {
            *status = Status::GetSucceeded();
        } else {
            Status failed(Status::GetNotFound().GetStatusCode(), "Symbol %Symbol% not found");
            failed.SetAttribute("Symbol", name);
            failed.SetAttribute("Win32Error", static_cast<long>(Win32::GetLastError()));
            *status = failed;
        }
    }
    return symbol;
}

} // namespace Util
