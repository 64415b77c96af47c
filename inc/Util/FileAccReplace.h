// The redirected file functions: the C-runtime and Win32 calls on file names, for modules that
// must not open files by name directly.
//
// Each Util::_ZtX takes the arguments of the function X it replaces, plus the caller's source file
// and line, and returns exactly what X returns for the name that Util::ReDirectFile gives. The
// functions fall into five kinds:
// - traced (the C-runtime openers and name operations, CreateFile, CreateDirectory(Ex),
//   RemoveDirectory): every name argument is redirected, one MESSAGE event at level 1
//   (LVL_INFO_DETAIL) per name is raised before the call, the call gets the redirected names;
// - error-reporting (DeleteFile, MoveFile, CopyFile, FindFirstFile, SetFileAttributes): names are
//   redirected and only a failed call raises a MESSAGE event at level 0 (LVL_NA) that ends with
//   the Win32 error code;
// - pass-through (_findfirst, _fullpath, _makepath_s, _splitpath_s, _mktemp_s,
//   CreateNamedPipe): nothing is redirected; a level-1 event names the argument(s);
// - forwarding: _ZtForceDeleteFile is _ZtDeleteFile (a read-only file is not deleted);
// - silent (GetFileAttributes(Ex), GetDiskFreeSpaceEx, FindFirstChangeNotification,
//   SHCreateDirectoryEx, ShellExecute's file): redirected, no event.
// A traced event reads, for _Ztfopen:
//   ,_Ztfopen, Original,"<requested>",Redirected ,"<real>" ,mode, <mode>,  source, <file>,line, <n>
// Events come from the source "OSIsolation/src/fileaccreplace" with the function name
// "Util::_ZtX".
// Nothing is formatted when no subscription wants the event, and no wrapper changes errno or the
// Win32 last error beyond what the real function does.
//
// The _t forms are the generic-text twins of the plain ones (8-bit names; they differ only in
// the name their events give). The forms ending in 2 are the open functions without the
// permission mode. The macros at the end (ZtX(args...)) add __FILE__ and __LINE__ for callers:
//   FILE* f = Ztfopen("C:\\Data\\ledger.dat", "rb");
#pragma once

#include "Util/Export.h"
#include "Util/Win32Crt.h"
#include "Util/Win32File.h"
#include "Util/Win32Types.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace Util {

// Streams.
ZTUTIL_API FILE* _Ztfopen(const char* fileName, const char* mode, const char* source, int line);
ZTUTIL_API FILE* _Zt_tfopen(const char* fileName, const char* mode, const char* source, int line);
ZTUTIL_API errno_t _Ztfopen_s(FILE** file, const char* fileName, const char* mode,
                              const char* source, int line);
ZTUTIL_API errno_t _Zt_tfopen_s(FILE** file, const char* fileName, const char* mode,
                                const char* source, int line);
ZTUTIL_API FILE* _Ztfreopen(const char* path, const char* mode, FILE* stream, const char* source,
                            int line);
ZTUTIL_API FILE* _Zt_tfreopen(const char* path, const char* mode, FILE* stream, const char* source,
                              int line);
ZTUTIL_API errno_t _Ztfreopen_s(FILE** file, const char* path, const char* mode, FILE* stream,
                                const char* source, int line);
ZTUTIL_API errno_t _Zt_tfreopen_s(FILE** file, const char* path, const char* mode, FILE* stream,
                                  const char* source, int line);

// Low-level I/O.
ZTUTIL_API int _Zt_open(const char* fileName, int openFlag, int permissionMode, const char* source,
                        int line);
ZTUTIL_API int _Zt_open2(const char* fileName, int openFlag, const char* source, int line);
ZTUTIL_API int _Zt_topen(const char* fileName, int openFlag, int permissionMode, const char* source,
                         int line);
ZTUTIL_API int _Zt_topen2(const char* fileName, int openFlag, const char* source, int line);
ZTUTIL_API int _Ztopen(const char* fileName, int openFlag, int permissionMode, const char* source,
                       int line);
ZTUTIL_API int _Ztopen2(const char* fileName, int openFlag, const char* source, int line);
ZTUTIL_API int _Zt_sopen(const char* fileName, int openFlag, int shareFlag, int permissionMode,
                         const char* source, int line);
ZTUTIL_API int _Zt_sopen2(const char* fileName, int openFlag, int shareFlag, const char* source,
                          int line);
