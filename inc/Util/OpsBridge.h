// Util::OpsBridge: the channel that carries events to an operations manager in another process.
//
// When operations are not running in this process (before BeginOperations, after EndOperations)
// and the bridge is connected, events are forwarded through it instead of being queued or
// dropped. BeginOperations starts the bridge and EndOperations stops it. Implementations must be
// safe to call from any thread. The default bridge, OpsNullBridge, is never connected.
#pragma once

#include "Util/Export.h"
#include "Util/Ops.h"

namespace Util {

class ZTUTIL_API OpsBridge {
public:
    virtual ~OpsBridge();
    virtual bool IsConnected() const = 0;
    // Returns whether the event was delivered.
    virtual bool ForwardEvent(Ops::EventType type, Ops::Level level, const SourceContext& context,
                              const char* message) = 0;
    virtual void Start() = 0;
    virtual void Stop() = 0;
};

class ZTUTIL_API OpsNullBridge : public OpsBridge {
public:
    bool IsConnected() const override { return false; }
    bool ForwardEvent(Ops::EventType, Ops::Level, const SourceContext&, const char*) override {
        return false;
    }
    void Start() override {}
    void Stop() override {}
};

} // namespace Util
