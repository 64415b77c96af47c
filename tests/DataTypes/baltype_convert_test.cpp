// BalType conversions: text with either separator, doubles, kind changes, validation, streams.
#include <cmath>
#include <limits>
#include <sstream>
#include <string>

#include "tests/DataTypes/baltype_fixture.h"

using BalTypeText = BalTypeTest;
using BalTypeDouble = BalTypeTest;
using BalTypeKinds = BalTypeTest;
using BalTypeValidate = BalTypeTest;
using BalTypeStream = BalTypeTest;

TEST_F(BalTypeText, ParsesWithEitherSeparator) {
    const struct {
        char separator;
        const char* text;
        unsigned char bits;
        const char* number;
    } cases[] = {
        {'.', "12.345", kQty, "12.345"},
        {'.', "12.34", kDollar, "12.34"},
        {'.', "12.3", kDollar, "12.3"},
        {'.', "12%", kQty | kPct, "12"},
        {'.', "12.5%", kQty | kPct, "12.5"},
        {'.', "-0.001", kQty, "-0.001"},
        {'.', "12.345678", kQty, "12.34568"},
        {'.', "  7.5 ", kErr, "0"},        // parsed as it stands: blanks make the text invalid
        {'.', "12.34 ", kQty | kErr, "0"}, // the blank counts as a third fraction digit
        {'.', "", kDollar, "0"},
        {'.', "1E3", kDollar, "1000"},
        {',', "12,345", kQty, "12.345"},
        {',', "12,34", kDollar, "12.34"},
        {',', "5,5%", kQty | kPct, "5.5"},
        {',', "12.34", kDollar, "12.34"}, // the library's own point still parses
        {'.', "10000000000000", kErr, "0"},
        {'.', "abc", kErr, "0"},
        {'.', "12.34.56", kQty | kErr, "0"}, // more than two digits after the separator
    };
    for (const auto& c : cases) {
        SetBalTypeDecimalSeparator(c.separator);
        BalType value = String2Bal(c.text);
        EXPECT_EQ(value._GetMbits(), c.bits) << c.text << ": " << Describe(value);
        EXPECT_TRUE(NumberIs(value, c.number)) << c.text << ": " << Describe(value);
    }
}

TEST_F(BalTypeText, QuantityAndMemberForms) {
    BalType qty = String2Qnty("12.3");
    EXPECT_TRUE(qty.IsQty() && NumberIs(qty, "12.3"));
    BalType value;
    value.String2Dollar(Util::TString(""));
    EXPECT_EQ(value._GetMbits(), BalType::kEmptyDollarBits);
    value.String2Qty(Util::TString(""));
    EXPECT_EQ(value._GetMbits(), BalType::kEmptyQtyBits);
    value.String2Dollar(Util::TString("4.5"));
    EXPECT_TRUE(value.IsDollar() && NumberIs(value, "4.5"));
    value.String2Qty(Util::TString("4.5"));
    EXPECT_TRUE(value.IsQty() && NumberIs(value, "4.5"));
    EXPECT_TRUE(String2Bal(nullptr).IsZero());
}

TEST_F(BalTypeText, OverlongTextIsCutNotOverrun) {
    std::string text(600, '1');
    BalType value = String2Bal(text.c_str());
    EXPECT_TRUE(value.IsError());                     // 511 digits are far beyond any limit
    std::string padded = std::string(520, '0') + "5"; // the 5 lies beyond the cut
    EXPECT_TRUE(String2Bal(padded.c_str()).IsZero());
}

TEST_F(BalTypeDouble, KindFollowsDigitsBeyondTheCents) {
    const struct {
        double value;
        unsigned char bits;
        const char* number;
    } cases[] = {
        {12.5, kDollar, "12.5"},
        {12.345, kQty, "12.345"},
        {-0.001, kQty, "-0.001"},
        {0.1, kDollar, "0.1"},
        {1e11, kDollar, "100000000000"},
        {9999999999999.99, kDollar, "9999999999999.99"},
        {1e20, kErr, "0"},
        {std::numeric_limits<double>::quiet_NaN(), kErr, "0"},
        {std::numeric_limits<double>::infinity(), kErr, "0"},
    };
    for (const auto& c : cases) {
        BalType value = Double2Bal(c.value);
        EXPECT_EQ(value._GetMbits(), c.bits) << c.value << ": " << Describe(value);
        EXPECT_TRUE(NumberIs(value, c.number)) << c.value << ": " << Describe(value);
    }
    BalType qtyError = Double2Bal(1e12, BalKindQty);
    EXPECT_EQ(qtyError._GetMbits() & (kQty | kErr), kQty | kErr);
}

TEST_F(BalTypeDouble, Bal2DoubleScalesPercentsAndZeroesErrors) {
    const BalType errorValue = Errored(BalType());
    const struct {
        BalType value;
        double expected;
    } cases[] = {{Dollar("12.34"), 12.34}, {Pct("50"), 0.5}, {BalEmptyDollar(), 0.0},
                 {errorValue, 0.0},        {BalType(), 0.0}, {Qty("-0.00001"), -0.00001}};
    for (const auto& c : cases) {
        EXPECT_EQ(Bal2Double(c.value), c.expected) << Describe(c.value);
        EXPECT_EQ(Bal2DoubleExternC(&c.value), c.expected) << Describe(c.value);
    }
    EXPECT_EQ(Bal2DoubleExternC(nullptr), 0.0);
}

