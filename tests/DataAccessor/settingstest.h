// A temporary data directory for the settings tests, and short forms of the manager calls.
#pragma once

#include <gtest/gtest.h>

#include "Util/PersistentKeyValueMapManager.h"
#include "Util/ProfileLocations.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace ztest {

class SettingsDir : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        m_dir = std::filesystem::temp_directory_path() /
                ("zt_settings_" + std::to_string(::getpid()) + "_" + info->test_suite_name() + "_" +
                 info->name());
        std::filesystem::remove_all(m_dir);
        std::filesystem::create_directories(m_dir);
        m_dirText = m_dir.string() + "/";
        Util::ProfileLocations::SetDirectories(m_dirText.c_str(), m_dirText.c_str());
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
    }
    void TearDown() override {
        Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
        Util::ProfileLocations::SetDirectories(nullptr, nullptr);
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }

    static std::shared_ptr<Norvane::Utilities::PersistentKeyValueMapManager> Manager() {
        return Norvane::Utilities::PersistentKeyValueMapManager::GetManager();
    }
    static std::string Get(const char* ini, const char* section, const char* key,
                           const char* def = "") {
        char buffer[4096];
        unsigned long n = Manager()->GetValue(section, key, def, buffer, sizeof buffer, ini);
        return std::string(buffer, n);
    }
    static bool Set(const char* ini, const char* section, const char* key, const char* value) {
        return Manager()->SetValue(section, key, value, ini) != 0;
    }

    std::string PathOf(const std::string& name) const { return m_dirText + name; }
    std::string ReadFile(const std::string& name) const {
        std::ifstream in(PathOf(name), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    void WriteFile(const std::string& name, const std::string& data) const {
        std::ofstream(PathOf(name), std::ios::binary) << data;
    }

    std::filesystem::path m_dir;
    std::string m_dirText;
};

// UTF-16LE text (with or without byte order mark) of ASCII content, as 8-bit text.
inline std::string NarrowAscii(const std::string& utf16) {
    std::string out;
    std::size_t i = utf16.size() >= 2 && utf16[0] == '\xFF' && utf16[1] == '\xFE' ? 2 : 0;
    for (; i + 1 < utf16.size(); i += 2)
        out += utf16[i + 1] == 0 ? utf16[i] : '?';
    return out;
}

inline std::string Utf16(const std::string& ascii, bool bom) {
    std::string out = bom ? std::string("\xFF\xFE", 2) : std::string();
    for (char c : ascii) {
        out += c;
        out += '\0';
    }
    return out;
}

} // namespace ztest
