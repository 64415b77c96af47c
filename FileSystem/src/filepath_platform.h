// What the file paths ask of the platform: where the optional system functions come from and
// how two names of a file compare.
#pragma once

#include "Util/DynamicLibrary.h"
#include "Util/Win32Volume.h"

namespace FileSystem {
namespace PathPlatform {

// The Win32 names (global on Windows, in Util::Win32 elsewhere).
using namespace Util::Win32;

typedef NET_API_STATUS (*ShareInfoFn)(LPWSTR, LPWSTR, DWORD, LPBYTE*);
typedef NET_API_STATUS (*BufferFreeFn)(LPVOID);
typedef DWORD (*PathNameFn)(LPCSTR, LPSTR, DWORD);
typedef DWORD (*FinalPathFn)(HANDLE, LPSTR, DWORD, DWORD);

enum LoadResult { Loaded, LibraryMissing, FunctionMissing };

// The network share functions, from the network library that `library` loads (Windows) or the
// POSIX emulation.
LoadResult LoadShareFunctions(Util::DynamicLibrary& library, ShareInfoFn& getInfo,
                              BufferFreeFn& bufferFree);
PathNameFn FindLongPathName(Util::DynamicLibrary& library);
FinalPathFn FindFinalPathName(Util::DynamicLibrary& library);
// Whether two forms of file names (short, long or final) name the same file.
bool SameFileNames(const char* a, const char* b);
// Windows leaves the handles of the comparison open; POSIX closes them.
void ReleaseComparedFile(HANDLE file);
// The separators that end a pattern's directory part.
const char* PatternSeparators();

} // namespace PathPlatform
} // namespace FileSystem
