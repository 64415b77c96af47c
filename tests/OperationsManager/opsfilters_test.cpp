#include <thread>

#include <pugixml.hpp>

#include "OperationsManager/src/opsfilters.h"
#include "OperationsManager/src/opsinifile.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::AttributeSet;
using Util::GetOps;
using Util::Ops;
using Util::OpsEventMask;
using Util::OpsFilter;
using Util::OpsFilterGroup;
using namespace OpsTest;

namespace {

std::unique_ptr<OpsFilter> Make(const char* keyword, std::initializer_list<const char*> pairs) {
    Util::TString error;
    auto filter = GetOps().GetSubscriptionManager().CreateFilter(keyword, Attributes(pairs), error);
    EXPECT_TRUE(filter) << keyword << ": " << error.c_str();
    return filter;
}

bool Matches(const OpsFilter& filter, Ops::EventType type, Ops::Level level,
             const char* text = "text", const char* file = "mod/src/file.cpp",
             const char* function = "Function", const char* signature = "void Function(int)") {
    const Util::MessageContext context(file, 1, function, signature, text);
    return filter.Matches(Util::OpsEvent{type, level, context, text});
}

} // namespace

TEST(OpsFilters, LeafFiltersMatchWhatTheirAttributesSay) {
    const struct {
        const char* keyword;
        const char* name;
        const char* value;
        Ops::EventType type;
        Ops::Level level;
        const char* text;
        bool matches;
    } cases[] = {
        {"EVENT_TYPE_FILTER", "type", "CHECKPOINT", Ops::kCheckpoint, Ops::kLvlNA, "x", true},
        {"EVENT_TYPE_FILTER", "type", "CHECKPOINT", Ops::kDump, Ops::kLvlFatalError, "x", false},
        {"LEVEL_FILTER", "level", "LVL_WARNING", Ops::kMessage, Ops::kLvlWarning, "x", true},
        {"LEVEL_FILTER", "level", "LVL_WARNING", Ops::kDump, Ops::kLvlFatalError, "x", true},
        {"LEVEL_FILTER", "level", "LVL_WARNING", Ops::kMessage, Ops::kLvlInfoSummary, "x", false},
        {"LEVEL_FILTER", "level", "LVL_NA", Ops::kFuncEnter, Ops::kLvlNA, "x", true},
        {"FILE_NAME_FILTER", "regexp", "^mod/", Ops::kMessage, Ops::kLvlNA, "x", true},
        {"FILE_NAME_FILTER", "regexp", "^src/", Ops::kMessage, Ops::kLvlNA, "x", false},
        {"FUNC_NAME_FILTER", "regexp", "^Func", Ops::kMessage, Ops::kLvlNA, "x", true},
        {"FUNC_NAME_FILTER", "regexp", "^func", Ops::kMessage, Ops::kLvlNA, "x", false},
        {"FUNC_SIG_FILTER", "regexp", "\\(int\\)$", Ops::kMessage, Ops::kLvlNA, "x", true},
        {"MESSAGE_FILTER", "regexp", "bal[a-z]+ce", Ops::kMessage, Ops::kLvlNA, "a balance", true},
        {"MESSAGE_FILTER", "regexp", "bal[a-z]+ce", Ops::kMessage, Ops::kLvlNA, "a ball", false},
        {"NUM_LOCK_FILTER", nullptr, nullptr, Ops::kMessage, Ops::kLvlFatalError, "x", false},
        {"EXCLUDE", nullptr, nullptr, Ops::kMessage, Ops::kLvlFatalError, "x", false},
        {"ALL_OF", nullptr, nullptr, Ops::kMessage, Ops::kLvlNA, "x", true},
        {"ANY_OF", nullptr, nullptr, Ops::kMessage, Ops::kLvlNA, "x", false},
    };
    for (const auto& c : cases) {
        auto filter = c.name ? Make(c.keyword, {c.name, c.value}) : Make(c.keyword, {});
        ASSERT_TRUE(filter);
        EXPECT_EQ(Matches(*filter, c.type, c.level, c.text), c.matches)
            << filter->Describe().c_str() << " on " << c.text;
    }
}

