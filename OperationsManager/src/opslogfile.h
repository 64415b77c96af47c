// Log files shared by every handler that writes to the same path: one open file per path for
// the life of the process, one lock per file, whole lines written and flushed under the lock so
// that lines from different threads never interleave.
#pragma once

#include <memory>
#include <string>

#include "Util/OpsFilter.h"

namespace Util {
namespace OpsDetail {

class OpsLogFile {
public:
    // The file for this path, created (not yet opened) on first request.
    static std::shared_ptr<OpsLogFile> Get(const std::string& path);
    // Flushes every open log file; used before the process is ended.
    static void FlushAll();

    explicit OpsLogFile(std::string path);
    ~OpsLogFile();
    OpsLogFile(const OpsLogFile&) = delete;
    OpsLogFile& operator=(const OpsLogFile&) = delete;

    // Appends the line (which ends in a newline) and flushes; false if the file cannot be opened.
    bool WriteLine(const std::string& line);
    const std::string& GetPath() const { return m_path; }

private:
    struct Impl;
    std::string m_path;
    std::unique_ptr<Impl> m_pImpl;
};

// One log line for the event, ending in a newline: local time with milliseconds, process and
// thread id, level and type keywords, the "file (line) : " prefix unless stripped, and the text
// with line breaks turned into spaces.
std::string FormatLogLine(const OpsEvent& event, bool stripSourceInfo);

} // namespace OpsDetail
} // namespace Util
