// Loads arbitrary bytes as a settings repository: a file that loads must answer reads and
// accept a write that reads back; one that does not must be moved aside, never changed.
#include "Util/KeyValueStorage.h"
#include "fuzz/scratch_dir.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

const std::filesystem::path& Dir() {
    static const std::filesystem::path dir = ZtFuzz::ScratchDir() / "repository";
    return dir;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::filesystem::path file = Dir() / "FUZZ.INI.XML";
    std::filesystem::remove_all(Dir());
    std::filesystem::create_directories(Dir());
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    Util::TString problem;
    const bool valid =
        Norvane::Utilities::KeyValueStorageBase::CheckFile(file.string().c_str(), problem);

    Norvane::Utilities::KeyValueStorageBase storage(file.string().c_str(), true);
    Norvane::Utilities::KeyValueQuery query;
    query.iniName = "FUZZ.INI";
    std::string value;
    if (storage.Get(query, value) != Norvane::Utilities::kKvFound)
        std::abort(); // a section list always answers
    const bool movedAside = !std::filesystem::exists(file);
    if (valid == movedAside)
        std::abort();
    query.section = "S";
    query.key = "K";
    if (storage.Set(query, "v") != Norvane::Utilities::kKvFound)
        std::abort();
    if (storage.Get(query, value) != Norvane::Utilities::kKvFound || value != "v")
        std::abort();
    return 0;
}