ZTUTIL_API int _Zt_tsopen(const char* fileName, int openFlag, int shareFlag, int permissionMode,
                          const char* source, int line);
ZTUTIL_API int _Zt_tsopen2(const char* fileName, int openFlag, int shareFlag, const char* source,
                           int line);
ZTUTIL_API int _Ztsopen(const char* fileName, int openFlag, int shareFlag, int permissionMode,
                        const char* source, int line);
ZTUTIL_API int _Ztsopen2(const char* fileName, int openFlag, int shareFlag, const char* source,
                         int line);
ZTUTIL_API errno_t _Zt_sopen_s(int* fileHandle, const char* fileName, int openFlag, int shareFlag,
                               int permissionMode, const char* source, int line);
ZTUTIL_API errno_t _Zt_tsopen_s(int* fileHandle, const char* fileName, int openFlag, int shareFlag,
                                int permissionMode, const char* source, int line);
ZTUTIL_API int _Zt_creat(const char* fileName, int permissionMode, const char* source, int line);
ZTUTIL_API int _Zt_tcreat(const char* fileName, int permissionMode, const char* source, int line);
ZTUTIL_API int _Ztcreat(const char* fileName, int permissionMode, const char* source, int line);

// Names.
ZTUTIL_API int _Zt_stat(const char* path, struct _stat32* buffer, const char* source, int line);
ZTUTIL_API int _Zt_stat(const char* path, struct _stat64i32* buffer, const char* source, int line);
ZTUTIL_API int _Zt_tstat(const char* path, struct _stat32* buffer, const char* source, int line);
ZTUTIL_API int _Zt_tstat(const char* path, struct _stat64i32* buffer, const char* source, int line);
ZTUTIL_API int _Zt_access(const char* path, int mode, const char* source, int line);
ZTUTIL_API int _Zt_taccess(const char* path, int mode, const char* source, int line);
ZTUTIL_API int _Ztaccess(const char* path, int mode, const char* source, int line);
ZTUTIL_API errno_t _Zt_access_s(const char* path, int mode, const char* source, int line);
ZTUTIL_API errno_t _Zt_taccess_s(const char* path, int mode, const char* source, int line);
ZTUTIL_API int _Zt_chmod(const char* fileName, int permissionMode, const char* source, int line);
ZTUTIL_API int _Zt_tchmod(const char* fileName, int permissionMode, const char* source, int line);
ZTUTIL_API int _Ztchmod(const char* fileName, int permissionMode, const char* source, int line);
ZTUTIL_API int _Zt_mkdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_tmkdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Ztmkdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_rmdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_trmdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Ztrmdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_chdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_tchdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Ztchdir(const char* dirName, const char* source, int line);
ZTUTIL_API int _Zt_unlink(const char* fileName, const char* source, int line);
ZTUTIL_API int _Zt_tunlink(const char* fileName, const char* source, int line);
ZTUTIL_API int _Ztunlink(const char* fileName, const char* source, int line);
ZTUTIL_API int _Ztremove(const char* path, const char* source, int line);
ZTUTIL_API int _Zt_tremove(const char* path, const char* source, int line);
ZTUTIL_API int _Ztrename(const char* oldName, const char* newName, const char* source, int line);
ZTUTIL_API int _Zt_trename(const char* oldName, const char* newName, const char* source, int line);

// Win32, traced.
ZTUTIL_API HANDLE _ZtCreateFile(LPCSTR fileName, DWORD desiredAccess, DWORD shareMode,
                                LPSECURITY_ATTRIBUTES securityAttributes, DWORD creationDisposition,
                                DWORD flagsAndAttributes, HANDLE templateFile, const char* source,
                                int line);
ZTUTIL_API BOOL _ZtCreateDirectory(LPCSTR pathName, LPSECURITY_ATTRIBUTES securityAttributes,
                                   const char* source, int line);
ZTUTIL_API BOOL _ZtCreateDirectoryEx(LPCSTR templateDirectory, LPCSTR newDirectory,
                                     LPSECURITY_ATTRIBUTES securityAttributes, const char* source,
                                     int line);
ZTUTIL_API BOOL _ZtRemoveDirectory(LPCSTR pathName, const char* source, int line);

// Win32, reporting failures.
ZTUTIL_API BOOL _ZtDeleteFile(LPCSTR fileName, const char* source, int line);
ZTUTIL_API BOOL _ZtForceDeleteFile(LPCSTR fileName, const char* source, int line);
ZTUTIL_API BOOL _ZtMoveFile(LPCSTR existingFileName, LPCSTR newFileName, const char* source,
                            int line);
