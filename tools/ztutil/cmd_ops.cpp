// ztutil's operations-manager command and demo: "ops check FILE.ops" validates a subscription
// file and prints what it subscribes to; the demo shows events queued, replayed and logged.
#include "tools/ztutil/registry.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>

#include "Util/OpsContext.h"
#include "Util/OpsMacros.h"
#include "Util/OpsSubscriptionFileManager.h"

namespace {

using Util::Ops;

// "MESSAGE at LVL_WARNING and worse" style text for the pairs of one type.
std::string DescribeLevels(unsigned levels) {
    if (levels == 0x7f)
        return "any level";
    for (unsigned from = 1; from < 7; ++from) {
        if (levels == (0x7fu & ~((1u << from) - 1)))
            return std::string(Ops::MapLevelToLevelStr(static_cast<Ops::Level>(from))) +
                   " and worse";
    }
    std::string text;
    for (unsigned l = 0; l < 7; ++l) {
        if (levels & (1u << l)) {
            if (!text.empty())
                text += ", ";
            text += Ops::MapLevelToLevelStr(static_cast<Ops::Level>(l));
        }
    }
    return text;
}

void PrintWanted(std::ostream& out, const Util::OpsEventMask& mask) {
    if (mask.Empty()) {
        out << "    wants: nothing\n";
        return;
    }
    // Types that want the same levels are listed together.
    std::vector<std::pair<unsigned, std::string>> groups; // level bits, type names
    unsigned typesListed = 0;
    for (unsigned t = 0; t < Util::OpsEventMask::kTypeCount; ++t) {
        unsigned levels = 0;
        for (unsigned l = 0; l < Util::OpsEventMask::kLevelCount; ++l)
            if (mask.Test(t, l))
                levels |= 1u << l;
        if (!levels)
            continue;
        ++typesListed;
        const char* name = Ops::MapEventTypeToEventTypeStr(static_cast<Ops::EventType>(t));
        auto it = std::find_if(groups.begin(), groups.end(),
                               [levels](const auto& g) { return g.first == levels; });
        if (it == groups.end())
            groups.emplace_back(levels, name);
        else
            it->second += std::string(", ") + name;
    }
    for (const auto& group : groups) {
        const bool everyType = groups.size() == 1 && typesListed == Util::OpsEventMask::kTypeCount;
        out << "    wants: " << (everyType ? "every event type" : group.second) << " at "
            << DescribeLevels(group.first) << "\n";
    }
}

int RunOps(const std::vector<std::string>& args) {
    const char* usage = "ops check FILE.ops";
    if (args.size() != 2 || args[0] != "check")
        return ztutil::UsageError(usage, "expected: ops check FILE.ops");
    std::vector<Util::OpsSubscriptionManager::Subscription> subscriptions;
    Util::Status status =
        Util::OpsSubscriptionFileManager::ParseFile(args[1].c_str(), subscriptions);
    if (status.Failed()) {
        std::cerr << status.GetStatusMessage() << "\n";
        return 1;
    }
    std::cout << args[1] << ": " << subscriptions.size() << " subscription"
              << (subscriptions.size() == 1 ? "" : "s") << "\n";
    for (const auto& subscription : subscriptions) {
        std::cout << "  " << subscription.name << "\n";
        bool exact = true;
        if (subscription.filter) {
            subscription.filter->GetEventMask(exact);
            std::cout << "    filter: " << subscription.filter->Describe() << "\n";
        } else {
            std::cout << "    filter: none (every event)\n";
        }
        for (const auto& handler : subscription.handlers)
            std::cout << "    handler: " << handler->Describe() << "\n";
        PrintWanted(std::cout, subscription.mask);
        if (!exact)
            std::cout << "    (at most: its texts, INI values or keys decide the rest when an "
                         "event arrives)\n";
    }
    return 0;
}

class DemoContext : public Util::OpsContext {
public:
    explicit DemoContext(std::string directory) : m_directory(std::move(directory)) {}
    void GetOpsDirectory(Util::TString& directory) const override {
        directory = m_directory.c_str();
    }
    void GetOpsLogDirectory(Util::TString& directory) const override {
        directory = m_directory.c_str();
    }

private:
    std::string m_directory;
};

Util::Status LoadLedger(const char* name) {
    ZT_FUNC_OPS();
    if (!ZT_VERIFY(name != nullptr))
        ZT_RETURN(Util::Status::GetNullPtrArg());
    ZT_RETURN_STATUS(-8, "Ledger %s not found", name);
}

void DemoOps(std::ostream& out) {
    namespace fs = std::filesystem;
    const fs::path dir =
        fs::temp_directory_path() / ("ztutil_ops_demo_" + std::to_string(std::random_device()()));
    fs::create_directories(dir);
    Ops& ops = Util::GetOps();

    out << "Before BeginOperations every event is wanted and waits in a queue:\n";
    const std::size_t before = ops.GetPendingEventCount();
    ZT_WARNING("Disk space is low: %d MB left", 120);
    ZT_INFO("Opened company %s", "Northwind");
    (void)LoadLedger(nullptr);
    out << "  " << ops.GetPendingEventCount() - before
        << " events queued: two messages, and LoadLedger's entry, failed verification, status "
           "and exit\n";

    std::ofstream(dir / "Trace.ops")
        << "<OpsSubscriptions><Subscription name='Statuses'><Filter>"
           "<EVENT_TYPE_FILTER type='FUNC_STATUS'/></Filter><Handlers>"
           "<LOG_TO_FILE file_name='Trace.log' strip_source_info='true'/></Handlers>"
           "</Subscription></OpsSubscriptions>\n";
    DemoContext context(dir.string());
    ops.BeginOperations(&context);
    out << "BeginOperations replays them through the default subscriptions and Trace.ops;\n"
           "the info message is wanted by nobody. Ops.log now reads:\n";
    (void)LoadLedger("2026");
    ZT_EVENT(Ops::kCheckpoint, Ops::kLvlNA, "Year-end close finished");
    std::ifstream log(dir / "Ops.log");
    for (std::string line; std::getline(log, line);)
        out << "  " << line << "\n";
    out << "and Trace.log (FUNC_STATUS events, source information stripped):\n";
    std::ifstream trace(dir / "Trace.log");
    for (std::string line; std::getline(trace, line);)
        out << "  " << line << "\n";
    out << "Function entry is not wanted, so ZT_FUNC_OPS() costs a bit test: "
        << (Ops::IsEventLevelActive(Ops::kFuncEnter, Ops::kLvlNA) ? "wanted" : "not wanted")
        << "\n";
    ops.EndOperations();
    out << "After EndOperations events are dropped: reported as handled? "
        << (ops.ReportEventA(Ops::kCheckpoint, Ops::kLvlNA, Util::SourceContext(), "late") ? "yes"
                                                                                           : "no")
        << ", queued: " << ops.GetPendingEventCount() << "\n";
    std::error_code ignored;
    fs::remove_all(dir, ignored);
}

} // namespace

ZTUTIL_COMMAND(ops, "ops check FILE.ops", "Validate a subscription file and show what it wants",
               RunOps);
ZTUTIL_DEMO(20, "Operations manager", DemoOps);
