#include "Util/FailureHook.h"
#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/PTimer.h"
#include "Util/ProcessInfo.h"
#include "Util/Win32Time.h"

#include <new>

namespace Util {

PerformanceInfoHP::PerformanceInfoHP() : APTimer(false), m_cumulativeStart(0), m_initialized(0) {}

PerformanceInfoHP::~PerformanceInfoHP() = default;

PerformanceInfoHP* PerformanceInfoHP::instance() {
    // Never destroyed: readings may be logged while the process shuts down.
    static PerformanceInfoHP* const gPerformanceInfoHP = [] {
        PerformanceInfoHP* created = FailureHook::Fails(FailureHook::kPerformanceInfoHPInstance)
                                         ? nullptr
                                         : new (std::nothrow) PerformanceInfoHP();
        if (!GetOps().Verify(created != nullptr, "gPerformanceInfoHP", __FILE__, __LINE__,
                             "Util::PerformanceInfoHP::instance", ZT_FUNC_SIG)) {
            Ops::MessageFunctor(GetOps(), Ops::kLvlFatalError, Ops::kMessage, __FILE__, __LINE__,
                                "Util::PerformanceInfoHP::instance",
                                ZT_FUNC_SIG)("Can't create the util::PerformanceInfoHP::instance.");
        }
        return created;
    }();
    return gPerformanceInfoHP;
}

long PerformanceInfoHP::GetCumulativeTimeDelta() const {
    return static_cast<long>(
        static_cast<long long>(double(Now() - m_cumulativeStart) / m_countsPerUnit));
}

void PerformanceInfoHP::Init(unsigned long startTicks) {
    if (m_initialized)
        return;
    // Dates the cumulative start back to the tick-count moment given, in counter units.
    const LONGLONG counter = Now();
    const DWORD elapsedTicks = Win32::GetTickCount() - static_cast<DWORD>(startTicks);
    m_cumulativeStart = counter - (Frequency() / 1000) * LONGLONG(elapsedTicks);
    m_initialized = 1;
}

void PerformanceInfoHP::LogPerformanceInfo(const char* label, void* process) {
    // The reading pauses the timer whether or not anyone listens.
    const long cumulative = GetCumulativeTimeDelta();
    const long delta = GetTimeDelta();
    if (!Ops::IsEventLevelActive(Ops::kCheckpoint, Ops::kLvlNA))
        return;
    const long pageFaults = GetProcessPageFaultCount(process);
    if (label == nullptr)
        label = "";
    Ops::MessageFunctor log(GetOps(), Ops::kLvlNA, Ops::kCheckpoint, __FILE__, __LINE__,
                            "Util::PerformanceInfoHP::LogPerformanceInfo", ZT_FUNC_SIG);
    if (m_scale == Microseconds)
        log("%s: PageFault=%ld, MicroSecondDelta=%ld, CumMicroSecondDelta=%ld", label, pageFaults,
            delta, cumulative);
    else
        log("%s: PageFault=%ld, MilliSecondDelta=%ld, CumMilliSecondDelta=%ld", label, pageFaults,
            delta, cumulative);
}

} // namespace Util
