// What each platform provides to Util::Guid: the system's identifier generator and the text
// conversions of the RPC runtime (or the same rules, where there is no RPC runtime).
#pragma once

#include "Util/Guid.h"

#include <string>

namespace Util {
namespace GuidPlatform {

// Win32 error number of an identifier text that is not well formed (RPC_S_INVALID_STRING_UUID).
const DWORD kInvalidStringUuid = 1705;

// A new identifier; on failure, error holds a Win32 error number.
bool Create(GUID& guid, DWORD& error);
// The 36-character lower-case form, without braces.
bool ToText(const GUID& guid, std::string& text);
// Parses a zero-terminated text of exactly 36 characters in the groups 8-4-4-4-12.
bool FromText(const char* text, GUID& guid);

} // namespace GuidPlatform
} // namespace Util
