// What the operations manager's handlers need from the operating system. One implementation per
// platform: opsplatform_posix.cpp and opsplatform_win.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace Util {
namespace OpsDetail {

// Both cheap enough to ask for on every event: no system call after the first (per thread for
// the thread id); a forked child gets its own values.
unsigned long CurrentProcessId();
unsigned long CurrentThreadId();
// Local broken-down time; false if the conversion failed.
bool ToLocalTime(std::time_t time, std::tm& out);
// A log file opened for appending (created if missing, shared with other writers and readers);
// kNoFile when it cannot be opened. Every write goes to the end of the file, whatever other
// handles or processes have written meanwhile.
using FileHandle = std::intptr_t;
constexpr FileHandle kNoFile = -1;
FileHandle OpenAppendFile(const char* path);
// Appends the bytes with one system call (more only if the system writes fewer bytes than asked,
// which for a regular file happens only when the device fails or is full); unbuffered, so the
// bytes have reached the operating system on return. False on failure.
bool AppendToFile(FileHandle file, const char* data, std::size_t size);
void CloseFile(FileHandle file);
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
