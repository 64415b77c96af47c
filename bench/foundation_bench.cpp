// Foundation services: the round trip of a trivial command through the worker thread against
// std::async, and a high-resolution timer reading against two steady_clock readings.
#include "Util/AsynchronousOperation.h"
#include "Util/PTimer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <future>

namespace {

class TrivialOperation : public Util::AsynchronousOperation {
public:
    TrivialOperation() : AsynchronousOperation(1000) {}
    long Run(long value) {
        class Trivial : public WorkerCommand {
        public:
            Trivial(AsynchronousOperation* operation, long value)
                : WorkerCommand(operation), m_value(value) {}
            long Execute() override { return m_value + 1; }

        private:
            long m_value;
        };
        return DoExecute(new Trivial(this, value), nullptr);
    }
};

long Trivial(long value) {
    return value + 1;
}

// The caller's wait is the point here, so both sides are measured in wall time.
void BM_Ours_CommandRoundTrip(benchmark::State& state) {
    long value = 0;
    for (auto _ : state) {
        TrivialOperation operation;
        value = operation.Run(value);
    }
    benchmark::DoNotOptimize(value);
}
BENCHMARK(BM_Ours_CommandRoundTrip)->UseRealTime();

void BM_Peer_CommandRoundTrip(benchmark::State& state) {
    long value = 0;
    for (auto _ : state)
        value = std::async(std::launch::async, Trivial, value).get();
    benchmark::DoNotOptimize(value);
}
BENCHMARK(BM_Peer_CommandRoundTrip)->UseRealTime();

void BM_Ours_TimerResumeAndRead(benchmark::State& state) {
    Util::APTimer timer;
    timer.Start(Util::APTimer::Microseconds);
    long delta = 0;
    for (auto _ : state) {
        timer.Resume();
        delta = timer.GetTimeDelta();
        benchmark::DoNotOptimize(delta);
    }
}
BENCHMARK(BM_Ours_TimerResumeAndRead);

void BM_Peer_TimerResumeAndRead(benchmark::State& state) {
    double total = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        auto end = std::chrono::steady_clock::now();
        total += std::chrono::duration<double, std::micro>(end - start).count();
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_Peer_TimerResumeAndRead);

} // namespace

BENCHMARK_MAIN();
