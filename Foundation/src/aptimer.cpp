#include "Util/Ops.h"
#include "Util/OpsMacros.h"
#include "Util/PTimer.h"
#include "Util/Win32Time.h"

#include <cstdio>

namespace Util {

LONGLONG APTimer::Now() {
    LARGE_INTEGER now;
    Win32::QueryPerformanceCounter(&now);
    return now.QuadPart;
}

LONGLONG APTimer::Frequency() {
    static const LONGLONG frequency = [] {
        LARGE_INTEGER value;
        value.QuadPart = 0;
        Win32::QueryPerformanceFrequency(&value);
        // A zero frequency would turn every reading into a division by zero.
        return value.QuadPart > 0 ? value.QuadPart : LONGLONG(1000000);
    }();
    return frequency;
}

APTimer::APTimer(bool reportAtDestruction)
    : m_intervalStart(0), m_accumulated(0.0), m_countsPerUnit(double(Frequency()) / 1000.0),
      m_numberOfTests(1), m_running(1), m_scale(Milliseconds),
      m_reportAtDestruction(reportAtDestruction) {
    m_intervalStart = Now();
}

APTimer::~APTimer() {
    if (!m_reportAtDestruction)
        return;
    CloseInterval();
    char text[256];
    if (m_numberOfTests < 2) {
        std::snprintf(text, sizeof text, "Time in MS:%f.", m_accumulated);
    } else {
        std::snprintf(text, sizeof text,
                      "Total time in MS:%f, Average time in MS:%f, number of tests:%d.",
                      m_accumulated, m_accumulated / m_numberOfTests, int(m_numberOfTests));
    }
    if (!Ops::IsEventLevelActive(Ops::kMessage, Ops::kLvlInfoDetail))
        return;
    Ops::MessageFunctor report(GetOps(), Ops::kLvlInfoDetail, Ops::kMessage, __FILE__, __LINE__,
                               "Util::APTimer::~APTimer", ZT_FUNC_SIG);
    report("%s", text);
    report("\n");
}

void APTimer::CloseInterval() {
    if (m_running) {
        m_accumulated += double(Now() - m_intervalStart) / m_countsPerUnit;
        m_running = 0;
    }
}

void APTimer::Start(TimerScale scale) {
    m_scale = scale;
    m_countsPerUnit = double(Frequency()) / (scale == Microseconds ? 1000000.0 : 1000.0);
    Restart();
}

void APTimer::Restart() {
    m_running = 1;
    m_numberOfTests = 0;
    m_accumulated = 0.0;
    m_intervalStart = Now();
}

void APTimer::Resume() {
    ++m_numberOfTests;
    m_running = 1;
    m_intervalStart = Now();
}

long APTimer::GetTimeDelta() {
    CloseInterval();
    return static_cast<long>(static_cast<long long>(m_accumulated));
}

} // namespace Util
