#include "Util/OpsContext.h"

#include "Util/AttributeSet.h"
#include "Util/Ops.h"
#include "Util/OpsMessageHandlerManager.h"
#include "Util/OpsSubscriptionManager.h"

namespace Util {

OpsContext::~OpsContext() = default;

void OpsContext::GetOpsDirectory(TString& directory) const {
    directory = "";
}

void OpsContext::GetOpsLogDirectory(TString& directory) const {
    directory = "";
}

void OpsContext::SetOpsFileConfigDirectory(const TString&) {}

void OpsContext::SetOpsFileLogDirectory(const TString&) {}

void OpsContext::RegisterCustomMessageHandlers(OpsMessageHandlerManager&) const {}

void OpsContext::RegisterCustomMessageFilters(OpsSubscriptionManager&) const {}

void OpsContext::RegisterSubscriptions(OpsSubscriptionManager& manager) const {
    // One attribute set accumulates: each filter and handler reads only the names it knows.
    AttributeSet attributes;
    attributes.SetAttribute("file_name", "Ops.log");
    attributes.SetAttribute("level", "LVL_WARNING");
    (void)manager.AddSubscription("Default", "LOG_TO_FILE", "LEVEL_FILTER", attributes);
    attributes.SetAttribute("type", "CHECKPOINT");
    (void)manager.AddSubscription("Default", "LOG_TO_FILE", "EVENT_TYPE_FILTER", attributes);
    attributes.SetAttribute("type", "ASSERT");
    (void)manager.AddSubscription("Default", "LOG_TO_FILE", "EVENT_TYPE_FILTER", attributes);
    attributes.SetAttribute("type", "VERIFY");
    (void)manager.AddSubscription("Default", "LOG_TO_FILE", "EVENT_TYPE_FILTER", attributes);
    attributes.SetAttribute("level", "LVL_FATAL_ERROR");
    (void)manager.AddSubscription("Default", "FAIL", "LEVEL_FILTER", attributes);
    attributes.SetAttribute("type", "SEND_ERROR");
    (void)manager.AddSubscription("Default", "LOG_TO_FILE", "EVENT_TYPE_FILTER", attributes);
}

void OpsContext::Initialize() const {
    OpsMessageHandlerManager& handlers = GetOps().GetMessageHandlerManager();
    OpsSubscriptionManager& subscriptions = GetOps().GetSubscriptionManager();
    RegisterCustomMessageHandlers(handlers);
    RegisterCustomMessageFilters(subscriptions);
    RegisterSubscriptions(subscriptions);
}

} // namespace Util
