// Util::OpsSubscriptionManager: the process's subscriptions and the filter vocabulary.
//
// A subscription has a name, a filter (null: every event) and one or more handlers. Several
// subscriptions may share a name; removing a name removes them all. The manager keeps the union
// of the (type, level) pairs its subscriptions may want, so IsEventActive and IsLevelActive are
// a bit test, and it tells the operations manager after every change. Readers get an immutable
// snapshot of the list, so reporting threads never wait for a change in progress.
//
// Filters are made by keyword: "EVENT_TYPE_FILTER" ("type"), "LEVEL_FILTER" ("level": that level
// and worse), "FILE_NAME_FILTER", "FUNC_NAME_FILTER", "FUNC_SIG_FILTER", "MESSAGE_FILTER" (each
// "regexp", searched in the file name, function name, signature or formatted text),
// "INI_VALUE_FILTER" ("file_name", relative to the operations directory; "group" as
// "Section\Key"; "expected_value"; the file is read again when it changes),
// "NUM_LOCK_FILTER" (num lock on; never on POSIX), "ALL_OF", "ANY_OF" and "EXCLUDE" (groups).
// Applications add their own with RegisterFilter.
#pragma once

#include "Util/Export.h"
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "Util/OpsFilter.h"
#include "Util/OpsMessageHandler.h"
#include "Util/Status.h"

namespace pugi {
class xml_node;
}

namespace Util {

class ZTUTIL_API OpsSubscriptionManager {
public:
    struct Subscription {
        TString name;
        std::shared_ptr<const OpsFilter> filter; // null matches every event
        std::vector<std::shared_ptr<OpsMessageHandler>> handlers;
        OpsEventMask mask;
        const void* owner = nullptr;
    };
    using SubscriptionList = std::vector<Subscription>;
    using Snapshot = std::shared_ptr<const SubscriptionList>;

    static OpsSubscriptionManager& GetInstance();

    // One filter and one handler, both by keyword and both configured from the attributes.
    Status AddSubscription(const char* name, const char* handlerKeyword, const char* filterKeyword,
                           const AttributeSet& attributes, const void* owner = nullptr);
    Status AddSubscription(const char* name, std::shared_ptr<const OpsFilter> filter,
                           std::vector<std::shared_ptr<OpsMessageHandler>> handlers,
                           const void* owner = nullptr);
    // Builds a subscription from a <Subscription> element of a subscription file (see the README)
    // without adding it; the status names what is wrong.
    Status BuildSubscriptionDOM(const pugi::xml_node& element, Subscription& out) const;
    Status AddSubscriptionDOM(const pugi::xml_node& element, const void* owner = nullptr);
    // Adds built subscriptions at once (all or none are visible to readers).
    void AddSubscriptions(std::vector<Subscription> subscriptions);

    std::size_t RemoveSubscription(const char* name);
    std::size_t RemoveSubscriptionsOwnedBy(const void* owner);
    void RemoveAllSubscriptions();

    Snapshot GetSubscriptions() const;
    std::size_t GetSubscriptionCount() const;

    bool IsEventActive(Ops::EventType type) const;
    bool IsLevelActive(Ops::Level level) const;
    OpsEventMask GetEventMask() const;

    void RegisterFilter(const char* keyword, OpsFilterFactory factory);
    bool IsFilterKeyword(const char* keyword) const;
    // Null with a reason in error for an unknown keyword or bad attributes.
    std::unique_ptr<OpsFilter> CreateFilter(const char* keyword, const AttributeSet& attributes,
                                            TString& error) const;

    OpsSubscriptionManager(const OpsSubscriptionManager&) = delete;
    OpsSubscriptionManager& operator=(const OpsSubscriptionManager&) = delete;

private:
    OpsSubscriptionManager();
    ~OpsSubscriptionManager() = delete;
    void Publish(std::shared_ptr<SubscriptionList> list);

    struct Registry;
    std::unique_ptr<Registry> m_pRegistry;
    mutable std::mutex m_mutex; // guards m_list (the pointer) and m_mask
    Snapshot m_list;
    OpsEventMask m_mask;
};

} // namespace Util
