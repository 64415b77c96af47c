// Norvane::Utilities persistent key-value maps: one map serves one legacy INI name.
//
// IPersistentKeyValueMap is the interface the manager talks to. GetValue fills result with a
// key's value or a name list (see KeyValueQuery) and returns 0 found, 1 not there (result is
// then empty, or for the legacy map the default) or a negative HRESULT; SetValue returns 0 or
// a negative HRESULT. GetFilePath names the file behind the map, computed once on first call.
//
// PersistentKeyValueMap<Directory, Access, UserType> keeps its values in a shared
// KeyValueStorage repository. LegacyKeyValueMap<Directory, Access, UserType> reads and writes
// the real INI file "Directory + INI name" through the Win32 profile-string functions.
//
// Policies:
//   Directory   ApplicationDataDirectory   the data directory (Util/ProfileLocations.h)
//               ReleaseDataDirectory       the release-mode data directory
//               UserDefinedDirectory       the name as the caller gave it (a path)
//   Access      ReadWriteAccess, ReadOnlyAccess (writes fail with E_ACCESSDENIED)
//   UserType    StdUser, AdminUser: who the map is opened for; both get the file's own rights
//               from the operating system, the type is kept for diagnostics.
// The maps are safe from any thread.
#pragma once

#include "Util/Export.h"
#include "Util/KeyValueStorage.h"
#include "Util/TString.h"

#include <memory>
#include <mutex>
#include <string>

namespace Norvane {
namespace Utilities {

class ZTUTIL_API IPersistentKeyValueMap {
public:
    virtual ~IPersistentKeyValueMap();
    virtual long GetValue(const KeyValueQuery& query, const char* defaultValue,
                          Util::TString& result) = 0;
    virtual long SetValue(const KeyValueQuery& query, const char* value) = 0;
    virtual const Util::TString& GetFilePath() = 0;
};

struct ZTUTIL_API ApplicationDataDirectory {
    static Util::TString Resolve(const char* fileName);
};
struct ZTUTIL_API ReleaseDataDirectory {
    static Util::TString Resolve(const char* fileName);
};
struct ZTUTIL_API UserDefinedDirectory {
    static Util::TString Resolve(const char* fileName);
};

struct ReadWriteAccess {
    static constexpr bool kCanWrite = true;
};
struct ReadOnlyAccess {
    static constexpr bool kCanWrite = false;
};

struct StdUser {
    static constexpr const char* kName = "StdUser";
};
struct AdminUser {
    static constexpr const char* kName = "AdminUser";
};

// The Win32 profile-string functions on a real INI file, with the whole value returned.
struct ZTUTIL_API LegacyProfile {
    static long Get(const char* path, const KeyValueQuery& query, const char* defaultValue,
                    Util::TString& result);
    static long Set(const char* path, const KeyValueQuery& query, const char* value);
};

template <typename Directory, typename Access, typename UserType>
class PersistentKeyValueMap : public IPersistentKeyValueMap {
public:
    using Storage = KeyValueStorage<Directory, Access, UserType>;

    PersistentKeyValueMap(const char* iniName, std::shared_ptr<Storage> storage)
        : m_iniName(iniName != nullptr ? iniName : ""), m_storage(std::move(storage)) {}

    long GetValue(const KeyValueQuery& query, const char*, Util::TString& result) override {
        KeyValueQuery q = query;
        q.iniName = m_iniName.c_str();
        std::string value;
        long hr = m_storage->Get(q, value);
        result = Util::TString(value);
        return hr;
    }

    long SetValue(const KeyValueQuery& query, const char* value) override {
        KeyValueQuery q = query;
        q.iniName = m_iniName.c_str();
        return m_storage->Set(q, value);
    }

    const Util::TString& GetFilePath() override {
        std::call_once(m_pathOnce, [this] { m_path = m_storage->GetPath(); });
        return m_path;
    }

private:
    std::string m_iniName;
    std::shared_ptr<Storage> m_storage;
    std::once_flag m_pathOnce;
    Util::TString m_path;
};

template <typename Directory, typename Access, typename UserType>
class LegacyKeyValueMap : public IPersistentKeyValueMap {
public:
    explicit LegacyKeyValueMap(const char* iniName)
        : m_iniName(iniName != nullptr ? iniName : "") {}

    long GetValue(const KeyValueQuery& query, const char* defaultValue,
                  Util::TString& result) override {
        return LegacyProfile::Get(GetFilePath().c_str(), query, defaultValue, result);
    }

    long SetValue(const KeyValueQuery& query, const char* value) override {
        if (!Access::kCanWrite)
            return kKvAccessDenied;
        return LegacyProfile::Set(GetFilePath().c_str(), query, value);
    }

    const Util::TString& GetFilePath() override {
        std::call_once(m_pathOnce, [this] { m_path = Directory::Resolve(m_iniName.c_str()); });
        return m_path;
    }

private:
    std::string m_iniName;
    std::once_flag m_pathOnce;
    Util::TString m_path;
};

} // namespace Utilities
} // namespace Norvane
