// The find-first emulation against its POSIX peers: the wildcard matcher against fnmatch with
// case folding, and a FindFirstFileA/FindNextFileA listing against opendir/readdir + fnmatch
// (the plain peer neither sorts nor describes the entries, which FindFirstFileA does; the
// described peer stats each match, as a POSIX program wanting sizes and times would).
#include "Util/Win32File.h"
#include "Util/Win32Wildcard.h"

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace Util::Win32; // HANDLE, WIN32_FIND_DATAA and friends

namespace {

const std::vector<std::string>& Names() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (int i = 0; i < 256; ++i)
            list.push_back("Ledger_" + std::to_string(i * 7919 % 1000) +
                           (i % 3 == 0   ? ".TXT"
                            : i % 3 == 1 ? ".dat"
                                         : ".txt.bak"));
        return list;
    }();
    return names;
}

void BM_Ours_MatchExtension(benchmark::State& state) {
    for (auto _ : state)
        for (const std::string& name : Names())
            benchmark::DoNotOptimize(Util::MatchesWin32Wildcard("ledger_*.txt", name.c_str()));
}
BENCHMARK(BM_Ours_MatchExtension);

void BM_Peer_MatchExtension(benchmark::State& state) {
    for (auto _ : state)
        for (const std::string& name : Names())
            benchmark::DoNotOptimize(::fnmatch("ledger_*.txt", name.c_str(), FNM_CASEFOLD));
}
BENCHMARK(BM_Peer_MatchExtension);

struct Directory {
    Directory() {
        path = (std::filesystem::temp_directory_path() /
                ("zt_bench_find_" + std::to_string(::getpid())))
                   .string();
        std::filesystem::create_directories(path);
        for (const std::string& name : Names())
            std::ofstream(path + "/" + name) << name;
    }
    ~Directory() { std::filesystem::remove_all(path); }
    std::string path;
};

const Directory& Listing() {
    static const Directory directory;
    return directory;
}

void BM_Ours_ListDirectory(benchmark::State& state) {
    const std::string pattern = Listing().path + "/*.txt";
    for (auto _ : state) {
        WIN32_FIND_DATAA data;
        int count = 0;
        HANDLE find = Util::Win32::FindFirstFileA(pattern.c_str(), &data);
        if (find != INVALID_HANDLE_VALUE) {
            do
                ++count;
            while (Util::Win32::FindNextFileA(find, &data));
            Util::Win32::FindClose(find);
        }
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(BM_Ours_ListDirectory);

void BM_Peer_ListDirectory(benchmark::State& state) {
    for (auto _ : state) {
        int count = 0;
        DIR* listing = ::opendir(Listing().path.c_str());
        while (const dirent* entry = ::readdir(listing))
            if (::fnmatch("*.txt", entry->d_name, FNM_CASEFOLD) == 0)
                ++count;
        ::closedir(listing);
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(BM_Peer_ListDirectory);

void BM_Ours_ListDescribed(benchmark::State& state) {
    BM_Ours_ListDirectory(state);
}
BENCHMARK(BM_Ours_ListDescribed);

void BM_Peer_ListDescribed(benchmark::State& state) {
    for (auto _ : state) {
        long long bytes = 0;
        DIR* listing = ::opendir(Listing().path.c_str());
        while (const dirent* entry = ::readdir(listing)) {
            struct stat info;
            if (::fnmatch("*.txt", entry->d_name, FNM_CASEFOLD) == 0 &&
                ::fstatat(::dirfd(listing), entry->d_name, &info, 0) == 0)
                bytes += info.st_size;
        }
        ::closedir(listing);
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(BM_Peer_ListDescribed);

} // namespace

BENCHMARK_MAIN();
