// GCC 12 reports a false "may be used uninitialized" inside libstdc++'s <regex> in sanitizer
// builds.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <regex>
#include <set>
#include <thread>

#include "Util/OpsMacros.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::GetOps;
using Util::Ops;
using namespace OpsTest;

namespace {

constexpr int kThreads = 8;
constexpr int kPerThread = 1500;

Util::Status Worker(int thread, int i) {
    ZT_FUNC_OPS();
    ZT_MESSAGE(Ops::kLvlWarning, "t%d n%d", thread, i);
    if (i % 7 == 0)
        return ZT_STATUS(-1, "status t%d n%d", thread, i);
    ZT_RETURN_OK();
}

void RunWorkers(std::atomic<bool>& done) {
    std::vector<std::thread> workers;
    for (int t = 0; t < kThreads; ++t)
        workers.emplace_back([t] {
            for (int i = 0; i < kPerThread; ++i)
                (void)Worker(t, i);
        });
    for (auto& worker : workers)
        worker.join();
    done = true;
}

// Every line whole and well-formed; returns the "t<k> n<i>" texts, or a problem in problem.
std::vector<std::string> ReadLines(const std::string& log, std::string& problem) {
    static const std::regex line(
        R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[\d+:\d+\] LVL_WARNING MESSAGE )"
        R"(tests/OperationsManager/ops_threads_test\.cpp \(\d+\) : (t\d+ n\d+))");
    std::vector<std::string> ids;
    std::size_t start = 0;
    while (start < log.size()) {
        const std::size_t end = log.find('\n', start);
        if (end == std::string::npos) {
            problem = "unterminated last line";
            break;
        }
        const std::string text = log.substr(start, end - start);
        static const std::regex dropped(R"(.* LVL_WARNING MESSAGE OperationsManager/src/ops\.cpp )"
                                        R"(\(\d+\) : \d+ events reported before operations )"
                                        R"(began were dropped: the queue holds \d+)");
        std::smatch match;
        if (std::regex_match(text, dropped)) { // a full queue while operations restart
            start = end + 1;
            continue;
        }
        if (!std::regex_match(text, match, line)) {
            problem = "torn or malformed line: " + text;
            break;
        }
        ids.push_back(match[1]);
        start = end + 1;
    }
    return ids;
}

// Subscriptions come and go while the workers report: a capture of every DUMP, and .ops files
// read again by repeated BeginOperations calls.
void ChurnSubscriptions(const TestContext& context, const TempDir& dir, std::atomic<bool>& done,
                        bool endAndBegin) {
    int round = 0;
    while (!done) {
        auto capture = std::make_shared<CaptureHandler>();
        (void)GetOps().GetSubscriptionManager().AddSubscription("Churn", nullptr, {capture});
        dir.Write("extra.ops", "<OpsSubscriptions><Subscription name='Extra'><Filter>"
                               "<EVENT_TYPE_FILTER type='DUMP'/></Filter><Handlers>"
                               "<LOG_TO_FILE file_name='extra.log'/></Handlers></Subscription>"
                               "</OpsSubscriptions>");
        if (endAndBegin && round % 2)
            GetOps().EndOperations();
        GetOps().BeginOperations(&context);
        GetOps().GetSubscriptionManager().RemoveSubscription("Churn");
        ++round;
        std::this_thread::yield();
    }
}

// Workers report while a controller churns the subscriptions; returns the logged ids once
// operations end, or a problem in problem.
std::vector<std::string> RunAndRead(const TestContext& context, const TempDir& dir,
                                    bool endAndBegin, std::string& problem) {
    std::atomic<bool> done{false};
    std::thread workers(RunWorkers, std::ref(done));
    std::thread controller(ChurnSubscriptions, std::cref(context), std::cref(dir), std::ref(done),
                           endAndBegin);
    workers.join();
    controller.join();
    GetOps().EndOperations();
    std::vector<std::string> ids = ReadLines(dir.Read("Ops.log"), problem);
    if (problem.empty() && std::set<std::string>(ids.begin(), ids.end()).size() != ids.size())
        problem = "an event was logged twice";
    return ids;
}

} // namespace

TEST(OpsThreads, NoLineIsLostOrTornWhileSubscriptionsChange) {
    OPS_IN_FRESH_PROCESS([]() -> std::string {
        TempDir dir;
        TestContext context(dir.Path(), true);
        GetOps().SetPendingEventCapacity(std::size_t(1) << 20); // room for every early event
        // Workers start before operations begin: their first events are queued and replayed.
        std::string problem;
        const std::vector<std::string> ids = RunAndRead(context, dir, false, problem);
        if (!problem.empty())
            return problem;
        if (ids.size() != std::size_t(kThreads) * kPerThread)
            return "logged " + std::to_string(ids.size()) + " of " +
                   std::to_string(kThreads * kPerThread) + " events";
        return "";
    });
}

TEST(OpsThreads, EndingAndBeginningUnderLoadKeepsLinesWhole) {
    GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    TempDir dir;
    TestContext context(dir.Path(), true);
    GetOps().BeginOperations(&context);
    std::string problem;
    const std::vector<std::string> ids = RunAndRead(context, dir, true, problem);
    GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    EXPECT_EQ(problem, "");
    EXPECT_LE(ids.size(), std::size_t(kThreads) * kPerThread);
    EXPECT_GT(ids.size(), 0u);
}
