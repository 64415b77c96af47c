#include "tests/DataAccessor/settingstest.h"

#include "Util/UtilProfile.h"

#include <functional>
#include <regex>
#include <vector>

namespace {

using ztest::SettingsDir;

class Profile : public SettingsDir {
protected:
    // FileLocations.ini with the given [debugging] lines, and the log folder.
    void Configure(const std::string& debugging) {
        WriteFile("FileLocations.ini", "[debugging]\r\n" + debugging);
        std::filesystem::create_directories(m_dir / "LOG");
        Util::ProfileLocations::SetDirectories(m_dirText.c_str(), m_dirText.c_str());
    }
    std::vector<std::string> LogLines() const {
        std::vector<std::string> lines;
        std::istringstream in(ReadFile("LOG/IniShimLogger.txt"));
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') // Windows ends the records with CR LF
                line.pop_back();
            lines.push_back(line);
        }
        return lines;
    }
    std::string LastMessage() const {
        std::vector<std::string> lines = LogLines();
        if (lines.empty())
            return std::string();
        std::string::size_type at = lines.back().find("\t --");
        std::string::size_type end = lines.back().rfind(" ::: ");
        return at == std::string::npos || end == std::string::npos
                   ? lines.back()
                   : lines.back().substr(at + 4, end - at - 4);
    }
};

// A legacy settings read from the caller's macro to the count: switch file, log record,
// repository, buffer.
TEST_F(Profile, TypicalReadIsLoggedAndServedFromTheRepository) {
    Configure("IsIniLogOn=1\r\n");
    ASSERT_TRUE(UtilWritePrivateProfileString("Window", "Left", "1024", "ZTW.INI"));
    char buffer[8];
    EXPECT_EQ(_UtilGetPrivateProfileString("Window", "Left", nullptr, buffer, sizeof buffer,
                                           "ZTW.INI", "ledger.cpp", 42),
              4u);
    EXPECT_STREQ(buffer, "1024");
    const std::vector<std::string> lines = LogLines();
    ASSERT_EQ(lines.size(), 2u);
    const std::regex record("DataAccessor/src/utilprofile\\.cpp \\([0-9]+\\) :  MESSAGE: "
                            "[0-9]{2}/[0-9]{2}/[0-9]{2} -  [0-9]{2}:[0-9]{2}:[0-9]{2}\t --"
                            "(.*) ::: ");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(lines[1], match, record)) << lines[1];
    EXPECT_EQ(match[1].str(), ",_UtilGetPrivateProfileString, Section,\"Window\",Key ,\"Left\" "
                              ",Default, \"NULL\",IniFileName, \"ZTW.INI\",source,ledger.cpp,"
                              "line,42");
    EXPECT_NE(lines[0].find(",_UtilWritePrivateProfileString, Section,\"Window\",Key ,\"Left\" "
                            ",Value, \"1024\",IniFileName, \"ZTW.INI\",source,"),
              std::string::npos)
        << lines[0];
    EXPECT_TRUE(std::filesystem::exists(PathOf("ZTW.INI.XML")));
}

struct SwitchCase {
    const char* name;
    const char* lines;
    bool logged;
};

class Switches : public Profile, public ::testing::WithParamInterface<SwitchCase> {};

TEST_P(Switches, AreOnExactlyWhenOne) {
    Configure(GetParam().lines);
    UtilProfileLoad();
    EXPECT_EQ(!LogLines().empty(), GetParam().logged);
}

INSTANTIATE_TEST_SUITE_P(Table, Switches,
                         ::testing::Values(SwitchCase{"One", "IsIniLogOn=1\r\n", true},
                                           SwitchCase{"Yes", "IsIniLogOn=yes\r\n", false},
                                           SwitchCase{"ZeroOne", "IsIniLogOn=01\r\n", false},
                                           SwitchCase{"Empty", "IsIniLogOn=\r\n", false},
                                           SwitchCase{"Missing", "Other=1\r\n", false}),
                         [](const ::testing::TestParamInfo<SwitchCase>& info) {
                             return std::string(info.param.name);
                         });

