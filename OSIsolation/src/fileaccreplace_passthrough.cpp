// The calls passed through unredirected: an event names the argument(s) before the call, and the
// real function gets the arguments as they were given.
#include "Util/FileAccReplace.h"

#include "OSIsolation/src/fileaccreplace_shared.h"

namespace Util {

using FileAcc::PassThrough;

// The generic-text form writes two blanks before "on line"; log readers expect it.
#define ZT_FINDFIRST(fn, type, real, blanks)                                                       \
    std::intptr_t fn(const char* fileSpec, struct type* fileInfo, const char* source, int line) {  \
        PassThrough(ZT_FILEACC_WHERE(fn),                                                          \
                    "," #fn "(\"%s\"); w/ " #type " *fileinfo" blanks "on line %s-%d", source,     \
                    line, fileSpec);                                                               \
        return Win32::real(fileSpec, fileInfo);                                                    \
    }
ZT_FINDFIRST(_Zt_findfirst, _finddata32_t, _findfirst32, " ")
ZT_FINDFIRST(_Zt_findfirst, _finddata64i32_t, _findfirst64i32, " ")
ZT_FINDFIRST(_Zt_tfindfirst, _finddata32_t, _findfirst32, "  ")
ZT_FINDFIRST(_Zt_tfindfirst, _finddata64i32_t, _findfirst64i32, "  ")

#define ZT_FULLPATH(fn)                                                                            \
    char* fn(char* absPath, const char* relPath, std::size_t maxLength, const char* source,        \
             int line) {                                                                           \
        PassThrough(ZT_FILEACC_WHERE(fn), "," #fn "(relpath=\"%s\"); on line %s-%d", source, line, \
                    relPath);                                                                      \
        return Win32::_fullpath(absPath, relPath, maxLength);                                      \
    }
ZT_FULLPATH(_Zt_fullpath)
ZT_FULLPATH(_Zt_tfullpath)

errno_t _Zt_tmakepath_s(char* path, std::size_t sizeInCharacters, const char* drive,
                        const char* dir, const char* fname, const char* ext, const char* source,
                        int line) {
    PassThrough(ZT_FILEACC_WHERE(_Zt_tmakepath_s),
                ",_Zt_tmakepath_s(drive=\"%s\", dir=\"%s\", fname=\"%s\", ext=\"%s\"); on line "
                "%s-%d",
                source, line, drive, dir, fname, ext);
    return Win32::_makepath_s(path, sizeInCharacters, drive, dir, fname, ext);
}

errno_t _Zt_tsplitpath_s(const char* path, char* drive, std::size_t driveSize, char* dir,
                         std::size_t dirSize, char* fname, std::size_t fnameSize, char* ext,
                         std::size_t extSize, const char* source, int line) {
    PassThrough(ZT_FILEACC_WHERE(_Zt_tsplitpath_s), ",_Zt_tsplitpath_s(path=\"%s\"); on line %s-%d",
                source, line, path);
    return Win32::_splitpath_s(path, drive, driveSize, dir, dirSize, fname, fnameSize, ext,
                               extSize);
}

errno_t _Zt_tmktemp_s(char* nameTemplate, std::size_t sizeInChars, const char* source, int line) {
    PassThrough(ZT_FILEACC_WHERE(_Zt_tmktemp_s), ",_Zt_tmktemp_s(template=\"%s\"); on line %s-%d",
                source, line, static_cast<const char*>(nameTemplate));
    return Win32::_mktemp_s(nameTemplate, sizeInChars);
}

HANDLE _ZtCreateNamedPipe(LPCSTR name, DWORD openMode, DWORD pipeMode, DWORD maxInstances,
                          DWORD outBufferSize, DWORD inBufferSize, DWORD defaultTimeOut,
                          LPSECURITY_ATTRIBUTES securityAttributes, const char* source, int line) {
    PassThrough(ZT_FILEACC_WHERE(_ZtCreateNamedPipe),
                ",_ZtCreateNamedPipe(name=\"%s\"); on line %s-%d", source, line, name);
    return Win32::CreateNamedPipeA(name, openMode, pipeMode, maxInstances, outBufferSize,
                                   inBufferSize, defaultTimeOut, securityAttributes);
}

} // namespace Util
