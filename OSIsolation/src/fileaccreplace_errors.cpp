// The Win32 calls that report only their failures: the names are redirected, the call is made,
// and a failed call raises one level-0 event per name that ends with the Win32 error.
#include "Util/FileAccReplace.h"

#include "OSIsolation/src/fileaccreplace_shared.h"

namespace Util {

using FileAcc::Failed;
using FileAcc::Name;
using FileAcc::ReportFailure;

namespace {

// Reads the error the call left before anything else can change it; reporting keeps it.
template <class Result>
Result Checked(Result result, const SourceContext& where, const char* format, const Name& name,
               const char* source, int line) {
    if (Failed(result))
        ReportFailure(where, format, name, source, line, Win32::GetLastError());
    return result;
}

} // namespace

BOOL _ZtDeleteFile(LPCSTR fileName, const char* source, int line) {
    const Name name(fileName);
    return Checked(Win32::DeleteFileA(name.Real()), ZT_FILEACC_WHERE(_ZtDeleteFile),
                   ZT_FILEACC_FAILED(_ZtDeleteFile, "", ""), name, source, line);
}

BOOL _ZtForceDeleteFile(LPCSTR fileName, const char* source, int line) {
    // Deliberately no more than _ZtDeleteFile: a read-only file stays.
    return _ZtDeleteFile(fileName, source, line);
}

BOOL _ZtSetFileAttributes(LPCSTR fileName, DWORD fileAttributes, const char* source, int line) {
    const Name name(fileName);
    return Checked(Win32::SetFileAttributesA(name.Real(), fileAttributes),
                   ZT_FILEACC_WHERE(_ZtSetFileAttributes),
                   ZT_FILEACC_FAILED(_ZtSetFileAttributes, "", ""), name, source, line);
}

HANDLE _ZtFindFirstFile(LPCSTR fileName, LPWIN32_FIND_DATAA findFileData, const char* source,
                        int line) {
    const Name name(fileName);
    return Checked(Win32::FindFirstFileA(name.Real(), findFileData),
                   ZT_FILEACC_WHERE(_ZtFindFirstFile), ZT_FILEACC_FAILED(_ZtFindFirstFile, "", ""),
                   name, source, line);
}

// Two names: the existing one and the new one, each on its own line.
#define ZT_TWO_NAMES(fn, first, call)                                                              \
    const Name from(existingFileName), to(newFileName);                                            \
    const BOOL result = call;                                                                      \
    if (!result) {                                                                                 \
        const DWORD error = Win32::GetLastError();                                                 \
        ReportFailure(ZT_FILEACC_WHERE(fn), ZT_FILEACC_FAILED(fn, first " ", " " first " "), from, \
                      source, line, error);                                                        \
        ReportFailure(ZT_FILEACC_WHERE(fn), ZT_FILEACC_FAILED(fn, "new ", " new "), to, source,    \
                      line, error);                                                                \
    }                                                                                              \
    return result

BOOL _ZtMoveFile(LPCSTR existingFileName, LPCSTR newFileName, const char* source, int line) {
    ZT_TWO_NAMES(_ZtMoveFile, "old", Win32::MoveFileA(from.Real(), to.Real()));
}

BOOL _ZtCopyFile(LPCSTR existingFileName, LPCSTR newFileName, BOOL failIfExists, const char* source,
                 int line) {
    ZT_TWO_NAMES(_ZtCopyFile, "existing", Win32::CopyFileA(from.Real(), to.Real(), failIfExists));
}

} // namespace Util
