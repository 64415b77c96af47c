// Util::MatchesWin32Wildcard: does a file name match a find-first pattern, the way Windows'
// FindFirstFileA and _findfirst match the last component of their pattern?
//
// The pattern follows Windows' rules: '*' matches any run of characters and '?' one character;
// trailing dots of the pattern are ignored; "*.*" matches every name (also names without a dot);
// a '*' written before a '.' cannot run past the name's last dot ("*." matches names without an
// extension, "*.txt" needs the last extension to be "txt"); a '.' written before a wildcard also
// matches the end of the name ("a.*" matches "a"); a '?' written before a '.' or at the end also
// matches nothing ("a?" matches "a" and "ab"). ASCII letters compare case-blind; other bytes
// compare exactly. Null arguments never match. Thread-safe; allocates nothing for names up to
// 255 bytes.
#pragma once

#include "Util/Export.h"

#include <cstddef>

namespace Util {

ZTUTIL_API bool MatchesWin32Wildcard(const char* pattern, const char* name);

// True when the pattern holds '*' or '?' (a plain name is matched as a name, not a pattern).
ZTUTIL_API bool HasWin32Wildcard(const char* pattern);

} // namespace Util
