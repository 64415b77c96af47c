// BalType state, storing decimals under both limit modes, and the limit tables.
#include <cstdio>

#include "tests/DataTypes/baltype_fixture.h"

using BalTypeState = BalTypeTest;
using BalTypeStore = BalTypeTest;
using BalTypeLimits = BalTypeTest;
using BalTypeParts = BalTypeTest;

TEST_F(BalTypeState, InitialValuesSetTheFlagByte) {
    const struct {
        int initial;
        unsigned char bits;
    } cases[] = {{0, BalType::kZeroDollarBits},  {1, BalType::kZeroQtyBits},
                 {2, BalType::kEmptyDollarBits}, {3, BalType::kEmptyQtyBits},
                 {7, BalType::kZeroDollarBits},  {-1, BalType::kZeroDollarBits}};
    for (const auto& c : cases) {
        BalType value(static_cast<BalType::BalTypeIntialValue>(c.initial));
        EXPECT_EQ(value._GetMbits(), c.bits) << c.initial;
        EXPECT_TRUE(value.IsZero());
    }
    EXPECT_EQ(BalType()._GetMbits(), BalType::kZeroDollarBits);
}

TEST_F(BalTypeState, UninitialisedNumberReadsAsSharedZeroWhateverItsBytes) {
    BalType value;
    value._SetZtDecimal(ZtDecimal64("NaN"));
    EXPECT_FALSE(value.IsZtDecimalInitilized());
    EXPECT_TRUE(value.IsZero());
    EXPECT_EQ(value.GetDecimalAmount().GetInternalToUInt64(), ZtDecimalZeroValue());
    EXPECT_EQ(ZtDecimalZeroValue(), 0x31C0000000000000ULL);
    EXPECT_EQ(&BalTypeZeroValue(), &ZtDecimal64::m_internal_zero);
    EXPECT_EQ(value.GetDollars(), 0u);
    EXPECT_EQ(Bal2Double(value), 0.0);
}

TEST_F(BalTypeState, SignSettersWriteTheNumberAndClearTheUninitialisedBit) {
    BalType value;
    value.SetNegative();
    EXPECT_TRUE(value.IsZtDecimalInitilized());
    EXPECT_TRUE(value.IsNegative());
    EXPECT_TRUE(value.IsZero());
    EXPECT_EQ(value.GetSign(), BalSignNegative);
    EXPECT_TRUE(BalType_NEG_ZERO().IsNegative());
    BalType five = Dollar("5");
    EXPECT_TRUE(NumberIs(-five, "-5"));
    five.Negate();
    EXPECT_TRUE(five.IsNegative());
    five.Abs();
    EXPECT_TRUE(NumberIs(five, "5"));
    BalSetSign(&five, -3);
    EXPECT_TRUE(NumberIs(five, "-5"));
    BalSetSign(&five, 0);
    EXPECT_TRUE(NumberIs(five, "5"));
    EXPECT_TRUE(NumberIs(BalNegate(five), "-5"));
    EXPECT_TRUE(NumberIs(BalAbs(BalNegate(five)), "5"));
}

TEST_F(BalTypeState, FlagSettersAndQueries) {
    BalType value = Dollar("3");
    value.SetKindQty();
    EXPECT_TRUE(value.IsQty());
    EXPECT_EQ(value.GetKind(), BalKindQty);
    value.SetPercent(true);
    EXPECT_EQ(value._GetMbits(), kQty | kPct);
    value.SetEmptyDollar();
    EXPECT_EQ(value._GetMbits(), BalType::kEmptyDollarBits);
    value.ClearEmpty();
    EXPECT_EQ(value._GetMbits(), BalType::kZeroDollarBits);
    value.SetZeroQty();
    EXPECT_EQ(value._GetMbits(), BalType::kZeroQtyBits);
    value.SetError();
    EXPECT_TRUE(value.IsError());
    EXPECT_TRUE(value.IsZero());
    EXPECT_TRUE(GetBalTypeOverflowFlag());
}

