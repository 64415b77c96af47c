// What each platform provides behind the asynchronous operations and the functor thread pool:
// auto-reset events, locks, a work queue that one thread drains, and threads that can be waited
// for with a time-out. Windows: events, critical sections, an I/O completion port with
// concurrency 1, CreateThread/TerminateThread. POSIX: mutexes, condition variables and
// std::thread.
#pragma once

namespace Util {
namespace AsyncPlatform {

constexpr unsigned long kInfinite = 0xFFFFFFFFul;

// An auto-reset, initially unsignalled event; null on failure (the last error says why).
void* CreateAutoResetEvent();
void SetEvent(void* event);
// True when the event was signalled (and is consumed) within the time-out.
bool WaitForEvent(void* event, unsigned long timeoutMs);
void CloseEvent(void* event);

void SleepMs(unsigned long ms);

class Lock {
public:
    Lock();
    ~Lock();
    void Enter();
    void Leave();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    void* m_impl;
};

class Hold {
public:
    explicit Hold(Lock& lock) : m_lock(lock) { m_lock.Enter(); }
    ~Hold() { m_lock.Leave(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

private:
    Lock& m_lock;
};

// A first-in first-out queue of non-null keys and shutdown markers; null on failure.
void* CreateWorkQueue();
bool PostWork(void* queue, void* key);
bool PostShutdownMarker(void* queue);
enum class Taken { kWork, kMarker, kClosed };
// Blocks until an item arrives or the queue is closed.
Taken TakeWork(void* queue, void*& key);
// Closes the queue: a blocked or later TakeWork returns kClosed, and every key still queued is
// handed to dropped.
void CloseWorkQueue(void* queue, void (*dropped)(void* key));
// Frees the queue once no thread can touch it any more.
void DestroyWorkQueue(void* queue);

// Starts a thread running body(argument); null on failure.
void* StartThread(void (*body)(void*), void* argument);
// True when the thread ended within the time-out.
bool WaitForThread(void* thread, unsigned long timeoutMs);
// Frees a thread that ended.
void CloseThread(void* thread);
// Ends a thread that did not stop in time: Windows terminates it; POSIX detaches it and lets it
// run to its end. Either way the handle is freed.
void AbandonThread(void* thread);

} // namespace AsyncPlatform
} // namespace Util
