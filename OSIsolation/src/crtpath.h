// The text rules of the C runtime's path functions, kept apart from the file system so that
// they can be tested and fuzzed alone.
#pragma once

#include <cstddef>

namespace Util {
namespace Platform {

// Where the four parts of a path lie in its text: [0, driveEnd) is the drive ("X:"), then the
// directory up to and including the last separator ('/' or '\'), then the file name up to the
// last dot of the final component, then the extension from that dot on.
struct PathSpans {
    std::size_t driveEnd;
    std::size_t dirEnd;
    std::size_t fnameEnd;
    std::size_t extEnd;
};

PathSpans SplitPathSpans(const char* path);

// _splitpath_s: validates, then copies each part into its buffer (null buffers with size 0 are
// skipped). Returns 0, EINVAL or ERANGE; on failure every given buffer is emptied.
int SplitPath(const char* path, char* drive, std::size_t driveSize, char* dir, std::size_t dirSize,
              char* fname, std::size_t fnameSize, char* ext, std::size_t extSize);

// _makepath_s: joins the parts, adding ':' after the drive letter, `separator` after a directory
// that does not end in one and '.' before an extension that does not start with one.
// Returns 0, EINVAL or ERANGE; on ERANGE the buffer is emptied.
int MakePath(char* path, std::size_t size, const char* drive, const char* dir, const char* fname,
             const char* ext, char separator);

} // namespace Platform
} // namespace Util
