// The POSIX profile functions against inih (a read) and GLib's GKeyFile (a durable write), on
// the same INI file of 20 sections of 50 keys. Both sides open and parse the file on every call,
// as the profile functions do.
#include "Util/Win32.h"

#include <benchmark/benchmark.h>
#include <glib.h>
#include <ini.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

std::string MakeFile() {
    static const std::string path = [] {
        char dir[] = "/tmp/zt_profile_bench_XXXXXX";
        if (::mkdtemp(dir) == nullptr)
            std::abort();
        std::string text;
        for (int s = 0; s < 20; ++s) {
            text += "[section" + std::to_string(s) + "]\r\n";
            for (int k = 0; k < 50; ++k)
                text += "key" + std::to_string(k) + "=value of key " + std::to_string(k) + "\r\n";
        }
        std::string file = std::string(dir) + "/bench.ini";
        FILE* f = std::fopen(file.c_str(), "wb");
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
        return file;
    }();
    return path;
}

struct Lookup {
    const char* section;
    const char* key;
    std::string value;
};

int Handler(void* user, const char* section, const char* name, const char* value) {
    auto* lookup = static_cast<Lookup*>(user);
    if (strcasecmp(section, lookup->section) == 0 && strcasecmp(name, lookup->key) == 0 &&
        lookup->value.empty())
        lookup->value = value;
    return 1;
}

void BM_Ours_GetValue(benchmark::State& state) {
    const std::string file = MakeFile();
    char buffer[256];
    for (auto _ : state) {
        Util::Win32::DWORD n = Util::Win32::GetPrivateProfileStringA(
            "section19", "key49", "", buffer, sizeof buffer, file.c_str());
        benchmark::DoNotOptimize(n);
    }
}

void BM_Peer_GetValue(benchmark::State& state) {
    const std::string file = MakeFile();
    for (auto _ : state) {
        Lookup lookup{"section19", "key49", {}};
        ini_parse(file.c_str(), Handler, &lookup);
        benchmark::DoNotOptimize(lookup.value.data());
    }
}

void BM_Ours_SetValue(benchmark::State& state) {
    const std::string file = MakeFile();
    long i = 0;
    for (auto _ : state) {
        const std::string value = std::to_string(++i);
        Util::Win32::WritePrivateProfileStringA("section10", "key25", value.c_str(), file.c_str());
    }
}

void BM_Peer_SetValue(benchmark::State& state) {
    const std::string file = MakeFile();
    long i = 0;
    for (auto _ : state) {
        const std::string value = std::to_string(++i);
        GKeyFile* keys = g_key_file_new();
        g_key_file_load_from_file(keys, file.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
        g_key_file_set_string(keys, "section10", "key25", value.c_str());
        g_key_file_save_to_file(keys, file.c_str(), nullptr);
        g_key_file_free(keys);
    }
}

} // namespace

BENCHMARK(BM_Ours_GetValue);
BENCHMARK(BM_Peer_GetValue);
BENCHMARK(BM_Ours_SetValue);
BENCHMARK(BM_Peer_SetValue);
BENCHMARK_MAIN();
