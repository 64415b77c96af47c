#include "OSIsolation/src/dynamiclibrary_platform.h"

#include <dlfcn.h>

namespace Util {
namespace Platform {

void* OpenLibrary(const char* path, TString& reason) {
    void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* text = dlerror();
        reason = text != nullptr ? text : "unknown error";
        Win32::SetLastError(ERROR_MOD_NOT_FOUND);
    }
    return handle;
}

void CloseLibrary(void* handle) {
    dlclose(handle);
}

void* FindSymbol(void* handle, const char* name) {
    dlerror();
    void* symbol = dlsym(handle, name);
    if (symbol == nullptr)
        Win32::SetLastError(ERROR_PROC_NOT_FOUND);
    return symbol;
}

} // namespace Platform
} // namespace Util
