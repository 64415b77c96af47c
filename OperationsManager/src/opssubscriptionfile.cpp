#include <cstring>
#include <string>

#include <pugixml.hpp>

#include "OperationsManager/src/opsfilterdom.h"
#include "OperationsManager/src/opsreadfile.h"
#include "Util/AttributeSet.h"
#include "Util/OpsMacros.h"
#include "Util/OpsMessageHandlerManager.h"
#include "Util/OpsSubscriptionFileManager.h"

namespace Util {

namespace {

const char kRootElement[] = "OpsSubscriptions";
const char kSubscriptionElement[] = "Subscription";
const char kFilterElement[] = "Filter";
const char kHandlersElement[] = "Handlers";

// Deeper nesting than any sensible filter needs; also keeps hostile files off the stack's end.
const int kMaxFilterDepth = 32;

// Element names, attribute values and regular expressions come from the file: they travel as an
// attribute, so that a '%' in them is shown as written instead of being read as a placeholder.
Status Malformed(const std::string& reason) {
    Status status(-14, "%Reason%");
    status.SetAttribute("Reason", reason.c_str());
    return status;
}

struct ParseError {
    const pugi::xml_node node;
    std::string text;
};

AttributeSet AttributesOf(const pugi::xml_node& element) {
    AttributeSet attributes;
    for (const pugi::xml_attribute& attribute : element.attributes())
        attributes.SetAttribute(attribute.name(), attribute.value());
    return attributes;
}

bool IsElement(const pugi::xml_node& node) {
    return node.type() == pugi::node_element;
}

// Text outside elements is a mistake in these files (a stray word usually means a typo).
bool HasStrayText(const pugi::xml_node& element, pugi::xml_node& where) {
    for (const pugi::xml_node& child : element.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            const char* text = child.value();
            while (*text == ' ' || *text == '\t' || *text == '\r' || *text == '\n')
                ++text;
            if (*text) {
                where = child;
                return true;
            }
        }
    }
    return false;
}

std::unique_ptr<OpsFilter> BuildFilter(const OpsSubscriptionManager& manager,
                                       const pugi::xml_node& element, int depth, std::string& error,
                                       pugi::xml_node& where) {
    where = element;
    if (depth > kMaxFilterDepth) {
        error = "filters nested too deeply";
        return nullptr;
    }
    TString reason;
    std::unique_ptr<OpsFilter> filter =
        manager.CreateFilter(element.name(), AttributesOf(element), reason);
    if (!filter) {
        error = reason.c_str();
        return nullptr;
    }
    auto* group = dynamic_cast<OpsFilterGroup*>(filter.get());
    pugi::xml_node stray;
    if (HasStrayText(element, stray)) {
        where = stray;
        error = std::string("unexpected text in <") + element.name() + ">";
        return nullptr;
    }
    for (const pugi::xml_node& child : element.children()) {
        if (!IsElement(child))
            continue;
        if (!group) {
            where = child;
            error = std::string("the filter <") + element.name() + "> cannot hold other filters";
            return nullptr;
        }
        std::unique_ptr<OpsFilter> inner = BuildFilter(manager, child, depth + 1, error, where);
        if (!inner)
            return nullptr;
        group->Add(std::move(inner));
    }
    return filter;
}

long LineOf(const char* text, std::size_t length, std::ptrdiff_t offset) {
    if (offset < 0)
        return 0;
    long line = 1;
    for (std::size_t i = 0; i < length && i < static_cast<std::size_t>(offset); ++i)
        if (text[i] == '\n')
            ++line;
    return line;
}

} // namespace

