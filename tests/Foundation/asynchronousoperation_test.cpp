#include "Util/AsynchronousOperation.h"
#include "Util/FailureHook.h"
#include "tests/Foundation/async_test_platform.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

using Util::AsynchronousOperation;

namespace {

std::atomic<int> g_made{0};
std::atomic<int> g_deleted{0};

// A one-shot gate: Wait blocks until Open.
class Gate {
public:
    void Open() {
        std::lock_guard<std::mutex> hold(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }
    void Wait() {
        std::unique_lock<std::mutex> hold(m_mutex);
        m_changed.wait(hold, [this] { return m_open; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = false;
};

class Command : public AsynchronousOperation::WorkerCommand {
public:
    Command(AsynchronousOperation* operation, std::function<long(Command&)> work)
        : WorkerCommand(operation), m_work(std::move(work)) {
        ++g_made;
    }
    ~Command() override { ++g_deleted; }
    long Execute() override { return m_work(*this); }

private:
    std::function<long(Command&)> m_work;
};

class Callback : public AsynchronousOperation::UpdateCallback {
public:
    explicit Callback(std::function<long(int call)> script) : m_script(std::move(script)) {}
    long Update() override { return m_script(++m_calls); }
    int Calls() const { return m_calls; }

private:
    std::function<long(int)> m_script;
    std::atomic<int> m_calls{0};
};

class Operation : public AsynchronousOperation {
public:
    explicit Operation(unsigned long intervalMs) : AsynchronousOperation(intervalMs) {}
    long Run(std::function<long(Command&)> work, UpdateCallback* callback) {
        return DoExecute(new Command(this, std::move(work)), callback);
    }
    long RunRaw(WorkerCommand* command, UpdateCallback* callback) {
        return DoExecute(command, callback);
    }
    using AsynchronousOperation::GetCompletionStatus;
};

constexpr unsigned long kLongInterval = 600000;

// Stops the worker once everything queued so far has run and been deleted.
void Drain() {
    AsynchronousOperation::Shutdown(0);
}

bool EventuallyAllDeleted() {
    for (int i = 0; i < 2000 && g_deleted.load() != g_made.load(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return g_deleted.load() == g_made.load();
}

class AsyncOperations : public ::testing::Test {
protected:
    void SetUp() override {
        g_made = 0;
        g_deleted = 0;
    }
    void TearDown() override { Drain(); }
};

} // namespace

TEST_F(AsyncOperations, ResultWithinTheIntervalNeverCallsTheCallback) {
    Operation operation(kLongInterval);
    Callback callback([](int) { return 0L; });
    EXPECT_EQ(operation.Run([](Command&) { return 7L; }, &callback), 7);
    EXPECT_EQ(callback.Calls(), 0);
    EXPECT_TRUE(operation);
    Drain();
    EXPECT_EQ(g_deleted.load(), g_made.load());
}

TEST_F(AsyncOperations, CallbackRunsOncePerElapsedIntervalUntilTheResult) {
    Gate start, recorded;
    Callback callback([&](int call) {
        if (call == 3) {
            start.Open();
            recorded.Wait();
        }
        return 0L;
    });
    // The default callback serves a DoExecute given none.
    AsynchronousOperation::UpdateCallback* previous =
        AsynchronousOperation::SetDefaultUpdateCallback(&callback);
    Operation operation(20);
    const long status = operation.Run(
        [&](Command& self) {
            start.Wait();
            self.OperationCompleted(3);
            recorded.Open();
            return 9L;
        },
        nullptr);
    EXPECT_EQ(AsynchronousOperation::SetDefaultUpdateCallback(previous), &callback);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(callback.Calls(), 3);
}

TEST_F(AsyncOperations, NegativeUpdateCancelsAtOnceAndTheCommandStillRunsAndIsDeleted) {
    Gate release;
    std::atomic<bool> finished{false};
    auto* operation = new Operation(10);
    Callback cancel([](int) { return -5L; });
    EXPECT_EQ(operation->Run(
                  [&](Command&) {
                      release.Wait();
                      finished = true;
                      return 9L;
                  },
                  &cancel),
              -5);
    EXPECT_EQ(cancel.Calls(), 1);
    EXPECT_EQ(operation->GetCompletionStatus(), -5);
    // The operation may go while its command still runs.
    delete operation;
    release.Open();
    Drain();
    EXPECT_TRUE(finished.load());
    EXPECT_EQ(g_deleted.load(), g_made.load());
}

TEST_F(AsyncOperations, CommandsRunInQueueOrderAndASecondExecuteWaitsForCancellation) {
    Gate release;
    std::vector<int> order;
    Operation first(10), second(10), third(10);
    Callback thirdCallback([&](int) {
        release.Open();
        return 0L;
    });
    Callback secondCallback([&](int call) {
        if (call == 1) {
            EXPECT_EQ(third.Run(
                          [&](Command&) {
                              order.push_back(3);
                              return 30L;
                          },
                          &thirdCallback),
                      30);
        }
        return 0L;
    });
    Callback firstCallback([&](int call) {
        if (call == 1) {
            EXPECT_EQ(second.Run(
                          [&](Command&) {
                              order.push_back(2);
                              return 20L;
                          },
                          &secondCallback),
                      20);
        }
        return 0L;
    });
    EXPECT_EQ(first.Run(
                  [&](Command&) {
                      release.Wait();
                      order.push_back(1);
                      return 10L;
                  },
                  &firstCallback),
              10);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));

    // Completed already: the event is spent, so only the callback ends this wait.
    Callback cancelSecondTime([](int call) { return call == 2 ? -1L : 0L; });
    EXPECT_EQ(first.Run([](Command&) { return 99L; }, &cancelSecondTime), 10);
    EXPECT_EQ(cancelSecondTime.Calls(), 2);
    Drain();
    EXPECT_EQ(g_deleted.load(), g_made.load());
}

TEST_F(AsyncOperations, AThrowingCommandCompletesWithMinusOneAndTheWorkerGoesOn) {
    Operation failing(kLongInterval), next(kLongInterval);
    EXPECT_EQ(failing.Run([](Command&) -> long { throw std::runtime_error("boom"); }, nullptr), -1);
    EXPECT_EQ(next.Run([](Command&) { return 4L; }, nullptr), 4);
}

namespace {
class AsyncReports : public OpsTest::OpsRunning {};
} // namespace

TEST_F(AsyncReports, ARequestThatCannotBeQueuedRaisesTheVerificationAndGivesMinusOne) {
    auto events = OpsTest::Subscribe("EVENT_TYPE_FILTER", "type", "VERIFY");
    Operation operation(10);
    EXPECT_EQ(operation.RunRaw(nullptr, nullptr), -1);
    ASSERT_EQ(events->Count(), 1u);
    EXPECT_EQ(events->Events()[0].text,
              "(FunctorThreadPool::getInstance()->QueueRequest(command) != FALSE) is false");
}

// Without its event the operation still completes: it looks for the result once per interval.
TEST_F(AsyncReports, AnEventThatCannotBeCreatedRaisesTheFatalMessageAndTheOperationPolls) {
    auto events = OpsTest::Subscribe();
    Util::FailureHook::FailNext(Util::FailureHook::kCreateEvent);
    Operation operation(5);
    Util::FailureHook::FailNext(Util::FailureHook::kCreateEvent, 0);
    std::vector<OpsTest::Captured> fatal;
    for (const auto& event : events->Events())
        if (event.level == Util::Ops::kLvlFatalError)
            fatal.push_back(event);
    ASSERT_EQ(fatal.size(), 1u);
    EXPECT_EQ(fatal[0].type, Util::Ops::kMessage);
    EXPECT_EQ(fatal[0].text, "CreateEvent failed, system unstable.  Terminating.");
    Callback keepWaiting([](int) { return 0L; });
    EXPECT_EQ(operation.Run([](Command&) { return 7L; }, &keepWaiting), 7);
    Drain();
}

TEST_F(AsyncOperations, ShutdownPastTheTimeOutReleasesCallersAndTheNextUseGetsANewWorker) {
    Gate started, secondPosted;
    // The busy command polls instead of waiting on a Gate: Windows terminates the worker that
    // runs it, and a thread terminated inside a condition-variable wait leaves the variable
    // unusable for everyone else.
    std::atomic<bool> released{false};
    std::atomic<bool> secondRan{false};
    long firstStatus = 0, secondStatus = 0;
    Operation first(10), second(10);
    Callback keepWaiting([](int) { return 0L; });
    Callback announce([&](int call) {
        if (call == 1)
            secondPosted.Open();
        return 0L;
    });
    std::thread busy([&] {
        firstStatus = first.Run(
            [&](Command&) {
                started.Open();
                while (!released)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                return 11L;
            },
            &keepWaiting);
    });
    started.Wait();
    std::thread queued([&] {
        secondStatus = second.Run(
            [&](Command&) {
                secondRan = true;
                return 12L;
            },
            &announce);
    });
    secondPosted.Wait();

    AsynchronousOperation::Shutdown(50);
    busy.join();
    queued.join();
    EXPECT_EQ(firstStatus, -1);
    EXPECT_EQ(secondStatus, -1);
    EXPECT_FALSE(secondRan.load());

    Operation fresh(kLongInterval);
    EXPECT_EQ(fresh.Run([](Command&) { return 13L; }, nullptr), 13);

    // POSIX lets the abandoned command finish in the background and ignores its result;
    // Windows has terminated it.
    released = true;
    if (AsyncTest::AbandonedWorkerFinishesItsCommand()) {
        EXPECT_TRUE(EventuallyAllDeleted());
    }
    EXPECT_EQ(first.GetCompletionStatus(), -1);
}

TEST_F(AsyncOperations, EightThreadsShareTheWorkerAndEveryCommandIsDeletedOnce) {
    constexpr int kThreads = 8, kPerThread = 150;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kPerThread; ++i) {
                // Every third command holds the worker until its caller has cancelled and
                // returned, so those results always lose; the others must come back unchanged.
                const bool cancel = (i + t) % 3 == 0;
                auto cancelled = std::make_shared<Gate>();
                Operation operation(1);
                Callback callback([cancel](int) { return cancel ? -2L : 0L; });
                const long expected = t * 1000 + i;
                const long status = operation.Run(
                    [expected, cancel, cancelled](Command&) {
                        if (cancel)
                            cancelled->Wait();
                        return expected;
                    },
                    &callback);
                cancelled->Open();
                if (status != (cancel ? -2 : expected))
                    ++wrong;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    Drain();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(g_made.load(), kThreads * kPerThread);
    EXPECT_EQ(g_deleted.load(), g_made.load());
}
