// Util::ProfileLocations: where the application's program, data and settings files live.
//
// The program directory is the folder of the running executable. The data directory is derived
// from it by replacing the path segment "\ZTEXE\" (on POSIX "/ZTEXE/") with "\ZTDATA\"
// ("/ZTDATA/"); where the segment is absent the data directory is the program directory.
// "FileLocations.ini" is read from the data directory. Every directory is returned with a
// trailing separator.
//
// Pointing the directories elsewhere (tests, installations outside the folder convention):
//   - the environment variables ZTUTIL_PROGRAM_DIR and ZTUTIL_DATA_DIR, read on first use;
//   - SetDirectories() at run time, which wins over the environment. A null or empty data
//     directory is derived from the program directory; both null restores the defaults.
//     Changing the directories also forgets the cached switches of "FileLocations.ini", so that
//     they are read again from the new location.
// The release-mode data directory (used for the profile log while the switch
// "DataDirectoryReleaseMode" is on) comes from ZTUTIL_RELEASE_DATA_DIR, else the system's
// shared application-data folder with the subfolder "Tallywick".
//
// ReadFileLocations() reads one value of "FileLocations.ini" through the profile-string
// function (Win32's own on Windows). All functions are safe from any thread.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

namespace Util {
namespace ProfileLocations {

ZTUTIL_API TString GetProgramDirectory();
ZTUTIL_API TString GetDataDirectory();
ZTUTIL_API TString GetReleaseDataDirectory();
// The full path of "FileLocations.ini".
ZTUTIL_API TString GetFileLocationsPath();

// The data directory that belongs to a program directory (segment replacement only).
ZTUTIL_API TString DeriveDataDirectory(const char* programDirectory);

// One value of "FileLocations.ini"; defaultValue when the file, section or key is missing.
ZTUTIL_API TString ReadFileLocations(const char* section, const char* key,
                                     const char* defaultValue = "");

ZTUTIL_API void SetDirectories(const char* programDirectory, const char* dataDirectory);

} // namespace ProfileLocations
} // namespace Util
