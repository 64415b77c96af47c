// ztutil's config command: a configuration file as ConfigFile reads it.
#include "tools/ztutil/registry.h"

#include <iostream>
#include <string>
#include <vector>

#include "Util/ConfigFile.h"

namespace {

const char* const kUsage = "config FILE [SECTION [KEY]]   (comment characters: ; and #)";

int RunConfig(const std::vector<std::string>& args) {
    if (args.empty() || args.size() > 3)
        return ztutil::UsageError(kUsage, "expected a file and at most a section and a key");
    FileSystem::ConfigFile config;
    Util::Status status = config.LoadFile(args[0].c_str(), ";#");
    if (status.Failed()) {
        std::cerr << "ztutil config: " << status.GetStatusMessage() << " (status "
                  << status.GetStatusCode() << ")\n";
        return 1;
    }
    if (args.size() == 3) {
        const char* missing = "\x01";
        Util::TString value = config.GetStringValue(args[1].c_str(), args[2].c_str(), missing);
        if (value == missing) {
            std::cerr << "ztutil config: no key " << args[2] << " in section [" << args[1] << "]\n";
            return 1;
        }
        std::cout << value << "\n";
        return 0;
    }
    std::vector<Util::TString> sections;
    if (args.size() == 2) {
        sections.push_back(args[1].c_str());
    } else {
        config.GetSectionNames(sections); // the keys before any header come first
        sections.insert(sections.begin(), Util::TString());
    }
    for (const Util::TString& section : sections) {
        std::vector<Util::TString> strings;
        if (config.GetSectionStrings(section, strings) == 0 && args.size() == 1)
            continue;
        if (args.size() == 1 || !section.IsEmpty())
            std::cout << "[" << section << "]\n";
        for (const Util::TString& line : strings)
            std::cout << line << "\n";
    }
    return 0;
}

} // namespace

ZTUTIL_COMMAND(config, kUsage, "dumps or queries a sectioned key=value configuration file",
               RunConfig);
