#include "tests/DataAccessor/settingstest.h"

#include <cstring>

namespace {

using ztest::SettingsDir;

struct BufferCase {
    const char* name;
    const char* section; // null: list the sections
    const char* key;     // null: list the keys
    unsigned long size;
    std::string expected; // the buffer up to and including the returned count's end
    unsigned long count;
};

class Buffers : public SettingsDir, public ::testing::WithParamInterface<BufferCase> {};

// ZTW.INI holds [A] One=0123456789, Two=x and [B] Three=y.
TEST_P(Buffers, FollowThePrivateProfileRules) {
    ASSERT_TRUE(Set("ZTW.INI", "A", "One", "0123456789"));
    ASSERT_TRUE(Set("ZTW.INI", "A", "Two", "x"));
    ASSERT_TRUE(Set("ZTW.INI", "B", "Three", "y"));
    const BufferCase& c = GetParam();
    char buffer[64];
    std::memset(buffer, '#', sizeof buffer);
    unsigned long n = Manager()->GetValue(c.section, c.key, "dflt", buffer, c.size, "ZTW.INI");
    EXPECT_EQ(n, c.count);
    EXPECT_EQ(std::string(buffer, c.expected.size()), c.expected);
    EXPECT_EQ(buffer[c.expected.size()], '#') << "wrote past what it should";
}

INSTANTIATE_TEST_SUITE_P(
    Table, Buffers,
    ::testing::Values(
        BufferCase{"SizeOneGetsNothing", "A", "One", 1, "", 0},
        BufferCase{"TenCharactersIntoFive", "A", "One", 5, std::string("0123\0", 5), 4},
        BufferCase{"ExactFit", "A", "One", 11, std::string("0123456789\0", 11), 10},
        BufferCase{"MissingKeyGivesDefault", "A", "None", 64, std::string("dflt\0", 5), 4},
        BufferCase{"MissingDefaultCut", "A", "None", 3, std::string("df\0", 3), 2},
        BufferCase{"SectionNames", nullptr, nullptr, 64, std::string("A\0B\0\0\0", 6), 4},
        BufferCase{"KeyNames", "A", "", 64, std::string("One\0Two\0\0\0", 10), 8},
        BufferCase{"KeyNamesCut", "A", nullptr, 6, std::string("One\0T\0", 6), 5},
        BufferCase{"NoKeysInMissingSection", "Z", nullptr, 64, std::string("\0\0", 2), 0}),
    [](const ::testing::TestParamInfo<BufferCase>& info) { return std::string(info.param.name); });

using Repository = SettingsDir;

TEST_F(Repository, FirstWriteCreatesOneChainInUtf16) {
    EXPECT_EQ(Get("ZTW.INI", "Window", "Left", "none"), "none");
    EXPECT_FALSE(std::filesystem::exists(PathOf("ZTW.INI.XML"))) << "a read creates nothing";
    ASSERT_TRUE(Set("ZTW.INI", "Window", "Left", "10"));
    const std::string raw = ReadFile("ZTW.INI.XML");
    ASSERT_GE(raw.size(), 2u);
    EXPECT_EQ(raw.substr(0, 2), std::string("\xFF\xFE", 2));
    EXPECT_EQ(ztest::NarrowAscii(raw),
              "<?xml version=\"1.0\" encoding=\"UTF-16\"?><KeyValueRepository>"
              "<IniFile name=\"ZTW.INI\"><Section name=\"Window\"><Key name=\"Left\">"
              "<Value>10</Value></Key></Section></IniFile></KeyValueRepository>");
}

// Names and values survive a fresh manager reading the file again, matched exactly.
TEST_F(Repository, NamesAndValuesRoundTripExactly) {
    const struct {
        const char *section, *key, *value;
    } rows[] = {
        {"Quotes", "it's", "say \"hi\""},
        {"Quotes", "both'\"", "'\""},
        {"Markup", "<&>", "a<b>&c;&amp;"},
        {"Blanks", " padded ", "  two  "},
        {"Blanks", "only", " "},
        {"Blanks", "empty", ""},
        {"Accents", "clé", "Ærøskøbing – 日本"},
        {"Case", "key", "lower"},
        {"Case", "Key", "upper"},
    };
    for (const auto& r : rows)
        ASSERT_TRUE(Set("ZTW.INI", r.section, r.key, r.value)) << r.key;
    Norvane::Utilities::PersistentKeyValueMapManager::DestroyManager();
    for (const auto& r : rows)
        EXPECT_EQ(Get("ZTW.INI", r.section, r.key, "?"), r.value) << r.key;
    EXPECT_EQ(Get("ZTW.INI", "case", "key", "?"), "?");
}

TEST_F(Repository, GroupedNamesShareOneFileButNotTheirSections) {
    ASSERT_TRUE(Set("PAYROLL.INI", "Rates", "Federal", "1"));
    ASSERT_TRUE(Set("PRCALC.LOG", "Rates", "Federal", "2"));
    EXPECT_EQ(Get("PAYROLL.INI", "Rates", "Federal"), "1");
    EXPECT_EQ(Get("PRCALC.LOG", "Rates", "Federal"), "2");
    EXPECT_FALSE(std::filesystem::exists(PathOf("PRCALC.LOG.XML")));
    const std::string text = ztest::NarrowAscii(ReadFile("PAYROLL.INI.XML"));
    EXPECT_NE(text.find("<IniFile name=\"PAYROLL.INI\">"), std::string::npos);
    EXPECT_NE(text.find("<IniFile name=\"PRCALC.LOG\">"), std::string::npos);
}

// A hand-edited file with repeated elements: the first match in document order wins, as the
// XPath selection does, and the names lists show every element.
TEST_F(Repository, RepeatedElementsResolveInDocumentOrder) {
    WriteFile("ZTW.INI.XML",
              ztest::Utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?><KeyValueRepository>"
                           "<IniFile name=\"ZTW.INI\"><Section name=\"S\"><Key name=\"A\">"
                           "<Value>first</Value></Key></Section></IniFile>"
                           "<IniFile name=\"ZTW.INI\"><Section name=\"S\"><Key name=\"A\">"
                           "<Value>second</Value></Key><Key name=\"B\"><Value>b</Value></Key>"
                           "</Section><Section name=\"T\"/></IniFile></KeyValueRepository>",
                           true));
    EXPECT_EQ(Get("ZTW.INI", "S", "A"), "first");
    EXPECT_EQ(Get("ZTW.INI", "S", "B"), "b");
    EXPECT_EQ(Get("ZTW.INI", nullptr, nullptr), std::string("S\0S\0T\0", 6));
    EXPECT_EQ(Get("ZTW.INI", "S", nullptr), std::string("A\0A\0B\0", 6));
    ASSERT_TRUE(Set("ZTW.INI", "S", "A", "changed"));
    EXPECT_EQ(Get("ZTW.INI", "S", "A"), "changed");
    EXPECT_NE(ztest::NarrowAscii(ReadFile("ZTW.INI.XML")).find("<Value>second</Value>"),
              std::string::npos);
}

TEST_F(Repository, NullValueRemovesKeyAndNullKeyRemovesSection) {
    ASSERT_TRUE(Set("ZTW.INI", "S", "A", "1"));
    ASSERT_TRUE(Set("ZTW.INI", "S", "B", "2"));
    ASSERT_TRUE(Set("ZTW.INI", "T", "C", "3"));
    ASSERT_TRUE(Set("ZTW.INI", "S", "A", nullptr));
    EXPECT_EQ(Get("ZTW.INI", "S", "A", "gone"), "gone");
    EXPECT_EQ(Get("ZTW.INI", "S", "B"), "2");
    ASSERT_TRUE(Set("ZTW.INI", "S", nullptr, nullptr));
    EXPECT_EQ(Get("ZTW.INI", nullptr, nullptr), std::string("T\0", 2));
    EXPECT_FALSE(Set("ZTW.INI", nullptr, "K", "v")) << "a write needs a section";
    EXPECT_FALSE(Set("ZTW.INI", "S", "", "v")) << "an empty key is not a section removal";
}

} // namespace
