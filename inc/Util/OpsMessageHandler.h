// Util::OpsMessageHandler: what a subscription does with an event it wants.
//
// A handler is built once from its attributes and called from many threads at the same time;
// it does its own locking. HandleMessage returns whether it handled the event. Handlers that
// end the process say so through EndsProcess and run after every other handler of the event.
// GetKey identifies what a handler does (for instance the file a log handler writes): when one
// event reaches several handlers with the same key, only the first runs, so an event wanted by
// two subscriptions that log to the same file is written once.
#pragma once

#include "Util/Export.h"
#include <functional>
#include <memory>

#include "Util/OpsFilter.h"
#include "Util/TString.h"

namespace Util {

class ZTUTIL_API OpsMessageHandler {
public:
    virtual ~OpsMessageHandler();
    virtual bool HandleMessage(const OpsEvent& event) = 0;
    virtual bool EndsProcess() const { return false; }
    virtual TString GetKey() const = 0;
    // A one-line description such as LOG_TO_FILE(file_name=Ops.log).
    virtual TString Describe() const = 0;
};

// Builds a handler from its attributes; on failure returns null and says why in error.
using OpsHandlerFactory = std::function<std::shared_ptr<OpsMessageHandler>(
    const AttributeSet& attributes, TString& error)>;

} // namespace Util
