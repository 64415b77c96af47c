#include <cstring>

#include "Util/OpsMacros.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::GetOps;
using Util::Ops;
using Util::SourceContext;
using namespace OpsTest;

namespace {

const SourceContext kHere("tests/ops_test.cpp", 10, "Here", "void Here()");

bool CallProcess(Ops::AssertFunctor& functor, const char*& format, ...) {
    va_list args;
    va_start(args, format);
    const bool handled = functor.ProcessAssertMessage(true, format, args);
    va_end(args);
    return handled;
}

} // namespace

TEST(OpsKeywords, EveryKeywordMapsToItsValueAndBackOthersOutOfRange) {
    const char* const types[] = {
        "FUNC_ENTER",    "FUNC_STATUS",     "FUNC_EXIT",  "ASSERT",           "VERIFY",
        "MESSAGE",       "CHECKPOINT",      "DUMP",       "OBJECT_CONSTRUCT", "OBJECT_COPY",
        "OBJECT_ASSIGN", "OBJECT_DESTRUCT", "SEND_ERROR", "DEPRECATED"};
    for (int i = 0; i < 14; ++i) {
        EXPECT_EQ(Ops::MapEventTypeStrToEventType(types[i]), i) << types[i];
        EXPECT_STREQ(Ops::MapEventTypeToEventTypeStr(static_cast<Ops::EventType>(i)), types[i]);
    }
    const char* const levels[] = {"LVL_NA",         "LVL_INFO_DETAIL", "LVL_INFO_SUMMARY",
                                  "LVL_WARNING",    "LVL_ERROR",       "LVL_SEVERE_ERROR",
                                  "LVL_FATAL_ERROR"};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(Ops::MapLevelStrToLevel(levels[i]), i) << levels[i];
        EXPECT_STREQ(Ops::MapLevelToLevelStr(static_cast<Ops::Level>(i)), levels[i]);
    }
    EXPECT_STREQ(Ops::kSendErrorStr, "SEND_ERROR");
    EXPECT_STREQ(Ops::kLvlSevereErrorStr, "LVL_SEVERE_ERROR");
    // Unknown keywords map out of range, both ways.
    for (const char* text :
         {"func_enter", "FUNC_ENTER ", "", static_cast<const char*>(nullptr), "LVL_WARNING"})
        EXPECT_EQ(Ops::MapEventTypeStrToEventType(text), 14) << (text ? text : "null");
    EXPECT_EQ(Ops::MapLevelStrToLevel("lvl_warning"), 7);
    EXPECT_EQ(Ops::MapLevelStrToLevel("MESSAGE"), 7);
    EXPECT_EQ(Ops::MapLevelStrToLevel(nullptr), 7);
    EXPECT_STREQ(Ops::MapEventTypeToEventTypeStr(static_cast<Ops::EventType>(14)),
                 "UNKNOWN OPS EVENT");
    EXPECT_STREQ(Ops::MapEventTypeToEventTypeStr(static_cast<Ops::EventType>(-1)),
                 "UNKNOWN OPS EVENT");
    EXPECT_STREQ(Ops::MapLevelToLevelStr(static_cast<Ops::Level>(7)), "UNKNOWN OPS EVENT LEVEL");
}

TEST(OpsSourceContext, PrefixIsBuiltOnceAndKept) {
    SourceContext context("core/src/a.cpp", 42, "F", "void F()");
    EXPECT_STREQ(context.GetVisualStudioPrefix().c_str(), "core/src/a.cpp (42) : ");
    context.SetLine(43);
    EXPECT_STREQ(context.GetVisualStudioPrefix().c_str(), "core/src/a.cpp (42) : ");
    // A copy does not share the cache: it formats its own line.
    SourceContext copy(context);
    EXPECT_STREQ(copy.GetVisualStudioPrefix().c_str(), "core/src/a.cpp (43) : ");
    Util::MessageContext message("f.cpp", 1, "G", "int G()", "fmt %d");
    EXPECT_STREQ(message.GetUnformattedMessage(), "fmt %d");
    EXPECT_STREQ(message.GetSignature(), "int G()");
}

