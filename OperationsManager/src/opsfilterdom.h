// Filters described by subscription-file elements, shared by the subscription files and the
// message-handler manager's ProcessFilter.
#pragma once

#include <memory>

#include "Util/OpsFilter.h"
#include "Util/OpsSubscriptionManager.h"
#include "Util/Status.h"

namespace pugi {
class xml_node;
}

namespace Util {
namespace OpsDetail {

// Builds the filter of a <Filter> element (all of its children must match; none matches every
// event) or of one filter element such as <LEVEL_FILTER level="LVL_WARNING"/> or <ANY_OF>...,
// with the manager's filter vocabulary. A failed status says what is wrong and leaves out null.
Status BuildFilterDOM(const OpsSubscriptionManager& manager, const pugi::xml_node& element,
                      std::shared_ptr<const OpsFilter>& out);

} // namespace OpsDetail
} // namespace Util
