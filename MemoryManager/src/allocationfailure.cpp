#include "Util/MemoryManager.h"

#include <atomic>

namespace Util {
namespace {

// 0: off. Otherwise the number of allocations until the failing one, that one included.
std::atomic<std::size_t> g_countdown{0};
std::atomic<bool> g_injected{false};

} // namespace

void SetAllocationFailureCountdown(std::size_t n) {
    g_injected.store(false, std::memory_order_relaxed);
    g_countdown.store(n, std::memory_order_relaxed);
}

bool AllocationFailureInjected() {
    return g_injected.load(std::memory_order_relaxed);
}

namespace Detail {

bool ShouldFailAllocation() {
    std::size_t left = g_countdown.load(std::memory_order_relaxed);
    while (left != 0) {
        if (g_countdown.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
            if (left != 1)
                return false;
            g_injected.store(true, std::memory_order_relaxed);
            return true;
        }
    }
    return false;
}

} // namespace Detail
} // namespace Util
