#include "Util/OpsSubscriptionManager.h"

#include <map>
#include <string>

#include "OperationsManager/src/opsfactorylookup.h"
#include "OperationsManager/src/opsfilters.h"
#include "Util/OpsMessageHandlerManager.h"

namespace Util {

namespace {

// The reason names keywords and values given by the caller: it is an attribute, not the format.
Status Refused(const TString& reason) {
    Status status(-3, "%Reason%");
    status.SetAttribute("Reason", reason);
    return status;
}

} // namespace

struct OpsSubscriptionManager::Registry {
    mutable std::mutex mutex;
    std::map<std::string, OpsFilterFactory> filters;
};

OpsSubscriptionManager& OpsSubscriptionManager::GetInstance() {
    static OpsSubscriptionManager* const s_pInstance = new OpsSubscriptionManager();
    return *s_pInstance;
}

OpsSubscriptionManager::OpsSubscriptionManager()
    : m_pRegistry(new Registry()), m_list(std::make_shared<const SubscriptionList>()) {
    OpsDetail::RegisterStandardFilters(m_pRegistry->filters);
}

void OpsSubscriptionManager::RegisterFilter(const char* keyword, OpsFilterFactory factory) {
    if (keyword == nullptr || !factory)
        return;
    std::lock_guard<std::mutex> lock(m_pRegistry->mutex);
    m_pRegistry->filters[keyword] = std::move(factory);
}

bool OpsSubscriptionManager::IsFilterKeyword(const char* keyword) const {
    OpsFilterGroup::Kind kind;
    if (OpsDetail::IsGroupKeyword(keyword, kind))
        return true;
    std::lock_guard<std::mutex> lock(m_pRegistry->mutex);
    return keyword != nullptr && m_pRegistry->filters.count(keyword) != 0;
}

std::unique_ptr<OpsFilter> OpsSubscriptionManager::CreateFilter(const char* keyword,
                                                                const AttributeSet& attributes,
                                                                TString& error) const {
    if (keyword == nullptr) {
        error = "No filter keyword";
        return nullptr;
    }
    OpsFilterGroup::Kind kind;
    if (OpsDetail::IsGroupKeyword(keyword, kind))
        return std::unique_ptr<OpsFilter>(new OpsFilterGroup(kind));
    return OpsDetail::CreateFromRegistry(m_pRegistry->mutex, m_pRegistry->filters, keyword,
                                         "filter", attributes, error);
}

Status OpsSubscriptionManager::AddSubscription(const char* name, const char* handlerKeyword,
                                               const char* filterKeyword,
                                               const AttributeSet& attributes, const void* owner) {
    TString error;
    std::unique_ptr<OpsFilter> filter = CreateFilter(filterKeyword, attributes, error);
    if (!filter)
        return Refused(error);
    std::shared_ptr<OpsMessageHandler> handler =
        OpsMessageHandlerManager::GetInstance().CreateHandler(handlerKeyword, attributes, error);
    if (!handler)
        return Refused(error);
    return AddSubscription(name, std::shared_ptr<const OpsFilter>(std::move(filter)), {handler},
                           owner);
}

Status
OpsSubscriptionManager::AddSubscription(const char* name, std::shared_ptr<const OpsFilter> filter,
                                        std::vector<std::shared_ptr<OpsMessageHandler>> handlers,
                                        const void* owner) {
    if (handlers.empty())
        return Status(-3, "A subscription needs at least one handler");
    for (const auto& handler : handlers)
        if (!handler)
            return Status(-4, "A subscription's handler is null");
    Subscription subscription;
    subscription.name = name ? name : "";
    subscription.filter = std::move(filter);
    subscription.handlers = std::move(handlers);
    subscription.owner = owner;
    std::vector<Subscription> one;
    one.push_back(std::move(subscription));
    AddSubscriptions(std::move(one));
    return Status::GetSucceeded();
}

void OpsSubscriptionManager::AddSubscriptions(std::vector<Subscription> subscriptions) {
    if (subscriptions.empty())
        return;
    for (Subscription& subscription : subscriptions) {
        bool exact = true;
        subscription.mask =
            subscription.filter ? subscription.filter->GetEventMask(exact) : OpsEventMask::All();
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto list = std::make_shared<SubscriptionList>(*m_list);
        for (Subscription& subscription : subscriptions) {
            m_mask |= subscription.mask;
            list->push_back(std::move(subscription));
        }
        m_list = std::move(list);
    }
    GetOps().RefreshActivity();
}

void OpsSubscriptionManager::Publish(std::shared_ptr<SubscriptionList> list) {
    OpsEventMask mask;
    for (const Subscription& subscription : *list)
        mask |= subscription.mask;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_list = std::move(list);
        m_mask = mask;
    }
    GetOps().RefreshActivity();
}

std::size_t OpsSubscriptionManager::RemoveSubscription(const char* name) {
    const std::string wanted = name ? name : "";
    std::size_t removed = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto list = std::make_shared<SubscriptionList>();
        OpsEventMask mask;
        for (const Subscription& subscription : *m_list) {
            if (wanted == subscription.name.c_str()) {
                ++removed;
            } else {
                list->push_back(subscription);
                mask |= subscription.mask;
            }
        }
        if (removed == 0)
            return 0;
        m_list = std::move(list);
        m_mask = mask;
    }
    GetOps().RefreshActivity();
    return removed;
}

std::size_t OpsSubscriptionManager::RemoveSubscriptionsOwnedBy(const void* owner) {
    std::size_t removed = 0;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto list = std::make_shared<SubscriptionList>();
        OpsEventMask mask;
        for (const Subscription& subscription : *m_list) {
            if (owner != nullptr && subscription.owner == owner) {
                ++removed;
            } else {
                list->push_back(subscription);
                mask |= subscription.mask;
            }
        }
        if (removed == 0)
            return 0;
        m_list = std::move(list);
        m_mask = mask;
    }
    GetOps().RefreshActivity();
    return removed;
}

void OpsSubscriptionManager::RemoveAllSubscriptions() {
    Publish(std::make_shared<SubscriptionList>());
}

OpsSubscriptionManager::Snapshot OpsSubscriptionManager::GetSubscriptions() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_list;
}

std::size_t OpsSubscriptionManager::GetSubscriptionCount() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_list->size();
}

OpsEventMask OpsSubscriptionManager::GetEventMask() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_mask;
}

bool OpsSubscriptionManager::IsEventActive(Ops::EventType type) const {
    return (GetEventMask().Types() >> unsigned(type) & 1u) != 0 &&
           unsigned(type) < OpsEventMask::kTypeCount;
}

bool OpsSubscriptionManager::IsLevelActive(Ops::Level level) const {
    return (GetEventMask().Levels() >> unsigned(level) & 1u) != 0 &&
           unsigned(level) < OpsEventMask::kLevelCount;
}

} // namespace Util
