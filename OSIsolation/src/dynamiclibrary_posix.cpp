#include "OSIsolation/src/dynamiclibrary_platform.h"

#include <cstring>
#include <dlfcn.h>
#include <unistd.h>

namespace Util {
namespace Platform {

void* OpenLibrary(const char* path, TString& reason) {
    void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* text = dlerror();
        reason = text != nullptr ? text : "unknown error";
        // As LoadLibraryA: a file that is there but is no library is in the wrong format; a
        // missing file or a missing dependency is a module not found.
        const bool badFormat = std::strchr(path, '/') != nullptr && ::access(path, F_OK) == 0 &&
                               (text == nullptr || std::strstr(text, "No such file") == nullptr);
        Win32::SetLastError(badFormat ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
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
