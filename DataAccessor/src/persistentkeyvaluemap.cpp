#include "Util/PersistentKeyValueMap.h"

#include "DataAccessor/src/legacyprofile_platform.h"
#include "Util/ProfileLocations.h"
#include "Util/Win32.h"

#include <vector>

namespace Norvane {
namespace Utilities {

using namespace Util::Win32;

IPersistentKeyValueMap::~IPersistentKeyValueMap() = default;

Util::TString ApplicationDataDirectory::Resolve(const char* fileName) {
    Util::TString path = Util::ProfileLocations::GetDataDirectory();
    path += fileName != nullptr ? fileName : "";
    return path;
}

Util::TString ReleaseDataDirectory::Resolve(const char* fileName) {
    Util::TString path = Util::ProfileLocations::GetReleaseDataDirectory();
    path += fileName != nullptr ? fileName : "";
    return path;
}

Util::TString UserDefinedDirectory::Resolve(const char* fileName) {
    return Util::TString(fileName != nullptr ? fileName : "");
}

long LegacyProfile::Get(const char* path, const KeyValueQuery& query, const char* defaultValue,
                        Util::TString& result) {
    const char* section =
        query.section != nullptr && *query.section != '\0' ? query.section : nullptr;
    const char* key =
        section != nullptr && query.key != nullptr && *query.key != '\0' ? query.key : nullptr;
    const bool list = section == nullptr || key == nullptr;
    // The functions cut what does not fit without saying so: grow until the answer is shorter
    // than the cut length (size - 1 for a value, size - 2 for a list).
    std::vector<char> buffer(256);
    for (;;) {
        const DWORD size = static_cast<DWORD>(buffer.size());
        Util::Win32::SetLastError(0);
        DWORD got =
            Platform::ProfileGetString(section, key, defaultValue, buffer.data(), size, path);
        const DWORD cut = list ? size - 2 : size - 1;
        if (got < cut || buffer.size() >= (1u << 24)) {
            if (list) {
                result = Util::TString(buffer.data(), got + 1); // names and the closing null
            } else {
                result = Util::TString(buffer.data(), got);
            }
            return kKvFound;
        }
        buffer.assign(buffer.size() * 4, '\0');
    }
}

long LegacyProfile::Set(const char* path, const KeyValueQuery& query, const char* value) {
    if (query.section == nullptr || *query.section == '\0')
        return kKvInvalidArg;
    const char* key = query.key != nullptr && *query.key != '\0' ? query.key : nullptr;
    if (query.key != nullptr && key == nullptr)
        return kKvInvalidArg;
    if (Platform::ProfileWriteString(query.section, key, key != nullptr ? value : nullptr, path))
        return kKvFound;
    return kKvFailed;
}

} // namespace Utilities
} // namespace Norvane
