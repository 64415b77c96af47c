#include "OperationsManager/src/opshandlers.h"

#include <atomic>
#include <mutex>

#include "OperationsManager/src/opsattributes.h"
#include "OperationsManager/src/opsfilelist.h"
#include "OperationsManager/src/opslogfile.h"
#include "OperationsManager/src/opsplatform.h"
#include "Util/OpsContext.h"

namespace Util {

OpsMessageHandler::~OpsMessageHandler() = default;

namespace OpsDetail {

namespace {

const char kAlertTitle[] = "Tallywick diagnostics";

TString Text(const std::string& text) {
    return TString(text.c_str());
}

// Appends events to a file in the context's log directory. The path is settled on the first
// event, when operations (and so the context) are known.
class LogToFileHandler : public OpsMessageHandler {
public:
    LogToFileHandler(std::string fileName, bool strip)
        : m_fileName(std::move(fileName)), m_strip(strip) {}

    bool HandleMessage(const OpsEvent& event) override {
        OpsLogFile* file = m_pFile.load(std::memory_order_acquire);
        if (file == nullptr)
            file = FindFile();
        LogLine line;
        FormatLogLine(event, m_strip, line);
        return file->WriteLine(line.Data(), line.Size());
    }
    TString GetKey() const override {
        return Text("LOG_TO_FILE|" + m_fileName + (m_strip ? "|strip" : ""));
    }
    TString Describe() const override {
        return Text("LOG_TO_FILE(file_name=" + m_fileName +
                    (m_strip ? ", strip_source_info=true)" : ")"));
    }

private:
    OpsLogFile* FindFile() {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_file) {
            TString directory;
            if (const OpsContext* context = GetOps().GetOpsContext())
                context->GetOpsLogDirectory(directory);
            m_file = OpsLogFile::Get(JoinPath(directory.c_str(), m_fileName));
            m_pFile.store(m_file.get(), std::memory_order_release);
        }
        return m_file.get();
    }

    std::string m_fileName;
    bool m_strip;
    std::mutex m_mutex; // only while the file is looked up
    std::shared_ptr<OpsLogFile> m_file;
    std::atomic<OpsLogFile*> m_pFile{nullptr}; // m_file once set: the per-event path takes no lock
};

class LogToDebugOutputHandler : public OpsMessageHandler {
public:
    bool HandleMessage(const OpsEvent& event) override {
        WriteDebugOutput(FormatLogLine(event, false).c_str());
        return true;
    }
    TString GetKey() const override { return TString("LOG_TO_DEBUG_OUTPUT"); }
    TString Describe() const override { return TString("LOG_TO_DEBUG_OUTPUT"); }
};

// Records the event on the debug output (standard error on POSIX) and ends the process with a
// non-zero exit status.
class FailHandler : public OpsMessageHandler {
public:
    explicit FailHandler(std::string message) : m_message(std::move(message)) {}
    bool HandleMessage(const OpsEvent& event) override {
        std::string text = FormatLogLine(event, false);
        text.insert(0, "FAIL: ");
        if (!m_message.empty())
            text += "FAIL: " + m_message + "\n";
        WriteDebugOutput(text.c_str());
        // Log lines are written unbuffered, so there is nothing of ours to flush first.
        EndProcess(kFailExitStatus);
    }
    bool EndsProcess() const override { return true; }
    TString GetKey() const override { return TString("FAIL"); }
    TString Describe() const override {
        return Text(m_message.empty() ? "FAIL" : "FAIL(message=" + m_message + ")");
    }

private:
    std::string m_message;
};

class BeepHandler : public OpsMessageHandler {
public:
    BeepHandler(long frequency, long duration) : m_frequency(frequency), m_duration(duration) {}
    bool HandleMessage(const OpsEvent&) override {
        SoundBeep(static_cast<unsigned long>(m_frequency), static_cast<unsigned long>(m_duration));
        return true;
    }
    TString GetKey() const override { return TString("BEEP"); }
    TString Describe() const override {
        return Text("BEEP(frequency=" + std::to_string(m_frequency) +
                    ", duration=" + std::to_string(m_duration) + ")");
    }

private:
    long m_frequency;
    long m_duration;
};

class BreakHandler : public OpsMessageHandler {
public:
    bool HandleMessage(const OpsEvent&) override {
        if (!IsDebuggerAttached())
            return false;
        BreakIntoDebugger();
        return true;
    }
    TString GetKey() const override { return TString("BREAK"); }
    TString Describe() const override { return TString("BREAK"); }
};

class AlertUserHandler : public OpsMessageHandler {
public:
    AlertUserHandler(std::string message, bool showBreakButton)
        : m_message(std::move(message)), m_showBreakButton(showBreakButton) {}
    bool HandleMessage(const OpsEvent& event) override {
        std::string text = FormatLogLine(event, false);
        text.pop_back();
        if (!m_message.empty())
            text = m_message + "\n" + text;
        // Only one alert at a time: message boxes from many threads would bury the user.
        std::lock_guard<std::mutex> lock(m_mutex);
        if (AlertUser(kAlertTitle, text.c_str(), m_showBreakButton) && IsDebuggerAttached())
            BreakIntoDebugger();
        return true;
    }
    TString GetKey() const override { return Text("ALERT_USER|" + m_message); }
    TString Describe() const override {
        return Text("ALERT_USER(message=" + m_message +
                    (m_showBreakButton ? ", show_break_button=true)" : ")"));
    }

private:
    std::string m_message;
    bool m_showBreakButton;
    std::mutex m_mutex;
};

} // namespace

void RegisterStandardHandlers(std::map<std::string, OpsHandlerFactory>& registry) {
    registry["LOG_TO_FILE"] = [](const AttributeSet& attributes,
                                 TString& error) -> std::shared_ptr<OpsMessageHandler> {
        std::string fileName;
        if (!GetTextAttribute(attributes, "file_name", fileName) || fileName.empty()) {
            error = "LOG_TO_FILE needs the attribute \"file_name\"";
            return nullptr;
        }
        return std::make_shared<LogToFileHandler>(
            fileName, GetBoolAttributeOr(attributes, "strip_source_info", false));
    };
    registry["LOG_TO_DEBUG_OUTPUT"] = [](const AttributeSet&, TString&) {
        return std::shared_ptr<OpsMessageHandler>(std::make_shared<LogToDebugOutputHandler>());
    };
    registry["FAIL"] = [](const AttributeSet& attributes, TString&) {
        return std::shared_ptr<OpsMessageHandler>(
            std::make_shared<FailHandler>(GetTextAttributeOr(attributes, "message", "")));
    };
    registry["BEEP"] = [](const AttributeSet& attributes, TString&) {
        return std::shared_ptr<OpsMessageHandler>(
            std::make_shared<BeepHandler>(GetLongAttributeOr(attributes, "frequency", 750),
                                          GetLongAttributeOr(attributes, "duration", 300)));
    };
    registry["BREAK"] = [](const AttributeSet&, TString&) {
        return std::shared_ptr<OpsMessageHandler>(std::make_shared<BreakHandler>());
    };
    registry["ALERT_USER"] = [](const AttributeSet& attributes, TString&) {
        return std::shared_ptr<OpsMessageHandler>(std::make_shared<AlertUserHandler>(
            GetTextAttributeOr(attributes, "message", ""),
            GetBoolAttributeOr(attributes, "show_break_button", false)));
    };
}

} // namespace OpsDetail
} // namespace Util
