// Windows: the optional functions come from their system libraries; names compare as text.
#include "FileSystem/src/filepath_platform.h"

#include "Util/StringHelpers.h"

namespace FileSystem {
namespace PathPlatform {

LoadResult LoadShareFunctions(Util::DynamicLibrary& library, ShareInfoFn& getInfo,
                              BufferFreeFn& bufferFree) {
    if (library.Load("NETAPI32.DLL").Failed())
        return LibraryMissing;
    getInfo = library.GetFunction<ShareInfoFn>("NetShareGetInfo");
    bufferFree = library.GetFunction<BufferFreeFn>("NetApiBufferFree");
    return getInfo != nullptr && bufferFree != nullptr ? Loaded : FunctionMissing;
}

PathNameFn FindLongPathName(Util::DynamicLibrary& library) {
    if (library.Load("KERNEL32.DLL").Failed())
        return nullptr;
    return library.GetFunction<PathNameFn>("GetLongPathNameA");
}

FinalPathFn FindFinalPathName(Util::DynamicLibrary& library) {
    if (library.Load("KERNEL32.DLL").Failed())
        return nullptr;
    return library.GetFunction<FinalPathFn>("GetFinalPathNameByHandleA");
}

bool SameFileNames(const char* a, const char* b) {
    return Util::CompareStrings(a, b, Util::CaseInsensitive) == 0;
}

void ReleaseComparedFile(HANDLE) {
    // Left open on purpose: the comparison has always kept these handles.
}

const char* PatternSeparators() {
    return "\\";
}

} // namespace PathPlatform
} // namespace FileSystem
