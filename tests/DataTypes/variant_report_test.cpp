#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "Util/BalTypeUtils.h"
#include "Util/Guid.h"
#include "Util/OpsFilter.h"
#include "Util/UniqueIDGenerator.h"
#include "Util/Variant.h"
#include "tests/OperationsManager/ops_test_support.h"

namespace {

class VariantReport : public OpsTest::OpsRunning {
protected:
    void SetUp() override {
        OpsTest::OpsRunning::SetUp();
        (void)Util::GetOps().GetSubscriptionManager().AddSubscription("VariantCapture", nullptr,
                                                                      {capture});
    }
    std::shared_ptr<OpsTest::CaptureHandler> capture = std::make_shared<OpsTest::CaptureHandler>();
};

TEST_F(VariantReport, LostDataIsReportedOnceAsAnErrorMessage) {
    const Util::Variant minusOne(-1);
    Util::Variant out;
    EXPECT_FALSE(
        Util::VariantChangeType(out.GetAddress(), &minusOne.GetData(), Util::UTIL_VT_UINT));
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(static_cast<unsigned char>(Util::Variant("300")), 0); // a second, through the cast

    const std::vector<OpsTest::Captured> reports = capture->Events();
    ASSERT_EQ(reports.size(), 2u);
    for (const OpsTest::Captured& r : reports) {
        EXPECT_EQ(r.type, Util::Ops::kMessage);
        EXPECT_EQ(r.level, Util::Ops::kLvlError);
        EXPECT_EQ(r.text, "Loss of data occured in a numeric downcast operation\n");
        EXPECT_EQ(r.function, "Util::VariantChangeType");
    }
    for (const OpsTest::Captured& r : reports)
        EXPECT_EQ(r.file, "DataTypes/src/variant");
}

TEST_F(VariantReport, ConversionsThatFitReportNothing) {
    EXPECT_EQ(static_cast<unsigned int>(Util::Variant(4000000000LL)), 4000000000u);
    EXPECT_FALSE(static_cast<bool>(Util::Variant("no")));
    EXPECT_EQ(static_cast<int>(Util::Variant(static_cast<unsigned short>(5), Util::UTIL_VT_INT)),
              0);
    EXPECT_EQ(capture->Count(), 0u);
}

// Reports of the value types name their module's source text, without the extension.
TEST_F(VariantReport, ValueTypeReportsNameTheirModule) {
    struct Case {
        const char* module;
        void (*report)();
    } cases[] = {
        {"DataTypes/src/guid", [] { (void)Util::Guid().Renew(); }},
        {"Foundation/src/uniqueidgenerator",
         [] { Util::UniqueIDGenerator bad(nullptr, nullptr, 5, 1); }},
        {"DataTypes/src/baltypeutils",
         [] {
             char tiny[2];
             Double2String(tiny, sizeof tiny, 12345.678, 8, true);
         }},
    };
    for (const Case& c : cases) {
        capture = std::make_shared<OpsTest::CaptureHandler>();
        (void)Util::GetOps().GetSubscriptionManager().AddSubscription(c.module, nullptr, {capture});
        c.report();
        const std::vector<OpsTest::Captured> reports = capture->Events();
        EXPECT_FALSE(reports.empty()) << c.module;
        for (const OpsTest::Captured& r : reports)
            EXPECT_EQ(r.file, c.module) << r.function;
    }
}

} // namespace
