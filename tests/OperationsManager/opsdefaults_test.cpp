#include "Util/OpsMacros.h"
#include "Util/OpsSubscriptionFileManager.h"
#include "tests/OperationsManager/ops_test_support.h"
#include "tests/test_platform.h"

using Util::GetOps;
using Util::Ops;
using namespace OpsTest;

namespace {

// Operations with the base context's default subscriptions, logging into a temporary directory.
class OpsDefaults : public OpsRunning {
protected:
    OpsDefaults() : OpsRunning(true) {}
    std::string Log() const { return m_dir.Read("Ops.log"); }
};

} // namespace

TEST_F(OpsDefaults, WantedEventsAreWrittenToOpsLogOnce) {
    EXPECT_EQ(GetOps().GetSubscriptionManager().GetSubscriptionCount(), 6u);
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA));
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kFuncExit, Ops::kLvlNA));
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kFuncStatus, Ops::kLvlNA));
    EXPECT_TRUE(Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlWarning));
    const Util::SourceContext here("mod/src/x.cpp", 12, "X", "void X()");
    const struct {
        Ops::EventType type;
        Ops::Level level;
        const char* text;
        bool logged;
    } cases[] = {
        {Ops::kMessage, Ops::kLvlWarning, "a warning", true},
        {Ops::kMessage, Ops::kLvlSevereError, "a severe error", true},
        {Ops::kMessage, Ops::kLvlInfoSummary, "a summary", false},
        {Ops::kCheckpoint, Ops::kLvlNA, "a checkpoint", true},
        {Ops::kAssert, Ops::kLvlNA, "an assertion", true},
        {Ops::kVerify, Ops::kLvlNA, "a verification", true},
        {Ops::kSendError, Ops::kLvlNA, "an error to send", true},
        {Ops::kSendError, Ops::kLvlError, "wanted by type and by level", true},
        {Ops::kFuncEnter, Ops::kLvlNA, "an entry", false},
        {Ops::kDump, Ops::kLvlInfoDetail, "a dump", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(GetOps().ReportEventA(c.type, c.level, here, c.text), c.logged) << c.text;
    const std::string log = Log();
    for (const auto& c : cases) {
        const std::string line = std::string(c.text) + "\n";
        const std::size_t at = log.find(line);
        EXPECT_EQ(at != std::string::npos, c.logged) << c.text;
        EXPECT_TRUE(at == std::string::npos || log.find(line, at + 1) == std::string::npos)
            << c.text << " logged twice";
    }
    EXPECT_NE(log.find(" LVL_WARNING MESSAGE mod/src/x.cpp (12) : a warning\n"), std::string::npos)
        << log;
    EXPECT_NE(log.find(" LVL_NA CHECKPOINT mod/src/x.cpp (12) : a checkpoint\n"),
              std::string::npos);
}

TEST_F(OpsDefaults, FatalErrorEndsTheProcessAfterLogging) {
    ZT_SKIP_ON_WINDOWS("death tests re-run the program in a new directory, and the last words "
                       "go to OutputDebugString");
    // Forked, not re-run: the child must write into this test's directory.
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(
        {
            GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
            GetOps().EndOperations();
            GetOps().BeginOperations(&m_context);
            ZT_MESSAGE(Ops::kLvlFatalError, "cannot go on: %d", 42);
            std::_Exit(0); // not reached when FAIL works
        },
        ::testing::ExitedWithCode(3), "FAIL: .*LVL_FATAL_ERROR MESSAGE .*cannot go on: 42");
    EXPECT_NE(Log().find("cannot go on: 42"), std::string::npos) << "logged before the end";
}

TEST_F(OpsDefaults, MalformedOpsFileIsReportedAndSkipped) {
    GetOps().EndOperations();
    m_dir.Write("bad.ops", "<OpsSubscriptions><Subscription name='x'><Handlers>"
                           "<LOG_TO_FILE file_name='never.log'/></Handlers>");
    m_dir.Write("good.ops", "<OpsSubscriptions><Subscription name='Mine'>"
                            "<Filter><EVENT_TYPE_FILTER type='DUMP'/></Filter>"
                            "<Handlers><LOG_TO_FILE file_name='mine.log'/></Handlers>"
                            "</Subscription></OpsSubscriptions>");
    GetOps().BeginOperations(&m_context);
    GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext("a", 1, "F", "F"), "dumped");
    EXPECT_NE(m_dir.Read("mine.log").find("dumped"), std::string::npos);
    const std::string log = Log();
    EXPECT_NE(log.find("LVL_ERROR MESSAGE"), std::string::npos) << log;
    EXPECT_NE(log.find("bad.ops\" is malformed"), std::string::npos) << log;
    EXPECT_EQ(log.find("good.ops"), std::string::npos) << log;

    Util::OpsSubscriptionFileManager bad(m_dir.File("bad.ops").c_str());
    EXPECT_TRUE(bad.GetStatus().Failed());
    EXPECT_EQ(bad.GetSubscriptionCount(), 0u);
    Util::Status status = bad.GetStatus();
    EXPECT_NE(std::string(status.GetStatusMessage().c_str()).find("bad.ops"), std::string::npos);
}
