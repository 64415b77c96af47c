// BalType arithmetic and comparison: kinds, percent scaling, empty and error propagation.
#include <thread>
#include <vector>

#include "tests/DataTypes/baltype_fixture.h"

using BalTypeAdd = BalTypeTest;
using BalTypeMultiply = BalTypeTest;
using BalTypeDivide = BalTypeTest;
using BalTypeCompare = BalTypeTest;
using BalTypeRound = BalTypeTest;

namespace {
struct BinaryCase {
    const char* name;
    BalType a;
    BalType b;
    unsigned char bits; // expected flag byte
    const char* number; // expected number
    bool overflow;      // expected overflow flag
};

void RunBinaryCases(const std::vector<BinaryCase>& cases,
                    BalType (*op)(const BalType&, const BalType&)) {
    for (const BinaryCase& c : cases) {
        ResetBalTypeOverflowFlag();
        BalType result = op(c.a, c.b);
        EXPECT_EQ(result._GetMbits(), c.bits) << c.name << ": " << BalTypeTest::Describe(result);
        EXPECT_TRUE(BalTypeTest::NumberIs(result, c.number))
            << c.name << ": " << BalTypeTest::Describe(result);
        EXPECT_EQ(GetBalTypeOverflowFlag(), c.overflow) << c.name;
    }
}
} // namespace

TEST_F(BalTypeAdd, EmptyErrorPercentAndKindRules) {
    const BalType errorValue = Errored(Dollar("7"));
    const std::vector<BinaryCase> cases = {
        {"empty + 5.00", BalEmptyDollar(), Dollar("5.00"), kDollar, "5", false},
        {"5.00 + empty", Dollar("5.00"), BalEmptyDollar(), kDollar, "5", false},
        {"empty dollar + qty", BalEmptyDollar(), Qty("1.5"), kDollar, "1.5", false},
        {"qty + empty qty", Qty("1.5"), BalEmptyQty(), kQty, "1.5", false},
        {"empty + empty", BalEmptyQty(), BalEmptyQty(), BalType::kEmptyQtyBits, "0", false},
        {"error + 5", errorValue, Dollar("5"), BalType::kErrorDollarBits, "0", true},
        {"empty + error", BalEmptyDollar(), errorValue, BalType::kErrorDollarBits, "0", true},
        {"10% + 5", Pct("10"), Dollar("5"), kDollar, "5.10", false},
        {"5 + 10%", Dollar("5"), Pct("10"), kDollar, "5.10", false},
        {"10% + 20%", Pct("10"), Pct("20"), kQty | kPct, "30", false},
        {"qty + dollar rounds", Qty("1.23456"), Dollar("1.00"), kDollar, "2.23", false},
        {"qty + qty keeps places", Qty("1.23456"), Qty("2.00001"), kQty, "3.23457", false},
        {"zero qty + dollar", BalType(BalType::ZeroQtyValue), Dollar("1.5"), kDollar, "1.5", false},
        {"qty + zero dollar rounds", Qty("1.23456"), BalType(), kDollar, "1.23", false},
        {"dollar + zero dollar", Dollar("1.234"), BalType(), kDollar, "1.234", false},
        {"overflow", Dollar("9999999999999.99"), Dollar("0.01"), kErr, "0", true},
        {"negative overflow", Dollar("-9999999999999.99"), Dollar("-0.01"), kErr, "0", true},
        {"qty sum falls back", Qty("9999999999.99999"), Qty("0.00001"), kDollar, "10000000000",
         false},
    };
    RunBinaryCases(cases, BalAdd);
}

TEST_F(BalTypeAdd, ResultMayAliasAnOperandAndOperatorsAgree) {
    BalType a = Dollar("1.25"), b = Dollar("2.50");
    BalAddPtr(&a, &a, &b);
    EXPECT_TRUE(NumberIs(a, "3.75"));
    BalSubtractPtr(&b, &a, &b);
    EXPECT_TRUE(NumberIs(b, "1.25"));
    BalType c = Dollar("10");
    c += Dollar("5");
    c -= Dollar("2.5");
    EXPECT_TRUE(NumberIs(c, "12.5"));
    EXPECT_TRUE(NumberIs(Dollar("1") + Dollar("2"), "3"));
    EXPECT_TRUE(NumberIs(Dollar("1") - Dollar("2"), "-1"));
}

TEST_F(BalTypeAdd, SubtractionNegatesTheSecondOperand) {
    const BalType errorValue = Errored(Dollar("7"));
    const std::vector<BinaryCase> cases = {
        {"5.00 - 7.25", Dollar("5.00"), Dollar("7.25"), kDollar, "-2.25", false},
        {"5 - uninitialised", Dollar("5"), BalType(), kDollar, "5", false},
        {"uninitialised - 5", BalType(), Dollar("5"), kDollar, "-5", false},
        {"5 - empty", Dollar("5"), BalEmptyDollar(), kDollar, "5", false},
        {"50% - 20%", Pct("50"), Pct("20"), kQty | kPct, "30", false},
        {"5 - error", Dollar("5"), errorValue, BalType::kErrorDollarBits, "0", true},
        {"negative overflow", Dollar("-9999999999999.99"), Dollar("1"), kErr, "0", true},
    };
    RunBinaryCases(cases, BalSubtract);
}

