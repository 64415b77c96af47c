// ConfigFile against inih (into a std::map) and GLib's GKeyFile: load a 1 MB file of 20,000 keys
// in 100 sections, then look every key up once in a shuffled order.
#include <benchmark/benchmark.h>

#include <glib.h>
#include <ini.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "Util/ConfigFile.h"

namespace {

struct Lookup {
    std::string section, key;
};

struct Fixture {
    std::string path;
    std::vector<Lookup> lookups;

    Fixture() {
        path = "/tmp/configfile_bench_" + std::to_string(getpid()) + ".ini";
        std::string text;
        for (int s = 0; s < 100; ++s) {
            std::string section = "Section" + std::to_string(s);
            text += "[" + section + "]\n";
            for (int k = 0; k < 200; ++k) {
                std::string key = "key_" + std::to_string(s) + "_" + std::to_string(k);
                text +=
                    key + "=value " + std::to_string(s * 1000 + k) + " of a configuration entry\n";
                lookups.push_back({section, key});
            }
        }
        std::FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
        std::shuffle(lookups.begin(), lookups.end(), std::mt19937(42));
    }
    ~Fixture() { std::remove(path.c_str()); }
};

const Fixture& Data() {
    static Fixture fixture;
    return fixture;
}

void RunOurs(benchmark::State& state) {
    const Fixture& data = Data();
    for (auto _ : state) {
        FileSystem::ConfigFile config(data.path.c_str(), ";#");
        std::size_t total = 0;
        for (const Lookup& lookup : data.lookups)
            total +=
                config.GetStringValue(lookup.section.c_str(), lookup.key.c_str(), "").GetLength();
        benchmark::DoNotOptimize(total);
    }
}

int InihHandler(void* user, const char* section, const char* name, const char* value) {
    auto& map = *static_cast<std::map<std::string, std::string>*>(user);
    map[std::string(section) + '\x01' + name] = value;
    return 1;
}

void BM_Ours_LoadLookup20KVsInih(benchmark::State& state) {
    RunOurs(state);
}

void BM_Peer_LoadLookup20KVsInih(benchmark::State& state) {
    const Fixture& data = Data();
    for (auto _ : state) {
        std::map<std::string, std::string> map;
        ini_parse(data.path.c_str(), InihHandler, &map);
        std::size_t total = 0;
        std::string key;
        for (const Lookup& lookup : data.lookups) {
            key.assign(lookup.section).append(1, '\x01').append(lookup.key);
            auto found = map.find(key);
            total += found != map.end() ? found->second.size() : 0;
        }
        benchmark::DoNotOptimize(total);
    }
}

void BM_Ours_LoadLookup20KVsGKeyFile(benchmark::State& state) {
    RunOurs(state);
}

void BM_Peer_LoadLookup20KVsGKeyFile(benchmark::State& state) {
    const Fixture& data = Data();
    for (auto _ : state) {
        GKeyFile* file = g_key_file_new();
        g_key_file_load_from_file(file, data.path.c_str(), G_KEY_FILE_NONE, nullptr);
        std::size_t total = 0;
        for (const Lookup& lookup : data.lookups) {
            gchar* value =
                g_key_file_get_string(file, lookup.section.c_str(), lookup.key.c_str(), nullptr);
            total += value != nullptr ? std::strlen(value) : 0;
            g_free(value);
        }
        g_key_file_free(file);
        benchmark::DoNotOptimize(total);
    }
}

} // namespace

BENCHMARK(BM_Ours_LoadLookup20KVsInih)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_LoadLookup20KVsInih)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ours_LoadLookup20KVsGKeyFile)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_LoadLookup20KVsGKeyFile)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
