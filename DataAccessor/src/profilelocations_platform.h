// What each platform provides behind Util::ProfileLocations.
#pragma once

#include <string>

namespace Util {
namespace Platform {

// The path separator of the platform's own paths.
extern const char kPathSeparator;
// The full path of the running executable (empty when it cannot be found).
std::string ExecutablePath();
// The system's shared application-data folder, with a trailing separator (may be empty).
std::string SharedAppDataDirectory();

} // namespace Platform
} // namespace Util
