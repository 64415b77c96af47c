// ztutil settings: reads and writes the application's settings by INI name, moves INI files
// into repositories and back, and checks the repositories of the data directory; and the demo
// section of the persistent settings.
#include "tools/ztutil/registry.h"

#include "Util/KeyValueStorage.h"
#include "Util/PersistentKeyValueMapManager.h"
#include "Util/ProfileLocations.h"
#include "Util/UtilProfile.h"

#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

using Norvane::Utilities::IPersistentKeyValueMap;
using Norvane::Utilities::KeyValueQuery;
using Norvane::Utilities::PersistentKeyValueMapManager;

const char kUsage[] = "settings get INI SECTION KEY | set INI SECTION KEY VALUE | "
                      "list INI [SECTION] | import FILE.INI | export INI | check";

std::vector<std::string> SplitNames(const Util::TString& list) {
    std::vector<std::string> names;
    const char* p = list.c_str();
    const char* end = p + list.GetLength();
    while (p < end && *p != '\0') {
        names.emplace_back(p);
        p += names.back().size() + 1;
    }
    return names;
}

// Names of the sections of a map (section null) or the keys of a section.
bool Names(IPersistentKeyValueMap& map, const char* ini, const char* section,
           std::vector<std::string>& names) {
    KeyValueQuery query;
    query.iniName = ini;
    query.section = section;
    Util::TString list;
    if (map.GetValue(query, "", list) < 0)
        return false;
    names = SplitNames(list);
    return true;
}

int Get(const std::vector<std::string>& args) {
    auto map = PersistentKeyValueMapManager::GetManager()->GetMap(args[1].c_str());
    KeyValueQuery query;
    query.iniName = args[1].c_str();
    query.section = args[2].c_str();
    query.key = args[3].c_str();
    Util::TString value;
    long hr = map->GetValue(query, nullptr, value);
    if (hr < 0) {
        std::cerr << "ztutil settings: cannot read " << map->GetFilePath().c_str() << "\n";
        return 1;
    }
    if (hr != Norvane::Utilities::kKvFound) {
        std::cerr << "ztutil settings: [" << args[2] << "] " << args[3] << " is not set in "
                  << args[1] << "\n";
        return 1;
    }
    std::cout << value.c_str() << "\n";
    return 0;
}

int Set(const std::vector<std::string>& args) {
    if (!PersistentKeyValueMapManager::GetManager()->SetValue(args[2].c_str(), args[3].c_str(),
                                                              args[4].c_str(), args[1].c_str())) {
        std::cerr << "ztutil settings: cannot write [" << args[2] << "] " << args[3] << " of "
                  << args[1] << "\n";
        return 1;
    }
    return 0;
}

int List(const std::vector<std::string>& args) {
    auto map = PersistentKeyValueMapManager::GetManager()->GetMap(args[1].c_str());
    std::vector<std::string> names;
    if (!Names(*map, args[1].c_str(), args.size() > 2 ? args[2].c_str() : nullptr, names)) {
        std::cerr << "ztutil settings: cannot read " << map->GetFilePath().c_str() << "\n";
        return 1;
    }
    for (const std::string& name : names)
        std::cout << name << "\n";
    return 0;
}

// Copies every value of one map into another; counts what was copied.
bool Copy(IPersistentKeyValueMap& from, const char* fromName, IPersistentKeyValueMap* to,
          const char* toName, std::ostream* out, int& copied) {
    std::vector<std::string> sections;
    if (!Names(from, fromName, nullptr, sections))
        return false;
    for (const std::string& section : sections) {
        std::vector<std::string> keys;
        if (!Names(from, fromName, section.c_str(), keys))
            return false;
        if (out != nullptr)
            *out << "[" << section << "]\n";
        for (const std::string& key : keys) {
            KeyValueQuery query;
            query.iniName = fromName;
            query.section = section.c_str();
            query.key = key.c_str();
            Util::TString value;
            if (from.GetValue(query, "", value) < 0)
                return false;
            if (out != nullptr)
                *out << key << "=" << value.c_str() << "\n";
            if (to != nullptr) {
                query.iniName = toName;
                if (to->SetValue(query, value.c_str()) < 0)
                    return false;
            }
            ++copied;
        }
        if (out != nullptr)
            *out << "\n";
    }
    return true;
}

