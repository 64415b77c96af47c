// Lists the files of a directory whose names match a "*.ext" style pattern. Kept private and
// small so that it can give way to the file-system subsystem's own file search later.
#pragma once

#include <string>
#include <vector>

namespace Util {
namespace OpsDetail {

// Full paths (directory joined with the name), sorted by name. An empty directory means the
// current directory. A missing or unreadable directory gives an empty list.
std::vector<std::string> ListMatchingFiles(const char* directory, const char* pattern);

// Joins a directory and a file name; a relative name with an empty directory stays as it is.
std::string JoinPath(const std::string& directory, const std::string& name);

} // namespace OpsDetail
} // namespace Util