TEST_F(BalTypeDouble, MultiplyAndDivideRoundTheFactorToSignificantDigits) {
    // 1.23456 to 3 significant digits is 1.23.
    BalType product = MultiplyWithDouble(Dollar("100"), 1.23456, 3, BalKindDollar);
    EXPECT_TRUE(NumberIs(product, "123")) << Describe(product);
    BalType quotient = DivideWithDouble(Dollar("100"), 3.0, 4, BalKindQty);
    EXPECT_TRUE(quotient.IsQty() && NumberIs(quotient, "33.33333")) << Describe(quotient);
    EXPECT_TRUE(DivideWithDouble(Dollar("1"), 0.0, 4, BalKindDollar).IsError());
}

TEST_F(BalTypeKinds, PercentQuantityAndDollarConversions) {
    BalType percent = Bal2Percent(Dollar("12.5"));
    EXPECT_EQ(percent._GetMbits(), kQty | kPct);
    EXPECT_TRUE(NumberIs(percent, "12.5"));

    BalType qty = Bal2Qnty(Dollar("12.345")); // no rounding on the way
    EXPECT_TRUE(qty.IsQty() && NumberIs(qty, "12.345"));
    EXPECT_TRUE(Bal2Qnty(Dollar("10000000000.5")).IsDollar()); // beyond the quantity maximum
    EXPECT_TRUE(Bal2Qnty(BalType()).IsDollar());               // uninitialised stays as it is

    BalType dollar = Qnty2Bal(Qty("1.23456"));
    EXPECT_TRUE(dollar.IsDollar() && NumberIs(dollar, "1.23"));
    const BalType errorQty = Errored(Qty("1"));
    EXPECT_TRUE(Qnty2Bal(errorQty).IsQty());

    const struct {
        BalType value;
        bool becomesDollar;
    } cases[] = {
        {Qty("1.23000"), true}, {Qty("1.23001"), false}, {Pct("1.5"), false}, {Qty("7"), true}};
    for (const auto& c : cases) {
        BalType value = c.value;
        SetBalTypeTypeBasedOnZerosAfterDecimal(value);
        EXPECT_EQ(value.IsDollar(), c.becomesDollar) << Describe(c.value);
        EXPECT_TRUE(value.GetDecimalAmount() == c.value.GetDecimalAmount());
    }
}

TEST_F(BalTypeValidate, ValidateAmountRepairsOrRejects) {
    BalType errorValue = Errored(BalType());
    EXPECT_FALSE(ValidateAmount(&errorValue));
    EXPECT_FALSE(ValidateAmount(nullptr));

    BalType dollarPercent = Dollar("-12.34");
    dollarPercent.SetPercent(true);
    EXPECT_FALSE(ValidateAmount(&dollarPercent));
    EXPECT_EQ(dollarPercent._GetMbits(), kQty | kPct);
    EXPECT_TRUE(NumberIs(dollarPercent, "-12.34"));

    BalType bigPercent = Dollar("10000000000");
    bigPercent.SetPercent(true);
    EXPECT_FALSE(ValidateAmount(&bigPercent));
    EXPECT_TRUE(bigPercent.IsError());

    BalType tooLarge = Make("10000000000.5", BalKindQty, false);
    EXPECT_FALSE(ValidateAmount(&tooLarge));
    EXPECT_EQ(tooLarge._GetMbits(), kQty | kErr);
    EXPECT_TRUE(tooLarge.IsZero());

    BalType fine = Dollar("9999999999999.99");
    EXPECT_TRUE(ValidateAmount(&fine));
    EXPECT_TRUE(NumberIs(fine, "9999999999999.99"));
}

TEST_F(BalTypeValidate, DbReadErrorRaisesItsOwnFlagUntilCleared) {
    ClearDBOverflowFlag();
    BalType value = Dollar("5");
    value.SetErrorDBReadError();
    EXPECT_TRUE(value.IsError());
    EXPECT_TRUE(GetBalTypeDBOverflowFlag());
    EXPECT_TRUE(GetBalTypeOverflowFlag());
    BalAdd(Dollar("1"), Dollar("1"));
    EXPECT_TRUE(GetBalTypeDBOverflowFlag());
    ClearDBOverflowFlag();
    EXPECT_FALSE(GetBalTypeDBOverflowFlag());
}

TEST_F(BalTypeStream, WritesDollarsAndCentsAndReadsThemBack) {
    std::ostringstream out;
    out << Dollar("1234.56");
    EXPECT_EQ(out.str(), "Dollars 1234\nCents 56\n");
    std::istringstream in(out.str());
    BalType value;
    in >> value;
    EXPECT_FALSE(in.fail());
    EXPECT_TRUE(NumberIs(value, "1234.56"));
    std::istringstream bad("Dollars lots");
    bad >> value;
    EXPECT_TRUE(bad.fail());
    EXPECT_TRUE(NumberIs(value, "1234.56"));
}
