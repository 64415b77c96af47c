#include <gtest/gtest.h>

#include <cfloat>
#include <string>

#include "Util/ParseNodeValue.h"
#include "Util/Variant.h"

using Util::NodeVariantData;

namespace {

// The value kinds of the coercion table, by actual stored type.
NodeVariantData None() {
    return NodeVariantData();
}
NodeVariantData Long(long v) {
    return NodeVariantData(v);
}
NodeVariantData Dbl(double v) {
    return NodeVariantData(v);
}
NodeVariantData Text(const char* v) {
    return NodeVariantData(v);
}

constexpr Util::NodeVariantDataType L = Util::NVDT_LONG, D = Util::NVDT_DOUBLE,
                                    S = Util::NVDT_STRING;
constexpr Util::ParseNodeStatus ok = Util::PNS_SUCCESS, text = Util::PNS_TEXT_OPERATION;

struct Expect {
    Util::NodeVariantDataType type;
    const char* text; // the value as text
    Util::ParseNodeStatus status;
};

void Check(const NodeVariantData& value, const Expect& expect, const std::string& what) {
    EXPECT_EQ(value.GetDataType(), expect.type) << what;
    EXPECT_STREQ(static_cast<const char*>(value), expect.text) << what;
    EXPECT_EQ(value.GetErrorStatus(), expect.status) << what;
}

TEST(NodeVariantDataActualType, FollowsWhatTheTextHolds) {
    struct Case {
        const char* text;
        Util::NodeVariantDataType actual;
        bool valid, validInt;
    } cases[] = {{"12", L, true, true},  {" 1.5", D, true, false}, {"1,5", S, false, false},
                 {"", S, false, false},  {"-3", L, true, true},    {"+.25", D, true, false},
                 {"1e3", S, true, true}, {"1 ", S, false, false},  {"-", S, false, false},
                 {"ab", S, false, false}};
    for (const Case& c : cases) {
        const NodeVariantData value(c.text);
        EXPECT_EQ(value.GetDataType(), Util::NVDT_STRING) << c.text;
        EXPECT_EQ(value.GetActualStoredDataType(), c.actual) << c.text;
        EXPECT_EQ(value.IsValidNumber(), c.valid) << c.text;
        EXPECT_EQ(value.IsValidIntNumber(), c.validInt) << c.text;
    }
    EXPECT_EQ(Long(3).GetActualStoredDataType(), Util::NVDT_LONG);
    EXPECT_EQ(Dbl(3).GetActualStoredDataType(), Util::NVDT_DOUBLE);
    EXPECT_TRUE(Dbl(3).IsValidIntNumber());
    EXPECT_FALSE(Dbl(3.5).IsValidIntNumber());
    EXPECT_FALSE(None().IsValidNumber());
}

TEST(NodeVariantDataCoercion, PlusFollowsTheTableCellByCell) {
    const NodeVariantData operands[] = {None(), Long(7), Dbl(2.5), Text("ab")};
    const char* names[] = {"none", "long", "double", "text"};
    const Expect expected[4][4] = {
        {{L, "0", ok}, {L, "7", ok}, {D, "2.5", ok}, {S, "ab", ok}},
        {{L, "7", ok}, {L, "14", ok}, {D, "9.5", ok}, {S, "7ab", ok}},
        {{D, "2.5", ok}, {D, "9.5", ok}, {D, "5", ok}, {S, "2.5ab", ok}},
        {{S, "ab", ok}, {S, "ab7", ok}, {S, "ab2.5", ok}, {S, "abab", ok}}};
    for (int l = 0; l < 4; ++l) {
        for (int r = 0; r < 4; ++r)
            Check(operands[l] + operands[r], expected[l][r],
                  std::string(names[l]) + " + " + names[r]);
    }
}

TEST(NodeVariantDataOperators, CoerceTextWrapLongsAndPropagateErrors) {
    NodeVariantData left;
    left.SetText("Undefined Symbol ", "x", " ", Util::PNS_UNDEFINED_SYMBOL);
    NodeVariantData right;
    right.SetText("Undefined Alias ", "y", " ", Util::PNS_UNDEFINED_ALIAS);
    struct Case {
        NodeVariantData value;
        Expect expect;
        const char* what;
    } cases[] = {
        // Numeric text counts as its number; other text is joined.
        {Text("12") + Long(3), {L, "15", ok}, "\"12\" + 3"},
        {Text(" 1.5") + Long(1), {D, "2.5", ok}, "\" 1.5\" + 1"},
        {Text("1") + Text("2"), {L, "3", ok}, "\"1\" + \"2\""},
        {Text("1,5") + Long(1), {S, "1,51", ok}, "\"1,5\" + 1"},
        {Text("ab") + Long(3), {S, "ab3", ok}, "\"ab\" + 3"},
        // Other operators on text describe the operation.
        {Text("ab") - Long(3), {S, "ab SUBTRACT 3", text}, "text - 3"},
        {Text("ab") * Dbl(0.5), {S, "ab MULTIPLY 0.5", text}, "text * 0.5"},
        {Long(2) / Text("x"), {S, "2 DIVIDE x", text}, "2 / text"},
        {Text("ab") & Long(1), {S, "ab AND 1", text}, "text & 1"},
        {Text("ab") || Text("cd"), {S, "ab OR cd", text}, "text || text"},
        {-Text("ab"), {S, " UNARYMINUS ab", text}, "-text"},
        // Division by zero gives the intended limits; long division truncates.
        {Long(7) / Long(0), {L, "2147483647", ok}, "7 / 0"},
        {Dbl(1.0) / Long(0), {D, "1.79769e+308", ok}, "1.0 / 0"},
        {Dbl(-1.0) / Dbl(0.0), {D, "1.79769e+308", ok}, "-1.0 / 0.0"},
        {Long(-7) / Long(2), {L, "-3", ok}, "-7 / 2"},
        // Longs wrap in thirty-two bits.
        {Long(2147483647) + Long(1), {L, "-2147483648", ok}, "max + 1"},
        {Long(-2147483647 - 1) / Long(-1), {L, "-2147483648", ok}, "min / -1"},
        {-Long(-2147483647 - 1), {L, "-2147483648", ok}, "-min"},
        {Long(65536) * Long(65536), {L, "0", ok}, "2^16 * 2^16"},
        // An error operand wins, the left one first.
        {left + right, {S, "Undefined Symbol x ", Util::PNS_UNDEFINED_SYMBOL}, "both errors"},
        {Long(1) * right, {S, "Undefined Alias y ", Util::PNS_UNDEFINED_ALIAS}, "right error"},
        {left < Long(1), {S, "Undefined Symbol x ", Util::PNS_UNDEFINED_SYMBOL}, "comparison"},
        {-left, {S, "Undefined Symbol x ", Util::PNS_UNDEFINED_SYMBOL}, "unary"},
    };
    for (const Case& c : cases)
        Check(c.value, c.expect, c.what);
    EXPECT_EQ(static_cast<double>(Dbl(1.0) / Long(0)), DBL_MAX);
    EXPECT_EQ(static_cast<double>(Dbl(-1.0) / Dbl(0.0)), DBL_MAX);
}

TEST(NodeVariantDataConversion, ToLongTruncatesAndSaturates) {
    EXPECT_EQ(static_cast<int>(Dbl(2.9)), 2);
    EXPECT_EQ(static_cast<int>(Dbl(-2.9)), -2);
    EXPECT_EQ(static_cast<int>(Text("3.7abc")), 3);
    EXPECT_EQ(static_cast<int>(Dbl(1e300)), 2147483647);
    EXPECT_EQ(static_cast<int>(Dbl(-1e300)), -2147483647 - 1);
    EXPECT_EQ(static_cast<int>(Text("nan")), 0);
    EXPECT_STREQ(static_cast<const char*>(None()), "");
    EXPECT_STREQ(static_cast<const char*>(Dbl(0.1)), "0.1");
}

TEST(NodeVariantDataCompare, UsesToleranceForDoublesAndStrcmpForText) {
    struct Case {
        NodeVariantData value;
        long expected;
        const char* what;
    } cases[] = {
        {(Dbl(0.1) + Dbl(0.2)) == Dbl(0.3), 1, "0.1 + 0.2 = 0.3"},
        {Dbl(1.00005) == Dbl(1), 1, "within tolerance"},
        {Dbl(1.0002) > Dbl(1), 1, "beyond tolerance"},
        {Dbl(1.00005) > Dbl(1), 0, "not greater within tolerance"},
        {Long(2) < Long(3), 1, "2 < 3"},
        {Long(-2147483647 - 1) < Long(1), 1, "min < 1 without overflow"},
        {Long(3) <= Long(3), 1, "3 <= 3"},
        {Long(3) >= Long(4), 0, "3 >= 4"},
        {Long(3) != Long(4), 1, "3 != 4"},
        {Text("abc") < Text("abd"), 1, "strcmp"},
        {Text("b") > Long(5), 1, "text against number compares text"},
        {Text("10") > Long(9), 1, "numeric text compares as number"},
        {Long(2) & Dbl(0.5), 0, "0.5 converts to long 0"},
        {Long(2) || None(), 1, "2 || none"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.value.GetDataType(), Util::NVDT_LONG) << c.what;
        EXPECT_EQ(static_cast<long>(c.value), c.expected) << c.what;
    }
}

TEST(NodeVariantDataStorage, LongTextMovesToTheHeapAndBack) {
    NodeVariantData value(std::string(98, 'a').c_str());
    // A copy: the DLL does not export the class's constexpr member for taking its address.
    const std::size_t inlineSize = NodeVariantData::kInlineSize;
    EXPECT_EQ(value.GetStringCapacity(), inlineSize);
    value = std::string(150, 'c').c_str();
    EXPECT_EQ(value.GetStringCapacity(), 151u);
    value = std::string(99, 'b').c_str(); // the heap block is kept
    EXPECT_EQ(value.GetStringCapacity(), 151u);
    EXPECT_EQ(std::string(static_cast<const char*>(value)), std::string(99, 'b'));
    const NodeVariantData copy(value);
    EXPECT_EQ(std::string(static_cast<const char*>(copy)), std::string(99, 'b'));
    value = 5;
    EXPECT_STREQ(static_cast<const char*>(value), "5");
    const std::string big(100000, 'z');
    NodeVariantData joined = Text(big.c_str()) + Text(big.c_str());
    EXPECT_EQ(std::string(static_cast<const char*>(joined)).size(), 200000u);
    joined = static_cast<const char*>(joined) + 5; // a tail of itself
    EXPECT_EQ(std::string(static_cast<const char*>(joined)).size(), 199995u);
}

TEST(NodeVariantDataVariant, ConvertsBothWays) {
    NodeVariantData value;
    value = Util::Variant(static_cast<short>(-4));
    EXPECT_EQ(value.GetDataType(), Util::NVDT_LONG);
    EXPECT_EQ(static_cast<long>(value), -4);
    value = Util::Variant(5000000000LL);
    EXPECT_EQ(value.GetDataType(), Util::NVDT_DOUBLE);
    EXPECT_EQ(static_cast<double>(value), 5e9);
    value = Util::Variant(true);
    EXPECT_EQ(static_cast<long>(value), 1);
    value = Util::Variant(L"wide");
    EXPECT_STREQ(static_cast<const char*>(value), "wide");
    value = Util::Variant();
    EXPECT_EQ(value.GetDataType(), Util::NVDT_NONE);

    EXPECT_EQ(static_cast<Util::Variant>(Long(3)).GetType(), Util::UTIL_VT_LONG);
    EXPECT_EQ(static_cast<Util::Variant>(Dbl(3)).GetType(), Util::UTIL_VT_DOUBLE);
    EXPECT_EQ(static_cast<Util::Variant>(Text("t")).GetType(), Util::UTIL_VT_STRING);
    EXPECT_TRUE(static_cast<Util::Variant>(None()).IsEmpty());
}

} // namespace
