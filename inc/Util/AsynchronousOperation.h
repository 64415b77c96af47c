// Util::AsynchronousOperation: runs one piece of work on the library's worker thread while the
// calling thread waits, waking every update interval to call an update callback.
//
// A derived operation creates a WorkerCommand with new and hands it to DoExecute, which queues
// it to the process-wide functor thread pool and waits. The pool has one worker thread that
// runs commands one after another in queue order: it calls Execute, records the result as the
// completion of the command's operation, then deletes the command (the pool owns a command
// from the moment DoExecute is called, even when it cannot be queued). While the wait goes on,
// the update callback (the one given, else the default one) is called once per elapsed
// interval; a negative result cancels the wait and becomes the status. Cancelling only ends the
// wait: the command still runs to its end and is deleted by the worker, and its result is then
// ignored, because the first completion of an operation wins (the worker's, the command's own
// WorkerCommand::OperationCompleted, or a cancellation). An operation serves one execution: a
// second DoExecute waits until its callback cancels, then returns the first status. The
// operation's state is shared with its queued command, so an operation may be destroyed after a
// cancelled wait while its command still runs.
//
// When a request cannot be queued, the verification "FunctorThreadPool::getInstance()->
// QueueRequest(command) != FALSE" is raised and DoExecute returns -1 unless a handler overrides
// the verification. When the completion event cannot be created, a level-6 message "CreateEvent
// failed, system unstable.  Terminating." is raised; the operation then polls for completion
// once per interval. A command that throws completes its operation with -1.
//
// Shutdown(timeoutMs) stops the worker (waiting up to the time-out, 0 meaning 36000 ms) and
// destroys the pool; the next DoExecute creates a new one. Commands still queued are deleted
// without running and complete their operations with -1. A worker still busy after the
// time-out is ended: on Windows the thread is terminated; on POSIX, where a thread cannot be
// ended safely, it is abandoned (detached) and its command's operation completes at once with
// -1; the command finishes in the background, its result is ignored, and it is deleted then.
#pragma once

#include "Util/Export.h"

#include <memory>

namespace Util {

class ZTUTIL_API AsynchronousOperation {
private:
    struct Completion;
    friend class FunctorThreadPool;

public:
    class ZTUTIL_API UpdateCallback {
    public:
        // Negative: cancel the wait with this status; zero or positive: keep waiting.
        virtual long Update() = 0;
        virtual ~UpdateCallback();
    };

    class ZTUTIL_API WorkerCommand {
    public:
        explicit WorkerCommand(AsynchronousOperation* operation);
        virtual ~WorkerCommand();
        // The work; its result becomes the operation's status unless the operation completed
        // already.
        virtual long Execute() = 0;

        // Completes the command's operation early (from inside Execute); first completion wins.
        void OperationCompleted(const long& status);
        AsynchronousOperation* GetOperation() const { return m_pOperation; }

    private:
        WorkerCommand(const WorkerCommand&);
        WorkerCommand& operator=(const WorkerCommand&);
        friend class FunctorThreadPool;

        AsynchronousOperation* m_pOperation;
        std::shared_ptr<Completion> m_pCompletion;
    };

    explicit AsynchronousOperation(unsigned long updateIntervalMs);
    virtual ~AsynchronousOperation();

    // Always true: it does not tell whether the completion event could be created.
    operator bool() const { return true; }

    // Replaces the callback used when DoExecute is given none; returns the previous one.
    static UpdateCallback* SetDefaultUpdateCallback(UpdateCallback* callback);
    // Stops the worker and destroys the pool; 0 waits the pool's own time-out (36000 ms).
    static void Shutdown(unsigned int timeoutMs = 0);

protected:
    long DoExecute(WorkerCommand* command, UpdateCallback* callback = nullptr);
    long GetCompletionStatus() const;
    void OperationCompleted(const long& status);
    unsigned long GetUpdateInterval() const { return m_updateInterval; }

private:
    AsynchronousOperation(const AsynchronousOperation&);
    AsynchronousOperation& operator=(const AsynchronousOperation&);

    std::shared_ptr<Completion> m_pCompletion;
    unsigned long m_updateInterval;

    static UpdateCallback* m_pDefaultUpdateCallback;
};

} // namespace Util