ZTUTIL_API BOOL _ZtCopyFile(LPCSTR existingFileName, LPCSTR newFileName, BOOL failIfExists,
                            const char* source, int line);
ZTUTIL_API HANDLE _ZtFindFirstFile(LPCSTR fileName, LPWIN32_FIND_DATAA findFileData,
                                   const char* source, int line);
ZTUTIL_API BOOL _ZtSetFileAttributes(LPCSTR fileName, DWORD fileAttributes, const char* source,
                                     int line);

// Passed through unredirected.
ZTUTIL_API std::intptr_t _Zt_findfirst(const char* fileSpec, struct _finddata32_t* fileInfo,
                                       const char* source, int line);
ZTUTIL_API std::intptr_t _Zt_findfirst(const char* fileSpec, struct _finddata64i32_t* fileInfo,
                                       const char* source, int line);
ZTUTIL_API std::intptr_t _Zt_tfindfirst(const char* fileSpec, struct _finddata32_t* fileInfo,
                                        const char* source, int line);
ZTUTIL_API std::intptr_t _Zt_tfindfirst(const char* fileSpec, struct _finddata64i32_t* fileInfo,
                                        const char* source, int line);
ZTUTIL_API char* _Zt_fullpath(char* absPath, const char* relPath, std::size_t maxLength,
                              const char* source, int line);
ZTUTIL_API char* _Zt_tfullpath(char* absPath, const char* relPath, std::size_t maxLength,
                               const char* source, int line);
ZTUTIL_API errno_t _Zt_tmakepath_s(char* path, std::size_t sizeInCharacters, const char* drive,
                                   const char* dir, const char* fname, const char* ext,
                                   const char* source, int line);
ZTUTIL_API errno_t _Zt_tsplitpath_s(const char* path, char* drive, std::size_t driveSize, char* dir,
                                    std::size_t dirSize, char* fname, std::size_t fnameSize,
                                    char* ext, std::size_t extSize, const char* source, int line);
ZTUTIL_API errno_t _Zt_tmktemp_s(char* nameTemplate, std::size_t sizeInChars, const char* source,
                                 int line);
ZTUTIL_API HANDLE _ZtCreateNamedPipe(LPCSTR name, DWORD openMode, DWORD pipeMode,
                                     DWORD maxInstances, DWORD outBufferSize, DWORD inBufferSize,
                                     DWORD defaultTimeOut, LPSECURITY_ATTRIBUTES securityAttributes,
                                     const char* source, int line);

// Silent.
ZTUTIL_API DWORD _ZtGetFileAttributes(LPCSTR fileName, const char* source, int line);
ZTUTIL_API BOOL _ZtGetFileAttributesEx(LPCSTR fileName, GET_FILEEX_INFO_LEVELS infoLevelId,
                                       LPVOID fileInformation, const char* source, int line);
ZTUTIL_API BOOL _ZtGetDiskFreeSpaceEx(LPCSTR directoryName,
                                      PULARGE_INTEGER freeBytesAvailableToCaller,
                                      PULARGE_INTEGER totalNumberOfBytes,
                                      PULARGE_INTEGER totalNumberOfFreeBytes, const char* source,
                                      int line);
ZTUTIL_API HANDLE _ZtFindFirstChangeNotification(LPCSTR pathName, BOOL watchSubtree,
                                                 DWORD notifyFilter, const char* source, int line);
ZTUTIL_API int _ZtSHCreateDirectoryEx(HWND window, LPCSTR pathName,
                                      const SECURITY_ATTRIBUTES* securityAttributes,
                                      const char* source, int line);
ZTUTIL_API HINSTANCE _ZtShellExecute(HWND window, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                                     LPCSTR directory, INT showCommand, const char* source,
                                     int line);

} // namespace Util

