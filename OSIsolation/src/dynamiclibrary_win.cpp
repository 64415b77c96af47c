#include "OSIsolation/src/dynamiclibrary_platform.h"

namespace Util {
namespace Platform {

void* OpenLibrary(const char* path, TString& reason) {
    HMODULE module = ::LoadLibraryA(path);
    if (module == nullptr)
        reason.Format("LoadLibraryA failed with error %lu", ::GetLastError());
    return reinterpret_cast<void*>(module);
}

void CloseLibrary(void* handle) {
    ::FreeLibrary(reinterpret_cast<HMODULE>(handle));
}

void* FindSymbol(void* handle, const char* name) {
    return reinterpret_cast<void*>(::GetProcAddress(reinterpret_cast<HMODULE>(handle), name));
}

} // namespace Platform
} // namespace Util