TEST(OpsLifecycle, EventsBeforeBeginAreQueuedAndReplayedOnlyIfWantedAfterEndDropped) {
    OPS_IN_FRESH_PROCESS([]() -> std::string {
        Ops& ops = GetOps();
        if (ops.IsOperational())
            return "operational before BeginOperations";
        for (int t = 0; t < 14; ++t)
            if (!ops.IsEventActive(static_cast<Ops::EventType>(t)) ||
                !Ops::IsEventLevelActive(static_cast<Ops::EventType>(t), Ops::kLvlNA))
                return "type " + std::to_string(t) + " inactive before begin";
        for (int l = 0; l < 7; ++l)
            if (!ops.IsLevelActive(static_cast<Ops::Level>(l)))
                return "level inactive before begin";
        const std::size_t before = ops.GetPendingEventCount();
        ops.Message(kHere, Ops::kLvlInfoDetail, "detail %d", 1);
        ops.Message(kHere, Ops::kLvlError, "error %d", 2);
        ops.ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, kHere, "checkpoint");
        if (ops.ReportEventA(Ops::kDump, Ops::kLvlNA, kHere, "dump"))
            return "a queued event reported as handled";
        if (ops.GetPendingEventCount() != before + 4)
            return "expected four queued events";

        // Only errors and checkpoints are wanted once operations run.
        auto errors = Subscribe("LEVEL_FILTER", "level", "LVL_ERROR");
        auto checkpoints = Subscribe("EVENT_TYPE_FILTER", "type", "CHECKPOINT");
        TempDir dir;
        TestContext context(dir.Path());
        ops.BeginOperations(&context);
        if (ops.GetPendingEventCount() != 0)
            return "queue not emptied";
        std::size_t errorsSeen = 0;
        for (const Captured& e : errors->Events())
            if (e.text == "error 2")
                ++errorsSeen;
        if (errorsSeen != 1)
            return "the error was handled " + std::to_string(errorsSeen) + " times";
        for (const Captured& e : errors->Events())
            if (e.text == "detail 1")
                return "an unwanted level was replayed";
        if (checkpoints->Count() != 1 || checkpoints->Events()[0].text != "checkpoint")
            return "checkpoint not replayed once";
        if (!ops.IsOperational() || ops.GetOpsContext() != &context)
            return "not operational after begin";
        if (!ops.ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, kHere, "seen"))
            return "not handled while operational";

        // After the end, events are dropped, not queued.
        ops.EndOperations();
        if (ops.IsOperational() || ops.GetOpsContext() != nullptr)
            return "still operational after end";
        const std::size_t seen = errors->Count() + checkpoints->Count();
        if (ops.ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, kHere, "dropped"))
            return "handled after end";
        ops.Message(kHere, Ops::kLvlFatalError, "dropped too");
        if (ops.GetPendingEventCount() != 0)
            return "queued after end";
        if (errors->Count() + checkpoints->Count() != seen)
            return "handlers saw events after end";
        if (Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlFatalError))
            return "events still pass the gate after end";
        return "";
    });
}

TEST_F(OpsRunning, ActivityFollowsSubscriptions) {
    // Nothing is active without subscriptions.
    for (int t = 0; t < 14; ++t) {
        EXPECT_FALSE(GetOps().IsEventActive(static_cast<Ops::EventType>(t)));
        for (int l = 0; l < 7; ++l)
            EXPECT_FALSE(Ops::IsEventLevelActive(static_cast<Ops::EventType>(t),
                                                 static_cast<Ops::Level>(l)));
    }
    EXPECT_FALSE(GetOps().IsLevelActive(Ops::kLvlFatalError));
    EXPECT_FALSE(GetOps().ReportEventA(Ops::kMessage, Ops::kLvlError, kHere, "nobody"));

    auto warnings = Subscribe("LEVEL_FILTER", "level", "LVL_WARNING");
    EXPECT_TRUE(GetOps().IsEventActive(Ops::kFuncEnter)); // at a warning level it would pass
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA));
    EXPECT_TRUE(Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlWarning));
    EXPECT_FALSE(GetOps().IsLevelActive(Ops::kLvlInfoSummary));
    EXPECT_TRUE(GetOps().IsLevelActive(Ops::kLvlSevereError));
    auto messages = Subscribe("MESSAGE_FILTER", "regexp", "x");
    // A regular expression cannot be decided in advance: every pair may be wanted.
    EXPECT_TRUE(Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA));
    GetOps().GetSubscriptionManager().RemoveSubscription("Capture");
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlFatalError));
}

