// Fuzzes the .ops subscription-file reader: any bytes must give either subscriptions or a failed
// status naming the problem, never a crash, a hang or unbounded recursion.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Util/OpsSubscriptionFileManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<Util::OpsSubscriptionManager::Subscription> subscriptions;
    Util::Status status = Util::OpsSubscriptionFileManager::ParseText(
        reinterpret_cast<const char*>(data), size, "fuzz.ops", subscriptions);
    if (status.Failed() && !subscriptions.empty())
        __builtin_trap(); // a failed file must add nothing
    if (status.Failed())
        (void)status.GetStatusMessage();
    for (const auto& subscription : subscriptions)
        if (subscription.handlers.empty())
            __builtin_trap();
    return 0;
}