namespace OpsDetail {

Status BuildFilterDOM(const OpsSubscriptionManager& manager, const pugi::xml_node& element,
                      std::shared_ptr<const OpsFilter>& out) {
    out.reset();
    if (!IsElement(element))
        return Status(-14, "expected a filter element");
    pugi::xml_node stray;
    std::string error;
    pugi::xml_node where;
    if (std::strcmp(element.name(), kFilterElement) != 0) {
        std::unique_ptr<OpsFilter> filter = BuildFilter(manager, element, 1, error, where);
        if (!filter)
            return Malformed(error);
        out = std::move(filter);
        return Status::GetSucceeded();
    }
    auto all = std::unique_ptr<OpsFilterGroup>(new OpsFilterGroup(OpsFilterGroup::kAllOf));
    if (element.first_attribute())
        return Status(-14, "<Filter> takes no attributes");
    if (HasStrayText(element, stray))
        return Status(-14, "unexpected text in <Filter>");
    for (const pugi::xml_node& filterElement : element.children()) {
        if (!IsElement(filterElement))
            continue;
        std::unique_ptr<OpsFilter> filter = BuildFilter(manager, filterElement, 1, error, where);
        if (!filter)
            return Malformed(error);
        all->Add(std::move(filter));
    }
    out = std::move(all);
    return Status::GetSucceeded();
}

} // namespace OpsDetail

Status OpsSubscriptionManager::BuildSubscriptionDOM(const pugi::xml_node& element,
                                                    Subscription& out) const {
    if (!IsElement(element) || std::strcmp(element.name(), kSubscriptionElement) != 0) {
        return Malformed(std::string("expected <") + kSubscriptionElement + ">, found <" +
                         element.name() + ">");
    }
    out = Subscription();
    const pugi::xml_attribute name = element.attribute("name");
    if (!name || !*name.value())
        return Status(-14, "a <Subscription> needs a non-empty \"name\"");
    out.name = name.value();
    for (const pugi::xml_attribute& attribute : element.attributes()) {
        if (std::strcmp(attribute.name(), "name") != 0)
            return Malformed(std::string("unknown attribute \"") + attribute.name() +
                             "\" on <Subscription>");
    }
    pugi::xml_node stray;
    if (HasStrayText(element, stray))
        return Status(-14, "unexpected text in <Subscription>");

    bool sawFilter = false, sawHandlers = false;
    for (const pugi::xml_node& child : element.children()) {
        if (!IsElement(child))
            continue;
        if (std::strcmp(child.name(), kFilterElement) == 0) {
            if (sawFilter)
                return Status(-14, "a <Subscription> has at most one <Filter>");
            sawFilter = true;
            Status status = OpsDetail::BuildFilterDOM(*this, child, out.filter);
            if (status.Failed())
                return status;
        } else if (std::strcmp(child.name(), kHandlersElement) == 0) {
            if (sawHandlers)
                return Status(-14, "a <Subscription> has at most one <Handlers>");
            sawHandlers = true;
            if (HasStrayText(child, stray))
                return Status(-14, "unexpected text in <Handlers>");
            for (const pugi::xml_node& handlerElement : child.children()) {
                if (!IsElement(handlerElement))
                    continue;
                TString reason;
                std::shared_ptr<OpsMessageHandler> handler =
                    OpsMessageHandlerManager::GetInstance().CreateHandler(
                        handlerElement.name(), AttributesOf(handlerElement), reason);
                if (!handler)
                    return Malformed(reason.c_str());
                if (handlerElement.first_child())
                    return Malformed(std::string("the handler <") + handlerElement.name() +
                                     "> cannot hold other elements");
                out.handlers.push_back(std::move(handler));
            }
        } else {
            return Malformed(std::string("unknown element <") + child.name() +
                             "> in <Subscription>; expected <Filter> or <Handlers>");
        }
    }
    if (out.handlers.empty())
        return Status(-14, "a <Subscription> needs a <Handlers> element with at least one handler");
    bool exact = true;
    out.mask = out.filter ? out.filter->GetEventMask(exact) : OpsEventMask::All();
    return Status::GetSucceeded();
}

Status OpsSubscriptionManager::AddSubscriptionDOM(const pugi::xml_node& element,
                                                  const void* owner) {
    Subscription subscription;
    Status status = BuildSubscriptionDOM(element, subscription);
    if (status.Failed())
        return status;
    subscription.owner = owner;
    std::vector<Subscription> one;
    one.push_back(std::move(subscription));
    AddSubscriptions(std::move(one));
    return status;
}

