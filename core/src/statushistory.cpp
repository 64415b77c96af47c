#include "Util/StatusHistory.h"

#include "core/src/spinlock.h"

namespace Util {

StatusHistory* StatusHistory::pInstance = nullptr;

StatusHistory* GetStatusHistory() {
    // Created once, never destroyed: reports may arrive while the process shuts down.
    static StatusHistory* const history = (StatusHistory::pInstance = new StatusHistory);
    return history;
}

StatusHistory::StatusHistory() : m_lastStatus(Status::GetSucceeded()) {}

StatusHistory::~StatusHistory() = default;

Status StatusHistory::GetLastStatus() const {
    Detail::SpinGuard guard(m_lock);
    return m_lastStatus;
}

void StatusHistory::SetLastStatus(const Status& status) {
    Status previous = status;
    {
        Detail::SpinGuard guard(m_lock);
        std::swap(previous, m_lastStatus);
    }
}

} // namespace Util
