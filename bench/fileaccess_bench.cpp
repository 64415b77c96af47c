// The redirected fopen against the C library's: _Ztfopen + fclose with nobody subscribed to its
// event, with no redirection rules and with a rule that applies, against fopen + fclose of the
// same (real) file; against the fopen_s it calls; and against the least a POSIX program must do
// to refuse what Windows' fopen refuses (a directory opened for reading): fopen, fstat, fclose.
#include <benchmark/benchmark.h>

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "Util/FileAccReplace.h"
#include "Util/OpsContext.h"
#include "Util/OpsSubscriptionManager.h"
#include "Util/ReDirectFile.h"

namespace {

struct Files {
    std::filesystem::path root;
    std::string asked, real;
    Files() {
        root = std::filesystem::temp_directory_path() /
               ("fileaccess_bench_" + std::to_string(std::random_device()()));
        std::filesystem::create_directories(root / "real");
        std::ofstream(root / "real" / "ledger.dat") << "ledger";
        asked = (root / "asked" / "ledger.dat").string();
        real = (root / "real" / "ledger.dat").string();
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }
};

class QuietContext : public Util::OpsContext {
public:
    explicit QuietContext(std::string dir) : m_dir(std::move(dir)) {}
    void GetOpsDirectory(Util::TString& directory) const override { directory = m_dir.c_str(); }
    void GetOpsLogDirectory(Util::TString& directory) const override { directory = m_dir.c_str(); }
    void RegisterSubscriptions(Util::OpsSubscriptionManager&) const override {}

private:
    std::string m_dir;
};

// Operations running with no subscription at all, so that no event is wanted.
const Files& Setup() {
    static const Files files;
    static QuietContext context(files.root.string());
    static const bool begun = [] {
        Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
        Util::GetOps().BeginOperations(&context);
        return true;
    }();
    (void)begun;
    return files;
}

void BM_Peer_FopenFclose(benchmark::State& state) {
    const Files& files = Setup();
    for (auto _ : state) {
        FILE* f = std::fopen(files.real.c_str(), "rb");
        benchmark::DoNotOptimize(f);
        std::fclose(f);
    }
}
BENCHMARK(BM_Peer_FopenFclose);

void BM_Ours_FopenFclose(benchmark::State& state) {
    const Files& files = Setup();
    Util::ReDirectFile::ClearRules();
    for (auto _ : state) {
        FILE* f = Ztfopen(files.real.c_str(), "rb");
        benchmark::DoNotOptimize(f);
        std::fclose(f);
    }
}
BENCHMARK(BM_Ours_FopenFclose);

// The wrapper's own cost: the same call against the function it wraps (on POSIX the emulation
// of the Windows fopen_s, which refuses what Windows refuses before it opens).
void BM_Peer_FopenSFclose(benchmark::State& state) {
    const Files& files = Setup();
    for (auto _ : state) {
        FILE* f = nullptr;
        Util::Win32::fopen_s(&f, files.real.c_str(), "rb");
        benchmark::DoNotOptimize(f);
        std::fclose(f);
    }
}
BENCHMARK(BM_Peer_FopenSFclose);

void BM_Ours_FopenSFclose(benchmark::State& state) {
    BM_Ours_FopenFclose(state);
}
BENCHMARK(BM_Ours_FopenSFclose);

void BM_Peer_FopenRefusingDirectory(benchmark::State& state) {
    const Files& files = Setup();
    for (auto _ : state) {
        FILE* f = std::fopen(files.real.c_str(), "rbe");
        struct stat info;
        if (f != nullptr && (::fstat(::fileno(f), &info) != 0 || S_ISDIR(info.st_mode))) {
            std::fclose(f);
            f = nullptr;
        }
        if (f == nullptr) {
            state.SkipWithError("the file did not open");
            break;
        }
        std::fclose(f);
    }
}
BENCHMARK(BM_Peer_FopenRefusingDirectory);

void BM_Ours_FopenRefusingDirectory(benchmark::State& state) {
    BM_Ours_FopenFclose(state);
}
BENCHMARK(BM_Ours_FopenRefusingDirectory);

void BM_Peer_FopenFcloseRedirected(benchmark::State& state) {
    BM_Peer_FopenFclose(state);
}
BENCHMARK(BM_Peer_FopenFcloseRedirected);

void BM_Ours_FopenFcloseRedirected(benchmark::State& state) {
    const Files& files = Setup();
    if (Util::ReDirectFile::SetRules(
            {{(files.root / "asked").string().c_str(), (files.root / "real").string().c_str()}})
            .Failed())
        state.SkipWithError("the rule was refused");
    for (auto _ : state) {
        FILE* f = Ztfopen(files.asked.c_str(), "rb");
        if (f == nullptr) {
            state.SkipWithError("the redirected name did not open");
            break;
        }
        std::fclose(f);
    }
    Util::ReDirectFile::ClearRules();
}
BENCHMARK(BM_Ours_FopenFcloseRedirected);

} // namespace

BENCHMARK_MAIN();