int Import(const std::vector<std::string>& args) {
    const std::string path = args[1];
    if (!std::filesystem::is_regular_file(path)) {
        std::cerr << "ztutil settings: " << path << " is not a file\n";
        return 1;
    }
    const std::string ini = std::filesystem::path(path).filename().string();
    Norvane::Utilities::LegacyKeyValueMap<Norvane::Utilities::UserDefinedDirectory,
                                          Norvane::Utilities::ReadOnlyAccess,
                                          Norvane::Utilities::StdUser>
        source(path.c_str());
    auto target = PersistentKeyValueMapManager::GetManager()->GetMap(ini.c_str());
    int copied = 0;
    if (!Copy(source, path.c_str(), target.get(), ini.c_str(), nullptr, copied)) {
        std::cerr << "ztutil settings: import stopped after " << copied << " values\n";
        return 1;
    }
    std::cout << "imported " << copied << " values of " << ini << " into "
              << target->GetFilePath().c_str() << "\n";
    return 0;
}

int Export(const std::vector<std::string>& args) {
    auto map = PersistentKeyValueMapManager::GetManager()->GetMap(args[1].c_str());
    int copied = 0;
    if (!Copy(*map, args[1].c_str(), nullptr, nullptr, &std::cout, copied)) {
        std::cerr << "ztutil settings: cannot read " << map->GetFilePath().c_str() << "\n";
        return 1;
    }
    return 0;
}

int Check(const std::vector<std::string>&) {
    const std::string dir = Util::ProfileLocations::GetDataDirectory().c_str();
    std::error_code error;
    int checked = 0, damaged = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir, error)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name.size() < 4 ||
            name.compare(name.size() - 4, 4, ".XML") != 0)
            continue;
        ++checked;
        Util::TString problem;
        if (!Norvane::Utilities::KeyValueStorageBase::CheckFile(entry.path().string().c_str(),
                                                                problem)) {
            ++damaged;
            std::cout << "damaged: " << name << ": " << problem.c_str() << "\n";
        }
    }
    if (error) {
        std::cerr << "ztutil settings: cannot list " << dir << ": " << error.message() << "\n";
        return 1;
    }
    std::cout << checked << " repositories in " << dir << ", " << damaged << " damaged\n";
    return damaged == 0 ? 0 : 1;
}

int RunSettings(const std::vector<std::string>& args) {
    const struct {
        const char* name;
        std::size_t min, max;
        int (*run)(const std::vector<std::string>&);
    } commands[] = {{"get", 4, 4, Get},       {"set", 5, 5, Set},       {"list", 2, 3, List},
                    {"import", 2, 2, Import}, {"export", 2, 2, Export}, {"check", 1, 1, Check}};
    if (args.empty())
        return ztutil::UsageError(kUsage, "missing subcommand");
    for (const auto& c : commands) {
        if (args[0] != c.name)
            continue;
        if (args.size() < c.min || args.size() > c.max)
            return ztutil::UsageError(kUsage, "wrong number of arguments for " + args[0]);
        return c.run(args);
    }
    return ztutil::UsageError(kUsage, "unknown subcommand " + args[0]);
}

void DemoSettings(std::ostream& out) {
    const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / "ztutil_settings_demo";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    const std::string dirText = dir.string() + "/";
    Util::ProfileLocations::SetDirectories(dirText.c_str(), dirText.c_str());
    out << "Data directory: " << Util::ProfileLocations::GetDataDirectory().c_str() << "\n";
    UtilWritePrivateProfileString("Window", "Left", "120", "ZTW.INI");
    UtilWritePrivateProfileString("Window", "Title", "Tallywick \"Books\"", "ZTW.INI");
    UtilWritePrivateProfileString("Rates", "Federal", "0.22", "PRTAXTBL.INI");
    char buffer[64];
    unsigned long n =
        UtilGetPrivateProfileString("Window", "Title", "", buffer, sizeof buffer, "ZTW.INI");
    out << "ZTW.INI [Window] Title = " << buffer << " (" << n << " characters)\n";
    n = UtilGetPrivateProfileString("Window", "Title", "", buffer, 6, "ZTW.INI");
    out << "Into a 6-character buffer: \"" << buffer << "\" (" << n << ")\n";
    out << "Missing key with default: "
        << UtilGetPrivateProfileInt("Window", "Width", 640, "ZTW.INI") << "\n";
    n = UtilGetPrivateProfileSectionNames(buffer, sizeof buffer, "ZTW.INI");
    out << "Section names of ZTW.INI: " << n << " characters\n";
    out << "PRTAXTBL.INI lives in PAYROLL.INI.XML: "
        << (std::filesystem::exists(dir / "PAYROLL.INI.XML") ? "yes" : "no") << "\n";
    UtilProfileUnload();
    Util::ProfileLocations::SetDirectories(nullptr, nullptr);
    std::filesystem::remove_all(dir);
}

} // namespace

ZTUTIL_COMMAND(settings, kUsage, "read, write, import, export and check the settings repositories",
               RunSettings);
ZTUTIL_DEMO(60, "Persistent settings", DemoSettings);
