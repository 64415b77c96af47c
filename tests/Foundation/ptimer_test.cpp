#include "Util/FailureHook.h"
#include "Util/PTimer.h"
#include "Util/ProcessInfo.h"
#include "Util/Win32Time.h"
#include "tests/OperationsManager/ops_test_support.h"
#include "tests/test_platform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

using namespace Util::Win32;

using Util::APTimer;
using Util::PerformanceInfo;
using Util::PerformanceInfoHP;

namespace {

// A process has taken page faults by the time it reports; Wine counts none.
long MinPageFaults() {
    return ZtTest::UnderWine() ? 0 : 1;
}

void SleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

class TimingReports : public OpsTest::OpsRunning {
protected:
    void SetUp() override {
        OpsRunning::SetUp();
        m_events = OpsTest::Subscribe();
    }
    std::vector<OpsTest::Captured> Of(Util::Ops::EventType type) const {
        std::vector<OpsTest::Captured> out;
        for (const auto& e : m_events->Events())
            if (e.type == type)
                out.push_back(e);
        return out;
    }
    std::shared_ptr<OpsTest::CaptureHandler> m_events;
};

} // namespace

TEST(PerformanceInfo, FirstStartFixesTheCumulativeStartAndDeltasUseTickArithmetic) {
    PerformanceInfo* info = PerformanceInfo::instance();
    ASSERT_NE(info, nullptr);
    const DWORD now = Util::Win32::GetTickCount();
    // A start 10 s back, computed in 32 bits as a caller holding a DWORD would.
    info->Start(DWORD(now - 10000u));
    SleepMs(20);
    info->Start(DWORD(now - 100u));
    EXPECT_GE(info->GetTickCountDelta(), 100u);
    EXPECT_LT(info->GetTickCountDelta(), 10000u);
    EXPECT_GE(info->GetCumulativeTickCountDelta(), 10020u);
    // The upper half of a 64-bit argument is not part of a tick count.
    info->Start((static_cast<unsigned long long>(1) << 32 | now) & ~0UL);
    EXPECT_LT(info->GetTickCountDelta(), 10000u);
}

TEST(PerformanceInfoHP, ReadingPausesUntilResumeAndStartResetsTheTests) {
    PerformanceInfoHP* timer = PerformanceInfoHP::instance();
    ASSERT_NE(timer, nullptr);
    timer->Start(APTimer::Milliseconds);
    EXPECT_EQ(timer->GetNumberOfTests(), 0);
    SleepMs(30);
    const long first = timer->GetTimeDelta();
    EXPECT_GE(first, 30);
    EXPECT_FALSE(timer->IsRunning());
    SleepMs(30);
    EXPECT_EQ(timer->GetTimeDelta(), first);
    timer->Resume();
    EXPECT_EQ(timer->GetNumberOfTests(), 1);
    SleepMs(30);
    EXPECT_GE(timer->GetTimeDelta(), first + 30);

    timer->Start(APTimer::Microseconds);
    SleepMs(5);
    EXPECT_GE(timer->GetTimeDelta(), 5000);
    timer->Restart();
    EXPECT_EQ(timer->GetScale(), APTimer::Microseconds);
    EXPECT_LT(timer->GetTimeDelta(), 5000000);
}

TEST(PerformanceInfoHP, InitDatesTheCumulativeStartBackOnlyOnce) {
    PerformanceInfoHP* timer = PerformanceInfoHP::instance();
    timer->Start(APTimer::Milliseconds);
    timer->Init(Util::Win32::GetTickCount() - 5000u);
    EXPECT_TRUE(timer->IsInitialized());
    const long cumulative = timer->GetCumulativeTimeDelta();
    EXPECT_GE(cumulative, 4999);
    EXPECT_LT(cumulative, 5000 + 60000);
    timer->Init(Util::Win32::GetTickCount());
    EXPECT_GE(timer->GetCumulativeTimeDelta(), cumulative);
}

