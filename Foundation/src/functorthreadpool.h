// FunctorThreadPool: the process-wide pool behind Util::AsynchronousOperation. One worker thread
// takes commands from a work queue and runs them in queue order. The pool is created on first
// use and destroyed by Shutdown; a global lock guards the singleton and the default update
// callback.
#pragma once

#include "Foundation/src/asynchronousoperation_platform.h"
#include "Foundation/src/operationcompletion.h"
#include "Util/AsynchronousOperation.h"

#include <atomic>
#include <memory>
#include <vector>

namespace Util {

class FunctorThreadPool {
public:
    static constexpr unsigned int kDefaultShutdownTimeoutMs = 36000;

    // The pool, created when there is none; null when it cannot be created.
    static std::shared_ptr<FunctorThreadPool> getInstance();
    // Stops and destroys the pool (creating one first if there is none, as callers expect).
    static void Shutdown(unsigned int timeoutMs);
    static AsyncPlatform::Lock& GlobalLock();

    // Queues a command; the pool owns it from now on. FALSE when it cannot be queued.
    int QueueRequest(AsynchronousOperation::WorkerCommand* command);

    ~FunctorThreadPool();
    FunctorThreadPool(const FunctorThreadPool&) = delete;
    FunctorThreadPool& operator=(const FunctorThreadPool&) = delete;

private:
    FunctorThreadPool() = default;
    // The pool slot, filled with a new pool when empty (and creation works); the caller holds
    // GlobalLock().
    static std::shared_ptr<FunctorThreadPool>& InstanceLocked();
    bool Create(const std::shared_ptr<FunctorThreadPool>& self);
    bool SetNumThreads(int count, const std::shared_ptr<FunctorThreadPool>& self);
    void Stop(unsigned int timeoutMs);
    void Run(AsynchronousOperation::WorkerCommand* command);
    static void WorkerMain(void* argument);
    static void DropCommand(void* key);

    AsyncPlatform::Lock m_lock;
    void* m_hQueue = nullptr;
    std::vector<void*> m_threads;
    int m_numThreads = 0;
    unsigned int m_shutdownTimeoutMs = kDefaultShutdownTimeoutMs;
    std::atomic<long> m_shutdown{0};
    // The operation whose command the worker is running, so that an abandoned worker's caller
    // can be released.
    AsyncPlatform::Lock m_currentLock;
    std::shared_ptr<AsynchronousOperation::Completion> m_pCurrent;
};

} // namespace Util
