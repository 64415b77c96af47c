// Settings against their peers, on the same 10,000 keys (100 sections of 100 keys): a read of a
// present key against GLib's GKeyFile, a durable write against SQLite's upsert with
// synchronous=FULL in the same directory, and a legacy-mode read of the real INI file against
// inih parsing that file (both read the file on every call).
#include "Util/PersistentKeyValueMapManager.h"
#include "Util/ProfileLocations.h"

#include <benchmark/benchmark.h>
#include <glib.h>
#include <ini.h>
#include <sqlite3.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Norvane::Utilities::PersistentKeyValueMapManager;

const int kSections = 100, kKeys = 100;

std::string Section(int s) {
    return "Section" + std::to_string(s);
}
std::string Key(int k) {
    return "Key" + std::to_string(k);
}
std::string Value(int s, int k) {
    return "value of " + std::to_string(s) + "." + std::to_string(k);
}

// The benchmark directory with ZTW.INI.XML and ZTW.INI holding the same 10,000 keys.
const std::string& Directory() {
    static const std::string dir = [] {
        std::filesystem::path path = std::filesystem::current_path() / "zt_settings_bench";
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
        std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-16\"?><KeyValueRepository>"
                          "<IniFile name=\"ZTW.INI\">";
        std::string ini;
        for (int s = 0; s < kSections; ++s) {
            xml += "<Section name=\"" + Section(s) + "\">";
            ini += "[" + Section(s) + "]\r\n";
            for (int k = 0; k < kKeys; ++k) {
                xml += "<Key name=\"" + Key(k) + "\"><Value>" + Value(s, k) + "</Value></Key>";
                ini += Key(k) + "=" + Value(s, k) + "\r\n";
            }
            xml += "</Section>";
        }
        xml += "</IniFile></KeyValueRepository>";
        std::string utf16 = "\xFF\xFE";
        for (char c : xml) {
            utf16 += c;
            utf16 += '\0';
        }
        std::ofstream(path / "ZTW.INI.XML", std::ios::binary) << utf16;
        std::ofstream(path / "ZTW.INI", std::ios::binary) << ini;
        const std::string text = path.string() + "/";
        Util::ProfileLocations::SetDirectories(text.c_str(), text.c_str());
        return text;
    }();
    return dir;
}

void BM_Ours_GetValue10kKeys(benchmark::State& state) {
    Directory();
    auto manager = PersistentKeyValueMapManager::GetManager();
    const std::string section = Section(57), key = Key(42);
    char buffer[64];
    for (auto _ : state) {
        unsigned long n =
            manager->GetValue(section.c_str(), key.c_str(), "", buffer, sizeof buffer, "ZTW.INI");
        benchmark::DoNotOptimize(n);
    }
    if (std::strcmp(buffer, Value(57, 42).c_str()) != 0)
        state.SkipWithError("wrong value");
}

void BM_Peer_GetValue10kKeys(benchmark::State& state) {
    std::ifstream in(Directory() + "ZTW.INI", std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    GKeyFile* file = g_key_file_new();
    g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr);
    const std::string section = Section(57), key = Key(42);
    for (auto _ : state) {
        gchar* value = g_key_file_get_string(file, section.c_str(), key.c_str(), nullptr);
        benchmark::DoNotOptimize(value);
        g_free(value);
    }
    g_key_file_free(file);
}

void BM_Ours_DurableSet10kKeys(benchmark::State& state) {
    Directory();
    auto manager = PersistentKeyValueMapManager::GetManager();
    long i = 0;
    for (auto _ : state) {
        const std::string value = std::to_string(++i);
        if (!manager->SetValue("Section3", "Key7", value.c_str(), "ZTW.INI"))
            state.SkipWithError("write failed");
    }
}

void BM_Peer_DurableSet10kKeys(benchmark::State& state) {
    const std::string path = Directory() + "peer.sqlite";
    std::filesystem::remove(path);
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    sqlite3_exec(db,
                 "PRAGMA synchronous=FULL; CREATE TABLE kv(section TEXT, key TEXT, value TEXT, "
                 "PRIMARY KEY(section, key));",
                 nullptr, nullptr, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* put = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO kv VALUES(?1, ?2, ?3) ON CONFLICT(section, key) DO UPDATE "
                       "SET value = excluded.value",
                       -1, &put, nullptr);
    auto upsert = [&](const std::string& s, const std::string& k, const std::string& v) {
        sqlite3_bind_text(put, 1, s.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(put, 2, k.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(put, 3, v.c_str(), -1, SQLITE_TRANSIENT);
        int rc = sqlite3_step(put);
        sqlite3_reset(put);
        return rc == SQLITE_DONE;
    };
    for (int s = 0; s < kSections; ++s)
        for (int k = 0; k < kKeys; ++k)
            upsert(Section(s), Key(k), Value(s, k));
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    long i = 0;
    for (auto _ : state) {
        if (!upsert("Section3", "Key7", std::to_string(++i)))
            state.SkipWithError("upsert failed");
    }
    sqlite3_finalize(put);
    sqlite3_close(db);
}

void BM_Ours_LegacyGet10kKeys(benchmark::State& state) {
    const std::string path = Directory() + "ZTW.INI";
    Norvane::Utilities::LegacyKeyValueMap<Norvane::Utilities::UserDefinedDirectory,
                                          Norvane::Utilities::ReadOnlyAccess,
                                          Norvane::Utilities::StdUser>
        map(path.c_str());
    const std::string section = Section(57), key = Key(42);
    Norvane::Utilities::KeyValueQuery query;
    query.iniName = path.c_str();
    query.section = section.c_str();
    query.key = key.c_str();
    Util::TString value;
    for (auto _ : state) {
        map.GetValue(query, "", value);
        benchmark::DoNotOptimize(value);
    }
    if (value != Util::TString(Value(57, 42).c_str()))
        state.SkipWithError("wrong value");
}

struct Wanted {
    const char *section, *key;
    std::string value;
};

int Handler(void* user, const char* section, const char* name, const char* value) {
    Wanted* wanted = static_cast<Wanted*>(user);
    if (std::strcmp(section, wanted->section) == 0 && std::strcmp(name, wanted->key) == 0) {
        wanted->value = value;
        return 0; // stop here
    }
    return 1;
}

void BM_Peer_LegacyGet10kKeys(benchmark::State& state) {
    const std::string path = Directory() + "ZTW.INI";
    const std::string section = Section(57), key = Key(42);
    Wanted wanted{section.c_str(), key.c_str(), std::string()};
    for (auto _ : state) {
        ini_parse(path.c_str(), Handler, &wanted);
        benchmark::DoNotOptimize(wanted.value);
    }
}

} // namespace

BENCHMARK(BM_Ours_GetValue10kKeys);
BENCHMARK(BM_Peer_GetValue10kKeys);
BENCHMARK(BM_Ours_DurableSet10kKeys)->UseRealTime();
BENCHMARK(BM_Peer_DurableSet10kKeys)->UseRealTime();
BENCHMARK(BM_Ours_LegacyGet10kKeys);
BENCHMARK(BM_Peer_LegacyGet10kKeys);

BENCHMARK_MAIN();
