// The Win32 profile (INI file) functions, reached as Util::Win32::X on every platform.
//
// On Windows the names are the real kernel32 functions. On POSIX the OS-isolation layer has an
// INI engine with the observable behaviour of Windows' own:
// - Section and key names match case-blind (ASCII letters); blanks around names and values in
//   the file are ignored, and a value enclosed in matching single or double quotes is read
//   without them. The first of duplicate sections or keys wins on read; name lists show every
//   occurrence. Lines starting with ';' are comments; lines without '=' are not keys.
// - Name lists (a null section or key) hold each name followed by a null and one more null at
//   the end; a buffer too small for a list keeps nSize - 2 characters and two nulls and the
//   result is nSize - 2. A value or default too long for the buffer keeps nSize - 1 characters
//   and sets ERROR_MORE_DATA. A missing file or key gives the default (its trailing blanks
//   removed) and ERROR_FILE_NOT_FOUND.
// - Writing a null value removes the key, a null key removes the whole section. A missing file
//   is created (its directory is not: ERROR_PATH_NOT_FOUND). Everything else in the file stays
//   as it was, byte for byte: comments, other lines, spelling and line endings. New keys go
//   after the last line of their section, new sections at the end of the file.
// - Files are ANSI text (UTF-8 on POSIX) or UTF-16 LE with its byte order mark, and a write
//   keeps the encoding. A UTF-8 or UTF-16 BE byte order mark is not recognised, as on Windows:
//   it is part of the first line, which therefore holds no section.
// - Every write replaces the file atomically (a temporary file in the same directory, flushed,
//   renamed over the old one), so a failed write leaves the old file intact. Calls from several
//   threads are serialised, and so are writers in several processes (a lock on the file's
//   directory), so that none loses another's change.
// - File names may use '\' or '/'. A name without any directory part lies in the Windows
//   directory; on POSIX that is the directory named by the environment variable ZT_WINDOWS_DIR,
//   or $HOME/.ztutil/Windows when it is not set (created on the first write).
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

namespace Util {
namespace Win32 {

#if defined(_WIN32)
using ::GetPrivateProfileIntA;
using ::GetPrivateProfileSectionA;
using ::GetPrivateProfileSectionNamesA;
using ::GetPrivateProfileStringA;
using ::WritePrivateProfileSectionA;
using ::WritePrivateProfileStringA;
#else
ZTUTIL_API DWORD GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                          LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName);
ZTUTIL_API BOOL WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                           LPCSTR lpFileName);
ZTUTIL_API UINT GetPrivateProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault,
                                      LPCSTR lpFileName);
// The section's lines as "key=value" strings, each null-terminated, with a final extra null.
ZTUTIL_API DWORD GetPrivateProfileSectionA(LPCSTR lpAppName, LPSTR lpReturnedString, DWORD nSize,
                                           LPCSTR lpFileName);
ZTUTIL_API DWORD GetPrivateProfileSectionNamesA(LPSTR lpszReturnBuffer, DWORD nSize,
                                                LPCSTR lpFileName);
// Replaces the section's lines by the null-terminated "key=value" strings of lpString (ended by
// an extra null); the section is created where it is missing.
ZTUTIL_API BOOL WritePrivateProfileSectionA(LPCSTR lpAppName, LPCSTR lpString, LPCSTR lpFileName);
#endif

} // namespace Win32
} // namespace Util
