// Norvane::Utilities::KeyValueStorage: one XML key-value repository file.
//
// The file is a UTF-16 XML document whose root is KeyValueRepository; below it IniFile, Section
// and Key elements carry a "name" attribute and each Key holds its text in a Value element.
// Names match exactly and with case, also where they contain quotes. A missing file reads as
// the empty repository; the first successful write creates it.
//
// Every write is durable when it returns: the whole document is written to a temporary file
// in the same directory, flushed and renamed over the repository. Writers in several processes
// are serialised by a lock on "<repository>.lock", and a repository changed on disk by another
// process is reloaded before it is modified. Reads look at the file's identity (size, times,
// file id) at most every half second and reload it when it changed, so another process's
// write is seen within a second. A file that cannot be parsed, or whose root is not
// KeyValueRepository, is never overwritten: it is renamed to "<repository>.corrupt-<time>",
// one error message event names both files, reads give the defaults and the next write starts
// a fresh repository.
//
// Results are HRESULT-style: 0 (S_OK) found or done, 1 (S_FALSE) not there, negative on
// failure; lastError receives the Win32 error of a failed system call. Safe from any thread.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

#include <memory>
#include <string>

namespace Norvane {
namespace Utilities {

// One request: the INI name and the section and key (null or empty section: list the
// sections; null or empty key: list the section's keys).
struct KeyValueQuery {
    const char* iniName = nullptr;
    const char* section = nullptr;
    const char* key = nullptr;

    bool IsList() const {
        return section == nullptr || *section == '\0' || key == nullptr || *key == '\0';
    }
};

// S_OK, S_FALSE, E_FAIL, E_INVALIDARG and E_ACCESSDENIED, 32-bit on every platform.
constexpr long kKvFound = 0;
constexpr long kKvAbsent = 1;
constexpr long kKvFailed = -2147467259L;       // 0x80004005
constexpr long kKvInvalidArg = -2147024809L;   // 0x80070057
constexpr long kKvAccessDenied = -2147024891L; // 0x80070005

class ZTUTIL_API KeyValueStorageBase {
public:
    KeyValueStorageBase(const Util::TString& path, bool writable);
    virtual ~KeyValueStorageBase();
    KeyValueStorageBase(const KeyValueStorageBase&) = delete;
    KeyValueStorageBase& operator=(const KeyValueStorageBase&) = delete;

    // A key's value, or a name list (each name null-terminated, then one more null).
    long Get(const KeyValueQuery& query, std::string& value);
    // Sets a key's value, creating IniFile, Section, Key and Value as needed. A null value
    // removes the key; a null key removes the section.
    long Set(const KeyValueQuery& query, const char* value);

    const Util::TString& GetPath() const;
    bool IsWritable() const;
    // The Win32 error of the last failed system call of this thread's last request.
    static unsigned long GetLastFailure();

    // Whether the file at path is a readable repository; problem says why not. Nothing is
    // moved or changed.
    static bool CheckFile(const char* path, Util::TString& problem);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

template <typename Directory, typename Access, typename UserType>
class KeyValueStorage : public KeyValueStorageBase {
public:
    explicit KeyValueStorage(const char* fileName)
        : KeyValueStorageBase(Directory::Resolve(fileName), Access::kCanWrite) {}
};

} // namespace Utilities
} // namespace Norvane
