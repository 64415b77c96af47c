#include "Util/OpsMessageHandlerManager.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "OperationsManager/src/opsfactorylookup.h"
#include "OperationsManager/src/opsfilterdom.h"
#include "OperationsManager/src/opshandlers.h"
#include "Util/OpsSubscriptionManager.h"

namespace Util {

struct OpsMessageHandlerManager::Registry {
    mutable std::mutex mutex;
    std::map<std::string, OpsHandlerFactory> handlers;
};

namespace {

// Events reported by a handler while it runs are not handled again on that thread.
thread_local int t_handlingDepth = 0;

struct DepthGuard {
    DepthGuard() { ++t_handlingDepth; }
    ~DepthGuard() { --t_handlingDepth; }
};

// The one test of whether a subscription's filter wants an event: its mask first (a bit test,
// exact for type and level filters), then the filter itself.
bool FilterWants(const OpsEventMask& mask, const OpsFilter* filter, const OpsEvent& event) {
    return mask.Test(event.type, event.level) && (filter == nullptr || filter->Matches(event));
}

// The handlers matched for one event: inline up to a handful, on the heap beyond.
class SmallHandlerList {
public:
    void push_back(OpsMessageHandler* handler) {
        if (m_size == kInline && m_heap.empty())
            m_heap.assign(m_inline, m_inline + kInline);
        if (!m_heap.empty())
            m_heap.push_back(handler);
        else
            m_inline[m_size] = handler;
        ++m_size;
    }
    std::size_t size() const { return m_size; }
    OpsMessageHandler** begin() { return m_heap.empty() ? m_inline : m_heap.data(); }
    OpsMessageHandler** end() { return begin() + m_size; }
    OpsMessageHandler*& operator[](std::size_t i) { return begin()[i]; }
    void resize(std::size_t size) { // only to shrink
        m_size = size;
        if (!m_heap.empty())
            m_heap.resize(size);
    }

private:
    static constexpr std::size_t kInline = 8;
    OpsMessageHandler* m_inline[kInline];
    std::vector<OpsMessageHandler*> m_heap;
    std::size_t m_size = 0;
};

} // namespace

OpsMessageHandlerManager& OpsMessageHandlerManager::GetInstance() {
    static OpsMessageHandlerManager* const s_pInstance = new OpsMessageHandlerManager();
    return *s_pInstance;
}

OpsMessageHandlerManager::OpsMessageHandlerManager() : m_pRegistry(new Registry()) {
    OpsDetail::RegisterStandardHandlers(m_pRegistry->handlers);
}

void OpsMessageHandlerManager::RegisterHandler(const char* keyword, OpsHandlerFactory factory) {
    if (keyword == nullptr || !factory)
        return;
    std::lock_guard<std::mutex> lock(m_pRegistry->mutex);
    m_pRegistry->handlers[keyword] = std::move(factory);
}

bool OpsMessageHandlerManager::IsHandlerKeyword(const char* keyword) const {
    std::lock_guard<std::mutex> lock(m_pRegistry->mutex);
    return keyword != nullptr && m_pRegistry->handlers.count(keyword) != 0;
}

std::shared_ptr<OpsMessageHandler>
OpsMessageHandlerManager::CreateHandler(const char* keyword, const AttributeSet& attributes,
                                        TString& error) const {
    if (keyword == nullptr) {
        error = "No handler keyword";
        return nullptr;
    }
    return OpsDetail::CreateFromRegistry(m_pRegistry->mutex, m_pRegistry->handlers, keyword,
                                         "handler", attributes, error);
}

bool OpsMessageHandlerManager::HandleMessage(Ops::EventType type, Ops::Level level,
                                             const MessageContext& context, const char* text) {
    if (t_handlingDepth > 0)
        return false;
    DepthGuard depth;
    const OpsSubscriptionManager::Snapshot subscriptions =
        OpsSubscriptionManager::GetInstance().GetSubscriptions();
    const OpsEvent event{type, level, context, text ? text : ""};

    // Collect first: keys are compared only when more than one handler wants the event. A few
    // handlers per event is the rule, so they are collected on the stack.
    SmallHandlerList matched;
    for (const OpsSubscriptionManager::Subscription& subscription : *subscriptions) {
        if (!FilterWants(subscription.mask, subscription.filter.get(), event))
            continue;
        for (const auto& handler : subscription.handlers)
            matched.push_back(handler.get());
    }
    if (matched.size() > 1) {
        std::vector<std::string> keys;
        std::size_t kept = 0;
        for (OpsMessageHandler* handler : matched) {
            std::string key = handler->GetKey().c_str();
            if (std::find(keys.begin(), keys.end(), key) != keys.end())
                continue;
            keys.push_back(std::move(key));
            matched[kept++] = handler;
        }
        matched.resize(kept);
        // Handlers that end the process run last, once the event has been logged elsewhere.
        std::stable_partition(matched.begin(), matched.end(),
                              [](OpsMessageHandler* h) { return !h->EndsProcess(); });
    }
    bool handled = false;
    for (OpsMessageHandler* handler : matched) {
        try {
            handled = handler->HandleMessage(event) || handled;
        } catch (...) {
            // A failing handler must not take the reporting thread down with it.
        }
    }
    return handled;
}

bool OpsMessageHandlerManager::ProcessFilter(const OpsFilter* filter, Ops::EventType type,
                                             Ops::Level level, const MessageContext& context,
                                             const char* text) const {
    const OpsEvent event{type, level, context, text ? text : ""};
    bool exact = true;
    return FilterWants(filter ? filter->GetEventMask(exact) : OpsEventMask::All(), filter, event);
}

Status OpsMessageHandlerManager::ProcessFilter(const pugi::xml_node& element, Ops::EventType type,
                                               Ops::Level level, const MessageContext& context,
                                               const char* text, bool& matches) const {
    matches = false;
    std::shared_ptr<const OpsFilter> filter;
    Status status =
        OpsDetail::BuildFilterDOM(OpsSubscriptionManager::GetInstance(), element, filter);
    if (status.Failed())
        return status;
    matches = ProcessFilter(filter.get(), type, level, context, text);
    return status;
}

} // namespace Util
