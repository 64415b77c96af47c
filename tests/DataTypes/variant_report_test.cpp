#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "Util/OpsFilter.h"
#include "Util/Variant.h"
#include "tests/OperationsManager/ops_test_support.h"

namespace {

// The shared capture handler, also keeping the source file each report names.
class ReportCapture : public OpsTest::CaptureHandler {
public:
    bool HandleMessage(const Util::OpsEvent& event) override {
        const char* file = event.context.GetFile();
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_files.push_back(file ? file : "");
        }
        return OpsTest::CaptureHandler::HandleMessage(event);
    }
    std::vector<std::string> Files() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_files;
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_files;
};

class VariantReport : public OpsTest::OpsRunning {
protected:
    void SetUp() override {
        OpsTest::OpsRunning::SetUp();
        Util::GetOps().GetSubscriptionManager().AddSubscription("VariantCapture", nullptr,
                                                                {capture});
    }
    std::shared_ptr<ReportCapture> capture = std::make_shared<ReportCapture>();
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
    EXPECT_EQ(capture->Files(), std::vector<std::string>(2, "DataTypes/src/variant"));
}

TEST_F(VariantReport, ConversionsThatFitReportNothing) {
    EXPECT_EQ(static_cast<unsigned int>(Util::Variant(4000000000LL)), 4000000000u);
    EXPECT_FALSE(static_cast<bool>(Util::Variant("no")));
    EXPECT_EQ(static_cast<int>(Util::Variant(static_cast<unsigned short>(5), Util::UTIL_VT_INT)),
              0);
    EXPECT_EQ(capture->Count(), 0u);
}

} // namespace
