// Util::StatusPool: the process-wide recycler of Util::StatusImpl objects.
//
// The pool keeps one shared reference to every implementation it ever created, in a list that
// only grows. GetNewStatus hands out the first free implementation from the front of the list
// (free: only the pool refers to it), reset; when none is free it creates one and appends it.
// Finding the first free entry does not walk the list: a hierarchical bit set of free entries
// finds it in a few word operations whatever the number of live statuses. The list's maximum
// length is that of the container; past it GetNewStatus throws std::length_error("list too
// long"). Safe to call from any thread. The pool lives until the library is unloaded.
#pragma once

#include "Util/Export.h"

#include <boost/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace Util {

class StatusImpl;
class StatusPool;

ZTUTIL_API StatusPool* GetStatusPool();

class ZTUTIL_API StatusPool {
public:
    boost::shared_ptr<StatusImpl> GetNewStatus();
    int GetPoolSize() const;

protected:
    StatusPool();
    ~StatusPool();
    // A copy starts empty: implementations belong to exactly one pool.
    StatusPool(const StatusPool& other);
    StatusPool& operator=(const StatusPool& other);

private:
    friend class Status;
    friend StatusPool* GetStatusPool();
    friend struct std::default_delete<StatusPool>;

    // Records that the entry at index may be free; checked again when it is taken.
    void MarkFree(std::uint32_t index);
    // Marks every entry that only the pool refers to; called with the lock held.
    void SweepFreeEntries();
    // GetNewStatus into an existing handle, saving a copy on the hot path.
    void Take(boost::shared_ptr<StatusImpl>& result);

    // Bit set over list indices with one summary level per 64-fold, so the lowest set bit is
    // found by descending from a single top word.
    class FreeIndexSet {
    public:
        void Resize(std::size_t count);
        void Set(std::size_t index);
        void Clear(std::size_t index);
        bool FindFirst(std::size_t& index) const;

    private:
        std::vector<std::vector<std::uint64_t>> m_levels;
    };

    std::deque<boost::shared_ptr<StatusImpl>> m_list;
    FreeIndexSet m_free;
    std::size_t m_capacity = 0;
    mutable std::atomic<bool> m_lock{false};

    static std::unique_ptr<StatusPool> s_pInstance;
    static std::atomic<StatusPool*> s_pCurrent;
};

} // namespace Util
