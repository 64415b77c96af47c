#include <gtest/gtest.h>

#include <string>

#include "Util/Win32Wildcard.h"

namespace {

struct WildcardCase {
    const char* name; // row name
    const char* pattern;
    const char* matching;
    const char* notMatching; // null when no counter-example is listed
};

class Wildcard : public ::testing::TestWithParam<WildcardCase> {};

TEST_P(Wildcard, MatchesLikeFindFirstFile) {
    const WildcardCase& row = GetParam();
    EXPECT_TRUE(Util::MatchesWin32Wildcard(row.pattern, row.matching))
        << row.pattern << " vs " << row.matching;
    if (row.notMatching != nullptr) {
        EXPECT_FALSE(Util::MatchesWin32Wildcard(row.pattern, row.notMatching))
            << row.pattern << " vs " << row.notMatching;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, Wildcard,
    ::testing::Values(WildcardCase{"PlainNameIsCaseBlind", "Notes.TXT", "notes.txt", "notes.txt2"},
                      WildcardCase{"StarMatchesEmptyRun", "a*", "a", "ba"},
                      WildcardCase{"StarCrossesDots", "a*z", "a.b.z", "a.b.y"},
                      WildcardCase{"StarDotStarMatchesNameWithoutDot", "*.*", "readme", nullptr},
                      WildcardCase{"StarDotStarWithTrailingDot", "*.*.", "readme", nullptr},
                      WildcardCase{"StarDotOnlyNamesWithoutExtension", "*.", "readme", "notes.txt"},
                      WildcardCase{"StarDotExtUsesLastExtension", "*.txt", "a.b.txt", "a.txt.bak"},
                      WildcardCase{"StarDotExtStarAcceptsLongerExt", "*.txt*", "a.txt.bak", "a.tx"},
                      WildcardCase{"DotStarMatchesNoExtension", "readme.*", "readme", "readmex"},
                      WildcardCase{"QuestionIsOneCharacter", "b?.txt", "b1.txt", "b22.txt"},
                      WildcardCase{"QuestionBeforeDotMayBeEmpty", "b??.txt", "b1.txt", "b333.txt"},
                      WildcardCase{"QuestionAtEndMayBeEmpty", "a?", "a", "abc"},
                      WildcardCase{"QuestionDoesNotTakeADot", "a?c", "abc", "a.c"},
                      WildcardCase{"TrailingDotsIgnored", "notes..", "notes", "notes.txt"},
                      WildcardCase{"DotsPatternNamesItself", "..", "..", "."},
                      WildcardCase{"StarListsDotEntries", "*", "..", nullptr},
                      WildcardCase{"DotQuestionMatchesEnd", "a.?", "a", "a.bc"},
                      WildcardCase{"NonAsciiExact", "\xc3\xa9*", "\xc3\xa9t\xc3\xa9",
                                   "\xc3\x89t\xc3\xa9"}),
    [](const ::testing::TestParamInfo<WildcardCase>& info) {
        return std::string(info.param.name);
    });

TEST(Wildcard, NullArgumentsNeverMatch) {
    EXPECT_FALSE(Util::MatchesWin32Wildcard(nullptr, "a"));
    EXPECT_FALSE(Util::MatchesWin32Wildcard("*", nullptr));
    EXPECT_FALSE(Util::HasWin32Wildcard(nullptr));
    EXPECT_TRUE(Util::HasWin32Wildcard("a?"));
    EXPECT_FALSE(Util::HasWin32Wildcard("a.b"));
}

TEST(Wildcard, LongPatternsAndNames) {
    const std::string name(5000, 'a');
    EXPECT_TRUE(Util::MatchesWin32Wildcard((std::string(600, '*') + "a").c_str(), name.c_str()));
    EXPECT_FALSE(Util::MatchesWin32Wildcard((std::string(600, '?') + "b").c_str(), name.c_str()));
}

} // namespace
