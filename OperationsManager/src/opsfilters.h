// The standard filters of the subscription manager.
#pragma once

#include <chrono>
#include <map>
#include <string>

#include "Util/Export.h"
#include "Util/OpsFilter.h"

namespace Util {
namespace OpsDetail {

// Adds the standard filter keywords (groups excluded) to the registry.
void RegisterStandardFilters(std::map<std::string, OpsFilterFactory>& registry);

// The group keywords, which hold other filters rather than attributes.
bool IsGroupKeyword(const char* keyword, OpsFilterGroup::Kind& kind);

// The clock the time-based filters read (the INI value filter's re-read interval). Tests put a
// clock of their own in its place so that they need not wait; null restores the steady clock.
using FilterClock = std::chrono::steady_clock::time_point (*)();
ZTUTIL_API void SetFilterClock(FilterClock clock);

} // namespace OpsDetail
} // namespace Util
