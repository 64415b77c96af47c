// Util::OpsMessageHandlerManager: runs the handlers of the subscriptions that want an event,
// and keeps the handler vocabulary.
//
// Handlers are made by keyword: "LOG_TO_FILE" ("file_name", "strip_source_info"),
// "LOG_TO_DEBUG_OUTPUT", "FAIL" ("message"), "BEEP" ("frequency", "duration"), "BREAK" and
// "ALERT_USER" ("message", "show_break_button"). Applications add their own with
// RegisterHandler. HandleMessage may be called from any thread. An event reported by a handler
// while it runs (on the same thread) is not handled again, so a handler cannot recurse forever.
#pragma once

#include "Util/Export.h"
#include <memory>

#include "Util/OpsMessageHandler.h"

namespace Util {

class ZTUTIL_API OpsMessageHandlerManager {
public:
    static OpsMessageHandlerManager& GetInstance();

    // Runs the handlers of every matching subscription; returns whether any handled the event.
    bool HandleMessage(Ops::EventType type, Ops::Level level, const MessageContext& context,
                       const char* text);

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
