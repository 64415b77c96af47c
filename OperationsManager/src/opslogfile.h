// Log files shared by every handler that writes to the same path: one open file per path for
// the life of its handlers, opened for appending and written without a buffer of ours, one whole
// line per system call. The system appends each call's bytes as one piece, so lines from
// different threads (and processes) never interleave and no lock of ours is taken per line.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include "OperationsManager/src/opsplatform.h"
#include "Util/Export.h"
#include "Util/OpsFilter.h"

namespace Util {
namespace OpsDetail {

class OpsLogFile {
public:
    // The file for this path, created (not yet opened) on first request.
    static std::shared_ptr<OpsLogFile> Get(const std::string& path);

    explicit OpsLogFile(std::string path);
    ~OpsLogFile();
    OpsLogFile(const OpsLogFile&) = delete;
    OpsLogFile& operator=(const OpsLogFile&) = delete;

    // Appends the line (which ends in a newline); it has reached the operating system on return.
    // False if the file cannot be opened or written.
    bool WriteLine(const char* line, std::size_t size);
    bool WriteLine(const std::string& line) { return WriteLine(line.data(), line.size()); }
    const std::string& GetPath() const { return m_path; }

private:
    FileHandle Open();

    std::string m_path;
    std::atomic<FileHandle> m_file{kNoFile};
    std::mutex m_openMutex; // only while opening
    bool m_reportedFailure = false;
    long long m_lastAttempt = 0; // steady-clock milliseconds of the last failed open, 0 if none
};

// One log line, held on the stack when it is of ordinary length.
class ZTUTIL_API LogLine {
public:
    LogLine() = default;
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    // Room for size characters; the previous content is dropped.
    char* Reserve(std::size_t size);
    void SetSize(std::size_t size) { m_size = size; }
    const char* Data() const { return m_pData; }
    std::size_t Size() const { return m_size; }

private:
    char m_inline[1024];
    std::unique_ptr<char[]> m_pHeap;
    char* m_pData = m_inline;
    std::size_t m_size = 0;
};

// One log line for the event, ending in a newline: local time with milliseconds, process and
// thread id, level and type keywords, the "file (line) : " prefix unless stripped, and the text
// with line breaks turned into spaces:
//   2024-03-05 14:07:09.042 [4120:4133] LVL_WARNING MESSAGE mod/a.cpp (31) : text
void FormatLogLine(const OpsEvent& event, bool stripSourceInfo, LogLine& out);
ZTUTIL_API std::string FormatLogLine(const OpsEvent& event, bool stripSourceInfo);

// The same line for a given time (seconds since the epoch and milliseconds), process and thread.
ZTUTIL_API void FormatLogLineAt(const OpsEvent& event, bool stripSourceInfo, std::time_t second,
                                unsigned millisecond, unsigned long pid, unsigned long tid,
                                LogLine& out);

} // namespace OpsDetail
} // namespace Util
