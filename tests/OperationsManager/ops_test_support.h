// Shared pieces of the operations-manager tests: a temporary directory, a context that points
// the manager at it, a handler that records what it receives, and a way to run a test body in a
// fresh process (the manager is process-wide and "not begun" happens only once per process).
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <mutex>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Util/Ops.h"
#include "Util/OpsContext.h"
#include "Util/OpsMessageHandler.h"
#include "Util/OpsMessageHandlerManager.h"
#include "Util/OpsSubscriptionManager.h"

namespace OpsTest {

class TempDir {
public:
    TempDir() {
        static std::atomic<int> counter{0};
        m_path = std::filesystem::temp_directory_path() /
                 ("ops_test_" + std::to_string(std::random_device()()) + "_" +
                  std::to_string(counter++));
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    std::string Path() const { return m_path.string(); }
    std::string File(const std::string& name) const { return (m_path / name).string(); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(File(name), std::ios::binary) << text;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(File(name), std::ios::binary);
        std::ostringstream out;
        out << in.rdbuf();
        return out.str();
    }

private:
    std::filesystem::path m_path;
};

// A context over a directory; the default subscriptions only when asked for.
class TestContext : public Util::OpsContext {
public:
    explicit TestContext(std::string directory, bool defaults = false)
        : m_directory(std::move(directory)), m_defaults(defaults) {}
    void GetOpsDirectory(Util::TString& directory) const override {
        directory = m_directory.c_str();
    }
    void GetOpsLogDirectory(Util::TString& directory) const override {
        directory = m_directory.c_str();
    }
    void RegisterSubscriptions(Util::OpsSubscriptionManager& manager) const override {
        if (m_defaults)
            Util::OpsContext::RegisterSubscriptions(manager);
    }

private:
    std::string m_directory;
    bool m_defaults;
};

struct Captured {
    Util::Ops::EventType type;
    Util::Ops::Level level;
    std::string text;
    std::string unformatted;
    std::string function;
    long line;
    std::string file;
};

class CaptureHandler : public Util::OpsMessageHandler {
public:
    bool HandleMessage(const Util::OpsEvent& event) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        const char* unformatted = event.context.GetUnformattedMessage();
        const char* function = event.context.GetFunction();
        m_events.push_back(Captured{event.type, event.level, event.text,
                                    unformatted ? unformatted : "", function ? function : "",
                                    event.context.GetLine(),
                                    event.context.GetFile() ? event.context.GetFile() : ""});
        return m_result;
    }
    Util::TString GetKey() const override {
        return Util::TString(
            ("CAPTURE|" + std::to_string(reinterpret_cast<uintptr_t>(this))).c_str());
    }
    Util::TString Describe() const override { return Util::TString("CAPTURE"); }

    std::vector<Captured> Events() const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events;
    }
    std::size_t Count() const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_events.size();
    }
    void SetResult(bool result) { m_result = result; }

private:
    mutable std::mutex m_mutex;
    std::vector<Captured> m_events;
    bool m_result = true;
};

// Attributes from name, value, name, value...
inline Util::AttributeSet Attributes(std::initializer_list<const char*> pairs) {
    Util::AttributeSet attributes;
    for (auto it = pairs.begin(); it != pairs.end(); it += 2)
        attributes.SetAttribute(*it, *(it + 1));
    return attributes;
}

// Subscribes a capture handler with the filter built from keyword and attributes (no filter when
// keyword is null) under the name "Capture".
inline std::shared_ptr<CaptureHandler>
Subscribe(const char* keyword = nullptr, const char* name = nullptr, const char* value = nullptr) {
    auto handler = std::make_shared<CaptureHandler>();
    std::shared_ptr<const Util::OpsFilter> filter;
    if (keyword) {
        Util::TString error;
        filter = Util::GetOps().GetSubscriptionManager().CreateFilter(
            keyword, name ? Attributes({name, value}) : Util::AttributeSet(), error);
        EXPECT_TRUE(filter) << error.c_str();
    }
    (void)Util::GetOps().GetSubscriptionManager().AddSubscription("Capture", filter, {handler});
    return handler;
}

// Operations running with no subscriptions but those the test adds (or, when asked for, the
// context's defaults).
class OpsRunning : public ::testing::Test {
protected:
    explicit OpsRunning(bool defaults = false) : m_context(m_dir.Path(), defaults) {}
    void SetUp() override {
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
        Util::GetOps().BeginOperations(&m_context);
    }
    void TearDown() override {
        Util::GetOps().EndOperations();
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    }
    TempDir m_dir;
    TestContext m_context;
};

// Runs body in a freshly started copy of the test program, where operations have not begun.
// The body returns an empty text on success, or what went wrong.
#define OPS_IN_FRESH_PROCESS(...)                                                                  \
    do {                                                                                           \
        GTEST_FLAG_SET(death_test_style, "threadsafe");                                            \
        EXPECT_EXIT(                                                                               \
            {                                                                                      \
                const std::string problem = (__VA_ARGS__)();                                       \
                if (!problem.empty())                                                              \
                    std::fprintf(stderr, "%s\n", problem.c_str());                                 \
                std::fflush(stderr);                                                               \
                std::_Exit(problem.empty() ? 0 : 1);                                               \
            },                                                                                     \
            ::testing::ExitedWithCode(0), "");                                                     \
    } while (0)

} // namespace OpsTest
