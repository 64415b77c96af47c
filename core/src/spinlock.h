// A tiny test-and-test-and-set lock for very short critical sections on hot paths (the status
// pool, lazy message expansion), where a mutex would cost more than the work it guards.
#pragma once

#include <atomic>
#include <thread>

#if defined(__GLIBCXX__)
#include <ext/atomicity.h>
#endif

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

// True while the process has a single thread. It can only become false through this very
// thread starting another, so a critical section entered while it is true needs no lock: this is
// the test libstdc++'s own shared pointers make.
inline bool ProcessIsSingleThreaded() {
#if defined(__GLIBCXX__)
    return __gnu_cxx::__is_single_threaded();
#else
    return false;
#endif
}

// Locks only when other threads may exist.
class ElidableSpinGuard {
public:
    explicit ElidableSpinGuard(std::atomic<bool>& flag)
        : m_flag(ProcessIsSingleThreaded() ? nullptr : &flag) {
        if (m_flag != nullptr)
            SpinLock(*m_flag);
    }
    ~ElidableSpinGuard() { Release(); }
    void Release() {
        if (m_flag != nullptr) {
            SpinUnlock(*m_flag);
            m_flag = nullptr;
        }
    }
    ElidableSpinGuard(const ElidableSpinGuard&) = delete;
    ElidableSpinGuard& operator=(const ElidableSpinGuard&) = delete;

private:
    std::atomic<bool>* m_flag;
};

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
