// Util::DynamicLibrary: one loaded shared library (a DLL on Windows, a shared object on POSIX).
//
// Load() opens the library by path or name, GetSymbol() looks up an exported function or
// object by name, and the library is released when the object is destroyed or Unload() is
// called. Failures return a failed Util::Status carrying the Win32 error number in the
// attribute "Win32Error" (126 module not found, 127 procedure not found) and the system's
// text in "Reason", and set the thread's Win32 last error. Move-only; one thread at a time.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"

namespace Util {

class ZTUTIL_API DynamicLibrary {
public:
    DynamicLibrary() = default;
    ~DynamicLibrary();
    DynamicLibrary(DynamicLibrary&& other) noexcept;
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    Status Load(const char* path);
    void Unload();
    bool IsLoaded() const { return m_handle != nullptr; }

    // The address of the exported symbol, or null (with the last error set to 127).
    void* GetSymbol(const char* name, Status* status = nullptr) const;

    template <typename Fn> Fn GetFunction(const char* name, Status* status = nullptr) const {
        return reinterpret_cast<Fn>(GetSymbol(name, status));
    }

private:
    void* m_handle = nullptr;
};

} // namespace Util
