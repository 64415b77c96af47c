#include "OperationsManager/src/opslogfile.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

#include "OperationsManager/src/opsplatform.h"

namespace Util {
namespace OpsDetail {

namespace {

struct FileTable {
    std::mutex mutex;
    std::map<std::string, std::weak_ptr<OpsLogFile>> files;
};

FileTable& GetFileTable() {
    static FileTable* const s_pTable = new FileTable(); // outlives every handler
    return *s_pTable;
}

// "YYYY-MM-DD HH:MM:SS" of the current second, kept per thread so that the conversion to local
// time runs once a second rather than once an event.
const char* LocalSecondText(std::time_t second) {
    thread_local std::time_t s_second = -1;
    thread_local char s_text[32] = "";
    if (second != s_second) {
        std::tm local{};
        if (ToLocalTime(second, local))
            std::strftime(s_text, sizeof s_text, "%Y-%m-%d %H:%M:%S", &local);
        else
            std::snprintf(s_text, sizeof s_text, "%lld", static_cast<long long>(second));
        s_second = second;
    }
    return s_text;
}

template <typename Number> void AppendNumber(std::string& out, Number value) {
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

} // namespace

struct OpsLogFile::Impl {
    std::mutex mutex;
    std::FILE* file = nullptr;
    bool reportedFailure = false;
    std::chrono::steady_clock::time_point lastAttempt{};
};

std::shared_ptr<OpsLogFile> OpsLogFile::Get(const std::string& path) {
    FileTable& table = GetFileTable();
    std::lock_guard<std::mutex> lock(table.mutex);
    std::weak_ptr<OpsLogFile>& slot = table.files[path];
    std::shared_ptr<OpsLogFile> file = slot.lock();
    if (!file) {
        file = std::make_shared<OpsLogFile>(path);
        slot = file;
    }
    return file;
}

void OpsLogFile::FlushAll() {
    FileTable& table = GetFileTable();
    std::unique_lock<std::mutex> lock(table.mutex, std::try_to_lock);
    if (!lock.owns_lock())
        return; // ending the process from inside Get: lines are flushed as written anyway
    for (auto& entry : table.files) {
        if (std::shared_ptr<OpsLogFile> file = entry.second.lock()) {
            std::unique_lock<std::mutex> fileLock(file->m_pImpl->mutex, std::try_to_lock);
            if (fileLock.owns_lock() && file->m_pImpl->file)
                std::fflush(file->m_pImpl->file);
        }
    }
}

OpsLogFile::OpsLogFile(std::string path) : m_path(std::move(path)), m_pImpl(new Impl()) {}

OpsLogFile::~OpsLogFile() {
    if (m_pImpl->file)
        std::fclose(m_pImpl->file);
}

bool OpsLogFile::WriteLine(const std::string& line) {
    std::lock_guard<std::mutex> lock(m_pImpl->mutex);
    if (!m_pImpl->file) {
        // A file that cannot be opened is tried again at most once a second, not on every event.
        const auto now = std::chrono::steady_clock::now();
        if (m_pImpl->lastAttempt != std::chrono::steady_clock::time_point{} &&
            now - m_pImpl->lastAttempt < std::chrono::seconds(1))
            return false;
        m_pImpl->lastAttempt = now;
        m_pImpl->file = std::fopen(m_path.c_str(), "ab");
        if (!m_pImpl->file) {
            if (!m_pImpl->reportedFailure) {
                m_pImpl->reportedFailure = true;
                const std::string text =
                    "Operations manager: cannot open the log file \"" + m_path + "\"\n";
                WriteDebugOutput(text.c_str());
            }
            return false;
        }
    }
    const bool written = std::fwrite(line.data(), 1, line.size(), m_pImpl->file) == line.size();
    return std::fflush(m_pImpl->file) == 0 && written;
}

std::string FormatLogLine(const OpsEvent& event, bool stripSourceInfo) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t second = std::chrono::system_clock::to_time_t(now);
    long millis = static_cast<long>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000);
    if (millis < 0)
        millis += 1000;
    // Built by hand rather than with printf: this runs for every logged event.
    std::string line;
    line.reserve(128 + std::strlen(event.text));
    line += LocalSecondText(second);
    const char fraction[] = {
        '.', char('0' + millis / 100), char('0' + millis / 10 % 10), char('0' + millis % 10), ' ',
        '['};
    line.append(fraction, sizeof fraction);
    AppendNumber(line, CurrentProcessId());
    line += ':';
    AppendNumber(line, CurrentThreadId());
    line += "] ";
    line += Ops::MapLevelToLevelStr(event.level);
    line += ' ';
    line += Ops::MapEventTypeToEventTypeStr(event.type);
    line += ' ';
    if (!stripSourceInfo) {
        // The same text as the context's "file (line) : " prefix, without caching a copy of it
        // in a context that lives for this one event.
        const char* file = event.context.GetFile();
        line += file ? file : "";
        line += " (";
        AppendNumber(line, static_cast<long long>(static_cast<int>(event.context.GetLine())));
        line += ") : ";
    }
    const std::size_t textStart = line.size();
    line += event.text;
    for (std::size_t i = textStart; i < line.size(); ++i)
        if (line[i] == '\n' || line[i] == '\r')
            line[i] = ' ';
    line += '\n';
    return line;
}

} // namespace OpsDetail
} // namespace Util
