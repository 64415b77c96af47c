// The operations manager's reporting costs against spdlog: a function's entry-and-exit reporter
// when nothing wants it (nothing subscribed, and under the six default subscriptions), a message
// nobody wants, and a message written to a log file and flushed line by line.
#include <benchmark/benchmark.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <fcntl.h>
#include <filesystem>
#include <random>
#include <string>
#include <unistd.h>

#include "Util/OpsContext.h"
#include "Util/OpsMacros.h"
#include "Util/OpsSubscriptionManager.h"

namespace {

std::string BenchDirectory() {
    static const std::string dir = [] {
        auto path = std::filesystem::temp_directory_path() /
                    ("ops_bench_" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(path);
        return path.string();
    }();
    return dir;
}

class BenchContext : public Util::OpsContext {
public:
    explicit BenchContext(bool defaults) : m_defaults(defaults) {}
    void GetOpsDirectory(Util::TString& directory) const override {
        directory = BenchDirectory().c_str();
    }
    void GetOpsLogDirectory(Util::TString& directory) const override {
        directory = BenchDirectory().c_str();
    }
    void RegisterSubscriptions(Util::OpsSubscriptionManager& manager) const override {
        if (m_defaults)
            Util::OpsContext::RegisterSubscriptions(manager);
    }

private:
    bool m_defaults;
};

// Restarts operations with the default subscriptions or with none.
void StartOperations(bool defaults) {
    static BenchContext withDefaults(true), without(false);
    Util::GetOps().EndOperations();
    Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    Util::GetOps().BeginOperations(defaults ? &withDefaults : &without);
}

std::shared_ptr<spdlog::logger> DisabledPeer() {
    static auto logger = [] {
        auto l = std::make_shared<spdlog::logger>("disabled",
                                                  std::make_shared<spdlog::sinks::null_sink_mt>());
        l->set_level(spdlog::level::warn);
        return l;
    }();
    return logger;
}

void BM_Ours_FuncEntryExit_NothingSubscribed(benchmark::State& state) {
    StartOperations(false);
    for (auto _ : state) {
        ZT_FUNC_OPS();
        benchmark::DoNotOptimize(&ztOps);
    }
}
BENCHMARK(BM_Ours_FuncEntryExit_NothingSubscribed);

// spdlog's disabled-level call, twice (entry and exit).
void BM_Peer_FuncEntryExit_NothingSubscribed(benchmark::State& state) {
    auto logger = DisabledPeer();
    for (auto _ : state) {
        logger->debug("Function Entered: {}", __func__);
        logger->debug("Function Exited: {}", __func__);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Peer_FuncEntryExit_NothingSubscribed);

void BM_Ours_FuncEntryExit_DefaultSubscriptions(benchmark::State& state) {
    StartOperations(true);
    for (auto _ : state) {
        ZT_FUNC_OPS();
        benchmark::DoNotOptimize(&ztOps);
    }
}
BENCHMARK(BM_Ours_FuncEntryExit_DefaultSubscriptions);

void BM_Peer_FuncEntryExit_DefaultSubscriptions(benchmark::State& state) {
    auto logger = DisabledPeer();
    for (auto _ : state) {
        logger->debug("Function Entered: {}", __func__);
        logger->debug("Function Exited: {}", __func__);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Peer_FuncEntryExit_DefaultSubscriptions);

// A message at a level nobody wants (info, under the defaults that log warnings and worse).
void BM_Ours_UnwantedMessage(benchmark::State& state) {
    StartOperations(true);
    int i = 0;
    for (auto _ : state) {
        ZT_MESSAGE(Util::Ops::kLvlInfoSummary, "Posting batch %d of %s", ++i, "ledger");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Ours_UnwantedMessage);

void BM_Peer_UnwantedMessage(benchmark::State& state) {
    auto logger = DisabledPeer();
    int i = 0;
    for (auto _ : state) {
        logger->info("Posting batch {} of {}", ++i, "ledger");
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Peer_UnwantedMessage);

// A warning written by LOG_TO_FILE to "Ops.log": formatted, time-stamped, written and flushed.
void BM_Ours_LogToFile(benchmark::State& state) {
    StartOperations(true);
    int i = 0;
    for (auto _ : state)
        ZT_MESSAGE(Util::Ops::kLvlWarning, "Posting batch %d of %s", ++i, "ledger");
    StartOperations(false);
    std::filesystem::remove(BenchDirectory() + "/Ops.log");
}
BENCHMARK(BM_Ours_LogToFile);

// spdlog's file sink with the same line content and a flush after every line.
void BM_Peer_LogToFile(benchmark::State& state) {
    const std::string path = BenchDirectory() + "/peer.log";
    auto logger = spdlog::basic_logger_mt("peer_file", path);
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%P:%t] %l MESSAGE %s (%#) : %v");
    logger->flush_on(spdlog::level::trace);
    int i = 0;
    for (auto _ : state)
        SPDLOG_LOGGER_WARN(logger, "Posting batch {} of {}", ++i, "ledger");
    spdlog::drop("peer_file");
    std::filesystem::remove(path);
}
BENCHMARK(BM_Peer_LogToFile);

// Reference: the floor under both log benchmarks, one write of a line of the same length to a
// file opened for appending (what a flush per line costs in system calls on this machine).
void BM_Ref_RawWriteLine(benchmark::State& state) {
    const std::string path = BenchDirectory() + "/raw.log";
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    const std::string line(118, 'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(::write(fd, line.data(), line.size()));
    ::close(fd);
    std::filesystem::remove(path);
}
BENCHMARK(BM_Ref_RawWriteLine);

// Reference: a reported status that nobody listens to (it still becomes the last status).
void BM_Ref_StatusReportUnheard(benchmark::State& state) {
    StartOperations(true);
    for (auto _ : state) {
        Util::LocalOps ops("bench/ops_bench.cpp", 1, "F", "void F()");
        Util::Status status = ops.ReportStatus(Util::Status::GetNotFound(), 2);
        benchmark::DoNotOptimize(status);
    }
}
BENCHMARK(BM_Ref_StatusReportUnheard);

} // namespace

BENCHMARK_MAIN();
