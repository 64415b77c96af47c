// The profile log "IniShimLogger.txt" and the cached "debugging" switches of
// "FileLocations.ini" that govern the settings functions.
#pragma once

#include <string>

namespace Norvane {
namespace Utilities {
namespace ProfileLog {

// Each switch is read once, on first use, and is on exactly when its value is "1".
bool IsIniLegacyMode();
bool IsIniLogOn();
bool IsDataDirectoryReleaseMode();
// Forgets the cached switches (the directories changed); they are read again on next use.
void ForgetSwitches();

// The full path of "IniShimLogger.txt" in the "LOG" folder of the log directory.
std::string LogFilePath();

// Appends one record naming sourceFile and line when "IsIniLogOn" is on; a log that cannot be
// opened is skipped.
void Write(const char* sourceFile, int line, const std::string& message);

} // namespace ProfileLog
} // namespace Utilities
} // namespace Norvane
