// A tiny test-and-test-and-set lock for very short critical sections on hot paths (the status
// pool, lazy message expansion), where a mutex would cost more than the work it guards.
#pragma once

#include <atomic>
#include <thread>

namespace Util {
namespace Detail {

inline void SpinLock(std::atomic<bool>& flag) {
    for (unsigned spins = 0;; ++spins) {
        if (!flag.exchange(true, std::memory_order_acquire))
            return;
        while (flag.load(std::memory_order_relaxed)) {
            if (++spins > 64)
                std::this_thread::yield();
        }
    }
}

inline void SpinUnlock(std::atomic<bool>& flag) {
    flag.store(false, std::memory_order_release);
}

class SpinGuard {
public:
    explicit SpinGuard(std::atomic<bool>& flag) : m_flag(flag) { SpinLock(m_flag); }
    ~SpinGuard() { SpinUnlock(m_flag); }
    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

private:
    std::atomic<bool>& m_flag;
};

} // namespace Detail
} // namespace Util