TEST_F(BalTypeState, SharedConstants) {
    EXPECT_EQ(BalType_ZERO_DOLLAR()._GetMbits(), BalType::kZeroDollarBits);
    EXPECT_TRUE(NumberIs(BalType_ONE_DOLLAR(), "1") && BalType_ONE_DOLLAR().IsDollar());
    EXPECT_TRUE(NumberIs(BalType_ONE_QUANTITY(), "1") && BalType_ONE_QUANTITY().IsQty());
    EXPECT_TRUE(BalType_ZERO_PCT().IsPercent() && BalType_ZERO_PCT().IsQty());
    EXPECT_TRUE(BalType_ZERO_PCT().IsZero());
    EXPECT_TRUE(NumberIs(BalType_HUNDRED_PCT(), "100") && BalType_HUNDRED_PCT().IsPercent());
    EXPECT_EQ(refBalEmptyDollar()._GetMbits(), BalType::kEmptyDollarBits);
    EXPECT_EQ(refBalEmptyQty()._GetMbits(), BalType::kEmptyQtyBits);
    EXPECT_EQ(BalEmptyDollar()._GetMbits(), BalType::kEmptyDollarBits);
    EXPECT_EQ(BalEmptyQty()._GetMbits(), BalType::kEmptyQtyBits);
    EXPECT_FALSE(GetBalTypeOverflowFlag());
}

TEST_F(BalTypeStore, SetFromDecimalAppliesKindsRoundingAndFallBack) {
    const struct {
        const char* number;
        BalKind kind;
        bool percent;
        unsigned char bits;   // flag byte after storing
        const char* expected; // number after storing
    } cases[] = {
        {"12.345", BalKindQty, false, kQty, "12.345"},
        {"12.345", BalKindDollar, false, kDollar, "12.35"}, // ties away from zero
        {"-12.345", BalKindDollar, false, kDollar, "-12.35"},
        {"1.000005", BalKindQty, false, kQty, "1.00001"},
        {"50", BalKindQty, true, kQty | kPct, "50"},
        {"9999999999.99999", BalKindQty, false, kQty, "9999999999.99999"},
        // A quantity beyond its maximum is kept as a dollar amount, rounded to cents.
        {"9999999999.999991", BalKindQty, false, kDollar, "10000000000.00"},
        {"123456789012.345", BalKindQty, false, kDollar, "123456789012.35"},
        {"9999999999999.99", BalKindDollar, false, kDollar, "9999999999999.99"},
        {"-9999999999999.99", BalKindDollar, false, kDollar, "-9999999999999.99"},
        {"9999999999999.991", BalKindDollar, false, kErr, "0"},
        // The limit test compares values, whatever the exponent of either side.
        {"9999999999999990E-3", BalKindDollar, false, kDollar, "9999999999999.99"},
        {"999999999999999E-2", BalKindDollar, false, kDollar, "9999999999999.99"},
        {"1E13", BalKindDollar, false, kErr, "0"},
        {"1000000000000000E-2", BalKindDollar, false, kErr, "0"},
        {"1E-398", BalKindDollar, false, kDollar, "0"},
        {"-0E+300", BalKindQty, false, kQty, "0"},
        {"99999999999999999E-7", BalKindQty, false, kDollar, "10000000000.00"},
        {"10000000000000", BalKindQty, false, kErr, "0"},
        {"Infinity", BalKindDollar, false, kErr, "0"},
        {"NaN", BalKindQty, true, kQty | kErr | kPct, "0"},
        {"sNaN", BalKindDollar, false, kErr, "0"},
    };
    for (const auto& c : cases) {
        ResetBalTypeOverflowFlag();
        BalType value(BalType::EmptyQtyValue);
        value.SetFromDecimal(ZtDecimal64(c.number), c.kind, c.percent, true);
        EXPECT_EQ(value._GetMbits(), c.bits) << c.number << ": " << Describe(value);
        EXPECT_TRUE(NumberIs(value, c.expected)) << c.number << ": " << Describe(value);
        EXPECT_EQ(GetBalTypeOverflowFlag(), value.IsError()) << c.number;
    }
}

