#include "Util/UtilProfile.h"

#include "DataAccessor/src/profilelog.h"
#include "Util/PersistentKeyValueMapManager.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using Norvane::Utilities::PersistentKeyValueMapManager;
namespace ProfileLog = Norvane::Utilities::ProfileLog;

namespace {

const char kDefaultProfile[] = "Win.ini";

const char* FileOrDefault(const char* file) {
    return file != nullptr && *file != '\0' ? file : kDefaultProfile;
}

std::string Text(const char* text) {
    return text != nullptr ? std::string(text) : std::string();
}

// ",<function>, Section,"<section>",Key ,"<key>" ,<label>, "<third>",IniFileName, "<file>",
// source,<source>,line,<line>
std::string ArgumentLine(const char* function, const char* section, const char* key,
                         const char* label, const char* third, const char* file, const char* source,
                         int line) {
    std::string message = std::string(",") + function + ", Section,\"" + Text(section) +
                          "\",Key ,\"" + Text(key) + "\" ," + label + ", \"" +
                          (third != nullptr ? third : "NULL") + "\",IniFileName, \"" + Text(file) +
                          "\",source," + Text(source) + ",line," + std::to_string(line);
    return message;
}

} // namespace

unsigned int UtilProfileLoad() {
    ProfileLog::Write(__FILE__, __LINE__, "UtilProfileLoad Called.");
    return 0;
}

unsigned int UtilProfileUnload() {
    ProfileLog::Write(__FILE__, __LINE__, "UtilProfileUnload Called.");
    PersistentKeyValueMapManager::DestroyManager();
    return 0;
}

unsigned int UtilSetVersionInfo(const char* first, const char* second, const char* third) {
    ProfileLog::Write(__FILE__, __LINE__, "UtilProfileLoad Called.");
    PersistentKeyValueMapManager::GetManager()->SetVersionInfo(first, second, third);
    return 0;
}

unsigned long _UtilGetPrivateProfileString(const char* section, const char* key,
                                           const char* defaultValue, char* buffer,
                                           unsigned long size, const char* file, const char* source,
                                           int line) {
    file = FileOrDefault(file);
    if (ProfileLog::IsIniLogOn())
        ProfileLog::Write(__FILE__, __LINE__,
                          ArgumentLine("_UtilGetPrivateProfileString", section, key, "Default",
                                       defaultValue, file, source, line));
    return PersistentKeyValueMapManager::GetManager()->GetValue(section, key, defaultValue, buffer,
                                                                size, file);
}

unsigned int _UtilGetPrivateProfileInt(const char* section, const char* key, int defaultValue,
                                       const char* file, const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__, "_UtilGetPrivateProfileInt Called.");
    char defaultText[24];
    std::snprintf(defaultText, sizeof defaultText, "%d", defaultValue);
    char result[24] = {};
    _UtilGetPrivateProfileString(section, key, defaultText, result, sizeof result, file, source,
                                 line);
    return static_cast<unsigned int>(std::atoi(result));
}

unsigned long _UtilGetPrivateProfileSection(const char* section, char* buffer, unsigned long size,
                                            const char* file, const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__,
                      "Alert! Alert!! Alert!!! _UtilGetPrivateProfileSection being called.");
    return _UtilGetPrivateProfileString(section, nullptr, "", buffer, size, file, source, line);
}

unsigned long _UtilGetPrivateProfileSectionNames(char* buffer, unsigned long size, const char* file,
                                                 const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__,
                      "Alert! Alert!! Alert!!! _UtilGetPrivateProfileSectionNames being called.");
    return _UtilGetPrivateProfileString(nullptr, nullptr, "", buffer, size, file, source, line);
}

unsigned long _UtilGetProfileString(const char* section, const char* key, const char* defaultValue,
                                    char* buffer, unsigned long size, const char* source,
                                    int line) {
    ProfileLog::Write(__FILE__, __LINE__, "_UtilGetProfileString Called.");
    return _UtilGetPrivateProfileString(section, key, defaultValue, buffer, size, kDefaultProfile,
                                        source, line);
}

unsigned int _UtilGetProfileInt(const char* section, const char* key, int defaultValue,
                                const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__, "_UtilGetProfileInt Called.");
    return _UtilGetPrivateProfileInt(section, key, defaultValue, kDefaultProfile, source, line);
}

int _UtilWritePrivateProfileString(const char* section, const char* key, const char* value,
                                   const char* file, const char* source, int line) {
    file = FileOrDefault(file);
    if (ProfileLog::IsIniLogOn())
        ProfileLog::Write(__FILE__, __LINE__,
                          ArgumentLine("_UtilWritePrivateProfileString", section, key, "Value",
                                       value, file, source, line));
    return PersistentKeyValueMapManager::GetManager()->SetValue(section, key, value, file);
}

int _UtilWritePrivateProfileSection(const char* section, const char* pairs, const char* file,
                                    const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__,
                      "Alert! Alert!! Alert!!! _UtilWritePrivateProfileSection being called.");
    if (pairs == nullptr || *pairs == '\0')
        return _UtilWritePrivateProfileString(section, nullptr, nullptr, file, source, line);
    int result = 1;
    static const std::size_t kEntrySize = 8192;
    for (const char* entry = pairs; *entry != '\0'; entry += std::strlen(entry) + 1) {
        char copy[kEntrySize];
        std::strncpy(copy, entry, kEntrySize - 1);
        copy[kEntrySize - 1] = '\0';
        // An entry without "=" is written as a key with an empty value.
        char* equals = std::strchr(copy, '=');
        const char* value = "";
        if (equals != nullptr) {
            *equals = '\0';
            value = equals + 1;
        }
        const int written =
            _UtilWritePrivateProfileString(section, copy, value, file, source, line);
        result = result && written;
    }
    return result;
}

int _UtilWriteProfileString(const char* section, const char* key, const char* value,
                            const char* source, int line) {
    ProfileLog::Write(__FILE__, __LINE__, "_UtilWriteProfileString Called.");
    return _UtilWritePrivateProfileString(section, key, value, kDefaultProfile, source, line);
}
