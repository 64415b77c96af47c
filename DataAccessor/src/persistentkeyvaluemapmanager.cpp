#include "Util/PersistentKeyValueMapManager.h"

#include "DataAccessor/src/profilelog.h"

#include <cstring>

namespace Norvane {
namespace Utilities {

namespace {

using DataMap = PersistentKeyValueMap<ApplicationDataDirectory, ReadWriteAccess, StdUser>;
using DataLegacyMap = LegacyKeyValueMap<ApplicationDataDirectory, ReadWriteAccess, StdUser>;
using CallerLegacyMap = LegacyKeyValueMap<UserDefinedDirectory, ReadWriteAccess, StdUser>;

struct ManagerSlot {
    std::mutex mutex;
    std::shared_ptr<PersistentKeyValueMapManager> manager;
};

ManagerSlot& Slot() {
    static ManagerSlot slot;
    return slot;
}

// The buffer rules of GetPrivateProfileString; list values end with their extra null.
unsigned long CopyOut(const char* value, std::size_t length, char* buffer, unsigned long size,
                      bool list) {
    if (buffer == nullptr || size < 2)
        return 0;
    if (length + 1 > size) {
        std::memcpy(buffer, value, size - 1);
        buffer[size - 1] = '\0';
        return size - 1;
    }
    std::memcpy(buffer, value, length);
    buffer[length] = '\0';
    if (list)
        return length > 0 ? static_cast<unsigned long>(length - 1) : 0;
    return static_cast<unsigned long>(length);
}

} // namespace

PersistentKeyValueMapManager::PersistentKeyValueMapManager() = default;
PersistentKeyValueMapManager::~PersistentKeyValueMapManager() = default;

void PersistentKeyValueMapManager::BuildTable() {
    const bool legacy = ProfileLog::IsIniLegacyMode();
    std::size_t count = 0;
    const IniNameEntry* rows = GetIniNameTable(count);
    for (std::size_t i = 0; i < count; ++i) {
        const IniNameEntry& row = rows[i];
        if (legacy || row.alwaysLegacy) {
            m_maps[row.iniName] = std::make_shared<DataLegacyMap>(row.iniName);
            continue;
        }
        std::shared_ptr<KeyValueStorageBase>& storage = m_storages[row.repositoryFile];
        if (!storage)
            storage = std::make_shared<DataMap::Storage>(row.repositoryFile);
        m_maps[row.iniName] = std::make_shared<DataMap>(
            row.iniName, std::static_pointer_cast<DataMap::Storage>(storage));
    }
    m_built = true;
}

std::shared_ptr<IPersistentKeyValueMap> PersistentKeyValueMapManager::GetMap(const char* iniName) {
    const char* name = iniName != nullptr && *iniName != '\0' ? iniName : "Win.ini";
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_built)
        BuildTable();
    auto found = m_maps.find(name);
    if (found != m_maps.end())
        return found->second;
    auto map = std::make_shared<CallerLegacyMap>(name);
    m_maps.emplace(name, map);
    return map;
}

unsigned long PersistentKeyValueMapManager::GetValue(const char* section, const char* key,
                                                     const char* defaultValue, char* buffer,
                                                     unsigned long size, const char* iniName) {
    KeyValueQuery query;
    query.iniName = iniName;
    query.section = section;
    query.key = key;
    Util::TString result;
    long hr = kKvFailed;
    try {
        hr = GetMap(iniName)->GetValue(query, defaultValue, result);
    } catch (...) {
        hr = kKvFailed;
    }
    if (hr == kKvFound)
        return CopyOut(result.c_str(), result.GetLength(), buffer, size, query.IsList());
    if (hr < 0)
        ProfileLog::Write(__FILE__, __LINE__,
                          "PersistentKeyValueMapManager::GetValue -- The get operation failed.");
    const char* fallback = defaultValue != nullptr ? defaultValue : "";
    return CopyOut(fallback, std::strlen(fallback), buffer, size, false);
}

int PersistentKeyValueMapManager::SetValue(const char* section, const char* key, const char* value,
                                           const char* iniName) {
    KeyValueQuery query;
    query.iniName = iniName;
    query.section = section;
    query.key = key;
    long hr = kKvFailed;
    try {
        hr = GetMap(iniName)->SetValue(query, value);
    } catch (...) {
        hr = kKvFailed;
    }
    if (hr >= 0)
        return 1;
    ProfileLog::Write(__FILE__, __LINE__,
                      "PersistentKeyValueMapManager::SetValue -- The set operation failed.");
    return 0;
}

void PersistentKeyValueMapManager::SetVersionInfo(const char* first, const char* second,
                                                  const char* third) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_version[0] = first != nullptr ? first : "";
    m_version[1] = second != nullptr ? second : "";
    m_version[2] = third != nullptr ? third : "";
}

Util::TString PersistentKeyValueMapManager::GetVersionInfo(int which) const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return which >= 0 && which < 3 ? m_version[which] : Util::TString();
}

std::shared_ptr<PersistentKeyValueMapManager> PersistentKeyValueMapManager::GetManager() {
    ManagerSlot& slot = Slot();
    std::lock_guard<std::mutex> lock(slot.mutex);
    if (!slot.manager)
        slot.manager = std::make_shared<PersistentKeyValueMapManager>();
    return slot.manager;
}

void PersistentKeyValueMapManager::DestroyManager() {
    std::shared_ptr<PersistentKeyValueMapManager> old;
    ManagerSlot& slot = Slot();
    {
        std::lock_guard<std::mutex> lock(slot.mutex);
        old.swap(slot.manager);
    }
}

} // namespace Utilities
} // namespace Norvane