Status OpsSubscriptionFileManager::ParseText(
    const char* text, std::size_t length, const char* name,
    std::vector<OpsSubscriptionManager::Subscription>& subscriptions) {
    subscriptions.clear();
    const std::string file = name ? name : "";
    const auto failure = [&](long line, const std::string& what) {
        Status status(
            -14, line > 0 ? "Subscription file \"%FileName%\" is malformed (line %Line%): %Reason%"
                          : "Subscription file \"%FileName%\" is malformed: %Reason%");
        status.SetAttribute("FileName", file.c_str());
        status.SetAttribute("Line", line);
        status.SetAttribute("Reason", what.c_str());
        return status;
    };

    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer(text, length, pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (parsed.status == pugi::status_out_of_memory) {
        // The file may well be sound: say what failed, not that the file is malformed.
        Status status(Status::GetAllocFailed().GetStatusCode(),
                      "Subscription file \"%FileName%\" cannot be parsed: Memory failure");
        status.SetAttribute("FileName", file.c_str());
        return status;
    }
    if (!parsed)
        return failure(LineOf(text, length, parsed.offset), parsed.description());
    const pugi::xml_node root = document.document_element();
    if (!root || std::strcmp(root.name(), kRootElement) != 0)
        return failure(root ? LineOf(text, length, root.offset_debug()) : 0,
                       std::string("the root element must be <") + kRootElement + ">");
    pugi::xml_node stray;
    if (HasStrayText(root, stray))
        return failure(LineOf(text, length, stray.offset_debug()),
                       "unexpected text in <OpsSubscriptions>");

    OpsSubscriptionManager& manager = OpsSubscriptionManager::GetInstance();
    for (const pugi::xml_node& child : root.children()) {
        if (!IsElement(child))
            continue;
        OpsSubscriptionManager::Subscription subscription;
        Status status = manager.BuildSubscriptionDOM(child, subscription);
        if (status.Failed()) {
            subscriptions.clear();
            return failure(LineOf(text, length, child.offset_debug()),
                           status.GetStatusMessage().c_str());
        }
        subscriptions.push_back(std::move(subscription));
    }
    return Status::GetSucceeded();
}

Status OpsSubscriptionFileManager::ParseFile(
    const char* path, std::vector<OpsSubscriptionManager::Subscription>& subscriptions) {
    subscriptions.clear();
    std::string text;
    OpsDetail::ReadFileFailure failure;
    if (!OpsDetail::ReadRegularFile(path ? path : "", OpsDetail::kMaxSubscriptionFileSize, text,
                                    failure)) {
        Status status(-8, "Subscription file \"%FileName%\" cannot be read: %Reason%");
        status.SetAttribute("FileName", path ? path : "");
        status.SetAttribute("Reason", failure.reason.c_str());
        if (failure.win32Error != 0)
            status.SetAttribute("Win32Error", static_cast<long>(failure.win32Error));
        return status;
    }
    return ParseText(text.data(), text.size(), path, subscriptions);
}

OpsSubscriptionFileManager::OpsSubscriptionFileManager(const char* path)
    : m_path(path ? path : "") {
    ZT_FUNC_OPS();
    std::vector<OpsSubscriptionManager::Subscription> subscriptions;
    m_status = ParseFile(m_path.c_str(), subscriptions);
    if (m_status.Failed()) {
        // Reported and skipped: a bad file never stops the application.
        (void)ZT_REPORT(m_status);
        Status copy(m_status);
        ZT_ERROR("%s", copy.GetStatusMessage().c_str());
        return;
    }
    for (auto& subscription : subscriptions)
        subscription.owner = this;
    m_count = subscriptions.size();
    OpsSubscriptionManager::GetInstance().AddSubscriptions(std::move(subscriptions));
}

OpsSubscriptionFileManager::~OpsSubscriptionFileManager() {
    if (m_count)
        OpsSubscriptionManager::GetInstance().RemoveSubscriptionsOwnedBy(this);
}

} // namespace Util
