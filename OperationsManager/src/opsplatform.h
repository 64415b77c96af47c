// What the operations manager's handlers need from the operating system. One implementation per
// platform: opsplatform_posix.cpp and opsplatform_win.cpp.
#pragma once

#include <ctime>

namespace Util {
namespace OpsDetail {

unsigned long CurrentProcessId();
unsigned long CurrentThreadId();
// Local broken-down time; false if the conversion failed.
bool ToLocalTime(std::time_t time, std::tm& out);
// OutputDebugString on Windows; standard error on POSIX.
void WriteDebugOutput(const char* text);
// A beep of the frequency (Hz) and duration (ms); on POSIX the terminal bell when standard error
// is a terminal, otherwise nothing.
void SoundBeep(unsigned long frequency, unsigned long duration);
bool IsDebuggerAttached();
void BreakIntoDebugger();
// Shows the message to the user: a message box on Windows, standard error on POSIX. Returns true
// when the user asked to break into the debugger (only possible with the break button shown).
bool AlertUser(const char* title, const char* message, bool showBreakButton);
// The num lock key's state on Windows; POSIX has no such state and always answers false.
bool IsNumLockOn();
// Ends the process at once with the exit status, without running static destructors.
[[noreturn]] void EndProcess(int exitStatus);

} // namespace OpsDetail
} // namespace Util
