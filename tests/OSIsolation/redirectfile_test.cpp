#include "Util/ReDirectFile.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using Util::ReDirectFile;

namespace {

#if defined(_WIN32)
const bool kCaseBlind = true;
#else
const bool kCaseBlind = false;
#endif

struct RedirectCase {
    const char* name;
    const char* requested;
    const char* expected;
    int rule; // index of the rule that applies, -1 for none
};

class RedirectRules : public ::testing::TestWithParam<RedirectCase> {
protected:
    void SetUp() override {
        ASSERT_TRUE(ReDirectFile::SetRules({{"C:\\Data\\Reports", "D:\\Shared\\Reports"},
                                            {"C:\\Data", "E:\\Data\\"},
                                            {"/opt/tw/data/", "/srv/tw"}})
                        .Succeeded());
    }
    void TearDown() override { ReDirectFile::ClearRules(); }
};

TEST_P(RedirectRules, MapsTheNameThroughTheFirstMatchingRule) {
    const RedirectCase& c = GetParam();
    Util::TString redirected("stale");
    std::size_t rule = 99;
    const bool applied = ReDirectFile::GetRedirectedFile(redirected, c.requested, rule);
    EXPECT_EQ(applied, c.rule >= 0);
    EXPECT_STREQ(redirected.c_str(), c.expected);
    EXPECT_EQ(rule, c.rule >= 0 ? std::size_t(c.rule) : 99u);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RedirectRules,
    ::testing::Values(
        RedirectCase{"FirstRuleWins", "C:\\Data\\Reports\\q1.pdf", "D:\\Shared\\Reports\\q1.pdf",
                     0},
        RedirectCase{"LaterRuleForOtherNames", "C:\\Data\\books.dat", "E:\\Data\\books.dat", 1},
        RedirectCase{"PrefixItself", "C:\\Data", "E:\\Data\\", 1},
        RedirectCase{"PrefixWithTrailingSeparator", "C:\\Data\\", "E:\\Data\\", 1},
        RedirectCase{"ForwardSlashesMatchBackslashes", "C:/Data/Reports/a.txt",
                     "D:\\Shared\\Reports/a.txt", 0},
        RedirectCase{"PartialSegmentDoesNotMatch", "C:\\Database\\x.dat", "C:\\Database\\x.dat",
                     -1},
        RedirectCase{"ShorterNameDoesNotMatch", "C:\\Dat", "C:\\Dat", -1},
        RedirectCase{"PosixPrefix", "/opt/tw/data/a/b.ini", "/srv/tw/a/b.ini", 2},
        RedirectCase{"RelativeNameIsNotResolved", "data/a.ini", "data/a.ini", -1},
        RedirectCase{"EmptyName", "", "", -1},
        RedirectCase{"CaseFollowsThePlatform", "c:\\data\\x.dat",
                     kCaseBlind ? "E:\\Data\\x.dat" : "c:\\data\\x.dat", kCaseBlind ? 1 : -1}),
    [](const ::testing::TestParamInfo<RedirectCase>& info) { return info.param.name; });

TEST(RedirectRuleChanges, RefuseEmptyRulesAndKeepTheOldOnes) {
    ASSERT_TRUE(ReDirectFile::SetRules({{"/a", "/b"}}).Succeeded());
    const Util::Status refused = ReDirectFile::SetRules({{"/c", "/d"}, {"//", "/e"}});
    EXPECT_TRUE(refused.Failed());
    long index = -1;
    EXPECT_TRUE(refused.GetLongAttribute("RuleIndex", index));
    EXPECT_EQ(index, 1);
    EXPECT_TRUE(ReDirectFile::AddRule("/x", "").Failed());
    EXPECT_TRUE(ReDirectFile::AddRule(nullptr, "/y").Failed());
    ASSERT_EQ(ReDirectFile::GetRules().size(), 1u);

    EXPECT_TRUE(ReDirectFile::AddRule("/a/deeper", "/never").Succeeded());
    Util::TString redirected;
    ReDirectFile::GetRedirectedFile(redirected, "/a/deeper/f");
    EXPECT_STREQ(redirected.c_str(), "/b/deeper/f"); // appended rules come after the others
    ReDirectFile::ClearRules();
    EXPECT_FALSE(ReDirectFile::HasRules());
    EXPECT_FALSE(ReDirectFile::GetRedirectedFile(redirected, "/a/f"));
}

TEST(RedirectRuleChanges, LoadRulesReadsTheRedirectSectionInFileOrder) {
    OpsTest::TempDir dir;
    dir.Write("FileLocations.ini", "[debugging]\nIsIniLogOn=0\n[Redirect]\n"
                                   "C:\\Data\\Reports = D:\\Reports\n"
                                   "/opt/tw=/srv/tw\nC:\\Data=E:\\Data\n"
                                   "/empty=\n; C:\\Old=C:\\New\n");
    ASSERT_TRUE(ReDirectFile::LoadRules(dir.File("FileLocations.ini").c_str()).Succeeded());
    std::vector<std::string> rules;
    for (const ReDirectFile::Rule& rule : ReDirectFile::GetRules())
        rules.push_back(std::string(rule.requested.c_str()) + ">" + rule.real.c_str());
    EXPECT_EQ(rules, (std::vector<std::string>{"C:\\Data\\Reports>D:\\Reports", "/opt/tw>/srv/tw",
                                               "C:\\Data>E:\\Data"}));

    // A missing file leaves no rules behind.
    ASSERT_TRUE(ReDirectFile::LoadRules(dir.File("missing.ini").c_str()).Succeeded());
    EXPECT_FALSE(ReDirectFile::HasRules());
}

// Readers on several threads always see one whole rule list: the old one or the new one.
TEST(RedirectRuleChanges, ReadersSeeWholeListsWhileAWriterChangesThem) {
    std::atomic<bool> stop{false};
    std::atomic<int> torn{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            Util::TString redirected;
            while (!stop.load()) {
                ReDirectFile::GetRedirectedFile(redirected, "/in/file");
                const std::string got = redirected.c_str();
                if (got != "/in/file" && got != "/one/file" && got != "/two/file")
                    ++torn;
            }
        });
    }
    for (int i = 0; i < 2000; ++i)
        EXPECT_TRUE(ReDirectFile::SetRules({{"/in", i % 2 ? "/one" : "/two"}}).Succeeded());
    stop = true;
    for (std::thread& reader : readers)
        reader.join();
    ReDirectFile::ClearRules();
    EXPECT_EQ(torn.load(), 0);
    Util::TString redirected;
    EXPECT_FALSE(ReDirectFile::GetRedirectedFile(redirected, "/in/file"));
}

} // namespace
