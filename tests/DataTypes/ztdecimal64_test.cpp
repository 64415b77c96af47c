// Behaviour of ZtDecimal64 that the Python oracle does not cover: construction, raw bits, text
// form, classification, the status of conversions at the integer boundaries and the intended
// oddities of the helpers. Arithmetic, comparison, rounding, the whole and fraction parts and
// their setters are checked case by case against Python's decimal module by the oracle.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Util/ZtDecimal64.h"

namespace {
constexpr uint64_t kZeroBits = 0x31C0000000000000ULL;

std::string Text(const ZtDecimal64& d) {
    return d.GetStringValue().c_str();
}
} // namespace

TEST(ZtDecimal64Construct, DefaultIsPositiveZeroAndNegatingItGivesNegativeZero) {
    ZtDecimal64 d;
    EXPECT_EQ(d.GetInternalToUInt64(), kZeroBits);
    EXPECT_TRUE(d.IsZero());
    EXPECT_FALSE(d.IsNegative());
    EXPECT_EQ(ZtDecimal64::m_internal_zero.GetInternalToUInt64(), kZeroBits);
    EXPECT_EQ(&ZtDecimal64::GetInternalZero(), &ZtDecimal64::m_internal_zero);
    EXPECT_EQ(ZtDecimal64::Zero().GetInternalToUInt64(), kZeroBits);
    d.Negate();
    EXPECT_TRUE(d.IsNegative());
    EXPECT_TRUE(d.IsZero());
    EXPECT_EQ(Text(d), "-0E+0");
    EXPECT_TRUE(d == ZtDecimal64());
    d.MakeAbs();
    EXPECT_FALSE(d.IsNegative());
}

TEST(ZtDecimal64Construct, EveryConstructorAndSetterGivesTheLibrarysTextForm) {
    struct Case {
        ZtDecimal64 value;
        const char* text;
    };
    // The integer setters are checked against the oracle.
    ZtDecimal64 dbl, str;
    dbl.SetDoubleValue(0.5);
    str.SetStringValue("-0012.3400");
    const Case cases[] = {
        {ZtDecimal64(12), "+12E+0"},
        {ZtDecimal64(-7LL), "-7E+0"},
        {ZtDecimal64(-2147483649L), "-2147483649E+0"},
        {ZtDecimal64("12.34"), "+1234E-2"},
        {ZtDecimal64("1E3"), "+1E+3"},
        {ZtDecimal64(nullptr), "+0E+0"},
        {str, "-123400E-4"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Text(c.value), c.text);
    }
    EXPECT_TRUE(ZtDecimal64(0.25) == ZtDecimal64("0.25"));
    EXPECT_TRUE(dbl == ZtDecimal64("0.5"));
}

TEST(ZtDecimal64Construct, RawBitsRoundTripAndNoInitCanBeFilled) {
    ZtDecimal64 d(ZtDecimal64::NoInit);
    d.SetInternallFromUInt64(0x31A00000000004D2ULL); // 1234 with exponent -1
    EXPECT_EQ(Text(d), "+1234E-1");
    EXPECT_EQ(d.GetInternalToUInt64(), 0x31A00000000004D2ULL);
    ZtDecimal64 copy = d;
    EXPECT_EQ(copy.GetInternalToUInt64(), d.GetInternalToUInt64());
}

TEST(ZtDecimal64Text, SpecialValuesUseTheLibrarysSpelling) {
    ZtDecimal64 inf = ZtDecimal64(1) / ZtDecimal64(0);
    ZtDecimal64 nan = ZtDecimal64(0) / ZtDecimal64(0);
    EXPECT_TRUE(inf.IsInfinite());
    EXPECT_TRUE(nan.IsNaN());
    EXPECT_FALSE(Text(inf).empty());
    EXPECT_FALSE(Text(nan).empty());
    EXPECT_EQ(Text(-inf)[0], '-');
    EXPECT_TRUE(ZtDecimal64("garbage").IsNaN());
}