TEST(OpsFilters, BadAttributesAreRefusedWithAReason) {
    const struct {
        const char* keyword;
        const char* name;
        const char* value;
        const char* reason;
    } cases[] = {
        {"EVENT_TYPE_FILTER", "level", "LVL_NA", "needs the attribute \"type\""},
        {"EVENT_TYPE_FILTER", "type", "func_enter", "unknown event type \"func_enter\""},
        {"LEVEL_FILTER", "level", "WARNING", "unknown level \"WARNING\""},
        {"MESSAGE_FILTER", "regexp", "([a-z", "bad regular expression"},
        {"MESSAGE_FILTER", "regexp", "a(?=b)", "bad regular expression"},
        {"FILE_NAME_FILTER", "pattern", "x", "needs the attribute \"regexp\""},
        {"INI_VALUE_FILTER", "file_name", "a.ini", "needs the attributes"},
        {"NO_SUCH_FILTER", "x", "y", "Unknown filter \"NO_SUCH_FILTER\""},
    };
    for (const auto& c : cases) {
        AttributeSet attributes;
        attributes.SetAttribute(c.name, c.value);
        Util::TString error;
        EXPECT_FALSE(GetOps().GetSubscriptionManager().CreateFilter(c.keyword, attributes, error));
        EXPECT_NE(std::string(error.c_str()).find(c.reason), std::string::npos)
            << c.keyword << ": " << error.c_str();
    }
}

TEST(OpsFilters, HostileExpressionsAndTextsNeitherCrashNorStall) {
    const std::string message(100000, 'a');
    const struct {
        std::string pattern;
        bool matches;
    } cases[] = {
        {"(a|b)*$", true},
        {".*x", false},
        {"^(a+)+$", true},
        {"a*b", false},
        {std::string(1000, 'a'), true},
        {std::string(450, '(') + "a" + std::string(450, ')'), true},
    };
    for (const auto& c : cases) {
        auto filter = Make("MESSAGE_FILTER", {"regexp", c.pattern.c_str()});
        ASSERT_TRUE(filter) << c.pattern.substr(0, 40);
        EXPECT_EQ(Matches(*filter, Ops::kMessage, Ops::kLvlNA, message.c_str()), c.matches)
            << c.pattern.substr(0, 40);
    }
    // Longer expressions are refused up front, not compiled or searched.
    for (const std::string& pattern : {std::string(60000, 'a'), std::string(20000, '(')}) {
        Util::TString error;
        EXPECT_FALSE(GetOps().GetSubscriptionManager().CreateFilter(
            "MESSAGE_FILTER", Attributes({"regexp", pattern.c_str()}), error));
        EXPECT_NE(std::string(error.c_str()).find("longer than 1000"), std::string::npos);
    }
}

TEST(OpsFilters, GroupsComposeAndTheirMasksStayConservative) {
    // All of: level >= error, and not (file under tests/ or a DUMP).
    OpsFilterGroup all(OpsFilterGroup::kAllOf);
    all.Add(Make("LEVEL_FILTER", {"level", "LVL_ERROR"}));
    auto exclude = std::unique_ptr<OpsFilterGroup>(new OpsFilterGroup(OpsFilterGroup::kExclude));
    exclude->Add(Make("FILE_NAME_FILTER", {"regexp", "^tests/"}));
    exclude->Add(Make("EVENT_TYPE_FILTER", {"type", "DUMP"}));
    all.Add(std::move(exclude));

    EXPECT_TRUE(Matches(all, Ops::kMessage, Ops::kLvlError));
    EXPECT_FALSE(Matches(all, Ops::kMessage, Ops::kLvlWarning));
    EXPECT_FALSE(Matches(all, Ops::kDump, Ops::kLvlError));
    EXPECT_FALSE(Matches(all, Ops::kMessage, Ops::kLvlError, "x", "tests/a.cpp"));
    EXPECT_STREQ(all.Describe().c_str(),
                 "ALL_OF(LEVEL_FILTER(level=LVL_ERROR), EXCLUDE(FILE_NAME_FILTER(regexp=^tests/), "
                 "EVENT_TYPE_FILTER(type=DUMP)))");

    bool exact = true;
    const OpsEventMask mask = all.GetEventMask(exact);
    EXPECT_FALSE(exact);
    // The regular expression cannot be negated in advance, so DUMP at LVL_ERROR stays possible;
    // what the level filter rules out stays ruled out.
    EXPECT_TRUE(mask.Test(Ops::kDump, Ops::kLvlError));
    EXPECT_FALSE(mask.Test(Ops::kMessage, Ops::kLvlWarning));

    OpsFilterGroup exactExclude(OpsFilterGroup::kExclude);
    exactExclude.Add(Make("EVENT_TYPE_FILTER", {"type", "DUMP"}));
    const OpsEventMask negated = exactExclude.GetEventMask(exact);
    EXPECT_TRUE(exact);
    EXPECT_FALSE(negated.Test(Ops::kDump, Ops::kLvlError));
    EXPECT_TRUE(negated.Test(Ops::kMessage, Ops::kLvlNA));

    OpsFilterGroup any(OpsFilterGroup::kAnyOf);
    any.Add(Make("EVENT_TYPE_FILTER", {"type", "ASSERT"}));
    any.Add(Make("LEVEL_FILTER", {"level", "LVL_FATAL_ERROR"}));
    const OpsEventMask either = any.GetEventMask(exact);
    EXPECT_TRUE(exact);
    EXPECT_EQ(either.Types(), 0x3fffu); // every type at the fatal level
    EXPECT_EQ(either.Levels(), 0x7fu);  // ASSERT at every level
    EXPECT_FALSE(either.Test(Ops::kMessage, Ops::kLvlError));
}

