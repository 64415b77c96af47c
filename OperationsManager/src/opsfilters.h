// The standard filters of the subscription manager.
#pragma once

#include <map>
#include <string>

#include "Util/OpsFilter.h"

namespace Util {
namespace OpsDetail {

// Adds the standard filter keywords (groups excluded) to the registry.
void RegisterStandardFilters(std::map<std::string, OpsFilterFactory>& registry);

// The group keywords, which hold other filters rather than attributes.
bool IsGroupKeyword(const char* keyword, OpsFilterGroup::Kind& kind);

} // namespace OpsDetail
} // namespace Util