TEST_F(BalTypeMultiply, DollarAndQuantityResults) {
    const BalType errorValue = Errored(Dollar("7"));
    const std::vector<BinaryCase> dollarCases = {
        {"error", errorValue, Dollar("2"), BalType::kErrorDollarBits, "0", true},
        {"empty * empty", BalEmptyQty(), BalEmptyDollar(), BalType::kEmptyDollarBits, "0", false},
        {"empty * 5", BalEmptyDollar(), Dollar("5"), BalType::kZeroDollarBits, "0", false},
        {"zero * 5", BalType(), Dollar("5"), BalType::kZeroDollarBits, "0", false},
        {"2.50 * 3", Dollar("2.50"), Qty("3"), kDollar, "7.50", false},
        {"10% of 200", Pct("10"), Dollar("200"), kDollar, "20", false},
        {"rounds half away", Qty("1.005"), Qty("1"), kDollar, "1.01", false},
        {"-1.005 rounds half away", Qty("-1.005"), Qty("1"), kDollar, "-1.01", false},
        {"overflow", Dollar("9999999999999.99"), Qty("2"), kErr, "0", true},
    };
    RunBinaryCases(dollarCases, BalMultiply);
    const std::vector<BinaryCase> qtyCases = {
        {"error", errorValue, Dollar("2"), BalType::kErrorQtyBits, "0", true},
        {"empty * empty", BalEmptyDollar(), BalEmptyDollar(), BalType::kEmptyQtyBits, "0", false},
        {"zero * 5", BalType(), Dollar("5"), BalType::kZeroQtyBits, "0", false},
        {"1.23456 * 2", Qty("1.23456"), Qty("2"), kQty, "2.46912", false},
        {"rounds to five places", Qty("1.000001"), Qty("1.5"), kQty, "1.50000", false},
        // Beyond the quantity maximum the product falls back to dollars, and still reads as a
        // quantity.
        {"falls back", Qty("100000"), Qty("100000.001"), kQty, "10000000100", false},
        {"overflow", Dollar("9999999999999.99"), Qty("2"), kQty | kErr, "0", true},
    };
    RunBinaryCases(qtyCases, BalMultiplyQnty);
    EXPECT_TRUE(NumberIs(Dollar("3") * Dollar("4"), "12"));
}

TEST_F(BalTypeDivide, ResultIsAlwaysAQuantity) {
    const BalType errorValue = Errored(Dollar("7"));
    const std::vector<BinaryCase> cases = {
        {"by zero", Dollar("5"), BalType(), BalType::kErrorQtyBits, "0", true},
        {"by explicit zero", Dollar("5"), Dollar("0.00"), BalType::kErrorQtyBits, "0", true},
        {"error", errorValue, Dollar("5"), BalType::kErrorQtyBits, "0", true},
        {"zero by 5", BalType(), Dollar("5"), BalType::kZeroQtyBits, "0", false},
        {"10 / 4", Dollar("10"), Dollar("4"), kQty, "2.5", false},
        {"1 / 3", Dollar("1"), Dollar("3"), kQty, "0.33333", false},
        {"2 / 3 rounds", Dollar("2"), Dollar("3"), kQty, "0.66667", false},
        {"50% / 2", Pct("50"), Dollar("2"), kQty, "0.25", false},
        {"10 / 50%", Dollar("10"), Pct("50"), kQty, "20", false},
        {"50% / 25%", Pct("50"), Pct("25"), kQty, "2", false},
        {"large quotient falls back", Dollar("9999999999999"), Dollar("0.5"), kErr, "0", true},
    };
    RunBinaryCases(cases, BalDivide);
    EXPECT_TRUE(NumberIs(Dollar("9") / Dollar("3"), "3"));
}

TEST_F(BalTypeDivide, ScaleComputesProductOverDivisor) {
    BalType dollar = BalScale(Dollar("100"), Qty("2"), Qty("3"));
    EXPECT_TRUE(dollar.IsDollar() && NumberIs(dollar, "66.67"));
    BalType qty = QtyScale(Dollar("100"), Qty("2"), Qty("3"));
    EXPECT_TRUE(qty.IsQty() && NumberIs(qty, "66.66667"));
    EXPECT_TRUE(BalScale(Dollar("1"), Dollar("1"), BalType()).IsError());
    EXPECT_TRUE(BalScale(BalType(), Dollar("1"), BalType()).IsError()); // 0/0
}