// Long digit strings, long zero runs and huge exponents; the oracle checks many more.
TEST(ZtDecimal64Text, LongTextsRoundCorrectly) {
    const std::string zeros400(400, '0'), zeros600(600, '0');
    const struct {
        std::string text;
        const char* expected;
    } cases[] = {
        {"0." + std::string(398, '0') + "1", "+0E-398"},
        {"0." + zeros600 + "1", "+0E-398"},
        {"-0." + zeros600 + "1", "-0E-398"},
        {"0." + std::string(397, '0') + "15", "+2E-398"},
        {"0." + zeros400 + "1E+400", "+1E-1"},
        {zeros400 + "12345678901234565", "+1234567890123456E+1"},
        {"12345678901234575", "+1234567890123458E+1"},
        {"12345678901234565" + std::string(40, '0') + "1", "+1234567890123457E+42"},
        {"9999999999999999.5", "+1000000000000000E+1"},
        {"1e99999999999999999999", "+Inf"},
        {"-0e-99999999999999999999", "-0E-398"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Text(ZtDecimal64(c.text.c_str())), c.expected) << c.text.substr(0, 40);
    EXPECT_TRUE(ZtDecimal64((zeros600 + "1x").c_str()).IsNaN());
}

TEST(ZtDecimal64Classify, PredicatesFollowTheEncoding) {
    ZtDecimal64 snan(ZtDecimal64::NoInit);
    snan.SetInternallFromUInt64(0x7E00000000000000ULL);
    ZtDecimal64 noncanonical(ZtDecimal64::NoInit);
    noncanonical.SetInternallFromUInt64(0x6C7386F26FC10000ULL); // coefficient above 10^16-1
    ZtDecimal64 subnormal("1E-398");
    EXPECT_TRUE(snan.IsNaN());
    EXPECT_TRUE(snan.IsSignaling());
    EXPECT_FALSE(ZtDecimal64(0).IsSignaling());
    EXPECT_TRUE(subnormal.IsSubnormal());
    EXPECT_FALSE(ZtDecimal64("1E-383").IsSubnormal());
    EXPECT_FALSE(noncanonical.IsCanonical());
    EXPECT_TRUE(noncanonical.IsZero()); // a non-canonical coefficient reads as zero
    EXPECT_TRUE(ZtDecimal64("12.5").IsCanonical());
}

TEST(ZtDecimal64Convert, StatusFailsOnlyForInvalidOverflowOrUnderflow) {
    struct Case {
        const char* text;
        bool int32Ok, uint32Ok, int64Ok, uint64Ok, doubleOk;
    };
    const Case cases[] = {
        {"12.75", true, true, true, true, true}, // inexact alone is no failure
        {"-1", true, false, true, false, true},
        {"2147483648", false, true, true, true, true},
        {"-2147483648", true, false, true, false, true},
        {"4294967296", false, false, true, true, true},
        {"9.3E18", false, false, false, true, true},
        {"2E19", false, false, false, false, true},
        {"1E300", false, false, false, false, true},
        {"1E384", false, false, false, false, false}, // beyond binary64: overflow
        {"1E-390", true, true, true, true, false},    // below binary64: underflow
        {"NaN", false, false, false, false, true},    // a quiet NaN converts to double quietly
        {"Infinity", false, false, false, false, true},
    };
    for (const Case& c : cases) {
        ZtDecimal64 d(c.text);
        ZtDecimal64::Status s1, s2, s3, s4, s5;
        d.GetInt32Value(s1);
        d.GetUInt32Value(s2);
        d.GetInt64Value(s3);
        d.GetUInt64Value(s4);
        d.GetDoubleValue(s5);
        EXPECT_EQ(s1 == ZtDecimal64::Converted, c.int32Ok) << c.text;
        EXPECT_EQ(s2 == ZtDecimal64::Converted, c.uint32Ok) << c.text;
        EXPECT_EQ(s3 == ZtDecimal64::Converted, c.int64Ok) << c.text;
        EXPECT_EQ(s4 == ZtDecimal64::Converted, c.uint64Ok) << c.text;
        EXPECT_EQ(s5 == ZtDecimal64::Converted, c.doubleOk) << c.text;
    }
}

TEST(ZtDecimal64Round, PlaceHelpersRoundAtTheGivenDigit) {
    struct Case {
        const char* x;
        int place;
        const char* toPlace; // ties away from zero
        const char* halfEven;
        const char* down;
    };
    const Case cases[] = {
        {"2.345", -2, "2.35", "2.34", "2.34"},
        {"-2.345", -2, "-2.35", "-2.34", "-2.34"},
        {"2.5", 0, "3", "2", "2"},
        {"1250", 2, "1300", "1200", "1200"},
        {"0.000015", -5, "0.00002", "0.00002", "0.00001"},
        {"12.3", -5, "12.3", "12.3", "12.3"},
    };
    for (const Case& c : cases) {
        ZtDecimal64 a(c.x), b(c.x), d(c.x), e(c.x);
        EXPECT_TRUE(a.RoundToPlace(c.place) == ZtDecimal64(c.toPlace)) << c.x << " " << c.place;
        EXPECT_TRUE(e.RoundHalfUp(c.place) == ZtDecimal64(c.toPlace)) << c.x << " " << c.place;
        EXPECT_TRUE(b.RoundHalfEven(c.place) == ZtDecimal64(c.halfEven)) << c.x;
        EXPECT_TRUE(d.RoundDown(c.place) == ZtDecimal64(c.down)) << c.x;
    }
}

TEST(ZtDecimal64Round, ScalingAndTheNoOpRoundUp) {
    ZtDecimal64 d("1.5");
    EXPECT_EQ(Text(d.ScaleByPowerOf10(3)), "+15E+2");
    EXPECT_EQ(Text(ZtDecimal64::ScaleB(ZtDecimal64(7), -2)), "+7E-2");
    ZtDecimal64 up("1.234");
    const uint64_t before = up.GetInternalToUInt64();
    EXPECT_EQ(up.RoundUp(-2).GetInternalToUInt64(), before); // leaves the value as it is
}

TEST(ZtDecimal64Arith, CompoundOperatorsMatchTheBinaryOnes) {
    const ZtDecimal64 a("10.5"), b("-3");
    ZtDecimal64 x = a;
    x += b;
    EXPECT_TRUE(x == a + b);
    x = a;
    x -= b;
    EXPECT_TRUE(x == a - b);
    x = a;
    x *= b;
    EXPECT_TRUE(x == a * b);
    x = a;
    x /= b;
    EXPECT_TRUE(x == a / b);
    x = a;
    x %= b;
    EXPECT_TRUE(x == a % b);
}

TEST(ZtDecimal64Constants, MaxAndMinAreTheLargestDollarAmounts) {
    EXPECT_TRUE(ZtDecimal64::GetMax() > ZtDecimal64("9999999999999.98"));
    EXPECT_TRUE(ZtDecimal64::GetMax() == ZtDecimal64("9999999999999.990"));
    EXPECT_TRUE(ZtDecimal64::GetMin() == -ZtDecimal64::GetMax());
    EXPECT_EQ(&ZtDecimal64::GetMax(), &ZtDecimal64::GetMax());
}

// + and - work out two numbers of the same exponent inline; whatever they do must be bit for bit
// what the library computes.
TEST(ZtDecimal64Arith, InlineSumsAndDifferencesAreTheLibrarys) {
    std::vector<std::pair<ZtDecimal64, ZtDecimal64>> pairs;
    const char* const texts[][2] = {{"123.45", "-123.45"},
                                    {"-0", "-0"},
                                    {"0", "-0"},
                                    {"-0", "0"},
                                    {"1.5", "2.25"},
                                    {"9007199254740991", "1"},
                                    {"9007199254740990", "1"},
                                    {"-9007199254740991", "-1"},
                                    {"9999999999999999", "1"},
                                    {"1E+10", "2E+10"},
                                    {"NaN", "1"},
                                    {"1", "-Infinity"},
                                    {"0.01", "-0.02"},
                                    {"-5.00", "5.00"},
                                    {"1E-398", "1E-398"},
                                    {"9.999999999999999E+384", "1E+369"}};
    for (const auto& text : texts)
        pairs.emplace_back(ZtDecimal64(text[0]), ZtDecimal64(text[1]));
    std::mt19937_64 random(15);
    for (int i = 0; i < 4000; ++i) {
        ZtDecimal64 a(ZtDecimal64::NoInit), b(ZtDecimal64::NoInit);
        const uint64_t exponent = static_cast<uint64_t>(398 - 2 + i % 3) << 53; // mostly equal
        const uint64_t limit = i % 2 ? (1ULL << 53) : 100000000000ULL;
        a.SetInternallFromUInt64((random() & (1ULL << 63)) | exponent | random() % limit);
        b.SetInternallFromUInt64((random() & (1ULL << 63)) |
                                 (static_cast<uint64_t>(398 - 2) << 53) | random() % limit);
        pairs.emplace_back(a, b);
    }
    for (const auto& pair : pairs) {
        const ZtDecimal64 a = pair.first, b = pair.second;
        ASSERT_EQ((a + b).GetInternalToUInt64(), ZtDecimal64Add(a, b).GetInternalToUInt64())
            << a.GetStringValue().c_str() << " + " << b.GetStringValue().c_str();
        ASSERT_EQ((a - b).GetInternalToUInt64(), ZtDecimal64Subtract(a, b).GetInternalToUInt64())
            << a.GetStringValue().c_str() << " - " << b.GetStringValue().c_str();
    }
}
