// BalTypeLegacy_6Bytes: the record layout and round trips at every field boundary.
#include <cstring>

#include "tests/DataTypes/baltype_fixture.h"

using BalTypeLegacy6Bytes = BalTypeTest;

namespace {
BalType RoundTrip(const BalType& value) {
    BalTypeLegacy_6Bytes legacy(value);
    BalType back;
    legacy.SetFromLegacy6Bytes(back);
    return back;
}
} // namespace

TEST_F(BalTypeLegacy6Bytes, DollarRoundTripsAtEveryFieldBoundary) {
    const uint64_t wholes[] = {0,     1,        255,      256,      65535,
                               65536, 16777215, 16777216, 99999999, 4294967295ULL};
    for (uint64_t whole : wholes) {
        for (unsigned cents = 0; cents <= 99; ++cents) {
            BalType value;
            value.SetDollarsAndCents(whole, cents);
            BalType back = RoundTrip(value);
            ASSERT_EQ(back._GetMbits(), kDollar) << whole << "." << cents;
            ASSERT_EQ(back.GetDollars(), whole);
            ASSERT_EQ(back.GetCents(), cents);
        }
    }
}

TEST_F(BalTypeLegacy6Bytes, QuantityRoundTripsAcrossThe17BitFractionAnd24BitWhole) {
    const uint32_t fractions[] = {0, 1, 255, 256, 65535, 65536, 65537, 99998, 99999};
    const uint64_t wholes[] = {0, 1, 255, 256, 65535, 65536, 9999999};
    for (uint64_t whole : wholes) {
        for (uint32_t fraction : fractions) {
            BalType value(BalType::ZeroQtyValue);
            value.SetQty(whole, fraction);
            BalTypeLegacy_6Bytes legacy(value);
            EXPECT_EQ((legacy.GetBytes()[0] & BalTypeLegacy_6Bytes::kFractionBit16) != 0,
                      (fraction & 0x10000) != 0);
            BalType back;
            legacy.SetFromLegacy6Bytes(back);
            uint64_t w;
            uint32_t f;
            back.GetQty(w, f);
            EXPECT_TRUE(back.IsQty());
            EXPECT_EQ(w, whole);
            EXPECT_EQ(f, fraction);
        }
    }
}

TEST_F(BalTypeLegacy6Bytes, BytesFollowTheDocumentedLayout) {
    BalType qty(BalType::ZeroQtyValue);
    qty.SetQty(0x123456, 0x1869F); // fraction 99999: bit 16 set
    qty.SetNegative();
    qty.SetPercent(true);
    BalTypeLegacy_6Bytes legacy(qty);
    const unsigned char qtyBytes[6] = {
        BalTypeLegacy_6Bytes::kFractionBit16 | BalTypeLegacy_6Bytes::kPercentBit |
            BalTypeLegacy_6Bytes::kSignBit | BalTypeLegacy_6Bytes::kQtyBit,
        0x9F,
        0x86,
        0x56,
        0x34,
        0x12};
    EXPECT_EQ(std::memcmp(legacy.GetBytes(), qtyBytes, 6), 0);

    BalType dollar;
    dollar.SetDollarsAndCents(0x89ABCDEF, 42);
    BalTypeLegacy_6Bytes legacyDollar(dollar);
    const unsigned char dollarBytes[6] = {0, 42, 0xEF, 0xCD, 0xAB, 0x89};
    EXPECT_EQ(std::memcmp(legacyDollar.GetBytes(), dollarBytes, 6), 0);

    uint32_t whole, fraction;
    BalKind kind;
    legacyDollar.Decompose(whole, fraction, kind);
    EXPECT_EQ(whole, 0x89ABCDEFu);
    EXPECT_EQ(fraction, 42u);
    EXPECT_EQ(kind, BalKindDollar);
    legacy.GetQty(whole, fraction);
    EXPECT_EQ(whole, 0x123456u);
    EXPECT_EQ(fraction, 99999u);
}

TEST_F(BalTypeLegacy6Bytes, FlagsRoundTrip) {
    BalType negative = Dollar("-3.25");
    BalType back = RoundTrip(negative);
    EXPECT_TRUE(back.IsNegative() && NumberIs(back, "-3.25"));

    BalType percent = Pct("12.5");
    back = RoundTrip(percent);
    EXPECT_EQ(back._GetMbits(), kQty | kPct);
    EXPECT_TRUE(NumberIs(back, "12.5"));

    const BalType errorValue = Errored(Dollar("1"));
    ResetBalTypeOverflowFlag();
    back = RoundTrip(errorValue);
    EXPECT_TRUE(back.IsError());
    EXPECT_TRUE(GetBalTypeOverflowFlag());

    EXPECT_EQ(RoundTrip(BalEmptyQty())._GetMbits(), BalType::kEmptyQtyBits);
    EXPECT_EQ(RoundTrip(BalEmptyDollar())._GetMbits(), BalType::kEmptyDollarBits);
    BalTypeLegacy_6Bytes emptyLegacy(BalEmptyDollar());
    EXPECT_TRUE(emptyLegacy.IsEmpty() && emptyLegacy.IsZero() && emptyLegacy.IsDollar());
}

TEST_F(BalTypeLegacy6Bytes, LargeQuantitiesAndOversizedDollarsAreNotSilentlyCut) {
    BalType bigQty(BalType::ZeroQtyValue);
    bigQty.SetQty(10000000, 12345);
    BalTypeLegacy_6Bytes legacy(bigQty);
    EXPECT_TRUE(legacy.IsDollar());
    BalType back;
    legacy.SetFromLegacy6Bytes(back);
    EXPECT_TRUE(NumberIs(back, "10000000.12")) << Describe(back);

    BalTypeLegacy_6Bytes tooBig(Dollar("4294967296"));
    EXPECT_TRUE(tooBig.IsError());
}

TEST_F(BalTypeLegacy6Bytes, PickyCompareOrdersLikeBalType) {
    const char* numbers[] = {"-5", "0", "1.25", "7"};
    for (const char* a : numbers) {
        for (const char* b : numbers) {
            BalTypeLegacy_6Bytes la(Dollar(a)), lb(Dollar(b));
            EXPECT_EQ(BalPickyCompareLegacy6Bytes(la, lb, false),
                      BalPickyCompare(Dollar(a), Dollar(b), false))
                << a << " " << b;
        }
    }
    BalTypeLegacy_6Bytes empty(BalEmptyDollar()), zero(Dollar("0"));
    EXPECT_EQ(BalPickyCompareLegacy6Bytes(zero, empty, false), 1);
    EXPECT_EQ(BalPickyCompareLegacy6Bytes(zero, empty, true), 0);
}
