#include "Util/FailureHook.h"
#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/PTimer.h"
#include "Util/ProcessInfo.h"
#include "Util/Win32Time.h"

#include <new>

namespace Util {

namespace {
enum State : std::uint32_t { kStopped = 1, kRunning = 2 };
}

PerformanceInfo::PerformanceInfo()
    : m_intervalStart(0), m_accumulated(0), m_state(0), m_cumulativeStart(0), m_started(0) {}

PerformanceInfo::~PerformanceInfo() = default;

PerformanceInfo* PerformanceInfo::instance() {
    // Never destroyed: readings may be logged while the process shuts down.
    static PerformanceInfo* const gPerformanceInfo = [] {
        PerformanceInfo* created = FailureHook::Fails(FailureHook::kPerformanceInfoInstance)
                                       ? nullptr
                                       : new (std::nothrow) PerformanceInfo();
        if (!GetOps().Verify(created != nullptr, "gPerformanceInfo", __FILE__, __LINE__,
                             "Util::PerformanceInfo::instance", ZT_FUNC_SIG)) {
            Ops::MessageFunctor(GetOps(), Ops::kLvlFatalError, Ops::kMessage, __FILE__, __LINE__,
                                "Util::PerformanceInfo::instance",
                                ZT_FUNC_SIG)("Can't create the util::PerformanceInfo::instance.");
        }
        return created;
    }();
    return gPerformanceInfo;
}

void PerformanceInfo::Start(unsigned long ticks) {
    m_intervalStart = static_cast<std::uint32_t>(ticks);
    m_accumulated = 0;
    m_state = kRunning;
    if (!m_started) {
        m_cumulativeStart = static_cast<std::uint32_t>(ticks);
        m_started = 1;
    }
}

void PerformanceInfo::Restart() {
    m_intervalStart = Win32::GetTickCount();
    m_state = kRunning;
}

// All tick arithmetic is 32-bit, so an interval that spans the wrap of the tick count still
// measures right.
unsigned long PerformanceInfo::GetTickCountDelta() const {
    switch (m_state) {
    case kRunning:
        return std::uint32_t(m_accumulated + (Win32::GetTickCount() - m_intervalStart));
    case kStopped:
    case 0:
        return m_accumulated;
    default:
        return 0;
    }
}

unsigned long PerformanceInfo::GetCumulativeTickCountDelta() const {
    return std::uint32_t(Win32::GetTickCount() - m_cumulativeStart);
}

void PerformanceInfo::LogPerformanceInfo(const char* label, void* process) {
    if (!Ops::IsEventLevelActive(Ops::kCheckpoint, Ops::kLvlNA))
        return;
    // The values print as Windows' 32-bit long would show them.
    const long pageFaults = long(std::int32_t(GetProcessPageFaultCount(process)));
    const long delta = long(std::int32_t(GetTickCountDelta()));
    const long cumulative = long(std::int32_t(GetCumulativeTickCountDelta()));
    Ops::MessageFunctor(GetOps(), Ops::kLvlNA, Ops::kCheckpoint, __FILE__, __LINE__,
                        "Util::PerformanceInfo::LogPerformanceInfo",
                        ZT_FUNC_SIG)("%s: PageFault=%ld, TickDelta=%ld, CumTickDelta=%ld",
                                     label != nullptr ? label : "", pageFaults, delta, cumulative);
}

} // namespace Util
