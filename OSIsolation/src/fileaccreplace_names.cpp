// The traced name operations: inspecting, changing and removing files and directories by name,
// from the C runtime and from Win32. Each redirects every name, raises one event per name before
// the call and calls the real function on the redirected names.
#include "Util/FileAccReplace.h"

#include "OSIsolation/src/fileaccreplace_shared.h"

namespace Util {

using FileAcc::Name;
using FileAcc::Trace;

#define ZT_STAT(fn, type, real)                                                                    \
    int fn(const char* path, struct type* buffer, const char* source, int line) {                  \
        const Name name(path);                                                                     \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",, "), name, source, line);             \
        return Win32::real(name.Real(), buffer);                                                   \
    }
ZT_STAT(_Zt_stat, _stat32, _stat32)
ZT_STAT(_Zt_stat, _stat64i32, _stat64i32)
ZT_STAT(_Zt_tstat, _stat32, _stat32)
ZT_STAT(_Zt_tstat, _stat64i32, _stat64i32)

// A name and a mode, which the event shows (fields).
#define ZT_MODE_OP(result, fn, real, fields)                                                       \
    result fn(const char* path, int mode, const char* source, int line) {                          \
        const Name name(path);                                                                     \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, fields), name, source, line, mode);      \
        return Win32::real(name.Real(), mode);                                                     \
    }
ZT_MODE_OP(int, _Zt_access, _access, ",mode, %d ")
ZT_MODE_OP(int, _Zt_taccess, _access, ",mode, %d ")
ZT_MODE_OP(int, _Ztaccess, _access, ",mode, %d ")
ZT_MODE_OP(errno_t, _Zt_access_s, _access_s, ",mode, %d ")
ZT_MODE_OP(errno_t, _Zt_taccess_s, _access_s, ",mode, %d ")
ZT_MODE_OP(int, _Zt_chmod, _chmod, ",pmode,%d ")
ZT_MODE_OP(int, _Zt_tchmod, _chmod, ",pmode,%d ")
ZT_MODE_OP(int, _Ztchmod, _chmod, ",mode, %d ")

// A name alone.
#define ZT_PATH_OP(fn, real)                                                                       \
    int fn(const char* path, const char* source, int line) {                                       \
        const Name name(path);                                                                     \
        Trace(ZT_FILEACC_WHERE(fn), ZT_FILEACC_TRACED(fn, ",, "), name, source, line);             \
        return Win32::real(name.Real());                                                           \
    }
ZT_PATH_OP(_Zt_mkdir, _mkdir)
ZT_PATH_OP(_Zt_tmkdir, _mkdir)
ZT_PATH_OP(_Ztmkdir, _mkdir)
ZT_PATH_OP(_Zt_rmdir, _rmdir)
ZT_PATH_OP(_Zt_trmdir, _rmdir)
ZT_PATH_OP(_Ztrmdir, _rmdir)
ZT_PATH_OP(_Zt_chdir, _chdir)
ZT_PATH_OP(_Zt_tchdir, _chdir)
ZT_PATH_OP(_Ztchdir, _chdir)
ZT_PATH_OP(_Zt_unlink, _unlink)
ZT_PATH_OP(_Zt_tunlink, _unlink)
ZT_PATH_OP(_Ztunlink, _unlink)
ZT_PATH_OP(_Ztremove, remove)
ZT_PATH_OP(_Zt_tremove, remove)

int _Ztrename(const char* oldName, const char* newName, const char* source, int line) {
    const Name from(oldName), to(newName);
    Trace(ZT_FILEACC_WHERE(_Ztrename), ZT_FILEACC_LINE(_Ztrename, "old ", " old ", ",, "), from,
          source, line);
    // The second line says "old Redirected" for the new name; log readers match on it.
    Trace(ZT_FILEACC_WHERE(_Ztrename), ZT_FILEACC_LINE(_Ztrename, "new ", " old ", ",, "), to,
          source, line);
    return Win32::rename(from.Real(), to.Real());
}

int _Zt_trename(const char* oldName, const char* newName, const char* source, int line) {
    const Name from(oldName), to(newName);
    Trace(ZT_FILEACC_WHERE(_Zt_trename), ZT_FILEACC_LINE(_Zt_trename, "old ", " old ", ",, "), from,
          source, line);
    return Win32::rename(from.Real(), to.Real());
}

HANDLE _ZtCreateFile(LPCSTR fileName, DWORD desiredAccess, DWORD shareMode,
                     LPSECURITY_ATTRIBUTES securityAttributes, DWORD creationDisposition,
                     DWORD flagsAndAttributes, HANDLE templateFile, const char* source, int line) {
    const Name name(fileName);
    Trace(ZT_FILEACC_WHERE(_ZtCreateFile), ZT_FILEACC_TRACED(_ZtCreateFile, ",DesiredAccess, %lx"),
          name, source, line, static_cast<unsigned long>(desiredAccess));
    return Win32::CreateFileA(name.Real(), desiredAccess, shareMode, securityAttributes,
                              creationDisposition, flagsAndAttributes, templateFile);
}

BOOL _ZtCreateDirectory(LPCSTR pathName, LPSECURITY_ATTRIBUTES securityAttributes,
                        const char* source, int line) {
    const Name name(pathName);
    Trace(ZT_FILEACC_WHERE(_ZtCreateDirectory), ZT_FILEACC_TRACED(_ZtCreateDirectory, ",, "), name,
          source, line);
    return Win32::CreateDirectoryA(name.Real(), securityAttributes);
}

BOOL _ZtCreateDirectoryEx(LPCSTR templateDirectory, LPCSTR newDirectory,
                          LPSECURITY_ATTRIBUTES securityAttributes, const char* source, int line) {
    const Name model(templateDirectory), made(newDirectory);
    Trace(ZT_FILEACC_WHERE(_ZtCreateDirectoryEx),
          ZT_FILEACC_LINE(_ZtCreateDirectoryEx, "template ", " template ", ",, "), model, source,
          line);
    Trace(ZT_FILEACC_WHERE(_ZtCreateDirectoryEx),
          ZT_FILEACC_LINE(_ZtCreateDirectoryEx, "new ", " new ", ",, "), made, source, line);
    return Win32::CreateDirectoryExA(model.Real(), made.Real(), securityAttributes);
}

BOOL _ZtRemoveDirectory(LPCSTR pathName, const char* source, int line) {
    const Name name(pathName);
    Trace(ZT_FILEACC_WHERE(_ZtRemoveDirectory), ZT_FILEACC_TRACED(_ZtRemoveDirectory, ",, "), name,
          source, line);
    return Win32::RemoveDirectoryA(name.Real());
}

} // namespace Util
