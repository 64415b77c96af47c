// The standard message handlers.
#pragma once

#include <map>
#include <string>

#include "Util/OpsMessageHandler.h"

namespace Util {
namespace OpsDetail {

void RegisterStandardHandlers(std::map<std::string, OpsHandlerFactory>& registry);

// The exit status of a process ended by the FAIL handler.
constexpr int kFailExitStatus = 3;

} // namespace OpsDetail
} // namespace Util
