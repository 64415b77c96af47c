// Util::OpsContext: the application's hook into the operations manager.
//
// An application derives from it and passes an instance to Ops::BeginOperations. The context
// names the directory searched for "*.ops" subscription files and the directory that log files
// are written to, and registers custom handlers, custom filters and subscriptions when
// operations first begin. The base class gives empty directories (the current directory) and
// registers the default subscriptions: warnings and worse, checkpoints, assertions,
// verifications and errors to send go to "Ops.log", and a fatal error ends the process.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

namespace Util {

class OpsMessageHandlerManager;
class OpsSubscriptionManager;

class ZTUTIL_API OpsContext {
public:
    OpsContext() = default;
    virtual ~OpsContext();

    virtual void GetOpsDirectory(TString& directory) const;
    virtual void GetOpsLogDirectory(TString& directory) const;
    virtual void SetOpsFileConfigDirectory(const TString& directory);
    virtual void SetOpsFileLogDirectory(const TString& directory);
    virtual void RegisterCustomMessageHandlers(OpsMessageHandlerManager& manager) const;
    virtual void RegisterCustomMessageFilters(OpsSubscriptionManager& manager) const;
    virtual void RegisterSubscriptions(OpsSubscriptionManager& manager) const;

    // Calls RegisterCustomMessageHandlers, RegisterCustomMessageFilters and
    // RegisterSubscriptions, in that order.
    void Initialize() const;
};

} // namespace Util
