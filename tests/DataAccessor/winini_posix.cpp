#include "tests/DataAccessor/settingstest.h"

#include "Util/UtilProfile.h"

#include <cstdlib>

namespace {

using WinIni = ztest::SettingsDir;

// A null or empty file name and the no-file variants all mean "Win.ini" (a real INI file in the
// Windows directory).
TEST_F(WinIni, NoFileVariantsUseTheWindowsDirectory) {
    const char* saved = std::getenv("ZT_WINDOWS_DIR");
    const std::string previous = saved != nullptr ? saved : "";
    ::setenv("ZT_WINDOWS_DIR", m_dirText.c_str(), 1);
    WriteFile("Win.ini", "[Intl]\r\nsCountry=Canada\r\niCountry=2\r\n");
    char buffer[32];
    EXPECT_EQ(UtilGetPrivateProfileString("Intl", "sCountry", "", buffer, sizeof buffer, ""), 6u);
    EXPECT_STREQ(buffer, "Canada");
    EXPECT_EQ(UtilGetProfileString("Intl", "sCountry", "", buffer, sizeof buffer), 6u);
    EXPECT_EQ(UtilGetProfileInt("Intl", "iCountry", 0), 2u);
    EXPECT_EQ(UtilWriteProfileString("Intl", "sLanguage", "ENC"), 1);
    EXPECT_NE(ReadFile("Win.ini").find("sLanguage=ENC"), std::string::npos);
    if (saved != nullptr)
        ::setenv("ZT_WINDOWS_DIR", previous.c_str(), 1);
    else
        ::unsetenv("ZT_WINDOWS_DIR");
}

} // namespace