TEST_F(BalTypeStore, WithoutNaNCheckingAndWithoutLimitChecking) {
    BalType value;
    value.SetFromDecimalWithoutLimitChecking(ZtDecimal64("123456789012345.678"), BalKindDollar,
                                             false, true);
    EXPECT_FALSE(value.IsError());
    EXPECT_TRUE(NumberIs(value, "123456789012345.7")); // 16 digits: the library rounds first
    value.SetFromDecimalWithoutNANChecking(ZtDecimal64("1.234567"), BalKindQty, false, false);
    EXPECT_TRUE(NumberIs(value, "1.234567")); // no rounding asked
    value.SetFromDecimalWithoutNANChecking(ZtDecimal64("1E14"), BalKindQty, false, true);
    EXPECT_TRUE(value.IsError());
}

TEST_F(BalTypeStore, SixByteModeUsesTheNarrowerMaxima) {
    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode6Byte);
    const struct {
        const char* number;
        BalKind kind;
        unsigned char bits;
    } cases[] = {
        {"4294967295.99999", BalKindQty, kQty},
        {"4294967295.999991", BalKindQty, kErr}, // falls back to dollars, beyond them too
        {"4294967295.99", BalKindDollar, kDollar},
        {"4294967295.991", BalKindDollar, kErr},
        {"-4294967296", BalKindDollar, kErr},
    };
    for (const auto& c : cases) {
        BalType value;
        value.SetFromDecimal(ZtDecimal64(c.number), c.kind, false, true);
        EXPECT_EQ(value._GetMbits(), c.bits) << c.number << ": " << Describe(value);
    }
    EXPECT_TRUE(BalTypeDollarMaxValue() == ZtDecimal64("4294967295.99"));
    EXPECT_TRUE(BalTypeQtyMaxValue() == ZtDecimal64("4294967295.99999"));
    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode9Byte);
    EXPECT_TRUE(BalTypeDollarMaxValue() == ZtDecimal64("9999999999999.99"));
    EXPECT_TRUE(BalTypeQtyMaxValue() == ZtDecimal64("9999999999.99999"));
}

TEST_F(BalTypeLimits, TablesHoldBothRows) {
    using L = BaltypeLimits;
    const int64_t nine[] = {0,
                            10000000000000,
                            10000000000,
                            9999999999,
                            99999,
                            9999999999999,
                            99,
                            13,
                            2,
                            10,
                            5,
                            99999,
                            59,
                            23,
                            10000000000000,
                            10000000000,
                            9999999999};
    const int64_t six[] = {0, 100000000, 10000000, 9999999, 99999, 99999999,   99,       8,       2,
                           7, 5,         99999,    59,      23,    4294967296, 10000000, 16777215};
    for (int i = 0; i < L::LimitCount; ++i) {
        auto index = static_cast<L::BalTypeLimitValueEnum>(i);
        EXPECT_EQ(L::GetLimit_9byteBalType(index), nine[i]) << i;
        EXPECT_EQ(L::GetLimit_6byteBalType(index), six[i]) << i;
        L::SetLimitMode(L::LimitMode6Byte);
        EXPECT_EQ(L::GetLimit(index), six[i]) << i;
        L::SetLimitMode(L::LimitMode9Byte);
        EXPECT_EQ(L::GetLimit(index), nine[i]) << i;
    }
    EXPECT_EQ(L::GetLimit(static_cast<L::BalTypeLimitValueEnum>(99)), 0);
    EXPECT_EQ(L::GetFloatLimit_9byteBalType(L::FloatLimitDollarMax), 9999999999999.99);
    EXPECT_EQ(L::GetFloatLimit_9byteBalType(L::FloatLimitQtyMax), 9999999999.99999);
    EXPECT_EQ(L::GetFloatLimit_6byteBalType(L::FloatLimitDollarMax), 4294967295.99);
    EXPECT_EQ(L::GetFloatLimit_6byteBalType(L::FloatLimitQtyMax), 4294967295.99999);
    EXPECT_EQ(L::GetFloatLimit(L::FloatLimitZero), 0.0);
}

TEST_F(BalTypeLimits, SetLimitModeIgnoresUnknownModes) {
    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode6Byte);
    BaltypeLimits::SetLimitMode(2);
    EXPECT_EQ(BaltypeLimits::GetLimitMode(), BaltypeLimits::LimitMode6Byte);
    BaltypeLimits::SetLimitMode(-1);
    EXPECT_EQ(BaltypeLimits::GetLimitMode(), BaltypeLimits::LimitMode6Byte);
    BaltypeLimits::SetLimitMode(0);
    EXPECT_EQ(BaltypeLimits::GetLimitMode(), BaltypeLimits::LimitMode9Byte);
}

