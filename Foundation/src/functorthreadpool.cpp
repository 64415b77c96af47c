#include "Foundation/src/functorthreadpool.h"

#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/Win32Types.h"

#include <new>
#include <thread>

namespace Util {

namespace {

// Never destroyed: the worker may outlive static destruction at process exit.
std::shared_ptr<FunctorThreadPool>& TheInstance() {
    static auto* const instance = new std::shared_ptr<FunctorThreadPool>;
    return *instance;
}

constexpr long kDroppedStatus = -1;
constexpr int kDefaultThreadCount = -2;

// The threads a requested count stands for: 0 is the default of -2, and a negative count means
// that many threads per processor.
int ThreadsFor(int requested) {
    if (requested == 0)
        requested = kDefaultThreadCount;
    if (requested > 0)
        return requested;
    const unsigned processors = std::thread::hardware_concurrency();
    return -requested * static_cast<int>(processors > 0 ? processors : 1);
}

} // namespace

AsyncPlatform::Lock& FunctorThreadPool::GlobalLock() {
    static auto* const lock = new AsyncPlatform::Lock;
    return *lock;
}

std::shared_ptr<FunctorThreadPool>& FunctorThreadPool::InstanceLocked() {
    std::shared_ptr<FunctorThreadPool>& instance = TheInstance();
    if (!instance) {
        std::shared_ptr<FunctorThreadPool> created(new (std::nothrow) FunctorThreadPool);
        if (created && created->Create(created))
            instance = created;
    }
    return instance;
}

std::shared_ptr<FunctorThreadPool> FunctorThreadPool::getInstance() {
    AsyncPlatform::Hold hold(GlobalLock());
    return InstanceLocked();
}

bool FunctorThreadPool::Create(const std::shared_ptr<FunctorThreadPool>& self) {
    m_hQueue = AsyncPlatform::CreateWorkQueue();
    if (m_hQueue == nullptr)
        return false;
    if (SetNumThreads(1, self))
        return true;
    Stop(0);
    return false;
}

bool FunctorThreadPool::SetNumThreads(int count, const std::shared_ptr<FunctorThreadPool>& self) {
    AsyncPlatform::Hold hold(m_lock);
    count = ThreadsFor(count);
    while (m_numThreads < count) {
        auto* keep = new (std::nothrow) std::shared_ptr<FunctorThreadPool>(self);
        void* thread = keep != nullptr ? AsyncPlatform::StartThread(WorkerMain, keep) : nullptr;
        if (thread == nullptr) {
            delete keep;
            return false;
        }
        m_threads.push_back(thread);
        ++m_numThreads;
    }
    return true;
}

FunctorThreadPool::~FunctorThreadPool() {
    AsyncPlatform::DestroyWorkQueue(m_hQueue);
}

int FunctorThreadPool::QueueRequest(AsynchronousOperation::WorkerCommand* command) {
    return command != nullptr && AsyncPlatform::PostWork(m_hQueue, command) ? TRUE : FALSE;
}

void FunctorThreadPool::WorkerMain(void* argument) {
    // The worker keeps the pool alive: an abandoned worker may still be finishing a command
    // after Shutdown has let go of the pool.
    std::shared_ptr<FunctorThreadPool> pool =
        *static_cast<std::shared_ptr<FunctorThreadPool>*>(argument);
    delete static_cast<std::shared_ptr<FunctorThreadPool>*>(argument);
    for (;;) {
        void* key = nullptr;
        AsyncPlatform::Taken taken = AsyncPlatform::TakeWork(pool->m_hQueue, key);
        if (taken == AsyncPlatform::Taken::kClosed)
            break;
        if (taken == AsyncPlatform::Taken::kMarker) {
            if (pool->m_shutdown.exchange(0) != 0)
                break;
            continue;
        }
        pool->Run(static_cast<AsynchronousOperation::WorkerCommand*>(key));
    }
}

void FunctorThreadPool::Run(AsynchronousOperation::WorkerCommand* command) {
    {
        AsyncPlatform::Hold hold(m_currentLock);
        m_pCurrent = command->m_pCompletion;
    }
    long result = kDroppedStatus;
    try {
        result = command->Execute();
    } catch (...) {
        ZT_ERROR("A worker command ended with an exception");
    }
    command->OperationCompleted(result);
    {
        AsyncPlatform::Hold hold(m_currentLock);
        m_pCurrent.reset();
    }
    delete command;
}

void FunctorThreadPool::DropCommand(void* key) {
    auto* command = static_cast<AsynchronousOperation::WorkerCommand*>(key);
    command->OperationCompleted(kDroppedStatus);
    delete command;
}

void FunctorThreadPool::Stop(unsigned int timeoutMs) {
    if (m_hQueue == nullptr)
        return;
    {
        AsyncPlatform::Hold hold(m_lock);
        if (timeoutMs == 0)
            timeoutMs = m_shutdownTimeoutMs;
        std::vector<void*> running;
        for (void* thread : m_threads) {
            m_shutdown.store(1);
            if (AsyncPlatform::PostShutdownMarker(m_hQueue) &&
                AsyncPlatform::WaitForThread(thread, timeoutMs))
                AsyncPlatform::CloseThread(thread);
            else
                running.push_back(thread);
        }
        if (!running.empty()) {
            // Release whoever waits for the command that outlived the time-out.
            std::shared_ptr<AsynchronousOperation::Completion> current;
            {
                AsyncPlatform::Hold holdCurrent(m_currentLock);
                current = m_pCurrent;
            }
            if (current)
                current->Record(kDroppedStatus);
            for (void* thread : running)
                AsyncPlatform::AbandonThread(thread);
        }
        m_threads.clear();
        m_numThreads = 0;
    }
    AsyncPlatform::CloseWorkQueue(m_hQueue, DropCommand);
}

void FunctorThreadPool::Shutdown(unsigned int timeoutMs) {
    AsyncPlatform::Hold hold(GlobalLock());
    std::shared_ptr<FunctorThreadPool>& instance = InstanceLocked();
    if (instance) {
        instance->Stop(timeoutMs);
        instance.reset();
    }
}

} // namespace Util
