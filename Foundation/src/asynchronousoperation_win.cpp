// Windows back end of the asynchronous operations: events, critical sections, an I/O completion
// port with concurrency 1 as the work queue, and Win32 threads.
#include "Foundation/src/asynchronousoperation_platform.h"

#include "Util/Win32Types.h"

#include <new>

namespace Util {
namespace AsyncPlatform {

namespace {

// The overlapped pointer value that marks a shutdown request.
LPOVERLAPPED ShutdownMarker() {
    return reinterpret_cast<LPOVERLAPPED>(~ULONG_PTR(0));
}

struct ThreadStart {
    void (*body)(void*);
    void* argument;
};

DWORD WINAPI ThreadMain(LPVOID parameter) {
    ThreadStart start = *static_cast<ThreadStart*>(parameter);
    delete static_cast<ThreadStart*>(parameter);
    start.body(start.argument);
    return 0;
}

} // namespace

void* CreateAutoResetEvent() {
    return ::CreateEventA(nullptr, FALSE, FALSE, nullptr);
}

void SetEvent(void* event) {
    ::SetEvent(static_cast<HANDLE>(event));
}

bool WaitForEvent(void* event, unsigned long timeoutMs) {
    return ::WaitForSingleObject(static_cast<HANDLE>(event), DWORD(timeoutMs)) == WAIT_OBJECT_0;
}

void CloseEvent(void* event) {
    ::CloseHandle(static_cast<HANDLE>(event));
}

void SleepMs(unsigned long ms) {
    ::Sleep(DWORD(ms));
}

Lock::Lock() : m_impl(new CRITICAL_SECTION) {
    ::InitializeCriticalSectionAndSpinCount(static_cast<CRITICAL_SECTION*>(m_impl), 0);
}

Lock::~Lock() {
    ::DeleteCriticalSection(static_cast<CRITICAL_SECTION*>(m_impl));
    delete static_cast<CRITICAL_SECTION*>(m_impl);
}

void Lock::Enter() {
    ::EnterCriticalSection(static_cast<CRITICAL_SECTION*>(m_impl));
}

void Lock::Leave() {
    ::LeaveCriticalSection(static_cast<CRITICAL_SECTION*>(m_impl));
}

void* CreateWorkQueue() {
    // Not bound to any file: a plain queue of posted completions, drained by one thread.
    return ::CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1);
}

bool PostWork(void* queue, void* key) {
    return queue != nullptr && key != nullptr &&
           ::PostQueuedCompletionStatus(static_cast<HANDLE>(queue), 0,
                                        reinterpret_cast<ULONG_PTR>(key), nullptr) != FALSE;
}

bool PostShutdownMarker(void* queue) {
    return queue != nullptr && ::PostQueuedCompletionStatus(static_cast<HANDLE>(queue), 0, 0,
                                                            ShutdownMarker()) != FALSE;
}

Taken TakeWork(void* queue, void*& key) {
    DWORD bytes = 0;
    ULONG_PTR completionKey = 0;
    LPOVERLAPPED overlapped = nullptr;
    if (!::GetQueuedCompletionStatus(static_cast<HANDLE>(queue), &bytes, &completionKey,
                                     &overlapped, INFINITE))
        return Taken::kClosed;
    if (overlapped == ShutdownMarker())
        return Taken::kMarker;
    key = reinterpret_cast<void*>(completionKey);
    return key != nullptr ? Taken::kWork : Taken::kMarker;
}

void CloseWorkQueue(void* queue, void (*dropped)(void* key)) {
    HANDLE port = static_cast<HANDLE>(queue);
    DWORD bytes = 0;
    ULONG_PTR completionKey = 0;
    LPOVERLAPPED overlapped = nullptr;
    while (::GetQueuedCompletionStatus(port, &bytes, &completionKey, &overlapped, 0)) {
        if (overlapped != ShutdownMarker() && completionKey != 0)
            dropped(reinterpret_cast<void*>(completionKey));
    }
    ::CloseHandle(port);
}

void DestroyWorkQueue(void*) {}

void* StartThread(void (*body)(void*), void* argument) {
    auto* start = new (std::nothrow) ThreadStart{body, argument};
    if (start == nullptr)
        return nullptr;
    HANDLE thread = ::CreateThread(nullptr, 0, ThreadMain, start, 0, nullptr);
    if (thread == nullptr)
        delete start;
    return thread;
}

bool WaitForThread(void* thread, unsigned long timeoutMs) {
    return ::WaitForSingleObject(static_cast<HANDLE>(thread), DWORD(timeoutMs)) == WAIT_OBJECT_0;
}

void CloseThread(void* thread) {
    ::CloseHandle(static_cast<HANDLE>(thread));
}

void AbandonThread(void* thread) {
    DWORD exitCode = 0;
    if (::GetExitCodeThread(static_cast<HANDLE>(thread), &exitCode) && exitCode == STILL_ACTIVE)
        ::TerminateThread(static_cast<HANDLE>(thread), 1);
    ::CloseHandle(static_cast<HANDLE>(thread));
}

} // namespace AsyncPlatform
} // namespace Util
