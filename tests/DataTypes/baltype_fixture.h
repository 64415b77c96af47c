// Shared setup of the BalType tests: a known limit mode, separator and overflow flag, and
// helpers that build values from decimal text.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "Util/BalType.h"
#include "Util/ZtDecimal64.h"

// Flag bits of the expected values, by name.
constexpr unsigned char kDollar = 0;
constexpr unsigned char kQty = BalType::kQtyBit;
constexpr unsigned char kErr = BalType::kErrorBit;
constexpr unsigned char kPct = BalType::kPercentBit;
constexpr unsigned char kEmpty = BalType::kEmptyBit;

class BalTypeTest : public ::testing::Test {
public:
    void SetUp() override {
        m_savedMode = BaltypeLimits::GetLimitMode();
        m_savedSeparator = GetBalTypeDecimalSeparator();
        BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode9Byte);
        SetBalTypeDecimalSeparator('.');
        ResetBalTypeOverflowFlag();
    }
    void TearDown() override {
        BaltypeLimits::SetLimitMode(m_savedMode);
        SetBalTypeDecimalSeparator(m_savedSeparator);
        ResetBalTypeOverflowFlag();
    }

    static BalType Dollar(const char* number) { return Make(number, BalKindDollar, false); }
    static BalType Qty(const char* number) { return Make(number, BalKindQty, false); }
    static BalType Pct(const char* number) { return Make(number, BalKindQty, true); }
    static BalType Errored(BalType value) {
        value.SetError();
        return value;
    }
    static BalType Make(const char* number, BalKind kind, bool percent) {
        BalType value;
        value.SetFromDecimalWithoutLimitChecking(ZtDecimal64(number), kind, percent, false);
        return value;
    }

    // The number of a value, compared by value (any exponent).
    static bool NumberIs(const BalType& value, const char* number) {
        return value.GetDecimalAmount() == ZtDecimal64(number);
    }
    static std::string Describe(const BalType& value) {
        char bits[8];
        std::snprintf(bits, sizeof bits, "0x%02X", value._GetMbits());
        return std::string(bits) + " " + value.GetDecimalAmount().GetStringValue().c_str();
    }

private:
    BaltypeLimits::LimitMode m_savedMode = BaltypeLimits::LimitMode9Byte;
    char m_savedSeparator = '.';
};
