// POSIX back end of the asynchronous operations: mutexes, condition variables, std::thread.
#include "Foundation/src/asynchronousoperation_platform.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <new>
#include <thread>

namespace Util {
namespace AsyncPlatform {

namespace {

// Waits spin briefly before sleeping: a round trip to the worker is usually over within a few
// microseconds, and a sleeping thread takes longer than that to wake. The spin never outlasts
// kSpinMicroseconds nor the caller's time-out, even when yielding hands the core away for long.
constexpr long kSpinMicroseconds = 50;

template <class Ready> bool SpinFor(unsigned long timeoutMs, Ready ready) {
    if (timeoutMs == 0)
        return ready();
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::microseconds(
                              std::min<unsigned long long>(kSpinMicroseconds, timeoutMs * 1000ull));
    for (int i = 0;; ++i) {
        if (ready())
            return true;
        if ((i & 63) == 63) {
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            std::this_thread::yield();
        }
    }
}

struct Event {
    std::mutex mutex;
    std::condition_variable wake;
    std::atomic<bool> signalled{false};

    bool Consume() {
        return signalled.load(std::memory_order_relaxed) &&
               signalled.exchange(false, std::memory_order_acquire);
    }
};

struct WorkItem {
    void* key;
    bool marker;
};

struct WorkQueue {
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<WorkItem> items;
    std::atomic<std::size_t> count{0};
    bool closed = false;
};

struct ThreadState {
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
};

struct Thread {
    std::thread thread;
    std::shared_ptr<ThreadState> state;
};

bool Post(void* queue, WorkItem item) {
    auto* q = static_cast<WorkQueue*>(queue);
    if (q == nullptr)
        return false;
    {
        std::lock_guard<std::mutex> hold(q->mutex);
        if (q->closed)
            return false;
        q->items.push_back(item);
        q->count.fetch_add(1, std::memory_order_release);
    }
    q->wake.notify_one();
    return true;
}

} // namespace

void* CreateAutoResetEvent() {
    return new (std::nothrow) Event;
}

void SetEvent(void* event) {
    auto* e = static_cast<Event*>(event);
    {
        std::lock_guard<std::mutex> hold(e->mutex);
        e->signalled.store(true, std::memory_order_release);
    }
    e->wake.notify_one();
}

bool WaitForEvent(void* event, unsigned long timeoutMs) {
    auto* e = static_cast<Event*>(event);
    if (SpinFor(timeoutMs, [e] { return e->Consume(); }))
        return true;
    std::unique_lock<std::mutex> hold(e->mutex);
    if (timeoutMs == kInfinite) {
        e->wake.wait(hold, [e] { return e->Consume(); });
        return true;
    }
    return e->wake.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                            [e] { return e->Consume(); });
}

void CloseEvent(void* event) {
    delete static_cast<Event*>(event);
}

void SleepMs(unsigned long ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

Lock::Lock() : m_impl(new std::mutex) {}

Lock::~Lock() {
    delete static_cast<std::mutex*>(m_impl);
}

void Lock::Enter() {
    static_cast<std::mutex*>(m_impl)->lock();
}

void Lock::Leave() {
    static_cast<std::mutex*>(m_impl)->unlock();
}

void* CreateWorkQueue() {
    return new (std::nothrow) WorkQueue;
}

bool PostWork(void* queue, void* key) {
    return key != nullptr && Post(queue, WorkItem{key, false});
}

bool PostShutdownMarker(void* queue) {
    return Post(queue, WorkItem{nullptr, true});
}

Taken TakeWork(void* queue, void*& key) {
    auto* q = static_cast<WorkQueue*>(queue);
    SpinFor(kInfinite, [q] { return q->count.load(std::memory_order_acquire) != 0; });
    std::unique_lock<std::mutex> hold(q->mutex);
    q->wake.wait(hold, [q] { return q->closed || !q->items.empty(); });
    if (q->closed)
        return Taken::kClosed;
    WorkItem item = q->items.front();
    q->items.pop_front();
    q->count.fetch_sub(1, std::memory_order_relaxed);
    key = item.key;
    return item.marker ? Taken::kMarker : Taken::kWork;
}

void CloseWorkQueue(void* queue, void (*dropped)(void* key)) {
    auto* q = static_cast<WorkQueue*>(queue);
    std::deque<WorkItem> left;
    {
        std::lock_guard<std::mutex> hold(q->mutex);
        q->closed = true;
        left.swap(q->items);
        q->count.store(0, std::memory_order_relaxed);
    }
    q->wake.notify_all();
    for (const WorkItem& item : left)
        if (!item.marker)
            dropped(item.key);
}

void DestroyWorkQueue(void* queue) {
    delete static_cast<WorkQueue*>(queue);
}

void* StartThread(void (*body)(void*), void* argument) {
    auto* thread = new (std::nothrow) Thread;
    if (thread == nullptr)
        return nullptr;
    try {
        thread->state = std::make_shared<ThreadState>();
        std::shared_ptr<ThreadState> state = thread->state;
        thread->thread = std::thread([state, body, argument] {
            body(argument);
            std::lock_guard<std::mutex> hold(state->mutex);
            state->done = true;
            state->ended.notify_all();
        });
    } catch (...) {
        delete thread;
        return nullptr;
    }
    return thread;
}

bool WaitForThread(void* thread, unsigned long timeoutMs) {
    auto* t = static_cast<Thread*>(thread);
    std::unique_lock<std::mutex> hold(t->state->mutex);
    if (timeoutMs == kInfinite) {
        t->state->ended.wait(hold, [t] { return t->state->done; });
        return true;
    }
    return t->state->ended.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                                    [t] { return t->state->done; });
}

void CloseThread(void* thread) {
    auto* t = static_cast<Thread*>(thread);
    if (t->thread.joinable())
        t->thread.join();
    delete t;
}

void AbandonThread(void* thread) {
    auto* t = static_cast<Thread*>(thread);
    if (t->thread.joinable())
        t->thread.detach();
    delete t;
}

} // namespace AsyncPlatform
} // namespace Util
