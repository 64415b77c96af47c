// The rerouted profile (INI) functions: drop-in replacements of the Win32 profile functions
// that serve every INI name through Norvane::Utilities::PersistentKeyValueMapManager.
//
// Each function takes the Win32 function's arguments plus the caller's source file and line
// (used only in the log); the macros UtilGetPrivateProfileString & co. add them. Every call
// writes one record to "IniShimLogger.txt" in the "LOG" folder of the data directory while the
// switch "IsIniLogOn" of "FileLocations.ini" (section "debugging") is "1". A null or empty file
// name means "Win.ini", as do the no-file variants. Failures show only in the results: the get
// functions give the default, the write functions 0.
//
// Deliberate differences from Win32: _UtilGetPrivateProfileSection gives the section's key
// names (not key=value lines); UtilProfileLoad does nothing (the manager is created on first
// use); UtilProfileUnload destroys the manager.
#pragma once

#include "Util/Export.h"

ZTUTIL_API unsigned int UtilProfileLoad();
ZTUTIL_API unsigned int UtilProfileUnload();
ZTUTIL_API unsigned int UtilSetVersionInfo(const char* first, const char* second,
                                           const char* third);

ZTUTIL_API unsigned long _UtilGetPrivateProfileString(const char* section, const char* key,
                                                      const char* defaultValue, char* buffer,
                                                      unsigned long size, const char* file,
                                                      const char* source, int line);
ZTUTIL_API unsigned int _UtilGetPrivateProfileInt(const char* section, const char* key,
                                                  int defaultValue, const char* file,
                                                  const char* source, int line);
ZTUTIL_API unsigned long _UtilGetPrivateProfileSection(const char* section, char* buffer,
                                                       unsigned long size, const char* file,
                                                       const char* source, int line);
ZTUTIL_API unsigned long _UtilGetPrivateProfileSectionNames(char* buffer, unsigned long size,
                                                            const char* file, const char* source,
                                                            int line);
ZTUTIL_API unsigned long _UtilGetProfileString(const char* section, const char* key,
                                               const char* defaultValue, char* buffer,
                                               unsigned long size, const char* source, int line);
ZTUTIL_API unsigned int _UtilGetProfileInt(const char* section, const char* key, int defaultValue,
                                           const char* source, int line);
ZTUTIL_API int _UtilWritePrivateProfileString(const char* section, const char* key,
                                              const char* value, const char* file,
                                              const char* source, int line);
ZTUTIL_API int _UtilWritePrivateProfileSection(const char* section, const char* pairs,
                                               const char* file, const char* source, int line);
ZTUTIL_API int _UtilWriteProfileString(const char* section, const char* key, const char* value,
                                       const char* source, int line);

#define UtilGetPrivateProfileString(section, key, def, buffer, size, file)                         \
    _UtilGetPrivateProfileString(section, key, def, buffer, size, file, __FILE__, __LINE__)
#define UtilGetPrivateProfileInt(section, key, def, file)                                          \
    _UtilGetPrivateProfileInt(section, key, def, file, __FILE__, __LINE__)
#define UtilGetPrivateProfileSection(section, buffer, size, file)                                  \
    _UtilGetPrivateProfileSection(section, buffer, size, file, __FILE__, __LINE__)
#define UtilGetPrivateProfileSectionNames(buffer, size, file)                                      \
    _UtilGetPrivateProfileSectionNames(buffer, size, file, __FILE__, __LINE__)
#define UtilGetProfileString(section, key, def, buffer, size)                                      \
    _UtilGetProfileString(section, key, def, buffer, size, __FILE__, __LINE__)
#define UtilGetProfileInt(section, key, def)                                                       \
    _UtilGetProfileInt(section, key, def, __FILE__, __LINE__)
#define UtilWritePrivateProfileString(section, key, value, file)                                   \
    _UtilWritePrivateProfileString(section, key, value, file, __FILE__, __LINE__)
#define UtilWritePrivateProfileSection(section, pairs, file)                                       \
    _UtilWritePrivateProfileSection(section, pairs, file, __FILE__, __LINE__)
#define UtilWriteProfileString(section, key, value)                                                \
    _UtilWriteProfileString(section, key, value, __FILE__, __LINE__)
