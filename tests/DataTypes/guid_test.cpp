#include "Util/Guid.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

using namespace Util::Win32;

using Util::Guid;
using Util::TString;

TEST(GuidText, BracedAndPlainTextGiveTheSameIdentifier) {
    Guid braced(TString("{6B29FC40-CA47-1067-B31D-00DD010662DA}"));
    Guid plain;
    plain = TString("6b29fc40-ca47-1067-B31D-00dd010662DA");
    ASSERT_TRUE(braced.IsValid());
    ASSERT_TRUE(plain.IsValid());
    EXPECT_TRUE(braced == plain);
    EXPECT_FALSE(braced != plain);
    EXPECT_STREQ(static_cast<const char*>(braced), "6b29fc40-ca47-1067-b31d-00dd010662da");
    EXPECT_EQ(static_cast<TString>(plain), TString("6b29fc40-ca47-1067-b31d-00dd010662da"));
}

TEST(GuidText, FieldsFollowTheWin32Layout) {
    Guid g(TString("00112233-4455-6677-8899-AABBCCDDEEFF"));
    ASSERT_TRUE(g.IsValid());
    const GUID& raw = g.GetGuid();
    EXPECT_EQ(raw.Data1, 0x00112233u);
    EXPECT_EQ(raw.Data2, 0x4455u);
    EXPECT_EQ(raw.Data3, 0x6677u);
    const BYTE tail[8] = {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(raw.Data4[i], tail[i]) << i;
    }
    EXPECT_TRUE(g == raw);
    Guid copy(raw);
    EXPECT_TRUE(copy.IsValid());
    EXPECT_STREQ(copy, "00112233-4455-6677-8899-aabbccddeeff");
}

TEST(GuidText, MalformedTextOrNoTextGivesAnInvalidIdentifier) {
    const char* bad[] = {
        "nonsense",
        "",
        "{}",
        "6b29fc40-ca47-1067-b31d-00dd010662d",     // 35 characters
        "6b29fc40-ca47-1067-b31d-00dd010662daa",   // 37 characters
        "6b29fc40ca47-1067-b31d-00dd010662da0",    // a dash missing
        "6b29fc4-0ca47-1067-b31d-00dd010662da",    // a dash moved
        "6b29fc40-ca47-1067-b31d-00dd010662dg",    // not hexadecimal
        " 6b29fc40-ca47-1067-b31d-00dd010662da",   // surrounding space
        "6b29fc40-ca47-1067-b31d-00dd010662da}{",  // braces the wrong way round
        "{6b29fc40-ca47-1067-b31d-00dd010662da",   // one brace only
        "+b29fc40-ca47-1067-b31d-00dd010662da",    // a sign is not a digit
        "{6b29fc40-ca47-1067-b31d-00dd010662da }", // a space inside the braces
    };
    for (const char* text : bad) {
        Guid g(TString("6b29fc40-ca47-1067-b31d-00dd010662da"));
        g = TString(text);
        EXPECT_FALSE(g.IsValid()) << text;
        EXPECT_STREQ(g, "error - object not valid") << text;
    }
    // Text around the braces is ignored.
    Guid outside(TString("id: {6b29fc40-ca47-1067-b31d-00dd010662da} (copied)"));
    EXPECT_TRUE(outside.IsValid());
    // A default identifier starts invalid, and equal to any other invalid one.
    Guid fresh;
    EXPECT_FALSE(fresh.IsValid());
    EXPECT_STREQ(fresh, Guid::kInvalidText);
    EXPECT_TRUE(fresh == Guid(TString("junk")));
}

TEST(GuidRenew, MakesDistinctVersion4Identifiers) {
    const std::regex form("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::set<std::string> seen;
    Guid g;
    for (int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(g.Renew().Succeeded());
        ASSERT_TRUE(g.IsValid());
        std::string text = static_cast<const char*>(g);
        ASSERT_TRUE(std::regex_match(text, form)) << text;
        ASSERT_TRUE(seen.insert(text).second) << text;
        Guid parsed(TString(text.c_str()));
        ASSERT_TRUE(parsed == g);
    }
}

TEST(GuidRenew, DiscardsTheCachedText) {
    Guid g(TString("6b29fc40-ca47-1067-b31d-00dd010662da"));
    std::string before = static_cast<const char*>(g);
    Guid copy(g);
    EXPECT_TRUE(g.Renew().Succeeded());
    EXPECT_NE(before, static_cast<const char*>(g));
    EXPECT_TRUE(g != copy);
    EXPECT_EQ(before, static_cast<const char*>(copy));
    copy = g;
    EXPECT_TRUE(copy == g);
    EXPECT_STREQ(copy, g);
}

// ---- what Guid reports through the operations manager ----

namespace {
class GuidReporting : public OpsTest::OpsRunning {};
} // namespace

TEST_F(GuidReporting, RenewAndParsingReportUnderTheirFunctionNames) {
    auto events = OpsTest::Subscribe();
    Guid g;
    ASSERT_TRUE(g.Renew().Succeeded());
    g = TString("nonsense");
    g = TString("{6B29FC40-CA47-1067-B31D-00DD010662DA}");

    std::vector<std::string> seen;
    for (const auto& e : events->Events()) {
        seen.push_back(std::to_string(e.type) + " " + e.function + " " + e.text);
    }
    const std::vector<std::string> expected = {
        "0 Util::Guid::Renew Function Entered: Util::Guid::Renew",
        "1 Util::Guid::Renew Status Reported: Succeeded, function = Util::Guid::Renew, "
        "signature = Util::Status Util::Guid::Renew()",
        "2 Util::Guid::Renew Function Exited: Util::Guid::Renew",
        "0 Util::Guid::operator = Function Entered: Util::Guid::operator =",
        "1 Util::Guid::operator = Status Reported: Failed, function = Util::Guid::operator =, "
        "signature = Util::Guid& Util::Guid::operator =(const Util::TString&)",
        "2 Util::Guid::operator = Function Exited: Util::Guid::operator =",
        "0 Util::Guid::operator = Function Entered: Util::Guid::operator =",
        "1 Util::Guid::operator = Status Reported: Succeeded, function = Util::Guid::operator =, "
        "signature = Util::Guid& Util::Guid::operator =(const Util::TString&)",
        "2 Util::Guid::operator = Function Exited: Util::Guid::operator =",
    };
    EXPECT_EQ(seen, expected);
}
