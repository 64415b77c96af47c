#include "Util/AsynchronousOperation.h"

#include "Foundation/src/functorthreadpool.h"
#include "Foundation/src/operationcompletion.h"
#include "Util/FailureHook.h"
#include "Util/Ops.h"
#include "Util/OpsMacros.h"

namespace Util {

// ---- the shared completion state ----

AsynchronousOperation::Completion::Completion()
    : m_hEvent(FailureHook::Fails(FailureHook::kCreateEvent)
                   ? nullptr
                   : AsyncPlatform::CreateAutoResetEvent()) {
    if (m_hEvent == nullptr) {
        Ops::MessageFunctor(GetOps(), Ops::kLvlFatalError, Ops::kMessage, __FILE__, __LINE__,
                            "Util::AsynchronousOperation::AsynchronousOperation",
                            ZT_FUNC_SIG)("CreateEvent failed, system unstable.  Terminating.");
    }
}

AsynchronousOperation::Completion::~Completion() {
    if (m_hEvent != nullptr)
        AsyncPlatform::CloseEvent(m_hEvent);
}

void AsynchronousOperation::Completion::Record(long status) {
    AsyncPlatform::Hold hold(m_lock);
    if (m_completed == 0) {
        m_status = static_cast<std::int32_t>(status);
        m_completed = 1;
        if (m_hEvent != nullptr)
            AsyncPlatform::SetEvent(m_hEvent);
    }
}

long AsynchronousOperation::Completion::Status() {
    AsyncPlatform::Hold hold(m_lock);
    return m_status;
}

bool AsynchronousOperation::Completion::Wait(unsigned long intervalMs) {
    if (m_hEvent != nullptr)
        return AsyncPlatform::WaitForEvent(m_hEvent, intervalMs);
    AsyncPlatform::SleepMs(intervalMs);
    AsyncPlatform::Hold hold(m_lock);
    return m_completed != 0;
}

// ---- callbacks and commands ----

AsynchronousOperation::UpdateCallback* AsynchronousOperation::m_pDefaultUpdateCallback = nullptr;

AsynchronousOperation::UpdateCallback::~UpdateCallback() = default;

AsynchronousOperation::WorkerCommand::WorkerCommand(AsynchronousOperation* operation)
    : m_pOperation(operation),
      m_pCompletion(operation != nullptr ? operation->m_pCompletion : nullptr) {}

AsynchronousOperation::WorkerCommand::~WorkerCommand() = default;

void AsynchronousOperation::WorkerCommand::OperationCompleted(const long& status) {
    if (m_pCompletion)
        m_pCompletion->Record(status);
}

// ---- the operation ----

AsynchronousOperation::AsynchronousOperation(unsigned long updateIntervalMs)
    : m_pCompletion(std::make_shared<Completion>()), m_updateInterval(updateIntervalMs) {}

AsynchronousOperation::~AsynchronousOperation() = default;

AsynchronousOperation::UpdateCallback*
AsynchronousOperation::SetDefaultUpdateCallback(UpdateCallback* callback) {
    AsyncPlatform::Hold hold(FunctorThreadPool::GlobalLock());
    UpdateCallback* previous = m_pDefaultUpdateCallback;
    m_pDefaultUpdateCallback = callback;
    return previous;
}

void AsynchronousOperation::Shutdown(unsigned int timeoutMs) {
    FunctorThreadPool::Shutdown(timeoutMs);
}

long AsynchronousOperation::GetCompletionStatus() const {
    return m_pCompletion->Status();
}

void AsynchronousOperation::OperationCompleted(const long& status) {
    m_pCompletion->Record(status);
}

long AsynchronousOperation::DoExecute(WorkerCommand* command, UpdateCallback* callback) {
    if (callback == nullptr) {
        AsyncPlatform::Hold hold(FunctorThreadPool::GlobalLock());
        callback = m_pDefaultUpdateCallback;
    }
    std::shared_ptr<FunctorThreadPool> pool = FunctorThreadPool::getInstance();
    if (!pool || !pool->QueueRequest(command)) {
        delete command;
        if (!GetOps().Verify(
                false, "FunctorThreadPool::getInstance()->QueueRequest(command) != FALSE", __FILE__,
                __LINE__, "Util::AsynchronousOperation::DoExecute", ZT_FUNC_SIG))
            return -1;
    }
    pool.reset();
    Completion& completion = *m_pCompletion;
    while (!completion.Wait(m_updateInterval)) {
        // Without any callback the wait simply goes on.
        if (callback == nullptr)
            continue;
        const long update = callback->Update();
        if (update < 0) {
            completion.Record(update);
            break;
        }
    }
    return completion.Status();
}

} // namespace Util
