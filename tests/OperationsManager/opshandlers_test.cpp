// GCC 12 reports a false "may be used uninitialized" inside libstdc++'s <regex> in sanitizer
// builds.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <regex>

#include "OperationsManager/src/opslogfile.h"
#include "tests/OperationsManager/ops_test_platform.h"
#include "tests/OperationsManager/ops_test_support.h"
#include "tests/test_platform.h"

using Util::AttributeSet;
using Util::GetOps;
using Util::Ops;
using namespace OpsTest;

namespace {

std::shared_ptr<Util::OpsMessageHandler> MakeHandler(const char* keyword,
                                                     std::initializer_list<const char*> pairs) {
    Util::TString error;
    auto handler =
        GetOps().GetMessageHandlerManager().CreateHandler(keyword, Attributes(pairs), error);
    EXPECT_TRUE(handler) << keyword << ": " << error.c_str();
    return handler;
}

void SubscribeHandler(std::shared_ptr<Util::OpsMessageHandler> handler) {
    (void)GetOps().GetSubscriptionManager().AddSubscription("Handlers", nullptr,
                                                            {std::move(handler)});
}

} // namespace

using OpsHandlers = OpsRunning;

TEST_F(OpsHandlers, LogLineIsAppendedWithTimeIdsKeywordsPrefixAndOneLineText) {
    m_dir.Write("full.log", "earlier line\n");
    SubscribeHandler(MakeHandler("LOG_TO_FILE", {"file_name", "full.log"}));
    SubscribeHandler(
        MakeHandler("LOG_TO_FILE", {"file_name", "short.log", "strip_source_info", "true"}));
    GetOps().ReportEventA(Ops::kSendError, Ops::kLvlSevereError,
                          Util::SourceContext("mod/src/a.cpp", 31, "F", "void F()"),
                          "two\nlines\r");
    const std::string pid = std::to_string(ProcessId());
    const std::regex full(
        R"(earlier line\n\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[)" + pid +
        R"(:\d+\] LVL_SEVERE_ERROR SEND_ERROR mod/src/a\.cpp \(31\) : two lines \n)");
    const std::regex stripped(R"(\S+ \S+ \[)" + pid +
                              R"(:\d+\] LVL_SEVERE_ERROR SEND_ERROR two lines \n)");
    EXPECT_TRUE(std::regex_match(m_dir.Read("full.log"), full)) << m_dir.Read("full.log");
    EXPECT_TRUE(std::regex_match(m_dir.Read("short.log"), stripped)) << m_dir.Read("short.log");
}

TEST_F(OpsHandlers, UnopenableLogFileIsNotHandledAndDoesNotThrow) {
    ZT_SKIP_ON_WINDOWS("the complaint goes to OutputDebugString, not to standard error");
    SubscribeHandler(MakeHandler("LOG_TO_FILE", {"file_name", "no/such/dir/x.log"}));
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext(), "lost"));
    EXPECT_FALSE(GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext(), "lost"));
    const std::string err = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(err.find("cannot open the log file"), std::string::npos) << err;
    EXPECT_EQ(err.find("cannot open", err.find("cannot open") + 1), std::string::npos)
        << "said once, not per event";
}

TEST_F(OpsHandlers, ConsoleHandlersWriteToStandardErrorOnPosix) {
    ZT_SKIP_ON_WINDOWS("debug output goes to OutputDebugString and alerts to a message box");
    const struct {
        const char* keyword;
        std::initializer_list<const char*> attributes;
        const char* expected;
    } cases[] = {
        {"LOG_TO_DEBUG_OUTPUT", {}, "LVL_ERROR MESSAGE f.cpp (2) : disk full\n"},
        {"ALERT_USER",
         {"message", "Call support", "show_break_button", "true"},
         "Tallywick diagnostics: Call support\n"},
    };
    for (const auto& c : cases) {
        GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
        SubscribeHandler(MakeHandler(c.keyword, c.attributes));
        ::testing::internal::CaptureStderr();
        EXPECT_TRUE(GetOps().ReportEventA(Ops::kMessage, Ops::kLvlError,
                                          Util::SourceContext("f.cpp", 2, "F", "F"), "disk full"));
        const std::string err = ::testing::internal::GetCapturedStderr();
        EXPECT_NE(err.find(c.expected), std::string::npos) << c.keyword << ": " << err;
        EXPECT_NE(err.find("disk full"), std::string::npos);
    }
}

TEST_F(OpsHandlers, BreakOnlyWithADebuggerAndBeepIsHandled) {
    auto breaker = MakeHandler("BREAK", {});
    auto beep = MakeHandler("BEEP", {"frequency", "440", "duration", "10"});
    const Util::MessageContext context("f", 1, "F", "F", "x");
    const Util::OpsEvent event{Ops::kMessage, Ops::kLvlError, context, "x"};
    // Tests do not run under a debugger: breaking would stop the process.
    EXPECT_FALSE(breaker->HandleMessage(event));
    EXPECT_TRUE(beep->HandleMessage(event));
    EXPECT_STREQ(beep->Describe().c_str(), "BEEP(frequency=440, duration=10)");
    EXPECT_STREQ(MakeHandler("BEEP", {"frequency", "high"})->Describe().c_str(),
                 "BEEP(frequency=750, duration=300)")
        << "unreadable numbers fall back to the defaults";
}

TEST_F(OpsHandlers, AHandlerThatReportsOrThrowsStopsNeitherItselfNorTheOthers) {
    struct Chatty : CaptureHandler {
        bool HandleMessage(const Util::OpsEvent& event) override {
            CaptureHandler::HandleMessage(event);
            GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext(), "from handler");
            return true;
        }
    };
    struct Throwing : CaptureHandler {
        bool HandleMessage(const Util::OpsEvent&) override { throw std::runtime_error("boom"); }
    };
    auto chatty = std::make_shared<Chatty>();
    SubscribeHandler(chatty);
    SubscribeHandler(std::make_shared<Throwing>());
    auto after = Subscribe();
    EXPECT_TRUE(GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext(), "outer"));
    ASSERT_EQ(chatty->Count(), 1u) << "a report from inside a handler does not recurse";
    EXPECT_EQ(chatty->Events()[0].text, "outer");
    ASSERT_EQ(after->Count(), 1u) << "handlers after a throwing one still run";
    EXPECT_EQ(after->Events()[0].text, "outer");
}

TEST_F(OpsHandlers, UnknownOrIncompleteHandlersAreRefused) {
    const struct {
        const char* keyword;
        const char* reason;
    } cases[] = {{"LOG_TO_FILE", "needs the attribute \"file_name\""},
                 {"LOG_TO_PRINTER", "Unknown handler \"LOG_TO_PRINTER\""}};
    for (const auto& c : cases) {
        Util::TString error;
        EXPECT_FALSE(
            GetOps().GetMessageHandlerManager().CreateHandler(c.keyword, AttributeSet(), error));
        EXPECT_NE(std::string(error.c_str()).find(c.reason), std::string::npos) << error.c_str();
    }
}
