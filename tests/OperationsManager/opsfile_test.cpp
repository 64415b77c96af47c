#include <cstring>

#include "Util/OpsSubscriptionFileManager.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::GetOps;
using Util::Ops;
using Util::OpsSubscriptionFileManager;
using namespace OpsTest;

namespace {

using SubscriptionList = std::vector<Util::OpsSubscriptionManager::Subscription>;

std::string Parse(const std::string& text, SubscriptionList& out) {
    Util::Status status =
        OpsSubscriptionFileManager::ParseText(text.data(), text.size(), "t.ops", out);
    return status.Succeeded() ? std::string() : status.GetStatusMessage().c_str();
}

std::string Wrap(const std::string& subscriptions) {
    return "<OpsSubscriptions>" + subscriptions + "</OpsSubscriptions>";
}

} // namespace

TEST(OpsFile, TheShippedExampleIsValidAMissingFileIsNotFound) {
    SubscriptionList subscriptions;
    Util::Status status = OpsSubscriptionFileManager::ParseFile(
        ZT_SOURCE_DIR "/examples/Diagnostics.ops", subscriptions);
    ASSERT_TRUE(status.Succeeded()) << status.GetStatusMessage().c_str();
    ASSERT_EQ(subscriptions.size(), 4u);
    EXPECT_STREQ(subscriptions[0].name.c_str(), "ExpressionTrace");
    EXPECT_STREQ(subscriptions[0].filter->Describe().c_str(),
                 "ALL_OF(LEVEL_FILTER(level=LVL_INFO_SUMMARY), "
                 "FILE_NAME_FILTER(regexp=^expression/), "
                 "EXCLUDE(FUNC_NAME_FILTER(regexp=^Tokeni[sz]e)))");
    EXPECT_STREQ(subscriptions[0].handlers[0]->Describe().c_str(),
                 "LOG_TO_FILE(file_name=Expression.log, strip_source_info=true)");
    EXPECT_EQ(subscriptions[2].handlers.size(), 2u);
    // The INI value keeps the second subscription's mask conservative, but only for the types
    // its ANY_OF allows.
    EXPECT_TRUE(subscriptions[1].mask.Test(Ops::kFuncExit, Ops::kLvlNA));
    EXPECT_FALSE(subscriptions[1].mask.Test(Ops::kMessage, Ops::kLvlError));

    SubscriptionList none;
    status = OpsSubscriptionFileManager::ParseFile("/nonexistent/dir/x.ops", none);
    EXPECT_EQ(status.GetStatusCode(), -8);
    EXPECT_NE(std::string(status.GetStatusMessage().c_str()).find("x.ops"), std::string::npos);
}

