#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Util/ConfigFile.h"
#include "tests/FileSystem/fs_test_support.h"

using FileSystem::ConfigFile;

namespace {

struct LineCase {
    const char* name;
    const char* text;
    const char* comments;
    const char* section;
    const char* key;
    const char* expected; // "<none>" when the key must be missing
};

class ConfigFileLines : public ::testing::TestWithParam<LineCase> {};

TEST_P(ConfigFileLines, StoresWhatTheLineSays) {
    const LineCase& c = GetParam();
    FsTest::TempDir dir;
    ConfigFile config(dir.Write("a.cfg", c.text).c_str(), c.comments);
    EXPECT_TRUE(config.GetStatus().Succeeded());
    EXPECT_EQ(std::string(config.GetStringValue(c.section, c.key, "<none>")), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ConfigFileLines,
    ::testing::Values(
        LineCase{"KeyBeforeHeaderIsInEmptySection", "k=v\n[S]\nk=w\n", ";", "", "k", "v"},
        LineCase{"SectionAndKeyIgnoreCase", "[Main]\nKey=1\n[MAIN]\nKEY=2\n", ";", "main", "key",
                 "2"},
        LineCase{"BlanksStayInKeyAndValue", "[S]\na = b\n", ";", "S", "a ", " b"},
        LineCase{"SplitAtFirstEquals", "[S]\nk=a=b\n", ";", "S", "k", "a=b"},
        LineCase{"LeadingEqualsGivesEmptyKey", "[S]\n=x\n", ";", "S", "", "x"},
        LineCase{"NoEqualsGivesEmptyValue", "[S]\nflag\n", ";", "S", "flag", ""},
        LineCase{"CommentIsSkipped", "[S]\n#k=v\n", ";#", "S", "#k", "<none>"},
        LineCase{"BlankBeforeCommentCharMakesKey", "[S]\n ;k=v\n", ";#", "S", " ;k", "v"},
        LineCase{"NoCommentCharsKeepsEveryLine", "[S]\n;k=v\n", "", "S", ";k", "v"},
        LineCase{"HeaderIgnoresTextAfterBracket", "[S] tail=1\nk=v\n", ";", "S", "k", "v"},
        LineCase{"HeaderWithoutBracketTakesRest", "[S x=1\nk=v\n", ";", "S x=1", "k", "v"},
        LineCase{"EmptyHeaderReturnsToEmptySection", "[S]\n[]\nk=v\n", ";", "", "k", "v"},
        LineCase{"LoneBracketReturnsToEmptySection", "[S]\n[\nk=v\n", ";", "", "k", "v"},
        LineCase{"IndentedHeaderIsKey", "[S]\n [T]\n", ";", "S", " [T]", ""},
        LineCase{"CrLfEndsLine", "[S]\r\nk=v\r\n", ";", "S", "k", "v"},
        LineCase{"LoneCrStaysInValue", "[S]\nk=v\r\r\n", ";", "S", "k", "v\r"},
        LineCase{"LastLineWithoutLineEnd", "[S]\nk=v", ";", "S", "k", "v"}),
    [](const ::testing::TestParamInfo<LineCase>& info) { return std::string(info.param.name); });

struct LengthCase {
    const char* name;
    std::size_t length;
    const char* ending;
    long code;
};

class ConfigFileLength : public ::testing::TestWithParam<LengthCase> {};

TEST_P(ConfigFileLength, RejectsLineThatFillsTheBuffer) {
    const LengthCase& c = GetParam();
    FsTest::TempDir dir;
    std::string line = "k=" + std::string(c.length - 2, 'x');
    std::string path =
        dir.Write("a.cfg", std::string("[S]\nbefore=1\n") + line + c.ending + "after=1\n");
    ConfigFile config;
    Util::Status status = config.LoadFile(path.c_str(), ";");
    EXPECT_EQ(status.GetStatusCode(), c.code);
    EXPECT_EQ(config.GetIntValue("S", "before", 0), 1);
    if (c.code == 0) {
        EXPECT_EQ(config.GetStringValue("S", "k", "").GetLength(), c.length - 2);
    } else {
        EXPECT_STREQ(status.GetStatusMessage(), "Exceeded internal buffer length");
        EXPECT_EQ(config.GetIntValue("S", "after", 0), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, ConfigFileLength,
                         ::testing::Values(LengthCase{"Lf4093Loads", 4093, "\n", 0},
                                           LengthCase{"Lf4094Fails", 4094, "\n", -9},
                                           LengthCase{"CrLf4093Loads", 4093, "\r\n", 0},
                                           LengthCase{"CrLf4094Fails", 4094, "\r\n", -9},
                                           LengthCase{"Lf70000Fails", 70000, "\n", -9}),
                         [](const ::testing::TestParamInfo<LengthCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(ConfigFile, LongLastLineWithoutLineEndFollowsTheSameCount) {
    FsTest::TempDir dir;
    ConfigFile config;
    EXPECT_TRUE(config.LoadFile(dir.Write("a", std::string(4094, 'k')).c_str(), ";").Succeeded());
    EXPECT_EQ(config.LoadFile(dir.Write("b", std::string(4095, 'k')).c_str(), ";").GetStatusCode(),
              -9);
}

TEST(ConfigFile, FailureStatusOutlivesLaterLoadsUntilReconstructed) {
    FsTest::TempDir dir;
    std::string good = dir.Write("good.cfg", "[S]\nk=v\n");
    ConfigFile config(good.c_str(), ";");
    Util::Status missing = config.LoadFile(dir.File("missing.cfg").c_str(), ";");
    EXPECT_EQ(missing.GetStatusCode(), -8);
    EXPECT_EQ(std::string(missing.GetStatusMessage()),
              "Could not open file " + dir.File("missing.cfg"));
    std::vector<Util::TString> names;
    EXPECT_EQ(config.GetSectionNames(names), 0);

    EXPECT_EQ(config.LoadFile(good.c_str(), ";").GetStatusCode(), -8);
    EXPECT_EQ(config.GetStatus().GetStatusCode(), -8);
    EXPECT_STREQ(config.GetStringValue("s", "K", ""), "v");

    ConfigFile copy(config);
    EXPECT_EQ(copy.GetStatus().GetStatusCode(), -8);
    EXPECT_TRUE(ConfigFile(good.c_str(), ";").GetStatus().Succeeded());
    EXPECT_EQ(ConfigFile(dir.Path().c_str(), ";").GetStatus().GetStatusCode(), -8);
}

TEST(ConfigFile, LookupsCreateMissingSections) {
    FsTest::TempDir dir;
    ConfigFile config(dir.Write("a.cfg", "k=v\n[Empty]\n").c_str(), ";");
    std::vector<Util::TString> names{"stale"};
    EXPECT_EQ(config.GetSectionNames(names), 0); // a header alone makes no section
    EXPECT_STREQ(config.GetStringValue("Other", "k", "d"), "d");
    std::vector<Util::TString> strings;
    EXPECT_EQ(config.GetSectionStrings("Third", strings), 0);
    ASSERT_EQ(config.GetSectionNames(names), 2);
    EXPECT_STREQ(names[0], "Other");
    EXPECT_STREQ(names[1], "Third");
}

TEST(ConfigFile, IntegersAndSectionStrings) {
    FsTest::TempDir dir;
    ConfigFile config(
        dir.Write("a.cfg", "[S]\nnum=12abc\nneg= -7\nflag\nempty=\nsentinel=QWDJOI1J2890J\n")
            .c_str(),
        ";");
    EXPECT_EQ(config.GetIntValue("S", "num", 5), 12);
    EXPECT_EQ(config.GetIntValue("S", "neg", 5), -7);
    EXPECT_EQ(config.GetIntValue("S", "flag", 5), 0);
    EXPECT_EQ(config.GetIntValue("S", "sentinel", 5), 5);
    EXPECT_EQ(config.GetIntValue("S", "missing", 5), 5);

    std::vector<Util::TString> strings{"stale"};
    ASSERT_EQ(config.GetSectionStrings("s", strings), 5);
    std::vector<std::string> got(strings.begin(), strings.end());
    EXPECT_EQ(got, (std::vector<std::string>{"empty", "flag", "neg= -7", "num=12abc",
                                             "sentinel=QWDJOI1J2890J"}));
}

TEST(ConfigFile, MoveEmptiesTheSourceAndKeepsItsStatus) {
    FsTest::TempDir dir;
    ConfigFile source(dir.Write("a.cfg", "[S]\nk=v\n").c_str(), ";");
    (void)source.LoadFile(dir.File("missing").c_str(), ";");
    (void)source.LoadFile(dir.File("a.cfg").c_str(), ";");
    ConfigFile moved(std::move(source));
    EXPECT_STREQ(moved.GetStringValue("S", "k", ""), "v");
    EXPECT_EQ(moved.GetStatus().GetStatusCode(), -8);
    std::vector<Util::TString> names;
    EXPECT_EQ(source.GetSectionNames(names), 0); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.GetStatus().GetStatusCode(), -8);
}

} // namespace

namespace {

TEST(ConfigFile, LinesAcrossReadChunksAreWhole) {
    FsTest::TempDir dir;
    std::string text;
    for (int i = 0; i < 5000; ++i) // about 150 KB, CR LF ends falling on every offset
        text += "key" + std::to_string(i) + "=" + std::string(i % 37, 'v') + "\r\n";
    ConfigFile config(dir.Write("a.cfg", text).c_str(), ";");
    std::vector<Util::TString> strings;
    ASSERT_EQ(config.GetSectionStrings("", strings), 5000);
    for (int i = 0; i < 5000; ++i)
        ASSERT_EQ(config.GetStringValue("", ("KEY" + std::to_string(i)).c_str(), "?").GetLength(),
                  static_cast<std::size_t>(i % 37))
            << i;
}

} // namespace