// ZtX(args...) calls Util::_ZtX(args..., __FILE__, __LINE__).
#define ZT_FILEACC_CALL(fn, ...) ::Util::fn(__VA_ARGS__, __FILE__, __LINE__)
#define Ztfopen(...) ZT_FILEACC_CALL(_Ztfopen, __VA_ARGS__)
#define Zt_tfopen(...) ZT_FILEACC_CALL(_Zt_tfopen, __VA_ARGS__)
#define Ztfopen_s(...) ZT_FILEACC_CALL(_Ztfopen_s, __VA_ARGS__)
#define Zt_tfopen_s(...) ZT_FILEACC_CALL(_Zt_tfopen_s, __VA_ARGS__)
#define Ztfreopen(...) ZT_FILEACC_CALL(_Ztfreopen, __VA_ARGS__)
#define Zt_tfreopen(...) ZT_FILEACC_CALL(_Zt_tfreopen, __VA_ARGS__)
#define Ztfreopen_s(...) ZT_FILEACC_CALL(_Ztfreopen_s, __VA_ARGS__)
#define Zt_tfreopen_s(...) ZT_FILEACC_CALL(_Zt_tfreopen_s, __VA_ARGS__)
#define Zt_open(...) ZT_FILEACC_CALL(_Zt_open, __VA_ARGS__)
#define Zt_open2(...) ZT_FILEACC_CALL(_Zt_open2, __VA_ARGS__)
#define Zt_topen(...) ZT_FILEACC_CALL(_Zt_topen, __VA_ARGS__)
#define Zt_topen2(...) ZT_FILEACC_CALL(_Zt_topen2, __VA_ARGS__)
#define Ztopen(...) ZT_FILEACC_CALL(_Ztopen, __VA_ARGS__)
#define Ztopen2(...) ZT_FILEACC_CALL(_Ztopen2, __VA_ARGS__)
#define Zt_sopen(...) ZT_FILEACC_CALL(_Zt_sopen, __VA_ARGS__)
#define Zt_sopen2(...) ZT_FILEACC_CALL(_Zt_sopen2, __VA_ARGS__)
#define Zt_tsopen(...) ZT_FILEACC_CALL(_Zt_tsopen, __VA_ARGS__)
#define Zt_tsopen2(...) ZT_FILEACC_CALL(_Zt_tsopen2, __VA_ARGS__)
#define Ztsopen(...) ZT_FILEACC_CALL(_Ztsopen, __VA_ARGS__)
#define Ztsopen2(...) ZT_FILEACC_CALL(_Ztsopen2, __VA_ARGS__)
#define Zt_sopen_s(...) ZT_FILEACC_CALL(_Zt_sopen_s, __VA_ARGS__)
#define Zt_tsopen_s(...) ZT_FILEACC_CALL(_Zt_tsopen_s, __VA_ARGS__)
#define Zt_creat(...) ZT_FILEACC_CALL(_Zt_creat, __VA_ARGS__)
#define Zt_tcreat(...) ZT_FILEACC_CALL(_Zt_tcreat, __VA_ARGS__)
#define Ztcreat(...) ZT_FILEACC_CALL(_Ztcreat, __VA_ARGS__)
#define Zt_stat(...) ZT_FILEACC_CALL(_Zt_stat, __VA_ARGS__)
#define Zt_tstat(...) ZT_FILEACC_CALL(_Zt_tstat, __VA_ARGS__)
#define Zt_access(...) ZT_FILEACC_CALL(_Zt_access, __VA_ARGS__)
#define Zt_taccess(...) ZT_FILEACC_CALL(_Zt_taccess, __VA_ARGS__)
#define Ztaccess(...) ZT_FILEACC_CALL(_Ztaccess, __VA_ARGS__)
#define Zt_access_s(...) ZT_FILEACC_CALL(_Zt_access_s, __VA_ARGS__)
#define Zt_taccess_s(...) ZT_FILEACC_CALL(_Zt_taccess_s, __VA_ARGS__)
#define Zt_chmod(...) ZT_FILEACC_CALL(_Zt_chmod, __VA_ARGS__)
#define Zt_tchmod(...) ZT_FILEACC_CALL(_Zt_tchmod, __VA_ARGS__)
#define Ztchmod(...) ZT_FILEACC_CALL(_Ztchmod, __VA_ARGS__)
#define Zt_mkdir(...) ZT_FILEACC_CALL(_Zt_mkdir, __VA_ARGS__)
#define Zt_tmkdir(...) ZT_FILEACC_CALL(_Zt_tmkdir, __VA_ARGS__)
#define Ztmkdir(...) ZT_FILEACC_CALL(_Ztmkdir, __VA_ARGS__)
#define Zt_rmdir(...) ZT_FILEACC_CALL(_Zt_rmdir, __VA_ARGS__)
#define Zt_trmdir(...) ZT_FILEACC_CALL(_Zt_trmdir, __VA_ARGS__)
#define Ztrmdir(...) ZT_FILEACC_CALL(_Ztrmdir, __VA_ARGS__)
#define Zt_chdir(...) ZT_FILEACC_CALL(_Zt_chdir, __VA_ARGS__)
#define Zt_tchdir(...) ZT_FILEACC_CALL(_Zt_tchdir, __VA_ARGS__)
#define Ztchdir(...) ZT_FILEACC_CALL(_Ztchdir, __VA_ARGS__)
#define Zt_unlink(...) ZT_FILEACC_CALL(_Zt_unlink, __VA_ARGS__)
#define Zt_tunlink(...) ZT_FILEACC_CALL(_Zt_tunlink, __VA_ARGS__)
#define Ztunlink(...) ZT_FILEACC_CALL(_Ztunlink, __VA_ARGS__)
#define Ztremove(...) ZT_FILEACC_CALL(_Ztremove, __VA_ARGS__)
#define Zt_tremove(...) ZT_FILEACC_CALL(_Zt_tremove, __VA_ARGS__)
#define Ztrename(...) ZT_FILEACC_CALL(_Ztrename, __VA_ARGS__)
#define Zt_trename(...) ZT_FILEACC_CALL(_Zt_trename, __VA_ARGS__)
#define ZtCreateFile(...) ZT_FILEACC_CALL(_ZtCreateFile, __VA_ARGS__)
#define ZtCreateDirectory(...) ZT_FILEACC_CALL(_ZtCreateDirectory, __VA_ARGS__)
#define ZtCreateDirectoryEx(...) ZT_FILEACC_CALL(_ZtCreateDirectoryEx, __VA_ARGS__)
#define ZtRemoveDirectory(...) ZT_FILEACC_CALL(_ZtRemoveDirectory, __VA_ARGS__)
#define ZtDeleteFile(...) ZT_FILEACC_CALL(_ZtDeleteFile, __VA_ARGS__)
#define ZtForceDeleteFile(...) ZT_FILEACC_CALL(_ZtForceDeleteFile, __VA_ARGS__)
#define ZtMoveFile(...) ZT_FILEACC_CALL(_ZtMoveFile, __VA_ARGS__)
#define ZtCopyFile(...) ZT_FILEACC_CALL(_ZtCopyFile, __VA_ARGS__)
#define ZtFindFirstFile(...) ZT_FILEACC_CALL(_ZtFindFirstFile, __VA_ARGS__)
#define ZtSetFileAttributes(...) ZT_FILEACC_CALL(_ZtSetFileAttributes, __VA_ARGS__)
#define Zt_findfirst(...) ZT_FILEACC_CALL(_Zt_findfirst, __VA_ARGS__)
#define Zt_tfindfirst(...) ZT_FILEACC_CALL(_Zt_tfindfirst, __VA_ARGS__)
#define Zt_fullpath(...) ZT_FILEACC_CALL(_Zt_fullpath, __VA_ARGS__)
#define Zt_tfullpath(...) ZT_FILEACC_CALL(_Zt_tfullpath, __VA_ARGS__)
#define Zt_tmakepath_s(...) ZT_FILEACC_CALL(_Zt_tmakepath_s, __VA_ARGS__)
#define Zt_tsplitpath_s(...) ZT_FILEACC_CALL(_Zt_tsplitpath_s, __VA_ARGS__)
#define Zt_tmktemp_s(...) ZT_FILEACC_CALL(_Zt_tmktemp_s, __VA_ARGS__)
#define ZtCreateNamedPipe(...) ZT_FILEACC_CALL(_ZtCreateNamedPipe, __VA_ARGS__)
#define ZtGetFileAttributes(...) ZT_FILEACC_CALL(_ZtGetFileAttributes, __VA_ARGS__)
#define ZtGetFileAttributesEx(...) ZT_FILEACC_CALL(_ZtGetFileAttributesEx, __VA_ARGS__)
#define ZtGetDiskFreeSpaceEx(...) ZT_FILEACC_CALL(_ZtGetDiskFreeSpaceEx, __VA_ARGS__)
#define ZtFindFirstChangeNotification(...)                                                         \
    ZT_FILEACC_CALL(_ZtFindFirstChangeNotification, __VA_ARGS__)
#define ZtSHCreateDirectoryEx(...) ZT_FILEACC_CALL(_ZtSHCreateDirectoryEx, __VA_ARGS__)
#define ZtShellExecute(...) ZT_FILEACC_CALL(_ZtShellExecute, __VA_ARGS__)
