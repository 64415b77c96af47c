#include "Util/AttributeSet.h"
#include "Util/StringHelpers.h"
#include "Util/TString.h"

#include <gtest/gtest.h>

using Util::TString;

TEST(TString, FormatsWithoutTruncation) {
    TString s;
    s.Format("%s (%d) : ", "core/src/status.cpp", 42);
    EXPECT_STREQ(s.c_str(), "core/src/status.cpp (42) : ");
    std::string big(1000, 'x');
    s.Format("[%s]", big.c_str());
    EXPECT_EQ(s.GetLength(), 1002u);
    TString empty(nullptr);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_STREQ(static_cast<const char*>(empty), "");
}

TEST(TString, ComparesCopiesAndSlices) {
    TString a("ledger"), b = a;
    b += ".dat";
    EXPECT_TRUE(a == "ledger");
    EXPECT_TRUE(a < b);
    EXPECT_EQ(b.Right(3), TString("dat"));
    EXPECT_EQ(b.Left(3), TString("led"));
    EXPECT_EQ(b.Mid(100), TString(""));
    TString moved(std::move(b));
    EXPECT_EQ(moved, TString("ledger.dat"));
}

TEST(CompareStrings, CaseModesAndNulls) {
    struct Row {
        const char* a;
        const char* b;
        int mode;
        int expected;
    };
    const Row rows[] = {
        {"abc", "ABC", 1, 1},
        {"abc", "ABC", 0, 0},
        {"abc", "ABC", 2, 0},
        {"a", "b", 1, -1},
        {"b", "a", 0, 1},
        {"ab", "abc", 0, -1},
        {"", "", 1, 0},
        {nullptr, "a", 1, -1},
        {"a", nullptr, 0, -1},
        {nullptr, nullptr, 0, -1},
        {"Zeta", "alpha", 0, 1},
        {"\xe9", "a", 1, 1},
        // past the first eight bytes, where whole words are compared
        {"Ledger_Accounts_2024", "LEDGER_accounts_2025", 0, -1},
        {"Ledger_Accounts_2024", "ledger_accounts_2024", 0, 0},
        {"ledger_accounts_", "LEDGER_ACCOUNTS_x", 0, -1},
        {"ledger_[", "ledger_A", 0, -1},
        {"ledger_[", "ledger_A", 1, 1},
        {"ledger_\xe9x", "LEDGER_ax", 0, 1},
    };
    for (const auto& r : rows)
        EXPECT_EQ(Util::CompareStrings(r.a, r.b, r.mode), r.expected)
            << (r.a ? r.a : "null") << " vs " << (r.b ? r.b : "null") << " mode " << r.mode;
}

TEST(StringHelpers, TrimRightRemovesTrailingWhiteSpaceOnly) {
    TString t("  value \t\r\n");
    Util::TrimRight(t);
    EXPECT_STREQ(t.c_str(), "  value");
    std::string all = " \t ";
    Util::TrimRight(all);
    EXPECT_TRUE(all.empty());
}

TEST(StringHelpers, Utf8AndUtf16RoundTripAndFlagMalformedInput) {
    const std::string samples[] = {"", "plain",
                                   "Gr\xc3\xbc\xc3\x9f"
                                   "e",
                                   "\xe2\x82\xac 5", "\xf0\x9f\x98\x80 smile"};
    for (const auto& s : samples) {
        std::u16string wide;
        std::string back;
        EXPECT_TRUE(Util::Utf8ToUtf16(s, wide));
        EXPECT_TRUE(Util::Utf16ToUtf8(wide, back));
        EXPECT_EQ(back, s);
    }
    std::u16string wide;
    EXPECT_FALSE(Util::Utf8ToUtf16("a\xff"
                                   "b",
                                   wide));
    EXPECT_EQ(wide, u"a\uFFFDb");
    EXPECT_FALSE(Util::Utf8ToUtf16("\xc0\xaf", wide));     // overlong '/'
    EXPECT_FALSE(Util::Utf8ToUtf16("\xe2\x82", wide));     // truncated
    EXPECT_FALSE(Util::Utf8ToUtf16("\xed\xa0\x80", wide)); // encoded surrogate
    std::string narrow;
    EXPECT_FALSE(Util::Utf16ToUtf8(std::u16string(1, char16_t(0xD800)), narrow));
    EXPECT_EQ(narrow, "\xef\xbf\xbd");
}

namespace {

struct CountingSet : Util::AttributeSet {
    int changes = 0;
    void AttributeHasChanged() override { ++changes; }
};

} // namespace

TEST(AttributeSet, EveryChangeIsAnnounced) {
    CountingSet set;
    set.SetAttribute("a", 1);
    set.SetAttribute("a", 2); // replaces
    set.SetAttribute("b", "text");
    set.ClearAttribute("a");
    Util::AttributeSet other;
    other.SetAttribute("c", 1.5);
    set.SetAttributes(other);
    set.ClearAttributes();
    EXPECT_EQ(set.changes, 6);
    EXPECT_EQ(set.GetAttributeCount(), 0u);
}

TEST(AttributeSet, TypedValuesReadBackAndTextFormsFollowTheType) {
    Util::AttributeSet set;
    set.SetAttribute("s", static_cast<short>(-3));
    set.SetAttribute("i", 12);
    set.SetAttribute("l", -7L);
    set.SetAttribute("q", static_cast<long long>(1) << 40);
    set.SetAttribute("d", 0.25);
    set.SetAttribute("t", true);
    set.SetAttribute("x", boost::any(std::vector<int>{1}));
    short s = 0;
    int i = 0;
    long long q = 0;
    EXPECT_TRUE(set.GetShortAttribute("s", s));
    EXPECT_EQ(s, -3);
    EXPECT_TRUE(set.GetIntAttribute("i", i));
    EXPECT_EQ(i, 12);
    EXPECT_TRUE(set.GetInt64Attribute("q", q));
    EXPECT_EQ(q, static_cast<long long>(1) << 40);
    EXPECT_THROW(set.GetIntAttribute("l", i), boost::bad_any_cast);

    const std::pair<const char*, const char*> texts[] = {{"s", "-3"},   {"i", "12"},
                                                         {"l", "-7"},   {"q", "1099511627776"},
                                                         {"d", "0.25"}, {"t", "true"}};
    for (const auto& [name, text] : texts) {
        TString value;
        EXPECT_TRUE(set.GetStringAttribute(name, value));
        EXPECT_STREQ(value.c_str(), text) << name;
    }
    TString value;
    EXPECT_THROW(set.GetStringAttribute("x", value), boost::bad_any_cast);
    EXPECT_FALSE(set.GetStringAttribute("missing", value));
    boost::any any;
    EXPECT_TRUE(set.GetAnyAttribute("x", any));
    EXPECT_EQ(boost::any_cast<std::vector<int>>(any).size(), 1u);
}