TEST_F(BalTypeLimits, CreateChecksTheCurrentModesBoundaries) {
    const struct {
        int mode;
        uint64_t whole;
        uint32_t fraction;
        bool dollarOk; // BalCreate(whole, fraction as cents)
        bool qtyOk;    // QntyCreate(whole, fraction)
    } cases[] = {
        {0, 9999999999999ULL, 99, true, false},
        {0, 10000000000000ULL, 0, false, false},
        {0, 9999999999ULL, 99999, false, true},
        {0, 10000000000ULL, 0, true, false},
        {0, 0, 100, false, true},
        {0, 0, 100000, false, false},
        {1, 99999999, 99, true, false},
        {1, 100000000, 0, false, false},
        {1, 9999999, 99999, false, true},
        {1, 10000000, 0, true, false},
    };
    for (const auto& c : cases) {
        BaltypeLimits::SetLimitMode(c.mode);
        BalType dollar = BalCreate(BalSignNegative, c.whole, c.fraction);
        BalType qty = QntyCreate(BalSignPositive, c.whole, c.fraction, true);
        EXPECT_EQ(!dollar.IsError(), c.dollarOk) << c.mode << " " << c.whole << " " << c.fraction;
        EXPECT_EQ(!qty.IsError(), c.qtyOk) << c.mode << " " << c.whole << " " << c.fraction;
        EXPECT_TRUE(qty.IsQty());
        if (c.dollarOk) {
            EXPECT_TRUE(dollar.IsNegative());
            EXPECT_EQ(dollar.GetDollars(), c.whole);
            EXPECT_EQ(dollar.GetCents(), c.fraction);
        }
        if (c.qtyOk) {
            uint64_t whole;
            uint32_t fraction;
            qty.GetQty(whole, fraction);
            EXPECT_EQ(whole, c.whole);
            EXPECT_EQ(fraction, c.fraction);
            EXPECT_TRUE(qty.IsPercent());
        }
    }
}

TEST_F(BalTypeLimits, LargeValuesFollowTheMode) {
    const struct {
        int mode;
        const char* dollar;
        const char* qty;
    } cases[] = {{0, "9999999999999.99", "9999999999.99999"},
                 {1, "99999999.99", "9999999.99999"},
                 {0, "9999999999999.99", "9999999999.99999"}};
    for (const auto& c : cases) {
        BaltypeLimits::SetLimitMode(c.mode);
        BalType value;
        value.LargePositiveDollar();
        EXPECT_TRUE(NumberIs(value, c.dollar) && value.IsDollar()) << Describe(value);
        value.LargeNegativeDollar();
        EXPECT_TRUE(NumberIs(-value, c.dollar)) << Describe(value);
        value.LargePositiveQty();
        EXPECT_TRUE(NumberIs(value, c.qty) && value.IsQty()) << Describe(value);
        value.LargeNegativeQty();
        EXPECT_TRUE(NumberIs(-value, c.qty)) << Describe(value);
    }
}

TEST_F(BalTypeLimits, SettingDollarsBeyondTheMaximumIsAnError) {
    const struct {
        int mode;
        uint64_t dollars;
        bool error;
    } cases[] = {{0, 9999999999999ULL, false},
                 {0, 10000000000000ULL, true},
                 {1, 4294967295ULL, false},
                 {1, 4294967296ULL, true}};
    for (const auto& c : cases) {
        BaltypeLimits::SetLimitMode(c.mode);
        ResetBalTypeOverflowFlag();
        BalType value;
        value.SetDollarsAndCents(c.dollars, 0);
        EXPECT_EQ(value.IsError(), c.error) << c.dollars;
        EXPECT_EQ(GetBalTypeOverflowFlag(), c.error) << c.dollars;
    }
}

