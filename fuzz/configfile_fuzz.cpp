// Loads arbitrary bytes as a configuration file (written to a file of this process first). The
// load succeeds unless some line fills the line buffer, and every key that a section lists can
// be read back.
#include "Util/ConfigFile.h"
#include "fuzz/scratch_dir.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

bool HasTooLongLine(const std::string& text) {
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        bool ended = end != std::string::npos;
        if (!ended)
            end = text.size();
        std::size_t length = end - start;
        if (ended && length > 0 && text[end - 1] == '\r')
            --length;
        if (length + (ended ? 1 : 0) >= 4095)
            return true;
        start = end + 1;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = (ZtFuzz::ScratchDir() / "fuzz.cfg").string();
    std::string text(reinterpret_cast<const char*>(data), size);
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return 0;
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);

    FileSystem::ConfigFile config;
    long code = config.LoadFile(path.c_str(), ";#").GetStatusCode();
    if (code != (HasTooLongLine(text) ? -9 : 0))
        std::abort();
    std::vector<Util::TString> names;
    config.GetSectionNames(names);
    names.push_back("");
    for (const Util::TString& name : names) {
        std::vector<Util::TString> strings;
        config.GetSectionStrings(name, strings);
        for (const Util::TString& entry : strings) {
            std::size_t equals = entry.Find('=');
            Util::TString key = equals == Util::TString::npos ? entry : entry.Left(equals);
            if (config.GetStringValue(name, key, "\x01missing") == "\x01missing")
                std::abort();
        }
    }
    return 0;
}