TEST_F(OpsRunning, CrashDumpMessageIsHandledButReportedAsNot) {
    auto all = Subscribe();
    EXPECT_FALSE(
        GetOps().ReportEventA(Ops::kMessage, Ops::kLvlError, kHere, "301 or 305 crash dump"));
    EXPECT_EQ(all->Count(), 1u);
    EXPECT_TRUE(
        GetOps().ReportEventA(Ops::kMessage, Ops::kLvlError, kHere, "301 or 305 crash dump!"));
}

TEST_F(OpsRunning, MessageNeedsTypeAndLevelButFunctorEither) {
    // Wanted: type CHECKPOINT at any level, and level LVL_ERROR and worse of any type.
    auto checkpoints = Subscribe("EVENT_TYPE_FILTER", "type", "CHECKPOINT");
    auto errors = Subscribe("LEVEL_FILTER", "level", "LVL_ERROR");
    Ops& ops = GetOps();
    const struct {
        Ops::EventType type;
        Ops::Level level;
        bool viaMessage; // Ops::Message (type must be MESSAGE) or MessageFunctor
        std::size_t handledBy;
    } cases[] = {
        {Ops::kMessage, Ops::kLvlError, true, 1},
        {Ops::kMessage, Ops::kLvlInfoDetail, true, 0},
        {Ops::kMessage, Ops::kLvlError, false, 1},
        {Ops::kMessage, Ops::kLvlWarning, false, 0},
        {Ops::kCheckpoint, Ops::kLvlInfoDetail, false, 1},
        {Ops::kCheckpoint, Ops::kLvlError, false, 2},
        {Ops::kDump, Ops::kLvlError, false, 1},
        {Ops::kDump, Ops::kLvlWarning, false, 0},
    };
    for (const auto& c : cases) {
        const std::size_t before = checkpoints->Count() + errors->Count();
        if (c.viaMessage)
            ops.Message(kHere, c.level, "text %s", "x");
        else
            Ops::MessageFunctor(ops, c.level, c.type, "f.cpp", 1, "F", "void F()")("text %s", "x");
        EXPECT_EQ(checkpoints->Count() + errors->Count() - before, c.handledBy)
            << Ops::MapEventTypeToEventTypeStr(c.type) << " " << Ops::MapLevelToLevelStr(c.level);
    }
    const Captured last = errors->Events().back();
    EXPECT_EQ(last.text, "text x");
    EXPECT_EQ(last.unformatted, "text %s");
    EXPECT_FALSE(ops.Message(kHere, Ops::kLvlFatalError, nullptr));
    EXPECT_FALSE(
        Ops::MessageFunctor(ops, Ops::kLvlFatalError, Ops::kMessage, "f", 1, "F", "F")(nullptr));
}

