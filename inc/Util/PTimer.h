// Stopwatches that write their readings to the diagnostics stream.
//
// Util::APTimer is a high-resolution stopwatch on the performance counter, in milliseconds or
// microseconds (TimerScale: 1 = microseconds, any other value = milliseconds). It is created
// running with one test counted. GetTimeDelta() closes the open interval into the accumulated
// time and returns it truncated to an integer: reading the delta pauses the timer, and
// Resume() opens a new interval (counting one more test) that adds to the same total; Start()
// and Restart() begin from zero with no test counted. When its report switch is on, the
// destructor sends "Time in MS:%f." (fewer than 2 tests) or "Total time in MS:%f, Average time
// in MS:%f, number of tests:%d." as a level-1 message event, followed by one holding a line end.
//
// Util::PerformanceInfoHP is the process-wide APTimer (instance()), with a cumulative start set
// once by Init(startTicks) to the counter value of the tick-count moment startTicks.
// Util::PerformanceInfo is the process-wide coarse stopwatch on the 32-bit tick count
// (milliseconds, wrapping as Windows' does): Start(ticks) opens an interval and the first Start
// fixes the cumulative start. Both write "<label>: PageFault=..., ...Delta=..., Cum...Delta=..."
// as a level-0 checkpoint event from LogPerformanceInfo(label, process).
//
// The instances are created on first use (safely from any thread) and never destroyed; when
// one cannot be allocated, instance() raises the verification "gPerformanceInfo" (resp.
// "gPerformanceInfoHP"), a level-6 message, and returns null. Their readings are not locked:
// one thread measures at a time.
#pragma once

#include "Util/Export.h"
#include "Util/Win32Types.h"

#include <cstdint>

namespace Util {

class ZTUTIL_API APTimer {
public:
    enum TimerScale { Milliseconds = 0, Microseconds = 1 };

    explicit APTimer(bool reportAtDestruction = false);
    APTimer(const APTimer&) = default;
    APTimer& operator=(const APTimer&) = default;
    virtual ~APTimer();

    void Start(TimerScale scale);
    void Restart();
    void Resume();
    long GetTimeDelta();

    TimerScale GetScale() const { return m_scale; }
    long GetNumberOfTests() const { return m_numberOfTests; }
    bool IsRunning() const { return m_running != 0; }
    void SetReportAtDestruction(bool on) { m_reportAtDestruction = on; }
    bool GetReportAtDestruction() const { return m_reportAtDestruction; }

protected:
    // Closes a running interval into the accumulated time.
    void CloseInterval();
    static LONGLONG Now();
    static LONGLONG Frequency();

    LONGLONG m_intervalStart;
    double m_accumulated;
    double m_countsPerUnit;
    std::int32_t m_numberOfTests;
    std::int32_t m_running;
    TimerScale m_scale;
    bool m_reportAtDestruction;
};

class ZTUTIL_API PerformanceInfoHP : public APTimer {
public:
    static PerformanceInfoHP* instance();

    PerformanceInfoHP(const PerformanceInfoHP&) = default;
    PerformanceInfoHP& operator=(const PerformanceInfoHP&) = default;

    long GetCumulativeTimeDelta() const;
    void Init(unsigned long startTicks);
    bool IsInitialized() const { return m_initialized != 0; }
    void LogPerformanceInfo(const char* label, void* process);

private:
    PerformanceInfoHP();
    ~PerformanceInfoHP() override;

    LONGLONG m_cumulativeStart;
    std::int32_t m_initialized;
};

class ZTUTIL_API PerformanceInfo {
public:
    static PerformanceInfo* instance();

    PerformanceInfo(const PerformanceInfo&) = default;
    PerformanceInfo& operator=(const PerformanceInfo&) = default;

    void Start(unsigned long ticks);
    void Restart();
    unsigned long GetTickCountDelta() const;
    unsigned long GetCumulativeTickCountDelta() const;
    void LogPerformanceInfo(const char* label, void* process);

    bool IsStarted() const { return m_started != 0; }

private:
    PerformanceInfo();
    virtual ~PerformanceInfo();

    std::uint32_t m_intervalStart;
    std::uint32_t m_accumulated;
    std::uint32_t m_state;
    std::uint32_t m_cumulativeStart;
    std::uint8_t m_started;
};

} // namespace Util
