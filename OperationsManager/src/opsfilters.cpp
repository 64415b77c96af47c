#include "OperationsManager/src/opsfilters.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>

#include "OperationsManager/src/opsattributes.h"
#include "OperationsManager/src/opsfilelist.h"
#include "OperationsManager/src/opsinifile.h"
#include "OperationsManager/src/opsplatform.h"
#include "OperationsManager/src/opsregexfilter.h"
#include "Util/OpsContext.h"

namespace Util {

OpsFilter::~OpsFilter() = default;

OpsEventMask OpsFilter::GetEventMask(bool& exact) const {
    exact = false;
    return OpsEventMask::All();
}

void OpsFilterGroup::Add(std::unique_ptr<OpsFilter> child) {
    if (child)
        m_children.push_back(std::move(child));
}

bool OpsFilterGroup::Matches(const OpsEvent& event) const {
    switch (m_kind) {
    case kAllOf:
        for (const auto& child : m_children)
            if (!child->Matches(event))
                return false;
        return true;
    case kAnyOf:
        for (const auto& child : m_children)
            if (child->Matches(event))
                return true;
        return false;
    case kExclude:
        if (m_children.empty())
            return false;
        for (const auto& child : m_children)
            if (child->Matches(event))
                return false;
        return true;
    }
    return false;
}

OpsEventMask OpsFilterGroup::GetEventMask(bool& exact) const {
    exact = true;
    OpsEventMask mask = m_kind == kAllOf ? OpsEventMask::All() : OpsEventMask::None();
    for (const auto& child : m_children) {
        bool childExact = false;
        const OpsEventMask childMask = child->GetEventMask(childExact);
        exact = exact && childExact;
        mask = m_kind == kAllOf ? (mask & childMask) : (mask | childMask);
    }
    if (m_kind != kExclude)
        return mask;
    if (m_children.empty())
        return OpsEventMask::None();
    // The complement of an upper bound is no bound at all, so only an exact mask may be negated.
    if (exact)
        return mask.Complement();
    return OpsEventMask::All();
}

TString OpsFilterGroup::Describe() const {
    std::string text = m_kind == kAllOf ? "ALL_OF(" : m_kind == kAnyOf ? "ANY_OF(" : "EXCLUDE(";
    for (std::size_t i = 0; i < m_children.size(); ++i) {
        if (i)
            text += ", ";
        text += m_children[i]->Describe().c_str();
    }
    text += ")";
    return TString(text.c_str());
}

namespace OpsDetail {

namespace {

class EventTypeFilter : public OpsFilter {
public:
    explicit EventTypeFilter(Ops::EventType type) : m_type(type) {}
    bool Matches(const OpsEvent& event) const override { return event.type == m_type; }
    OpsEventMask GetEventMask(bool& exact) const override {
        exact = true;
        return OpsEventMask::OfType(m_type);
    }
    TString Describe() const override {
        return TString(
            (std::string("EVENT_TYPE_FILTER(type=") + Ops::MapEventTypeToEventTypeStr(m_type) + ")")
                .c_str());
    }

private:
    Ops::EventType m_type;
};

class LevelFilter : public OpsFilter {
public:
    explicit LevelFilter(Ops::Level level) : m_level(level) {}
    bool Matches(const OpsEvent& event) const override { return event.level >= m_level; }
    OpsEventMask GetEventMask(bool& exact) const override {
        exact = true;
        return OpsEventMask::FromLevel(m_level);
    }
    TString Describe() const override {
        return TString(
            (std::string("LEVEL_FILTER(level=") + Ops::MapLevelToLevelStr(m_level) + ")").c_str());
    }

private:
    Ops::Level m_level;
};

std::atomic<FilterClock> g_filterClock{nullptr};

std::chrono::steady_clock::time_point FilterNow() {
    const FilterClock clock = g_filterClock.load(std::memory_order_relaxed);
    return clock != nullptr ? clock() : std::chrono::steady_clock::now();
}

// Matches while a value in an INI file equals the expected text, so that logging can be switched
// on and off by editing a file while the application runs. The file is read again at most twice
// a second, and only when it changed.
class IniValueFilter : public OpsFilter {
public:
    IniValueFilter(std::string file, std::string section, std::string key, std::string expected)
        : m_file(std::move(file)), m_section(std::move(section)), m_key(std::move(key)),
          m_expected(std::move(expected)) {}
    bool Matches(const OpsEvent&) const override {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto now = FilterNow();
        if (!m_checked || now - m_lastCheck >= std::chrono::milliseconds(500)) {
            m_checked = true;
            m_lastCheck = now;
            // A relative name is looked for in the operations directory, beside the .ops files.
            TString directory;
            if (const OpsContext* context = GetOps().GetOpsContext())
                context->GetOpsDirectory(directory);
            std::string value;
            m_matches =
                m_reader.GetValue(JoinPath(directory.c_str(), m_file), m_section, m_key, value) &&
                value == m_expected;
        }
        return m_matches;
    }
    TString Describe() const override {
        return TString((std::string("INI_VALUE_FILTER(file_name=") + m_file + ", group=" +
                        m_section + "\\" + m_key + ", expected_value=" + m_expected + ")")
                           .c_str());
    }

private:
    std::string m_file, m_section, m_key, m_expected;
    mutable std::mutex m_mutex;
    mutable IniFileReader m_reader;
    mutable bool m_checked = false;
    mutable bool m_matches = false;
    mutable std::chrono::steady_clock::time_point m_lastCheck;
};

class NumLockFilter : public OpsFilter {
public:
    bool Matches(const OpsEvent&) const override { return IsNumLockOn(); }
    TString Describe() const override { return TString("NUM_LOCK_FILTER"); }
};

std::unique_ptr<OpsFilter> MakeEventTypeFilter(const AttributeSet& attributes, TString& error) {
    std::string keyword;
    if (!GetTextAttribute(attributes, "type", keyword)) {
        error = "EVENT_TYPE_FILTER needs the attribute \"type\"";
        return nullptr;
    }
    const Ops::EventType type = Ops::MapEventTypeStrToEventType(keyword.c_str());
    if (type == Ops::kUnknownEventType) {
        error = ("EVENT_TYPE_FILTER: unknown event type \"" + keyword + "\"").c_str();
        return nullptr;
    }
    return std::unique_ptr<OpsFilter>(new EventTypeFilter(type));
}

std::unique_ptr<OpsFilter> MakeLevelFilter(const AttributeSet& attributes, TString& error) {
    std::string keyword;
    if (!GetTextAttribute(attributes, "level", keyword)) {
        error = "LEVEL_FILTER needs the attribute \"level\"";
        return nullptr;
    }
    const Ops::Level level = Ops::MapLevelStrToLevel(keyword.c_str());
    if (level == Ops::kUnknownLevel) {
        error = ("LEVEL_FILTER: unknown level \"" + keyword + "\"").c_str();
        return nullptr;
    }
    return std::unique_ptr<OpsFilter>(new LevelFilter(level));
}

std::unique_ptr<OpsFilter> MakeIniValueFilter(const AttributeSet& attributes, TString& error) {
    std::string file, group, expected;
    if (!GetTextAttribute(attributes, "file_name", file) ||
        !GetTextAttribute(attributes, "group", group) ||
        !GetTextAttribute(attributes, "expected_value", expected)) {
        error = "INI_VALUE_FILTER needs the attributes \"file_name\", \"group\" and "
                "\"expected_value\"";
        return nullptr;
    }
    const std::size_t split = group.find_last_of("\\/");
    if (split == std::string::npos || split == 0 || split + 1 == group.size()) {
        error =
            ("INI_VALUE_FILTER: \"group\" must read Section\\Key, not \"" + group + "\"").c_str();
        return nullptr;
    }
    return std::unique_ptr<OpsFilter>(
        new IniValueFilter(file, group.substr(0, split), group.substr(split + 1), expected));
}

} // namespace

void SetFilterClock(FilterClock clock) {
    g_filterClock.store(clock, std::memory_order_relaxed);
}

bool IsGroupKeyword(const char* keyword, OpsFilterGroup::Kind& kind) {
    if (keyword == nullptr)
        return false;
    if (std::strcmp(keyword, "ALL_OF") == 0)
        kind = OpsFilterGroup::kAllOf;
    else if (std::strcmp(keyword, "ANY_OF") == 0)
        kind = OpsFilterGroup::kAnyOf;
    else if (std::strcmp(keyword, "EXCLUDE") == 0)
        kind = OpsFilterGroup::kExclude;
    else
        return false;
    return true;
}

void RegisterStandardFilters(std::map<std::string, OpsFilterFactory>& registry) {
    registry["EVENT_TYPE_FILTER"] = MakeEventTypeFilter;
    registry["LEVEL_FILTER"] = MakeLevelFilter;
    registry["FILE_NAME_FILTER"] = MakeRegexFilterFactory(RegexField::kFile, "FILE_NAME_FILTER");
    registry["FUNC_NAME_FILTER"] =
        MakeRegexFilterFactory(RegexField::kFunction, "FUNC_NAME_FILTER");
    registry["FUNC_SIG_FILTER"] = MakeRegexFilterFactory(RegexField::kSignature, "FUNC_SIG_FILTER");
    registry["MESSAGE_FILTER"] = MakeRegexFilterFactory(RegexField::kMessage, "MESSAGE_FILTER");
    registry["INI_VALUE_FILTER"] = MakeIniValueFilter;
    registry["NUM_LOCK_FILTER"] = [](const AttributeSet&, TString&) {
        return std::unique_ptr<OpsFilter>(new NumLockFilter());
    };
}

} // namespace OpsDetail
} // namespace Util
