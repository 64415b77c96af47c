#include "Util/FailureHook.h"

#include <atomic>

namespace Util {

namespace {

std::atomic<int> g_pending[FailureHook::kPointCount];

} // namespace

void FailureHook::FailNext(Point point, int count) {
    if (point >= 0 && point < kPointCount)
        g_pending[point].store(count > 0 ? count : 0, std::memory_order_relaxed);
}

bool FailureHook::Fails(Point point) {
    if (point < 0 || point >= kPointCount)
        return false;
    std::atomic<int>& pending = g_pending[point];
    int left = pending.load(std::memory_order_relaxed);
    while (left > 0)
        if (pending.compare_exchange_weak(left, left - 1, std::memory_order_relaxed))
            return true;
    return false;
}

} // namespace Util