TEST(OpsFile, MalformedDocumentsNameTheProblemAndLine) {
    std::string open, close; // nesting too deep is refused, not a stack overflow
    for (int i = 0; i < 5000; ++i) {
        open += "<ALL_OF>";
        close += "</ALL_OF>";
    }
    const struct {
        std::string text;
        const char* problem;
    } cases[] = {
        {"", "No document element"},
        {"<OpsSubscriptions><Subscription name='a'>", "(line 1)"},
        {"<Other/>", "the root element must be <OpsSubscriptions>"},
        {Wrap("<Subscription><Handlers><BREAK/></Handlers></Subscription>"),
         "needs a non-empty \"name\""},
        {Wrap("<Subscription name='a'/>"), "at least one handler"},
        {Wrap("<Subscription name='a'><Handlers/></Subscription>"), "at least one handler"},
        {Wrap("<Subscription name='a'><Handlers><SHOUT/></Handlers></Subscription>"),
         "Unknown handler \"SHOUT\""},
        {Wrap("<Subscription name='a'><Filter><LEVEL_FILTER level='high'/></Filter>"
              "<Handlers><BREAK/></Handlers></Subscription>"),
         "unknown level \"high\""},
        {Wrap("<Subscription name='a'><Filter><LEVEL_FILTER level='LVL_NA'><BREAK/>"
              "</LEVEL_FILTER></Filter><Handlers><BREAK/></Handlers></Subscription>"),
         "cannot hold other filters"},
        {Wrap("<Subscription name='a'><Filters/><Handlers><BREAK/></Handlers></Subscription>"),
         "unknown element <Filters>"},
        {Wrap("<Subscription name='a'><Handlers><LOG_TO_FILE/></Handlers></Subscription>"),
         "needs the attribute \"file_name\""},
        {Wrap("<Subscription name='a'><Handlers>BREAK</Handlers></Subscription>"),
         "unexpected text"},
        {Wrap("<Subscription name='a' level='x'><Handlers><BREAK/></Handlers></Subscription>"),
         "unknown attribute \"level\""},
        {"<OpsSubscriptions>\n\n<Subscription name='ok'><Handlers><BREAK/></Handlers>"
         "</Subscription>\n<Subscription name='bad'/></OpsSubscriptions>",
         "(line 4)"},
        {Wrap("<Subscription name='deep'><Filter>" + open + close +
              "</Filter><Handlers><BREAK/></Handlers></Subscription>"),
         "nested too deeply"},
        // Text from the file is shown as written, never read as a placeholder.
        {Wrap("<Subscription name='a'><Filter><MESSAGE_FILTER regexp='([%FileName% %Line% %%'/>"
              "</Filter><Handlers><BREAK/></Handlers></Subscription>"),
         "\"([%FileName% %Line% %%\""},
        {Wrap("<Subscription name='a'><Filter><MESSAGE_FILTER regexp='(a)\\1'/>"
              "</Filter><Handlers><BREAK/></Handlers></Subscription>"),
         "bad regular expression"},
    };
    for (const auto& c : cases) {
        SubscriptionList subscriptions;
        const std::string problem = Parse(c.text, subscriptions);
        EXPECT_NE(problem.find(c.problem), std::string::npos)
            << c.text.substr(0, 200) << "\n-> " << problem;
        EXPECT_NE(problem.find("\"t.ops\" is malformed"), std::string::npos) << problem;
        EXPECT_TRUE(subscriptions.empty()) << "nothing of a bad file is kept";
    }
}

TEST_F(OpsRunning, FileSubscriptionsLiveAsLongAsTheirManager) {
    m_dir.Write("a.ops", Wrap("<Subscription name='Dumps'><Filter><EVENT_TYPE_FILTER "
                              "type='DUMP'/></Filter><Handlers><LOG_TO_FILE "
                              "file_name='dumps.log' strip_source_info='true'/></Handlers>"
                              "</Subscription>"));
    const Util::SourceContext here("x.cpp", 5, "F", "void F()");
    {
        OpsSubscriptionFileManager file(m_dir.File("a.ops").c_str());
        EXPECT_TRUE(file.GetStatus().Succeeded());
        EXPECT_EQ(file.GetSubscriptionCount(), 1u);
        EXPECT_TRUE(Ops::IsEventLevelActive(Ops::kDump, Ops::kLvlNA));
        EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kCheckpoint, Ops::kLvlNA));
        EXPECT_TRUE(GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, here, "first"));
    }
    EXPECT_FALSE(Ops::IsEventLevelActive(Ops::kDump, Ops::kLvlNA));
    EXPECT_FALSE(GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, here, "second"));
    const std::string log = m_dir.Read("dumps.log");
    EXPECT_NE(log.find(" LVL_NA DUMP first\n"), std::string::npos) << log;
    EXPECT_EQ(log.find("second"), std::string::npos);
}

TEST_F(OpsRunning, BeginningAgainReadsTheFilesAgain) {
    m_dir.Write("a.ops", Wrap("<Subscription name='A'><Handlers><LOG_TO_FILE file_name='a.log'/>"
                              "</Handlers></Subscription>"));
    GetOps().BeginOperations(&m_context);
    EXPECT_EQ(GetOps().GetSubscriptionManager().GetSubscriptionCount(), 1u);
    m_dir.Write("b.ops", Wrap("<Subscription name='B'><Handlers><LOG_TO_FILE file_name='b.log'/>"
                              "</Handlers></Subscription>"));
    m_dir.Write("notes.txt", "not a subscription file");
    GetOps().BeginOperations(&m_context);
    EXPECT_EQ(GetOps().GetSubscriptionManager().GetSubscriptionCount(), 2u);
    GetOps().EndOperations();
    EXPECT_EQ(GetOps().GetSubscriptionManager().GetSubscriptionCount(), 0u);
}