TEST_F(BalTypeLimits, ValidateMaxLimitAndULAddUseTheBounds) {
    EXPECT_TRUE(ValidateMaxLimit(Dollar("9999999999999.99")));
    EXPECT_FALSE(ValidateMaxLimit(Qty("10000000000")));
    EXPECT_TRUE(ValidateMaxLimit(Pct("999999999999"))); // a percent is divided by 100 first
    EXPECT_TRUE(ValidateMaxLimit(BalEmptyDollar()));
    uint64_t sum = 0;
    EXPECT_FALSE(BalTypeULAdd(9999999999999ULL, 0, sum));
    EXPECT_TRUE(BalTypeULAdd(9999999999999ULL, 1, sum));
    EXPECT_EQ(sum, 10000000000000ULL);
    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode6Byte);
    EXPECT_FALSE(BalTypeULAdd(4294967295ULL, 0, sum));
    EXPECT_TRUE(BalTypeULAdd(4294967295ULL, 1, sum));
    EXPECT_FALSE(ValidateMaxLimit(Dollar("100000000")));
}

TEST_F(BalTypeParts, DollarsCentsAndPenniesKeepTheSign) {
    BalType value = Dollar("-12.34");
    value.SetDollars(56);
    EXPECT_TRUE(NumberIs(value, "-56.34"));
    value.SetCents(7);
    EXPECT_TRUE(NumberIs(value, "-56.07"));
    EXPECT_EQ(value.GetDollars(), 56u);
    EXPECT_EQ(value.GetCents(), 7u);
    value.SetFromPennies(123456);
    EXPECT_TRUE(NumberIs(value, "-1234.56"));
    BalType empty(BalType::EmptyDollarValue);
    empty.SetDollarsAndCents(3, 5);
    EXPECT_EQ(empty._GetMbits(), kDollar);
    EXPECT_TRUE(NumberIs(empty, "3.05"));
}

TEST_F(BalTypeParts, SetQtyFallsBackToDollarsAboveTheLargestWholePart) {
    BalType value;
    value.SetQty(12, 34567);
    EXPECT_TRUE(value.IsQty() && NumberIs(value, "12.34567"));
    value.SetQty(10000000000ULL, 34567);
    EXPECT_TRUE(value.IsDollar());
    EXPECT_TRUE(NumberIs(value, "10000000000.34")) << Describe(value);
}

TEST_F(BalTypeParts, ComposeAndDecomposeRoundTrip) {
    const struct {
        uint64_t whole;
        uint32_t fraction;
        BalKind kind;
    } cases[] = {
        {0, 0, BalKindDollar}, {9999999999999ULL, 99, BalKindDollar}, {1, 5, BalKindDollar},
        {0, 1, BalKindQty},    {9999999999ULL, 99999, BalKindQty},    {42, 50000, BalKindQty}};
    for (const auto& c : cases) {
        BalType value;
        value.Compose(c.whole, c.fraction, c.kind);
        uint64_t whole;
        uint32_t fraction;
        BalKind kind;
        value.Decompose(whole, fraction, kind);
        EXPECT_EQ(whole, c.whole);
        EXPECT_EQ(fraction, c.fraction);
        EXPECT_EQ(kind, c.kind);
        uint32_t fractionMax;
        ExtractBal(value, whole, fraction, fractionMax, kind);
        EXPECT_EQ(fractionMax, c.kind == BalKindQty ? 99999u : 99u);
    }
    BalType uninitialised(BalType::ZeroQtyValue);
    uint64_t whole = 7;
    uint32_t fraction = 7;
    BalKind kind;
    uninitialised.Decompose(whole, fraction, kind);
    EXPECT_EQ(whole + fraction, 0u);
    EXPECT_EQ(kind, BalKindQty);
}

TEST_F(BalTypeParts, AsPenniesRoundsQuantityFractionsHalfUp) {
    const struct {
        const char* number;
        BalKind kind;
        uint64_t pennies;
    } cases[] = {{"12.34", BalKindDollar, 1234}, {"-12.34", BalKindDollar, 1234},
                 {"1.23449", BalKindQty, 123},   {"1.23500", BalKindQty, 124},
                 {"1.99950", BalKindQty, 200},   {"-0.00499", BalKindQty, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(Make(c.number, c.kind, false).AsPennies(), c.pennies) << c.number;
    }
}