TEST_F(OpsRunning, IniValueFilterFollowsTheFile) {
    TempDir dir;
    dir.Write("switch.ini", "; logging switch\n[Logging]\n  Trace = on \n[Other]\nTrace=off\n");
    auto filter = Make("INI_VALUE_FILTER", {"file_name", dir.File("switch.ini").c_str(), "group",
                                            "logging\\TRACE", "expected_value", "on"});
    ASSERT_TRUE(filter);
    EXPECT_TRUE(Matches(*filter, Ops::kMessage, Ops::kLvlNA));
    dir.Write("switch.ini", "[Logging]\nTrace=off, for now\n");
    // Read again at most twice a second: the change shows once the clock has moved on.
    static std::chrono::steady_clock::time_point s_now;
    s_now = std::chrono::steady_clock::now();
    Util::OpsDetail::SetFilterClock([] { return s_now; });
    EXPECT_TRUE(Matches(*filter, Ops::kMessage, Ops::kLvlNA));
    s_now += std::chrono::milliseconds(600);
    EXPECT_FALSE(Matches(*filter, Ops::kMessage, Ops::kLvlNA));
    Util::OpsDetail::SetFilterClock(nullptr);

    auto missing = Make("INI_VALUE_FILTER", {"file_name", dir.File("none.ini").c_str(), "group",
                                             "Logging/Trace", "expected_value", "on"});
    EXPECT_FALSE(Matches(*missing, Ops::kMessage, Ops::kLvlNA));
    Util::TString error;
    EXPECT_FALSE(GetOps().GetSubscriptionManager().CreateFilter(
        "INI_VALUE_FILTER",
        Attributes({"file_name", "a.ini", "group", "Logging", "expected_value", "1"}), error))
        << "a group without a key";

    // A relative file name is found in the operations directory.
    m_dir.Write("OpsSwitches.ini", "[Ops]\nTrace=on\n");
    auto relative = Make("INI_VALUE_FILTER", {"file_name", "OpsSwitches.ini", "group", "Ops\\Trace",
                                              "expected_value", "on"});
    ASSERT_TRUE(relative);
    EXPECT_TRUE(Matches(*relative, Ops::kFuncEnter, Ops::kLvlNA));
}

TEST(OpsIniReader, FirstValueWinsAndNamesIgnoreCase) {
    const auto values = Util::OpsDetail::IniFileReader::Parse(
        "top=1\n[A]\nk = v1\nK=v2\n# note\n[ b ]\n x=  y z \nbroken line\n");
    EXPECT_EQ(values.at("\ntop"), "1");
    EXPECT_EQ(values.at("a\nk"), "v1");
    EXPECT_EQ(values.at("b\nx"), "y z");
    EXPECT_EQ(values.size(), 3u);
}

TEST_F(OpsRunning, CustomFiltersAndHandlersCanBeRegistered) {
    struct OddLineFilter : OpsFilter {
        bool Matches(const Util::OpsEvent& e) const override { return e.context.GetLine() % 2; }
        Util::TString Describe() const override { return Util::TString("ODD_LINE"); }
    };
    auto capture = std::make_shared<CaptureHandler>();
    GetOps().GetSubscriptionManager().RegisterFilter(
        "ODD_LINE", [](const AttributeSet&, Util::TString&) {
            return std::unique_ptr<OpsFilter>(new OddLineFilter());
        });
    GetOps().GetMessageHandlerManager().RegisterHandler(
        "CAPTURE", [capture](const AttributeSet&, Util::TString&) {
            return std::shared_ptr<Util::OpsMessageHandler>(capture);
        });
    ASSERT_TRUE(GetOps()
                    .GetSubscriptionManager()
                    .AddSubscription("Odd", "CAPTURE", "ODD_LINE", AttributeSet())
                    .Succeeded());
    for (long line = 1; line <= 4; ++line)
        GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, Util::SourceContext("f", line, "F", "F"),
                              "d");
    EXPECT_EQ(capture->Count(), 2u);
    EXPECT_TRUE(GetOps()
                    .GetSubscriptionManager()
                    .AddSubscription("Bad", "NO_HANDLER", "ODD_LINE", AttributeSet())
                    .Failed());
    EXPECT_EQ(GetOps().GetSubscriptionManager().RemoveSubscription("Odd"), 1u);
}

