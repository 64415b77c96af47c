// The silent calls: the name is redirected and the real function called, with no event.
#include "Util/FileAccReplace.h"

#include "OSIsolation/src/fileaccreplace_shared.h"

namespace Util {

using FileAcc::Name;

DWORD _ZtGetFileAttributes(LPCSTR fileName, const char*, int) {
    const Name name(fileName);
    return Win32::GetFileAttributesA(name.Real());
}

BOOL _ZtGetFileAttributesEx(LPCSTR fileName, GET_FILEEX_INFO_LEVELS infoLevelId,
                            LPVOID fileInformation, const char*, int) {
    const Name name(fileName);
    return Win32::GetFileAttributesExA(name.Real(), infoLevelId, fileInformation);
}

BOOL _ZtGetDiskFreeSpaceEx(LPCSTR directoryName, PULARGE_INTEGER freeBytesAvailableToCaller,
                           PULARGE_INTEGER totalNumberOfBytes,
                           PULARGE_INTEGER totalNumberOfFreeBytes, const char*, int) {
    const Name name(directoryName);
    return Win32::GetDiskFreeSpaceExA(name.Real(), freeBytesAvailableToCaller, totalNumberOfBytes,
                                      totalNumberOfFreeBytes);
}

HANDLE _ZtFindFirstChangeNotification(LPCSTR pathName, BOOL watchSubtree, DWORD notifyFilter,
                                      const char*, int) {
    const Name name(pathName);
    return Win32::FindFirstChangeNotificationA(name.Real(), watchSubtree, notifyFilter);
}

int _ZtSHCreateDirectoryEx(HWND window, LPCSTR pathName,
                           const SECURITY_ATTRIBUTES* securityAttributes, const char*, int) {
    const Name name(pathName);
    return Win32::SHCreateDirectoryExA(window, name.Real(), securityAttributes);
}

HINSTANCE _ZtShellExecute(HWND window, LPCSTR operation, LPCSTR file, LPCSTR parameters,
                          LPCSTR directory, INT showCommand, const char*, int) {
    const Name name(file);
    return Win32::ShellExecuteA(window, operation, name.Real(), parameters, directory, showCommand);
}

} // namespace Util
