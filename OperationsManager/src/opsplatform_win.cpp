#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "OperationsManager/src/opsplatform.h"

namespace Util {
namespace OpsDetail {

unsigned long CurrentProcessId() {
    return ::GetCurrentProcessId();
}

unsigned long CurrentThreadId() {
    return ::GetCurrentThreadId();
}

bool ToLocalTime(std::time_t time, std::tm& out) {
    return ::localtime_s(&out, &time) == 0;
}

FileHandle OpenAppendFile(const char* path) {
    // Append access alone (no FILE_WRITE_DATA): every WriteFile goes to the current end of the
    // file as one piece, like O_APPEND on POSIX.
    const HANDLE file = ::CreateFileA(path, FILE_APPEND_DATA,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? kNoFile : reinterpret_cast<FileHandle>(file);
}

bool AppendToFile(FileHandle file, const char* data, std::size_t size) {
    // Windows appends each write whole; Wine places concurrent appends of one process at the
    // same end of file, so that lines overwrite each other. Appends of this process take turns.
    static std::mutex appending;
    std::lock_guard<std::mutex> turn(appending);
    while (size > 0) {
        const DWORD chunk = size > 0x40000000u ? 0x40000000u : static_cast<DWORD>(size);
        DWORD written = 0;
        if (!::WriteFile(reinterpret_cast<HANDLE>(file), data, chunk, &written, nullptr) ||
            written == 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

void CloseFile(FileHandle file) {
    if (file != kNoFile)
        ::CloseHandle(reinterpret_cast<HANDLE>(file));
}

void WriteDebugOutput(const char* text) {
    ::OutputDebugStringA(text);
}

void SoundBeep(unsigned long frequency, unsigned long duration) {
    ::Beep(static_cast<DWORD>(frequency), static_cast<DWORD>(duration));
}

bool IsDebuggerAttached() {
    return ::IsDebuggerPresent() != FALSE;
}

void BreakIntoDebugger() {
    ::DebugBreak();
}

bool AlertUser(const char* title, const char* message, bool showBreakButton) {
    const UINT type = (showBreakButton ? MB_ABORTRETRYIGNORE : MB_OK) | MB_ICONWARNING |
                      MB_SETFOREGROUND | MB_TASKMODAL;
    const int answer = ::MessageBoxA(nullptr, message ? message : "", title ? title : "", type);
    // Abort is the break button: the user wants the debugger.
    return showBreakButton && answer == IDABORT;
}

bool IsNumLockOn() {
    return (::GetKeyState(VK_NUMLOCK) & 1) != 0;
}

void EndProcess(int exitStatus) {
    std::fflush(nullptr);
    ::ExitProcess(static_cast<UINT>(exitStatus));
}

} // namespace OpsDetail
} // namespace Util