TEST_F(OpsRunning, AssertFunctorReplacesANullFormatInPlace) {
    auto all = Subscribe();
    Ops::AssertFunctor functor(GetOps(), "a.cpp", 7, "A", "void A()");
    EXPECT_TRUE(functor(true, nullptr));
    EXPECT_FALSE(functor(false, "not reported"));
    EXPECT_TRUE(functor(true, "n = %d", 5));
    ASSERT_EQ(all->Count(), 2u);
    EXPECT_EQ(all->Events()[0].text, "Assert/Verify failed with no error message");
    EXPECT_EQ(all->Events()[0].type, Ops::kAssert);
    EXPECT_EQ(all->Events()[1].text, "n = 5");
    EXPECT_EQ(all->Events()[1].line, 7);

    Ops::AssertFunctor custom(GetOps(), "a.cpp", 8, "A", "void A()", Ops::kDeprecated);
    EXPECT_TRUE(custom(true, "old"));
    EXPECT_EQ(all->Events().back().type, Ops::kDeprecated);

    // The replacement is written back into the caller's format pointer.
    const char* format = nullptr;
    EXPECT_TRUE(CallProcess(functor, format));
    EXPECT_STREQ(format, "Assert/Verify failed with no error message");
}

TEST_F(OpsRunning, VerifyAndMacrosReportTheExpressionAndSourceContext) {
    auto all = Subscribe();
    EXPECT_TRUE(GetOps().Verify(true, "p != NULL", "f.cpp", 3, "F", "void F()"));
    EXPECT_EQ(all->Count(), 0u);
    GetOps().Assert(false, "x", "f.cpp", 4, "F", "void F()"); // Ops::Assert reports nothing
    EXPECT_EQ(all->Count(), 0u);
    EXPECT_FALSE(GetOps().Verify(false, "p != NULL", "f.cpp", 3, "F", "void F()"));
    const int value = 7;
    EXPECT_FALSE(ZT_VERIFY(value == 8));
    ZT_ASSERT(value < 0);
    ZT_MESSAGE(Ops::kLvlWarning, "value %d", value);
    ZT_EVENT(Ops::kSendError, Ops::kLvlError, "send %s", "it");
    const auto events = all->Events();
    ASSERT_EQ(events.size(), 5u);
    EXPECT_EQ(events[0].type, Ops::kVerify);
    EXPECT_EQ(events[0].level, Ops::kLvlNA);
    EXPECT_EQ(events[0].text, "(p != NULL) is false");
    EXPECT_EQ(events[1].text, "(value == 8) is false");
    EXPECT_EQ(events[2].text, "(value < 0) is false");
    EXPECT_EQ(events[2].type, Ops::kAssert);
    EXPECT_EQ(events[3].text, "value 7");
    EXPECT_EQ(events[3].level, Ops::kLvlWarning);
    EXPECT_EQ(events[4].type, Ops::kSendError);
    for (std::size_t i = 1; i < events.size(); ++i)
        EXPECT_EQ(events[i].function, "TestBody") << i;
}

TEST(OpsLifecycle, AFullQueueDropsEarlyEventsAndSaysSoAtBegin) {
    OPS_IN_FRESH_PROCESS([]() -> std::string {
        Ops& ops = GetOps();
        const std::size_t already = ops.GetPendingEventCount();
        ops.SetPendingEventCapacity(already + 3);
        for (int i = 0; i < 5; ++i)
            ops.ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, kHere, "early");
        if (ops.GetPendingEventCount() != already + 3)
            return "the queue grew past its capacity";
        if (Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA))
            return "a full queue still lets events be formatted";
        if (!ops.IsEventActive(Ops::kFuncEnter))
            return "every type must stay active before operations begin";
        ZT_MESSAGE(Ops::kLvlError, "skipped %d", 1); // gated off: not even counted

        auto all = Subscribe();
        TempDir dir;
        TestContext context(dir.Path());
        ops.BeginOperations(&context);
        const auto events = all->Events();
        if (events.empty())
            return "nothing replayed";
        const Captured& last = events.back();
        if (last.level != Ops::kLvlWarning ||
            last.text != "2 events reported before operations began were dropped: the queue "
                         "holds " +
                             std::to_string(already + 3))
            return "no warning about the dropped events, last was: " + last.text;
        ops.EndOperations();
        ops.BeginOperations(&context);
        if (!Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA))
            return "the gate stayed closed after the queue drained";
        return "";
    });
}
