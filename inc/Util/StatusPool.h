// Util::StatusPool: the process-wide recycler of Util::StatusImpl objects.
//
// The pool keeps one shared reference to every implementation it ever created, in a list that
// only grows. GetNewStatus hands out the first free implementation from the front of the list
// (free: only the pool refers to it), reset; when none is free it creates one and appends it.
// Finding the first free entry does not walk the list: a hierarchical bit set of free entries
// finds it in a few word operations whatever the number of live statuses. The list's maximum
// length is that of the container; past it GetNewStatus throws std::length_error("list too
// long"). Safe to call from any thread. The pool lives until the library is unloaded.
//
// A Status built from a code and a format, and the reference GetNewStatus returns, do not copy
// the pool's reference: the pool lends it, moving it into the handle, and the handle that finds
// itself the only holder moves it back when it drops (a bare reference goes back through the
// pool's deleter when its last copy drops). Either way the entry is free again at once. So a status
// that is created and dropped costs no atomic reference-count operation, while the counts that
// callers see (GetUseCount, the copy-on-write threshold) are those of a pool that holds its
// reference all along. Two last holders dropping at once on two threads both decrement; the one
// that reaches zero hands the implementation back through the pool's deleter instead of deleting
// it.
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

    // Deletes an implementation, or hands it back to its pool when the pool's reference was
    // lent and the pool still exists.
    struct Deleter {
        void operator()(StatusImpl* impl) const;
    };

    // Takes the first free entry (or a new one) and moves the pool's own reference into
    // result, which is empty, instead of copying it; the caller reinitialises the
    // implementation at once (StatusImpl::Reuse or Reset).
    void Take(boost::shared_ptr<StatusImpl>& result);
    // Take when there is no spare entry; called with the lock held.
    void TakeFromList(boost::shared_ptr<StatusImpl>& result);
    // The only holder of a lent reference returns it; impl is empty afterwards.
    void GiveBack(boost::shared_ptr<StatusImpl>& impl);
    // A lent implementation whose last reference dropped without being given back.
    void Adopt(StatusImpl* impl);
    // Takes back the pool's reference to the entry at index, free again, from ref; called with
    // the lock held.
    void Free(std::size_t index, boost::shared_ptr<StatusImpl>& ref);

    // Bit set over list indices with one summary level per 64-fold, so the lowest set bit is
    // found by descending from a single top word. It also remembers a bound below which no bit
    // is set, exact after a Set at or below it: a status dropped and the next one created take
    // the same entry without a search.
    class FreeIndexSet {
    public:
        void Resize(std::size_t count);
        void Set(std::size_t index);
        // Clears the lowest set bit, found by FindFirst.
        void ClearFirst(std::size_t index);
        bool FindFirst(std::size_t& index) const;
        // True when no bit below index is set.
        bool NoneBelow(std::size_t index) const {
            return index <= m_first || m_levelCount == 0 ||
                   m_words[m_offset[m_levelCount - 1]] == 0;
        }

    private:
        static constexpr std::size_t kMaxLevels = 8;
        // All levels in one array, the finest first; m_offset[level] is where each starts.
        std::vector<std::uint64_t> m_words;
        std::size_t m_offset[kMaxLevels] = {};
        std::size_t m_levelCount = 0;
        std::size_t m_first = 0;
        bool m_firstExact = false;
    };

    std::deque<boost::shared_ptr<StatusImpl>> m_list;
    FreeIndexSet m_free;
    // The lowest free entry, kept out of the set while it is lower than every entry in it: a
    // status dropped and the next one created pass it back and forth without touching the set
    // or the list. Its reference is held here, not in its list entry, while it is the spare.
    static constexpr std::size_t kNoSpare = SIZE_MAX;
    std::size_t m_spare = kNoSpare;
    boost::shared_ptr<StatusImpl> m_spareRef;
    std::size_t m_capacity = 0;
    mutable std::atomic<bool> m_lock{false};

    static std::unique_ptr<StatusPool> s_pInstance;
    static std::atomic<StatusPool*> s_pCurrent;
};

ZTUTIL_API StatusPool* GetStatusPool();

} // namespace Util