TEST_F(TimingReports, LogLinesNameTheScaleAndPutTheDeltaBeforeTheCumulativeDelta) {
    PerformanceInfoHP* timer = PerformanceInfoHP::instance();
    timer->Init(Util::Win32::GetTickCount() - 3000u);
    struct Case {
        APTimer::TimerScale scale;
        const char* format;
        long minCumulative;
    } cases[] = {
        {APTimer::Microseconds, "hp: PageFault=%ld, MicroSecondDelta=%ld, CumMicroSecondDelta=%ld",
         2999000},
        {APTimer::Milliseconds, "hp: PageFault=%ld, MilliSecondDelta=%ld, CumMilliSecondDelta=%ld",
         2999},
    };
    for (const auto& c : cases) {
        const auto before = Of(Util::Ops::kCheckpoint).size();
        timer->Start(c.scale);
        timer->LogPerformanceInfo("hp", Util::CurrentProcessHandle());
        EXPECT_FALSE(timer->IsRunning());
        auto lines = Of(Util::Ops::kCheckpoint);
        ASSERT_EQ(lines.size(), before + 1);
        EXPECT_EQ(lines.back().level, Util::Ops::kLvlNA);
        long faults = -1, delta = -1, cumulative = -1;
        ASSERT_EQ(std::sscanf(lines.back().text.c_str(), c.format, &faults, &delta, &cumulative), 3)
            << lines.back().text;
        EXPECT_GE(faults, MinPageFaults());
        EXPECT_GE(cumulative, c.minCumulative);
        EXPECT_LT(delta, c.minCumulative);
    }

    PerformanceInfo* coarse = PerformanceInfo::instance();
    coarse->Start(Util::Win32::GetTickCount() - 200u);
    coarse->LogPerformanceInfo("coarse", nullptr);
    long faults = -1, delta = -1, cumulative = -1;
    ASSERT_EQ(std::sscanf(Of(Util::Ops::kCheckpoint).back().text.c_str(),
                          "coarse: PageFault=%ld, TickDelta=%ld, CumTickDelta=%ld", &faults, &delta,
                          &cumulative),
              3);
    EXPECT_GE(faults, MinPageFaults());
    EXPECT_GE(delta, 200);
    EXPECT_GE(cumulative, delta);
}

TEST_F(TimingReports, TimerReportsAtDestructionOnlyWhenSwitchedOn) {
    { APTimer quiet; }
    EXPECT_TRUE(Of(Util::Ops::kMessage).empty());
    { APTimer single(true); }
    {
        APTimer repeated(true);
        repeated.Start(APTimer::Milliseconds);
        repeated.Resume();
        repeated.GetTimeDelta();
        repeated.Resume();
        repeated.Resume();
    }
    auto messages = Of(Util::Ops::kMessage);
    ASSERT_EQ(messages.size(), 4u);
    EXPECT_EQ(messages[0].text.rfind("Time in MS:", 0), 0u) << messages[0].text;
    EXPECT_EQ(messages[1].text, "\n");
    EXPECT_EQ(messages[2].text.rfind("Total time in MS:", 0), 0u) << messages[2].text;
    EXPECT_NE(messages[2].text.find(", number of tests:3."), std::string::npos);
    EXPECT_EQ(messages[3].text, "\n");
    for (const auto& m : messages)
        EXPECT_EQ(m.level, Util::Ops::kLvlInfoDetail);
}

namespace {

// In a fresh process (the singletons are made once per process): the allocation fails, the
// verification on the singleton's name and the level-6 message are raised, and instance() gives
// null from then on.
template <class Timer>
std::string SingletonFailureReports(Util::FailureHook::Point point, const std::string& name) {
    OpsTest::TempDir dir;
    OpsTest::TestContext context(dir.Path());
    Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    Util::GetOps().BeginOperations(&context);
    auto events = OpsTest::Subscribe();
    Util::FailureHook::FailNext(point);
    if (Timer::instance() != nullptr || Timer::instance() != nullptr)
        return "instance() is not null";
    std::string seen;
    for (const auto& e : events->Events())
        if (e.type == Util::Ops::kVerify || e.level == Util::Ops::kLvlFatalError)
            seen += std::to_string(e.type) + "/" + std::to_string(e.level) + " " + e.text + "\n";
    const std::string expected = std::to_string(Util::Ops::kVerify) + "/" +
                                 std::to_string(Util::Ops::kLvlNA) + " (g" + name + ") is false\n" +
                                 std::to_string(Util::Ops::kMessage) + "/" +
                                 std::to_string(Util::Ops::kLvlFatalError) +
                                 " Can't create the util::" + name + "::instance.\n";
    if (seen != expected)
        return "events:\n" + seen + "expected:\n" + expected;
    return "";
}

} // namespace

TEST(TimerSingletons, PerformanceInfoThatCannotBeAllocatedIsReported) {
    OPS_IN_FRESH_PROCESS([] {
        return SingletonFailureReports<PerformanceInfo>(Util::FailureHook::kPerformanceInfoInstance,
                                                        "PerformanceInfo");
    });
}

TEST(TimerSingletons, PerformanceInfoHPThatCannotBeAllocatedIsReported) {
    OPS_IN_FRESH_PROCESS([] {
        return SingletonFailureReports<PerformanceInfoHP>(
            Util::FailureHook::kPerformanceInfoHPInstance, "PerformanceInfoHP");
    });
}
