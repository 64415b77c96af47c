// Norvane::Utilities::PersistentKeyValueMapManager: the process's settings, by legacy INI name.
//
// The manager answers the rerouted profile functions (Util/UtilProfile.h). On the first get or
// set it builds a fixed table from INI name (exact, with case) to map: the application's INI
// names are served from XML repositories in the data directory (several names may share one
// repository file "<name>.XML"), except "ZTGLOBALAPPCONFIG.INI", which always stays a real INI
// file. While the switch "IniLegacyMode" of "FileLocations.ini" is on, every name is served
// from a real INI file in the data directory instead. A name the table does not know is read
// and written as a real INI file at the path the caller gave.
//
// GetValue follows GetPrivateProfileString: the count of characters written is returned; a
// buffer below 2 characters receives nothing; a longer value is cut to size - 1 characters;
// a null or empty section or key gives the list of section or key names (each null-terminated,
// with one more null at the end, and the count excludes that last null); a missing key gives
// the default. A failure writes "PersistentKeyValueMapManager::GetValue -- The get operation
// failed." to the profile log and gives the default. SetValue returns non-zero on success; a
// null value removes the key and a null key the section; a failure writes
// "PersistentKeyValueMapManager::SetValue -- The set operation failed." and returns 0.
//
// The manager is created on first use by GetManager() and destroyed by DestroyManager()
// (UtilProfileUnload); callers holding the pointer keep the old one alive until they drop it.
// Everything is safe from any thread.
#pragma once

#include "Util/Export.h"
#include "Util/PersistentKeyValueMap.h"
#include "Util/TString.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace Norvane {
namespace Utilities {

// One row of the fixed table of INI names.
struct IniNameEntry {
    const char* iniName;
    const char* repositoryFile; // the repository serving it ("PAYROLL.INI.XML", ...)
    bool alwaysLegacy;          // stays a real INI file whatever "IniLegacyMode" says
};

class ZTUTIL_API PersistentKeyValueMapManager {
public:
    PersistentKeyValueMapManager();
    virtual unsigned long GetValue(const char* section, const char* key, const char* defaultValue,
                                   char* buffer, unsigned long size, const char* iniName);
    virtual int SetValue(const char* section, const char* key, const char* value,
                         const char* iniName);
    virtual ~PersistentKeyValueMapManager();
    PersistentKeyValueMapManager(const PersistentKeyValueMapManager&) = delete;
    PersistentKeyValueMapManager& operator=(const PersistentKeyValueMapManager&) = delete;

    // The map serving an INI name (created for unknown names); never null.
    std::shared_ptr<IPersistentKeyValueMap> GetMap(const char* iniName);

    // Texts kept for forming version-dependent names.
    void SetVersionInfo(const char* first, const char* second, const char* third);
    Util::TString GetVersionInfo(int which) const;

    static std::shared_ptr<PersistentKeyValueMapManager> GetManager();
    static void DestroyManager();

    // The fixed table (count entries).
    static const IniNameEntry* GetIniNameTable(std::size_t& count);

private:
    void BuildTable();

    mutable std::mutex m_mutex;
    bool m_built = false;
    std::map<std::string, std::shared_ptr<IPersistentKeyValueMap>> m_maps;
    std::map<std::string, std::shared_ptr<KeyValueStorageBase>> m_storages;
    Util::TString m_version[3];
};

} // namespace Utilities
} // namespace Norvane