TEST_F(Profile, EachFunctionLogsItsOwnMessage) {
    Configure("IsIniLogOn=1\r\n");
    char buffer[64];
    const struct {
        std::function<void()> call;
        const char* message;
    } cases[] = {
        {[] { UtilProfileLoad(); }, "UtilProfileLoad Called."},
        {[] { UtilSetVersionInfo("1", "2", "3"); }, "UtilProfileLoad Called."},
        {[] { UtilProfileUnload(); }, "UtilProfileUnload Called."},
        {[] { UtilGetPrivateProfileInt("S", "K", 1, "ZTW.INI"); },
         "_UtilGetPrivateProfileInt Called."},
        {[&] { UtilGetPrivateProfileSection("S", buffer, sizeof buffer, "ZTW.INI"); },
         "Alert! Alert!! Alert!!! _UtilGetPrivateProfileSection being called."},
        {[&] { UtilGetPrivateProfileSectionNames(buffer, sizeof buffer, "ZTW.INI"); },
         "Alert! Alert!! Alert!!! _UtilGetPrivateProfileSectionNames being called."},
        {[] { UtilWritePrivateProfileSection("S", "A=1\0", "ZTW.INI"); },
         "Alert! Alert!! Alert!!! _UtilWritePrivateProfileSection being called."},
    };
    for (const auto& c : cases) {
        const std::size_t before = LogLines().size();
        c.call();
        const std::vector<std::string> lines = LogLines();
        ASSERT_GT(lines.size(), before) << c.message;
        EXPECT_NE(lines[before].find(std::string("\t --") + c.message + " ::: "), std::string::npos)
            << lines[before];
    }
}

TEST_F(Profile, IntegersReadLeadingDigits) {
    ASSERT_TRUE(UtilWritePrivateProfileString("S", "Mixed", "12abc", "ZTW.INI"));
    ASSERT_TRUE(UtilWritePrivateProfileString("S", "Text", "abc", "ZTW.INI"));
    EXPECT_EQ(UtilGetPrivateProfileInt("S", "Mixed", 7, "ZTW.INI"), 12u);
    EXPECT_EQ(UtilGetPrivateProfileInt("S", "Text", 7, "ZTW.INI"), 0u);
    EXPECT_EQ(UtilGetPrivateProfileInt("S", "Missing", 7, "ZTW.INI"), 7u);
}

TEST_F(Profile, WriteSectionCombinesResultsAndEmptyListRemoves) {
    EXPECT_EQ(UtilWritePrivateProfileSection("S", "A=1\0=2\0B=x=y\0", "ZTW.INI"), 0)
        << "the entry without a key fails";
    EXPECT_EQ(Get("ZTW.INI", "S", "A"), "1");
    EXPECT_EQ(Get("ZTW.INI", "S", "B"), "x=y") << "written after the failure";
    char buffer[64];
    EXPECT_EQ(UtilGetPrivateProfileSection("S", buffer, sizeof buffer, "ZTW.INI"), 4u);
    EXPECT_EQ(std::string(buffer, 5), std::string("A\0B\0\0", 5)) << "key names only";
    EXPECT_EQ(UtilWritePrivateProfileSection("S", "", "ZTW.INI"), 1);
    EXPECT_EQ(UtilGetPrivateProfileSectionNames(buffer, sizeof buffer, "ZTW.INI"), 0u);
}

TEST_F(Profile, FailuresAreLoggedAndGiveTheDefault) {
    Configure("IsIniLogOn=1\r\n");
    std::filesystem::create_directories(m_dir / "ZTW.INI.XML"); // cannot be read as a file
    char buffer[16];
    EXPECT_EQ(UtilGetPrivateProfileString("S", "K", "dflt", buffer, sizeof buffer, "ZTW.INI"), 4u);
    EXPECT_STREQ(buffer, "dflt");
    EXPECT_EQ(LastMessage(), "PersistentKeyValueMapManager::GetValue -- The get operation failed.");
    EXPECT_EQ(UtilWritePrivateProfileString("S", "K", "v", "ZTW.INI"), 0);
    EXPECT_EQ(LastMessage(), "PersistentKeyValueMapManager::SetValue -- The set operation failed.");
}

// Real INI files: every name in legacy mode; the global configuration always.
TEST_F(Profile, LegacyNamesUseRealIniFiles) {
    WriteFile("ZTGLOBALAPPCONFIG.INI", "[Paths]\r\nShared=\\\\server\\books\r\n");
    EXPECT_EQ(Get("ZTGLOBALAPPCONFIG.INI", "Paths", "Shared"), "\\\\server\\books");
    ASSERT_TRUE(Set("ZTGLOBALAPPCONFIG.INI", "Paths", "Local", "C"));
    EXPECT_FALSE(std::filesystem::exists(PathOf("ZTPROFILE.INI.XML")));

    Configure("IniLegacyMode=1\r\n");
    Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
    ASSERT_TRUE(Set("ZTW.INI", "Window", "Left", "5"));
    EXPECT_EQ(Get("ZTW.INI", "Window", "Left"), "5");
    EXPECT_FALSE(std::filesystem::exists(PathOf("ZTW.INI.XML")));
    EXPECT_NE(ReadFile("ZTW.INI").find("Left=5"), std::string::npos);
}

} // namespace
