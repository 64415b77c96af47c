// POSIX: the emulated functions are always there; names compare by text or by device and inode.
#include "FileSystem/src/filepath_platform.h"

#include "Util/Win32File.h"

#include <sys/stat.h>

#include <cstring>

namespace FileSystem {
namespace PathPlatform {

using namespace Util::Win32;

LoadResult LoadShareFunctions(Util::DynamicLibrary&, ShareInfoFn& getInfo,
                              BufferFreeFn& bufferFree) {
    getInfo = &Util::Win32::NetShareGetInfo;
    bufferFree = &Util::Win32::NetApiBufferFree;
    return Loaded;
}

PathNameFn FindLongPathName(Util::DynamicLibrary&) {
    return &Util::Win32::GetLongPathNameA;
}

FinalPathFn FindFinalPathName(Util::DynamicLibrary&) {
    return &Util::Win32::GetFinalPathNameByHandleA;
}

bool SameFileNames(const char* a, const char* b) {
    if (std::strcmp(a, b) == 0)
        return true;
    struct stat first, second;
    return stat(a, &first) == 0 && stat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

void ReleaseComparedFile(HANDLE file) {
    Util::Win32::CloseHandle(file);
}

const char* PatternSeparators() {
    return "\\/";
}

} // namespace PathPlatform
} // namespace FileSystem
