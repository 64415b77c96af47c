// Util::StatusHistory: the last status reported through the operations manager.
//
// One per process, created on the first GetStatusHistory() call holding "Succeeded", never
// destroyed. Only the reporting path of the operations manager writes it. Safe from any thread.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"

#include <atomic>

namespace Util {

class StatusHistory;
class LocalOps;
class Ops;

class ZTUTIL_API StatusHistory {
public:
    Status GetLastStatus() const;

protected:
    StatusHistory();
    ~StatusHistory();
    void SetLastStatus(const Status& status);

private:
    friend StatusHistory* GetStatusHistory();
    friend class LocalOps;
    friend class Ops;

    Status m_lastStatus;
    mutable std::atomic<bool> m_lock{false};

    static StatusHistory* pInstance;
};

ZTUTIL_API StatusHistory* GetStatusHistory();

} // namespace Util