TEST_F(BalTypeCompare, PickyCompareRanksErrorsPercentsAndEmpties) {
    const BalType errorValue = Errored(Dollar("7"));
    BalType emptyFive = Dollar("5");
    emptyFive.SetEmptyDollar();
    emptyFive._SetZtDecimal(ZtDecimal64(5));
    emptyFive._SetMbits(kEmpty); // empty, with the number 5 still stored
    const struct {
        const char* name;
        BalType a, b;
        bool ignoreEmpty;
        int expected;
    } cases[] = {
        {"error vs value", errorValue, Dollar("1"), true, 1},
        {"value vs error", Dollar("1"), errorValue, true, -1},
        {"error vs error", errorValue, errorValue, true, 0},
        {"percent vs value", Pct("1"), Dollar("100"), true, -1},
        {"value vs percent", Dollar("1"), Pct("100"), true, 1},
        {"empty vs empty", BalEmptyDollar(), BalEmptyQty(), false, 0},
        {"equal, one empty, ignored", Dollar("5"), emptyFive, true, 0},
        {"equal, b empty", Dollar("5"), emptyFive, false, 1},
        {"equal, a empty", emptyFive, Dollar("5"), false, -1},
        {"uninitialised equals zero", BalType(), Dollar("0.00"), false, 0},
        {"negative zero equals zero", BalType_NEG_ZERO(), BalType(), false, 0},
        {"greater", Dollar("5.01"), Dollar("5"), false, 1},
        {"less", Dollar("-5.01"), Dollar("5"), false, -1},
        {"kind ignored", Qty("5"), Dollar("5"), false, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(BalPickyCompare(c.a, c.b, c.ignoreEmpty), c.expected) << c.name;
    }
    EXPECT_TRUE(Dollar("5") == emptyFive);
    EXPECT_FALSE(Dollar("5") != emptyFive);
    EXPECT_TRUE(Dollar("1") < Dollar("2") && Dollar("2") > Dollar("1"));
    EXPECT_TRUE(Dollar("1") <= Dollar("1") && Dollar("1") >= Dollar("1"));
}

TEST_F(BalTypeCompare, AbsCompareAndSignTests) {
    const BalType errorValue = Errored(BalType());
    EXPECT_EQ(BalAbsCompare(Dollar("-5"), Dollar("3")), 1);
    EXPECT_EQ(BalAbsCompare(Dollar("-5"), Dollar("5")), 0);
    EXPECT_EQ(BalAbsCompare(Dollar("2"), Dollar("-3")), -1);
    EXPECT_EQ(BalAbsCompare(errorValue, Dollar("1")), -1);
    EXPECT_EQ(BalAbsCompare(Dollar("1"), errorValue), -1);
    EXPECT_EQ(BalAbsCompare(BalEmptyDollar(), BalEmptyQty()), 0);
    EXPECT_EQ(BalAbsCompare(BalEmptyDollar(), Dollar("1")), -1);
    EXPECT_EQ(BalAbsCompare(Dollar("1"), BalEmptyDollar()), 1);

    const struct {
        BalType value;
        bool nonZero, gt, lt;
    } cases[] = {{Dollar("1"), true, true, false},
                 {Dollar("-1"), true, false, true},
                 {BalType(), false, false, false},
                 {BalType_NEG_ZERO(), false, false, false},
                 {BalEmptyDollar(), false, false, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(IsNonZero(c.value), c.nonZero) << Describe(c.value);
        EXPECT_EQ(IsGTZero(c.value), c.gt) << Describe(c.value);
        EXPECT_EQ(IsLTZero(c.value), c.lt) << Describe(c.value);
    }
}

TEST_F(BalTypeRound, PlacesOrDecimalsButNotBoth) {
    const struct {
        BalType value;
        int places, decimals;
        unsigned char bits;
        const char* number;
    } cases[] = {
        {Qty("12.34567"), 0, 2, kQty, "12.35"},    {Dollar("1234.56"), 2, 0, kDollar, "1200"},
        {Dollar("-1250"), 2, 0, kDollar, "-1300"}, {Pct("12.5"), 0, 0, kQty | kPct, "13"},
        {Dollar("1.5"), 1, 1, kErr, "0"},
    };
    for (const auto& c : cases) {
        BalType result = BalRound(c.value, c.places, c.decimals);
        EXPECT_EQ(result._GetMbits(), c.bits) << Describe(result);
        EXPECT_TRUE(NumberIs(result, c.number)) << Describe(result);
    }
    EXPECT_TRUE(BalRound(BalEmptyDollar(), 0, 2).IsEmpty());
}

TEST_F(BalTypeAdd, ConcurrentOverflowsRaiseTheSharedFlag) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            BalType sum = Dollar("9999999999999.00");
            for (int i = 0; i < 200; ++i) {
                sum = BalAdd(Dollar("9999999999999.00"), Dollar("0.99"));
                sum = BalAdd(sum, Dollar("0.01"));
            }
            EXPECT_TRUE(sum.IsError());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_TRUE(GetBalTypeOverflowFlag());
}
