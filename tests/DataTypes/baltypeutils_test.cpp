// Number-to-text formatting: fixed and exponent forms, trimming, and small buffers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "Util/BalTypeUtils.h"
#include "tests/OperationsManager/ops_test_support.h"

TEST(DecimalPlaceOfLeftmostDigit, CountsWholeDigitsOrLeadingZeros) {
    const struct {
        double value;
        int place;
    } cases[] = {{123.4, 3},  {5, 1},    {0.5, 0},      {0.05, -1}, {0.005, -2},
                 {-123.4, 3}, {0.0, 1},  {-0.0, 1},     {1e20, 21}, {1.0, 1},
                 {9.99, 1},   {10.0, 2}, {INFINITY, 1}, {NAN, 1}};
    for (const auto& c : cases) {
        EXPECT_EQ(DecimalPlaceOfLeftmostDigit(c.value), c.place) << c.value;
    }
}

// A result that does not fit the buffer gives empty text; nothing is ever written past it.
TEST(Double2String, FixedAndExponentFormsWithinTheBuffer) {
    const struct {
        double value;
        int digits;
        bool trim;
        size_t size;
        const char* expected;
    } cases[] = {
        {0.0, 4, true, 32, "0"},
        {0.0, 4, false, 32, ".000"},
        {1234.5678, 6, true, 32, "1234.57"},
        {0.25, 2, true, 32, ".25"},
        {-0.25, 2, true, 32, "-.25"},
        {-0.0, 4, true, 32, "0"},
        {-0.0, 4, false, 32, "-.000"},
        {-0.0001, 2, true, 32, "-.0001"},
        {12345678, 4, true, 9, "12345678"},
        {-12345678, 4, true, 10, "-12345678"},
        {1e20, 4, true, 16, "1.000e+20"},
        {1.5, 4, false, 32, "1.500"},
        {1.5, 4, true, 32, "1.5"},
        {100.0, 4, true, 32, "100"},
        {0.000123456, 3, true, 32, ".000123"},
        {123.456, 5, true, 7, "123.46"},
        // 6 characters do not fit 6 bytes, so the exponent form (1.2346e+02) is tried: no fit.
        {123.456, 5, true, 6, ""},
        {0.1, 1, true, 32, ".1"},
        {7.0, 1, true, 32, "7"},
        {12345678, 4, true, 5, ""},
        {1e20, 4, true, 5, ""},
        {0.123456, 6, true, 3, ""},
        {-5.25, 3, true, 1, ""},
        {1.0, 2, true, 0, nullptr}, // no room even for the terminator: nothing is written
    };
    for (const auto& c : cases) {
        char buffer[64];
        std::memset(buffer, 'x', sizeof buffer);
        char* result = Double2String(buffer, c.size, c.value, c.digits, c.trim);
        EXPECT_EQ(result, buffer);
        if (c.expected != nullptr) {
            EXPECT_STREQ(buffer, c.expected) << c.value << " " << c.digits << " " << c.size;
        }
        EXPECT_EQ(buffer[c.size], 'x') << "wrote past the buffer for " << c.value;
    }
    EXPECT_EQ(Double2String(nullptr, 10, 1.0, 2, true), nullptr);
}

TEST(Double2String, ExtremeInputsStayBounded) {
    const double values[] = {1e-300, -1e-300, 1e300, -1e300, 5e-324, NAN, INFINITY, -INFINITY};
    const int digits[] = {-5, 0, 1, 4, 17, 60, 200};
    for (double value : values) {
        for (int n : digits) {
            char buffer[24];
            std::memset(buffer, 'x', sizeof buffer);
            Double2String(buffer, 20, value, n, n % 2 == 0);
            EXPECT_LT(std::strlen(buffer), 20u) << value << " " << n;
            EXPECT_EQ(buffer[20], 'x');
        }
    }
}

TEST(Float2String, WidensAndTrims) {
    char buffer[32];
    EXPECT_STREQ(Float2String(buffer, sizeof buffer, 2.5f, 4), "2.5");
    EXPECT_STREQ(Float2String(buffer, sizeof buffer, -0.125f, 3), "-.125");
    EXPECT_STREQ(Float2String(buffer, sizeof buffer, 0.0f, 3), "0");
}

namespace {
// Runs in a fresh process: begins operations, captures every event, and checks that each too
// small buffer gave a verification and then the error message, from Double2String.
std::string ReportTooSmallBuffer() {
    OpsTest::TempDir dir;
    OpsTest::TestContext context(dir.Path());
    Util::GetOps().GetSubscriptionManager().RemoveAllSubscriptions();
    Util::GetOps().BeginOperations(&context);
    auto handler = OpsTest::Subscribe();
    char buffer[5];
    Double2String(buffer, sizeof buffer, 12345678.0, 4, true); // whole-number path
    Double2String(buffer, sizeof buffer, 0.123456, 6, true);   // fixed-point path
    Util::GetOps().EndOperations();

    const struct {
        Util::Ops::EventType type;
        const char* text;
    } expected[] = {
        {Util::Ops::kVerify, "(strlen(tempResultStr) < (int)bufferSize) is false"},
        {Util::Ops::kMessage, "Cannot Continue--The buffer passed into Float2String is too small."},
        {Util::Ops::kVerify, "(strlen(tempResultStr) < bufferSize) is false"},
        {Util::Ops::kMessage, "Cannot Continue--The buffer passed into Float2String is too small."},
    };
    std::vector<OpsTest::Captured> reports;
    for (const OpsTest::Captured& e : handler->Events()) {
        if (e.type == Util::Ops::kVerify || e.type == Util::Ops::kMessage) {
            reports.push_back(e);
        }
    }
    if (reports.size() != 4) {
        return "expected 4 reports, got " + std::to_string(reports.size());
    }
    for (size_t i = 0; i < 4; ++i) {
        if (reports[i].type != expected[i].type || reports[i].text != expected[i].text ||
            reports[i].function != "Double2String") {
            return "report " + std::to_string(i) + ": " + reports[i].text + " from " +
                   reports[i].function;
        }
        if (reports[i].type == Util::Ops::kMessage && reports[i].level != Util::Ops::kLvlError) {
            return "the message is not an error";
        }
    }
    return "";
}
} // namespace

TEST(Double2String, TooSmallBufferIsReportedAsVerificationAndMessage) {
    OPS_IN_FRESH_PROCESS(ReportTooSmallBuffer);
}
