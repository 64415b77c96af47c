#include "Util/OpsBridge.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::GetOps;
using Util::Ops;
using namespace OpsTest;

namespace {

// A bridge that is connected once started and records what it forwards.
class RecordingBridge : public Util::OpsBridge {
public:
    explicit RecordingBridge(bool connected) : m_connected(connected) {}
    bool IsConnected() const override { return m_connected; }
    bool ForwardEvent(Ops::EventType type, Ops::Level, const Util::SourceContext&,
                      const char* message) override {
        forwarded.push_back(std::string(Ops::MapEventTypeToEventTypeStr(type)) + " " + message);
        return true;
    }
    void Start() override { ++starts; }
    void Stop() override { ++stops; }

    bool m_connected;
    std::vector<std::string> forwarded;
    int starts = 0, stops = 0;
};

} // namespace

TEST(OpsBridge, TheDefaultBridgeIsNeverConnected) {
    Util::OpsNullBridge bridge;
    bridge.Start();
    EXPECT_FALSE(bridge.IsConnected());
    EXPECT_FALSE(bridge.ForwardEvent(Ops::kMessage, Ops::kLvlError, Util::SourceContext(), "x"));
    EXPECT_FALSE(GetOps().GetBridge().IsConnected());
}

TEST(OpsBridge, AConnectedBridgeCarriesEventsWhileOperationsAreNotRunning) {
    OPS_IN_FRESH_PROCESS([]() -> std::string {
        auto* bridge = new RecordingBridge(true);
        GetOps().SetBridge(std::unique_ptr<Util::OpsBridge>(bridge));
        const Util::SourceContext here("b.cpp", 1, "F", "void F()");
        GetOps().ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, here, "early");
        if (GetOps().GetPendingEventCount() != 0)
            return "queued although the bridge is connected";

        TempDir dir;
        TestContext context(dir.Path());
        auto local = Subscribe();
        GetOps().BeginOperations(&context);
        GetOps().ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, here, "local");
        GetOps().EndOperations();
        if (bridge->starts != 1 || bridge->stops != 1)
            return "the bridge was not started and stopped once";
        GetOps().ReportEventA(Ops::kDump, Ops::kLvlNA, here, "late");
        if (!Ops::IsEventLevelActive(Ops::kDump, Ops::kLvlNA))
            return "events are gated off although a bridge may carry them";
        const std::vector<std::string> expected = {"CHECKPOINT early", "DUMP late"};
        if (bridge->forwarded != expected)
            return "forwarded the wrong events";
        if (local->Count() != 1 || local->Events()[0].text != "local")
            return "the local subscription did not see exactly the local event";

        // An event from the other process is handled here like one of our own.
        GetOps().BeginOperations(&context);
        if (!GetOps().ReportBridgedEvent(Ops::kMessage, Ops::kLvlError, here, "remote"))
            return "a bridged event was not handled";
        GetOps().EndOperations();
        GetOps().SetBridge(nullptr);
        if (GetOps().GetBridge().IsConnected())
            return "the default bridge was not restored";
        return "";
    });
}
