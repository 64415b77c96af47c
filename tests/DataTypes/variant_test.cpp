#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "Util/MemoryManager.h"
#include "Util/Variant.h"

using Util::Variant;

namespace {

std::string Text(const Variant& v) {
    Util::TString text;
    v.GetString(text);
    return text.c_str();
}

TEST(VariantConstruction, EachCppTypeGetsItsTag) {
    struct Case {
        Variant value;
        Util::VariantType type;
    } cases[] = {
        {Variant(), Util::UTIL_VT_EMPTY},
        {Variant(1), Util::UTIL_VT_INT},
        {Variant(static_cast<short>(1)), Util::UTIL_VT_SHORT},
        {Variant(1L), Util::UTIL_VT_LONG},
        {Variant(1LL), Util::UTIL_VT_INT64},
        {Variant('c'), Util::UTIL_VT_CHAR},
        {Variant(1u), Util::UTIL_VT_UINT},
        {Variant(static_cast<unsigned char>(1)), Util::UTIL_VT_UCHAR},
        {Variant(static_cast<unsigned short>(1), Util::UTIL_VT_USHORT), Util::UTIL_VT_USHORT},
        {Variant(static_cast<unsigned short>(1), Util::UTIL_VT_WCHAR), Util::UTIL_VT_WCHAR},
        {Variant(static_cast<unsigned short>(1), Util::UTIL_VT_INT), Util::UTIL_VT_EMPTY},
        {Variant(1UL), Util::UTIL_VT_ULONG},
        {Variant(1ULL), Util::UTIL_VT_UINT64},
        {Variant(1.0), Util::UTIL_VT_DOUBLE},
        {Variant(true), Util::UTIL_VT_BOOL},
        {Variant("s"), Util::UTIL_VT_STRING},
        {Variant(L"s"), Util::UTIL_VT_WSTRING},
        {Variant(static_cast<const char*>(nullptr)), Util::UTIL_VT_EMPTY},
        {Variant(static_cast<const wchar_t*>(nullptr)), Util::UTIL_VT_EMPTY},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.value.GetType(), c.type) << std::hex << c.type;

    Variant v;
    v = static_cast<unsigned short>(9);
    EXPECT_EQ(v.GetType(), Util::UTIL_VT_USHORT);
    v = static_cast<const char*>(nullptr);
    EXPECT_TRUE(v.IsEmpty());
    v = -3LL;
    EXPECT_EQ(v.GetData().llVal, -3);
}

TEST(VariantClasses, AnswerByTypeClass) {
    EXPECT_TRUE(Variant(5u).IsIntegerNumber());
    EXPECT_TRUE(Variant('x').IsIntegerNumber());
    EXPECT_FALSE(Variant(5.0).IsIntegerNumber());
    EXPECT_TRUE(Variant(5.0).IsRealNumber());
    EXPECT_TRUE(Variant(L"w").IsString());
    EXPECT_FALSE(Variant(true).IsString());
}

struct ChangeCase {
    Variant source;
    Util::VariantType type;
    bool ok;
    const char* text; // the converted value as narrow text ("" when it failed)
};

TEST(VariantChangeType, FollowsTheConversionRules) {
    const ChangeCase cases[] = {
        {Variant("TRUE"), Util::UTIL_VT_BOOL, true, "true"},
        {Variant("yes"), Util::UTIL_VT_BOOL, true, "false"},
        {Variant(L"True"), Util::UTIL_VT_BOOL, true, "true"},
        {Variant("true "), Util::UTIL_VT_BOOL, true, "false"},
        {Variant(0.1), Util::UTIL_VT_STRING, true, "0.1"},
        {Variant(1.0 / 3), Util::UTIL_VT_STRING, true, "0.333333333333"},
        {Variant(1234567890123LL), Util::UTIL_VT_STRING, true, "1234567890123"},
        {Variant(-5), Util::UTIL_VT_WSTRING, true, "-5"},
        {Variant(ULLONG_MAX), Util::UTIL_VT_STRING, true, "-1"},
        {Variant(true), Util::UTIL_VT_STRING, true, "true"},
        {Variant(false), Util::UTIL_VT_WSTRING, true, "false"},
        {Variant("  42"), Util::UTIL_VT_INT, true, "42"},
        {Variant("12abc"), Util::UTIL_VT_SHORT, true, "12"},
        {Variant("70000"), Util::UTIL_VT_SHORT, false, ""},
        {Variant("-1"), Util::UTIL_VT_UINT, false, ""},
        {Variant("4294967295"), Util::UTIL_VT_UINT, true, "4294967295"},
        {Variant("99999999999999999999"), Util::UTIL_VT_INT64, false, ""},
        {Variant("2.5"), Util::UTIL_VT_DOUBLE, true, "2.5"},
        {Variant(L"-7"), Util::UTIL_VT_CHAR, true, "-7"},
        {Variant(-1), Util::UTIL_VT_UINT, false, ""},
        {Variant(300), Util::UTIL_VT_UCHAR, false, ""},
        {Variant(255), Util::UTIL_VT_UCHAR, true, "255"},
        {Variant(-129), Util::UTIL_VT_CHAR, false, ""},
        {Variant(65535u), Util::UTIL_VT_WCHAR, true, "65535"},
        {Variant(65536u), Util::UTIL_VT_USHORT, false, ""},
        {Variant(ULLONG_MAX), Util::UTIL_VT_INT64, false, ""},
        {Variant(LLONG_MIN), Util::UTIL_VT_INT64, true, "-9223372036854775808"},
        {Variant(2147483648LL), Util::UTIL_VT_INT, false, ""},
        {Variant(7), Util::UTIL_VT_DOUBLE, true, "7"},
        {Variant(ULLONG_MAX), Util::UTIL_VT_DOUBLE, true, "1.84467440737e+19"},
        {Variant(0.0), Util::UTIL_VT_BOOL, true, "false"},
        {Variant(-0.5), Util::UTIL_VT_BOOL, true, "true"},
        {Variant(-2.9), Util::UTIL_VT_INT, true, "-2"},
        {Variant(1e20), Util::UTIL_VT_UINT64, false, ""},
        {Variant(-1.0), Util::UTIL_VT_ULONG, false, ""},
        {Variant(true), Util::UTIL_VT_INT, true, "1"},
        {Variant(3), Util::UTIL_VT_BOOL, true, "true"},
        {Variant(), Util::UTIL_VT_INT, true, "0"},
        {Variant(), Util::UTIL_VT_STRING, true, ""},
        {Variant(L"w\u00e9\u4e2d"), Util::UTIL_VT_STRING, true, "w\xe9?"},
        {Variant(5), static_cast<Util::VariantType>(0x999), false, ""},
    };
    for (const ChangeCase& c : cases) {
        Variant out("old text to be freed");
        const bool ok = Util::VariantChangeType(out.GetAddress(), &c.source.GetData(), c.type);
        EXPECT_EQ(ok, c.ok) << Text(c.source) << " -> " << std::hex << c.type;
        if (ok)
            EXPECT_EQ(out.GetType(), c.type == Util::UTIL_VT_EMPTY ? Util::UTIL_VT_EMPTY : c.type);
        else
            EXPECT_TRUE(out.IsEmpty());
        EXPECT_EQ(Text(out), c.text) << Text(c.source) << " -> " << std::hex << c.type;
    }
}

TEST(VariantChangeType, WorksInPlaceAndFromAnotherSource) {
    Variant v("123");
    EXPECT_TRUE(v.ChangeType(Util::UTIL_VT_INT));
    EXPECT_EQ(v.GetType(), Util::UTIL_VT_INT);
    EXPECT_EQ(static_cast<int>(v), 123);
    const Variant source(L"wide");
    EXPECT_TRUE(v.ChangeType(Util::UTIL_VT_STRING, &source.GetData()));
    EXPECT_STREQ(v.GetData().pszVal, "wide");
    EXPECT_FALSE(Util::VariantChangeType(nullptr, &source.GetData(), Util::UTIL_VT_INT));
}

TEST(VariantConversions, ReturnZeroWhenTheyCannotConvert) {
    const Variant minusOne(-1);
    EXPECT_EQ(static_cast<unsigned int>(minusOne), 0u);
    EXPECT_EQ(static_cast<int>(minusOne), -1);
    EXPECT_EQ(static_cast<long long>(Variant("  -88")), -88);
    EXPECT_EQ(static_cast<unsigned char>(Variant(256)), 0);
    EXPECT_EQ(static_cast<char>(Variant(65)), 'A');
    EXPECT_EQ(static_cast<short>(Variant(-32768)), -32768);
    EXPECT_EQ(static_cast<unsigned short>(Variant(65535)), 65535);
    EXPECT_EQ(static_cast<unsigned long>(Variant(7.9)), 7ul);
    EXPECT_EQ(static_cast<unsigned long long>(Variant("18446744073709551615")), ULLONG_MAX);
    EXPECT_DOUBLE_EQ(static_cast<double>(Variant("1e3")), 1000.0);
    EXPECT_TRUE(static_cast<bool>(Variant("tRuE")));
    EXPECT_FALSE(static_cast<bool>(Variant(0)));
    EXPECT_EQ(static_cast<long>(Variant(true)), 1);
}

TEST(VariantEquality, ComparesTypeAndValue) {
    EXPECT_TRUE(Variant(5) == Variant(5).GetData());
    EXPECT_TRUE(Variant(5) != Variant(5L).GetData());
    EXPECT_TRUE(Variant("abc") == Variant("abc").GetData());
    EXPECT_TRUE(Variant("abc") != Variant("abd").GetData());
    EXPECT_TRUE(Variant(L"abc") == Variant(L"abc").GetData());
    EXPECT_TRUE(Variant() == Variant().GetData());
    EXPECT_TRUE(Variant(0.5) == static_cast<Util::__util_Variant>(Variant(0.5)));
}

TEST(VariantOwnership, CopiesAreDeepAndStringsGoBackToTheManager) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    const std::size_t before = memory.GetOutstandingBlocks();
    {
        Variant source("shared text");
        Variant copy(source);
        EXPECT_NE(copy.GetData().pszVal, source.GetData().pszVal);
        copy.Clear();
        EXPECT_TRUE(copy.IsEmpty());
        EXPECT_STREQ(source.GetData().pszVal, "shared text");

        Variant assigned;
        assigned = source;
        assigned = assigned.GetData(); // from a view of itself
        assigned = assigned.GetData().pszVal;
        EXPECT_EQ(Text(assigned), "shared text");

        Variant moved(std::move(assigned));
        EXPECT_TRUE(assigned.IsEmpty());
        EXPECT_EQ(memory.GetOutstandingBlocks(), before + 2);
        moved = 3.5;
        EXPECT_EQ(memory.GetOutstandingBlocks(), before + 1);
    }
    EXPECT_EQ(memory.GetOutstandingBlocks(), before);
}

TEST(VariantOwnership, AttachAndDetachHandOverTheString) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    const std::size_t before = memory.GetOutstandingBlocks();
    {
        Variant owner(L"wide text");
        Util::__util_Variant raw = owner.Detach();
        EXPECT_TRUE(owner.IsEmpty());
        EXPECT_EQ(raw.vt, Util::UTIL_VT_WSTRING);

        Variant copied(raw, false);
        Variant attached(raw, true);
        EXPECT_EQ(raw.vt, Util::UTIL_VT_EMPTY);
        EXPECT_TRUE(copied == attached.GetData());

        Util::__util_Variant other = Variant("narrow").Detach();
        attached.Attach(other);
        EXPECT_EQ(Text(attached), "narrow");
        EXPECT_EQ(other.vt, Util::UTIL_VT_EMPTY);
        Variant fromPointer(&copied.GetData());
        EXPECT_EQ(Text(fromPointer), "wide text");
    }
    EXPECT_EQ(memory.GetOutstandingBlocks(), before);
}

} // namespace
