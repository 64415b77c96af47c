// Util::OpsMessageHandlerManager: runs the handlers of the subscriptions that want an event,
// and keeps the handler vocabulary.
//
// Handlers are made by keyword: "LOG_TO_FILE" ("file_name", "strip_source_info"),
// "LOG_TO_DEBUG_OUTPUT", "FAIL" ("message"), "BEEP" ("frequency", "duration"), "BREAK" and
// "ALERT_USER" ("message", "show_break_button"). Applications add their own with
// RegisterHandler. HandleMessage may be called from any thread. An event reported by a handler
// while it runs (on the same thread) is not handled again, so a handler cannot recurse forever.
//
// ProcessFilter answers whether a filter wants an event exactly as HandleMessage decides it for
// a subscription (the filter's (type, level) mask, then the filter), without running handlers:
// for a filter already built, or for one described as in a subscription file, either a <Filter>
// element (all of its children must match; an empty one matches every event) or a single filter
// element such as <LEVEL_FILTER level="LVL_WARNING"/> or <ANY_OF>...</ANY_OF>.
#pragma once

#include "Util/Export.h"
#include <memory>

#include "Util/OpsMessageHandler.h"
#include "Util/Status.h"

namespace pugi {
class xml_node;
}

namespace Util {

class OpsFilter;

class ZTUTIL_API OpsMessageHandlerManager {
public:
    static OpsMessageHandlerManager& GetInstance();

    // Runs the handlers of every matching subscription; returns whether any handled the event.
    bool HandleMessage(Ops::EventType type, Ops::Level level, const MessageContext& context,
                       const char* text);

    // Whether the filter (null: every event) wants the event.
    bool ProcessFilter(const OpsFilter* filter, Ops::EventType type, Ops::Level level,
                       const MessageContext& context, const char* text) const;
    // The same for a filter described by subscription-file elements, built with the subscription
    // manager's filter vocabulary. A description that cannot be built gives a failed status that
    // says what is wrong, and matches is false.
    Status ProcessFilter(const pugi::xml_node& filter, Ops::EventType type, Ops::Level level,
                         const MessageContext& context, const char* text, bool& matches) const;

    void RegisterHandler(const char* keyword, OpsHandlerFactory factory);
    bool IsHandlerKeyword(const char* keyword) const;
    std::shared_ptr<OpsMessageHandler>
    CreateHandler(const char* keyword, const AttributeSet& attributes, TString& error) const;

    OpsMessageHandlerManager(const OpsMessageHandlerManager&) = delete;
    OpsMessageHandlerManager& operator=(const OpsMessageHandlerManager&) = delete;

private:
    OpsMessageHandlerManager();
    ~OpsMessageHandlerManager() = delete;

    struct Registry;
    std::unique_ptr<Registry> m_pRegistry;
};

} // namespace Util
