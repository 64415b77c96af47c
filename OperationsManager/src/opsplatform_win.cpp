#include <windows.h>

#include <cstdio>
#include <cstdlib>

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
