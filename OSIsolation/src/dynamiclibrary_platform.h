// What each platform provides behind Util::DynamicLibrary.
#pragma once

#include "Util/TString.h"
#include "Util/Win32.h"

namespace Util {
namespace Platform {

// Opens a library; on failure returns null, sets the last error and describes why in reason.
void* OpenLibrary(const char* path, TString& reason);
void CloseLibrary(void* handle);
// Looks up a symbol; on failure returns null and sets the last error to 127.
void* FindSymbol(void* handle, const char* name);

} // namespace Platform
} // namespace Util
