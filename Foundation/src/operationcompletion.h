// The completion state of one asynchronous operation, shared by the operation and its queued
// commands: the auto-reset event the waiting thread sleeps on, and under a lock the status and
// the completed flag. The first recorded completion wins; later ones are ignored.
#pragma once

#include "Foundation/src/asynchronousoperation_platform.h"
#include "Util/AsynchronousOperation.h"

#include <cstdint>

namespace Util {

struct AsynchronousOperation::Completion {
    Completion();
    ~Completion();
    Completion(const Completion&) = delete;
    Completion& operator=(const Completion&) = delete;

    void Record(long status);
    long Status();
    // True when the event was set within the interval. Without an event, sleeps the interval
    // and tells whether the operation completed.
    bool Wait(unsigned long intervalMs);

    void* m_hEvent;
    AsyncPlatform::Lock m_lock;
    std::int32_t m_status = 0;
    std::uint32_t m_completed = 0;
};

} // namespace Util
