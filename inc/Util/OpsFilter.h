// Util::OpsFilter: decides whether a subscription wants an event.
//
// A filter is built once from its attributes and then asked about events from many threads at
// the same time, so Matches must not change the filter (a filter that caches, such as the INI
// value filter, locks internally). GetEventMask tells which (type, level) pairs the filter can
// ever match: exactly for filters that look only at type and level, and conservatively (every
// pair) for filters that look at texts or outside state. The operations manager uses the union
// of these masks to skip unwanted events before formatting them.
//
// Groups compose filters: kAllOf matches when every child matches (an empty one matches
// everything), kAnyOf when some child matches (an empty one matches nothing), and kExclude when
// no child matches (an empty one matches nothing, which switches a subscription off).
#pragma once

#include "Util/Export.h"
#include <functional>
#include <memory>
#include <vector>

#include "Util/Ops.h"
#include "Util/OpsEventMask.h"
#include "Util/TString.h"

namespace Util {

class AttributeSet;

// One event as the subscription machinery sees it.
struct OpsEvent {
    Ops::EventType type;
    Ops::Level level;
    const MessageContext& context;
    const char* text; // the formatted message, never null
};

class ZTUTIL_API OpsFilter {
public:
    virtual ~OpsFilter();
    virtual bool Matches(const OpsEvent& event) const = 0;
    // The pairs this filter may match; exact is false when the mask is only an upper bound.
    virtual OpsEventMask GetEventMask(bool& exact) const;
    // A one-line description such as LEVEL_FILTER(level=LVL_WARNING).
    virtual TString Describe() const = 0;
};

class ZTUTIL_API OpsFilterGroup : public OpsFilter {
public:
    enum Kind { kAllOf, kAnyOf, kExclude };
    explicit OpsFilterGroup(Kind kind) : m_kind(kind) {}

    void Add(std::unique_ptr<OpsFilter> child);
    Kind GetKind() const { return m_kind; }
    std::size_t GetChildCount() const { return m_children.size(); }

    bool Matches(const OpsEvent& event) const override;
    OpsEventMask GetEventMask(bool& exact) const override;
    TString Describe() const override;

private:
    Kind m_kind;
    std::vector<std::unique_ptr<OpsFilter>> m_children;
};

// Builds a filter from its attributes; on failure returns null and says why in error.
using OpsFilterFactory =
    std::function<std::unique_ptr<OpsFilter>(const AttributeSet& attributes, TString& error)>;

} // namespace Util
