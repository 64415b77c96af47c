#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Util/Win32Wildcard.h"

namespace {

// Windows' rules stated directly, as a backtracking search over the rewritten pattern: slow but
// plainly right, for checking the fast matcher against every short pattern and name.
namespace Reference {

enum : int { Star = 256, DosStar, DosQm, DosDot };

int Fold(char c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : static_cast<unsigned char>(c);
}

std::vector<int> Rewrite(const std::string& pattern) {
    std::size_t end = pattern.size();
    while (end > 0 && pattern[end - 1] == '.')
        --end;
    if (pattern.compare(0, end, "*.*") == 0)
        return {Star};
    std::vector<int> tokens;
    for (std::size_t i = 0; i < end; ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (pattern[i] == '?')
            tokens.push_back(DosQm);
        else if (pattern[i] == '*')
            tokens.push_back(next == '.' ? DosStar : Star);
        else if (pattern[i] == '.' && (next == '?' || next == '*'))
            tokens.push_back(DosDot);
        else
            tokens.push_back(Fold(pattern[i]));
    }
    return tokens;
}

bool Match(const std::vector<int>& tokens, std::size_t t, const std::string& name, std::size_t i) {
    const std::size_t n = name.size(), lastDot = std::min(name.rfind('.'), n);
    if (t == tokens.size())
        return i == n;
    const bool atDot = i < n && name[i] == '.';
    switch (tokens[t]) {
    case Star:
        return Match(tokens, t + 1, name, i) || (i < n && Match(tokens, t, name, i + 1));
    case DosStar:
        return Match(tokens, t + 1, name, i) ||
               (i < n && i <= lastDot && Match(tokens, t, name, i + 1));
    case DosQm:
        return (i < n && !atDot && Match(tokens, t + 1, name, i + 1)) ||
               ((i == n || atDot) && Match(tokens, t + 1, name, i));
    case DosDot:
        return (atDot && Match(tokens, t + 1, name, i + 1)) ||
               (i == n && Match(tokens, t + 1, name, i));
    default:
        return i < n && Fold(name[i]) == tokens[t] && Match(tokens, t + 1, name, i + 1);
    }
}

bool Matches(const std::string& pattern, const std::string& name) {
    if (pattern.find_first_not_of('.') == std::string::npos)
        return pattern == name;
    return Match(Rewrite(pattern), 0, name, 0);
}

} // namespace Reference

// Every text up to maxLength characters over the alphabet.
std::vector<std::string> AllTexts(const char* alphabet, std::size_t maxLength) {
    std::vector<std::string> texts{""};
    for (std::size_t from = 0; texts[from].size() < maxLength; ++from)
        for (const char* c = alphabet; *c; ++c)
            texts.push_back(texts[from] + *c);
    return texts;
}

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

TEST(Wildcard, AgreesWithTheRulesOnEveryShortPatternAndName) {
    const std::vector<std::string> names = AllTexts("ab.", 5);
    int mismatches = 0;
    for (const std::string& pattern : AllTexts("aB.*?", 5)) {
        const Util::Win32Wildcard prepared(pattern.c_str());
        for (const std::string& name : names) {
            const bool expected = Reference::Matches(pattern, name);
            if (prepared.Matches(name.c_str()) != expected ||
                Util::MatchesWin32Wildcard(pattern.c_str(), name.c_str()) != expected) {
                ADD_FAILURE() << '"' << pattern << "\" vs \"" << name << "\" should "
                              << (expected ? "" : "not ") << "match";
                if (++mismatches == 20)
                    return;
            }
        }
    }
}

TEST(Wildcard, LongPatternsAndNames) {
    const std::string name(5000, 'a');
    EXPECT_TRUE(Util::MatchesWin32Wildcard((std::string(600, '*') + "a").c_str(), name.c_str()));
    EXPECT_FALSE(Util::MatchesWin32Wildcard((std::string(600, '?') + "b").c_str(), name.c_str()));
}

} // namespace
