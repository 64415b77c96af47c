#include "OperationsManager/src/opslogfile.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>

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

// What a thread keeps between its log lines, so that an event costs no conversion to local time
// (once a second instead) and no number formatting for the ids. Trivially destructible, so the
// thread-local costs no registration.
struct LineStamp {
    std::time_t second = -1;
    char secondText[32] = {};
    std::size_t secondLength = 0;
    unsigned long pid = 0;
    unsigned long tid = 0;
    char ids[48] = {}; // "[pid:tid] "
    std::size_t idsLength = 0;
};

thread_local LineStamp t_stamp;

// Out of line on purpose: inline, the compiler looks the thread-local up again after every call
// it makes (a call into the C library's TLS resolver in a shared library) instead of keeping it.
[[gnu::noinline]] LineStamp& ThreadStamp() {
    return t_stamp;
}

void StampSecond(LineStamp& stamp, std::time_t second) {
    std::tm local{};
    std::size_t length = 0;
    if (ToLocalTime(second, local))
        length =
            std::strftime(stamp.secondText, sizeof stamp.secondText, "%Y-%m-%d %H:%M:%S", &local);
    if (length == 0)
        length = static_cast<std::size_t>(std::snprintf(stamp.secondText, sizeof stamp.secondText,
                                                        "%lld", static_cast<long long>(second)));
    stamp.secondLength = length;
    stamp.second = second;
}

void StampIds(LineStamp& stamp, unsigned long pid, unsigned long tid) {
    char* p = stamp.ids;
    char* const end = stamp.ids + sizeof stamp.ids;
    *p++ = '[';
    p = std::to_chars(p, end, pid).ptr;
    *p++ = ':';
    p = std::to_chars(p, end, tid).ptr;
    *p++ = ']';
    *p++ = ' ';
    stamp.idsLength = static_cast<std::size_t>(p - stamp.ids);
    stamp.pid = pid;
    stamp.tid = tid;
}

char* Put(char* out, const char* text, std::size_t length) {
    std::memcpy(out, text, length);
    return out + length;
}

long long SteadyMilliseconds() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

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

OpsLogFile::OpsLogFile(std::string path) : m_path(std::move(path)) {}

OpsLogFile::~OpsLogFile() {
    CloseFile(m_file.load(std::memory_order_acquire));
}

FileHandle OpsLogFile::Open() {
    std::lock_guard<std::mutex> lock(m_openMutex);
    FileHandle file = m_file.load(std::memory_order_acquire);
    if (file != kNoFile)
        return file; // another thread opened it meanwhile
    // A file that cannot be opened is tried again at most once a second, not on every event.
    const long long now = SteadyMilliseconds();
    if (m_lastAttempt != 0 && now - m_lastAttempt < 1000)
        return kNoFile;
    file = OpenAppendFile(m_path.c_str());
    if (file == kNoFile) {
        m_lastAttempt = now != 0 ? now : 1;
        if (!m_reportedFailure) {
            m_reportedFailure = true;
            const std::string text =
                "Operations manager: cannot open the log file \"" + m_path + "\"\n";
            WriteDebugOutput(text.c_str());
        }
        return kNoFile;
    }
    m_file.store(file, std::memory_order_release);
    return file;
}

bool OpsLogFile::WriteLine(const char* line, std::size_t size) {
    FileHandle file = m_file.load(std::memory_order_acquire);
    if (file == kNoFile && (file = Open()) == kNoFile)
        return false;
    // No lock: the file is in append mode and the line goes out in one call (see the header).
    return AppendToFile(file, line, size);
}

char* LogLine::Reserve(std::size_t size) {
    if (size > sizeof m_inline) {
        m_pHeap.reset(new char[size]);
        m_pData = m_pHeap.get();
    } else {
        m_pData = m_inline;
    }
    m_size = 0;
    return m_pData;
}

void FormatLogLineAt(const OpsEvent& event, bool stripSourceInfo, std::time_t second,
                     unsigned millisecond, unsigned long pid, unsigned long tid, LogLine& out) {
    LineStamp& stamp = ThreadStamp();
    if (stamp.second != second)
        StampSecond(stamp, second);
    if (stamp.pid != pid || stamp.tid != tid || stamp.idsLength == 0)
        StampIds(stamp, pid, tid);

    const char* level = Ops::MapLevelToLevelStr(event.level);
    const char* type = Ops::MapEventTypeToEventTypeStr(event.type);
    const std::size_t levelLength = std::strlen(level), typeLength = std::strlen(type);
    const char* file = "";
    std::size_t fileLength = 0;
    char lineDigits[16];
    std::size_t lineLength = 0;
    if (!stripSourceInfo) {
        // The same text as the context's "file (line) : " prefix, without caching a copy of it
        // in a context that lives for this one event.
        if (event.context.GetFile())
            file = event.context.GetFile();
        fileLength = std::strlen(file);
        lineLength =
            static_cast<std::size_t>(std::to_chars(lineDigits, lineDigits + sizeof lineDigits,
                                                   static_cast<int>(event.context.GetLine()))
                                         .ptr -
                                     lineDigits);
    }
    const std::size_t textLength = std::strlen(event.text);
    const std::size_t size =
        stamp.secondLength + 5 + stamp.idsLength + levelLength + 1 + typeLength + 1 +
        (stripSourceInfo ? 0 : fileLength + 2 + lineLength + 4) + textLength + 1;

    char* p = out.Reserve(size);
    p = Put(p, stamp.secondText, stamp.secondLength);
    millisecond %= 1000;
    p[0] = '.';
    p[1] = char('0' + millisecond / 100);
    p[2] = char('0' + millisecond / 10 % 10);
    p[3] = char('0' + millisecond % 10);
    p[4] = ' ';
    p += 5;
    p = Put(p, stamp.ids, stamp.idsLength);
    p = Put(p, level, levelLength);
    *p++ = ' ';
    p = Put(p, type, typeLength);
    *p++ = ' ';
    if (!stripSourceInfo) {
        p = Put(p, file, fileLength);
        p = Put(p, " (", 2);
        p = Put(p, lineDigits, lineLength);
        p = Put(p, ") : ", 4);
    }
    // One line per event: line breaks inside the text become spaces.
    char* const textEnd = Put(p, event.text, textLength);
    for (const char breakChar : {'\n', '\r'}) {
        for (char* q = p; (q = static_cast<char*>(
                               std::memchr(q, breakChar, static_cast<std::size_t>(textEnd - q))));)
            *q++ = ' ';
    }
    p = textEnd;
    *p++ = '\n';
    out.SetSize(static_cast<std::size_t>(p - out.Data()));
}

void FormatLogLine(const OpsEvent& event, bool stripSourceInfo, LogLine& out) {
    // The real-time clock is read through the vDSO on Linux: no system call.
    const auto now = std::chrono::system_clock::now();
    const long long millis =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
    long long second = millis / 1000, millisecond = millis % 1000;
    if (millisecond < 0) {
        millisecond += 1000;
        --second;
    }
    FormatLogLineAt(event, stripSourceInfo, static_cast<std::time_t>(second),
                    static_cast<unsigned>(millisecond), CurrentProcessId(), CurrentThreadId(), out);
}

std::string FormatLogLine(const OpsEvent& event, bool stripSourceInfo) {
    LogLine line;
    FormatLogLine(event, stripSourceInfo, line);
    return std::string(line.Data(), line.Size());
}

} // namespace OpsDetail
} // namespace Util