TEST_F(OpsRunning, ProcessFilterDecidesAsTheSameSubscriptionDoes) {
    const struct {
        const char* filter; // wrapped in <Filter> when it is not one
        Ops::EventType type;
        Ops::Level level;
        const char* text;
        bool matches;
    } cases[] = {
        {"<Filter><LEVEL_FILTER level='LVL_WARNING'/></Filter>", Ops::kMessage, Ops::kLvlError, "x",
         true},
        {"<Filter><LEVEL_FILTER level='LVL_WARNING'/></Filter>", Ops::kMessage,
         Ops::kLvlInfoSummary, "x", false},
        {"<Filter/>", Ops::kDump, Ops::kLvlNA, "x", true},
        {"<EVENT_TYPE_FILTER type='CHECKPOINT'/>", Ops::kCheckpoint, Ops::kLvlNA, "x", true},
        {"<EVENT_TYPE_FILTER type='CHECKPOINT'/>", Ops::kDump, Ops::kLvlNA, "x", false},
        {"<ANY_OF><EVENT_TYPE_FILTER type='ASSERT'/><MESSAGE_FILTER regexp='disk'/></ANY_OF>",
         Ops::kMessage, Ops::kLvlInfoDetail, "disk full", true},
        {"<ANY_OF><EVENT_TYPE_FILTER type='ASSERT'/><MESSAGE_FILTER regexp='disk'/></ANY_OF>",
         Ops::kMessage, Ops::kLvlInfoDetail, "memory low", false},
        {"<Filter><EXCLUDE><FILE_NAME_FILTER regexp='^mod/'/></EXCLUDE></Filter>", Ops::kMessage,
         Ops::kLvlError, "x", false},
    };
    Util::OpsSubscriptionManager& subscriptions = GetOps().GetSubscriptionManager();
    for (const auto& c : cases) {
        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(c.filter)) << c.filter;
        const Util::MessageContext context("mod/src/file.cpp", 1, "F", "void F()", c.text);
        bool matches = !c.matches;
        const Util::Status status = GetOps().GetMessageHandlerManager().ProcessFilter(
            document.document_element(), c.type, c.level, context, c.text, matches);
        EXPECT_TRUE(status.Succeeded()) << c.filter << ": " << status.GetStatusMessage().c_str();
        EXPECT_EQ(matches, c.matches) << c.filter << " / " << c.text;

        // The same description as a subscription, with a recording handler.
        const std::string filter = std::string(c.filter).rfind("<Filter", 0) == 0
                                       ? c.filter
                                       : std::string("<Filter>") + c.filter + "</Filter>";
        pugi::xml_document subscription;
        ASSERT_TRUE(subscription.load_string(
            ("<Subscription name='P'>" + filter + "<Handlers><BREAK/></Handlers></Subscription>")
                .c_str()));
        Util::OpsSubscriptionManager::Subscription built;
        ASSERT_TRUE(
            subscriptions.BuildSubscriptionDOM(subscription.document_element(), built).Succeeded());
        auto capture = std::make_shared<CaptureHandler>();
        (void)subscriptions.AddSubscription("P", built.filter, {capture});
        EXPECT_EQ(GetOps().GetMessageHandlerManager().ProcessFilter(built.filter.get(), c.type,
                                                                    c.level, context, c.text),
                  c.matches);
        GetOps().ReportEventA(c.type, c.level, context, c.text);
        EXPECT_EQ(capture->Count(), c.matches ? 1u : 0u) << c.filter << " / " << c.text;
        subscriptions.RemoveSubscription("P");
    }
}

TEST(OpsFilters, ProcessFilterSaysWhyADescriptionIsWrong) {
    const struct {
        const char* filter;
        const char* reason;
    } cases[] = {
        {"<Filter><NO_SUCH_FILTER/></Filter>", "Unknown filter \"NO_SUCH_FILTER\""},
        {"<Filter level='LVL_WARNING'/>", "<Filter> takes no attributes"},
    };
    const Util::MessageContext context("f.cpp", 1, "F", "F", "x");
    for (const auto& c : cases) {
        pugi::xml_document document;
        ASSERT_TRUE(document.load_string(c.filter));
        bool matches = true;
        const Util::Status status = GetOps().GetMessageHandlerManager().ProcessFilter(
            document.document_element(), Ops::kMessage, Ops::kLvlFatalError, context, "x", matches);
        EXPECT_TRUE(status.Failed()) << c.filter;
        EXPECT_NE(std::string(status.GetStatusMessage().c_str()).find(c.reason), std::string::npos)
            << status.GetStatusMessage().c_str();
        EXPECT_FALSE(matches);
    }
    EXPECT_TRUE(GetOps().GetMessageHandlerManager().ProcessFilter(nullptr, Ops::kDump, Ops::kLvlNA,
                                                                  context, "x"))
        << "no filter wants every event";
}
