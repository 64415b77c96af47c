// Running a child process for `ztutil time`.
#pragma once

#include <string>
#include <vector>

namespace ztutil {

struct ChildRun {
    int exitCode = 0;
    long pageFaults = 0;
};

// Runs the command (searched on the PATH), waits for it to end and reads its page-fault count
// before it is reaped. False, with a reason, when it cannot be started.
bool RunChild(const std::vector<std::string>& command, ChildRun& run, std::string& error);

} // namespace ztutil
