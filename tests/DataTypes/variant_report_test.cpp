#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "Util/OpsFilter.h"
#include "Util/Variant.h"
#include "tests/OperationsManager/ops_test_support.h"

namespace {

struct Report {
    Util::Ops::EventType type;
    Util::Ops::Level level;
    std::string text, file, function;
};

class ReportCapture : public Util::OpsMessageHandler {
public:
    bool HandleMessage(const Util::OpsEvent& event) override {
        std::lock_guard<std::mutex> lock(m_mutex);
        const char* file = event.context.GetFile();
        const char* function = event.context.GetFunction();
        m_reports.push_back(
            {event.type, event.level, event.text, file ? file : "", function ? function : ""});
        return true;
    }
    Util::TString GetKey() const override { return Util::TString("VARIANT_REPORT_CAPTURE"); }
    Util::TString Describe() const override { return Util::TString("VARIANT_REPORT_CAPTURE"); }
    std::vector<Report> Reports() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_reports;
    }

private:
    std::mutex m_mutex;
    std::vector<Report> m_reports;
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

    const std::vector<Report> reports = capture->Reports();
    ASSERT_EQ(reports.size(), 2u);
    for (const Report& r : reports) {
        EXPECT_EQ(r.type, Util::Ops::kMessage);
        EXPECT_EQ(r.level, Util::Ops::kLvlError);
        EXPECT_EQ(r.text, "Loss of data occured in a numeric downcast operation\n");
        EXPECT_EQ(r.file, "DataTypes/src/variant");
        EXPECT_EQ(r.function, "Util::VariantChangeType");
    }
}

TEST_F(VariantReport, ConversionsThatFitReportNothing) {
    EXPECT_EQ(static_cast<unsigned int>(Util::Variant(4000000000LL)), 4000000000u);
    EXPECT_FALSE(static_cast<bool>(Util::Variant("no")));
    EXPECT_EQ(static_cast<int>(Util::Variant(static_cast<unsigned short>(5), Util::UTIL_VT_INT)),
              0);
    EXPECT_TRUE(capture->Reports().empty());
}

} // namespace
