// What each platform decides behind Util::ReDirectFile.
#pragma once

namespace Util {
namespace Platform {

// Whether file names compare case-blind (Windows) or exactly (POSIX).
bool FileNamesAreCaseBlind();

} // namespace Platform
} // namespace Util
