#include "Util/Status.h"

#include "Util/MemoryManager.h"
#include "core/src/spinlock.h"

#include <boost/make_shared.hpp>

#include <mutex>
#include <stdexcept>

namespace Util {

std::unique_ptr<StatusPool> StatusPool::s_pInstance;
std::atomic<StatusPool*> StatusPool::s_pCurrent{nullptr};

StatusPool* GetStatusPool() {
    StatusPool* pool = StatusPool::s_pCurrent.load(std::memory_order_acquire);
    if (pool != nullptr)
        return pool;
    static std::mutex creation;
    std::lock_guard<std::mutex> lock(creation);
    pool = StatusPool::s_pCurrent.load(std::memory_order_acquire);
    if (pool == nullptr) {
        StatusPool::s_pInstance.reset(new StatusPool);
        pool = StatusPool::s_pInstance.get();
        StatusPool::s_pCurrent.store(pool, std::memory_order_release);
    }
    return pool;
}

StatusPool::StatusPool() = default;

StatusPool::~StatusPool() {
    // Handles that outlive the pool must not hand their implementations back to it.
    StatusPool* self = this;
    s_pCurrent.compare_exchange_strong(self, nullptr, std::memory_order_acq_rel);
}

StatusPool::StatusPool(const StatusPool&) {}

StatusPool& StatusPool::operator=(const StatusPool&) {
    return *this;
}

int StatusPool::GetPoolSize() const {
    Detail::ElidableSpinGuard guard(m_lock);
    return static_cast<int>(m_list.size());
}

boost::shared_ptr<StatusImpl> StatusPool::GetNewStatus() {
    // The pool lends its own reference here too: when the caller's last copy drops, the
    // pool's deleter takes the entry back and marks it free at once, exactly as for a Status.
    boost::shared_ptr<StatusImpl> result;
    Take(result);
    result->Reset();
    return result;
}

void StatusPool::TakeFromList(boost::shared_ptr<StatusImpl>& result) {
    std::size_t index = 0;
    while (m_free.FindFirst(index)) {
        m_free.ClearFirst(index);
        // An entry of the set may carry a stale mark, and is checked.
        boost::shared_ptr<StatusImpl>& slot = m_list[index];
        if (slot.use_count() == 1) {
            result.swap(slot);
            return;
        }
    }
    if (m_list.size() >= std::min<std::size_t>(m_list.max_size(), UINT32_MAX - 1))
        throw std::length_error("list too long");
    if (Detail::ShouldFailAllocation())
        throw std::bad_alloc();
    boost::shared_ptr<StatusImpl> created(new StatusImpl, Deleter());
    if (m_list.size() == m_capacity) {
        m_capacity = m_capacity == 0 ? 1024 : m_capacity * 2;
        m_free.Resize(m_capacity);
    }
    created->m_poolIndex = static_cast<std::uint32_t>(m_list.size());
    m_list.emplace_back();
    result.swap(created);
}

void StatusPool::Adopt(StatusImpl* impl) {
    const std::uint32_t index = impl->m_poolIndex;
    boost::shared_ptr<StatusImpl> owner;
    try {
        owner.reset(impl, Deleter());
    } catch (const std::bad_alloc&) {
        // No memory for a new reference count: the entry stays empty and is never reused.
        delete impl;
        return;
    }
    Detail::ElidableSpinGuard guard(m_lock);
    impl->m_lent = false;
    Free(index, owner);
}

void StatusPool::Free(std::size_t index, boost::shared_ptr<StatusImpl>& ref) {
    if (m_spare == kNoSpare) {
        if (m_free.NoneBelow(index)) {
            m_spare = index;
            m_spareRef.swap(ref);
            return;
        }
    } else if (index < m_spare) {
        // The lower entry becomes the spare; the old spare goes back to its place in the set.
        m_list[m_spare].swap(m_spareRef);
        m_free.Set(m_spare);
        m_spare = index;
        m_spareRef.swap(ref);
        return;
    }
    m_list[index].swap(ref);
    m_free.Set(index);
}

void StatusPool::Deleter::operator()(StatusImpl* impl) const {
    if (impl->m_lent) {
        StatusPool* pool = s_pCurrent.load(std::memory_order_acquire);
        if (pool != nullptr) {
            pool->Adopt(impl);
            return;
        }
    }
    delete impl;
}

void StatusPool::FreeIndexSet::Resize(std::size_t count) {
    // Rebuild from the finest level, which keeps its bits.
    std::vector<std::uint64_t> finest((count + 63) / 64, 0);
    if (m_levelCount != 0)
        std::copy(m_words.begin(), m_words.begin() + static_cast<std::ptrdiff_t>(m_offset[1]),
                  finest.begin());
    std::vector<std::uint64_t> words;
    std::size_t levels = 0;
    std::size_t below = finest.size();
    words = std::move(finest);
    m_offset[0] = 0;
    levels = 1;
    while (below > 1) {
        const std::size_t start = m_offset[levels - 1];
        const std::size_t size = (below + 63) / 64;
        m_offset[levels] = words.size();
        words.resize(words.size() + size, 0);
        for (std::size_t i = 0; i < below; ++i) {
            if (words[start + i] != 0)
                words[m_offset[levels] + i / 64] |= std::uint64_t{1} << (i % 64);
        }
        below = size;
        ++levels;
    }
    m_offset[levels] = words.size();
    m_words.swap(words);
    m_levelCount = levels;
}

void StatusPool::FreeIndexSet::Set(std::size_t index) {
    if (index <= m_first) {
        m_first = index;
        m_firstExact = true;
    }
    std::uint64_t* words = m_words.data();
    for (std::size_t level = 0; level < m_levelCount; ++level) {
        std::uint64_t& word = words[m_offset[level] + index / 64];
        const bool wasEmpty = word == 0;
        word |= std::uint64_t{1} << (index % 64);
        if (!wasEmpty)
            break;
        index /= 64;
    }
}

void StatusPool::FreeIndexSet::ClearFirst(std::size_t index) {
    m_first = index + 1;
    m_firstExact = false;
    std::uint64_t* words = m_words.data();
    for (std::size_t level = 0; level < m_levelCount; ++level) {
        std::uint64_t& word = words[m_offset[level] + index / 64];
        word &= ~(std::uint64_t{1} << (index % 64));
        if (word != 0)
            break;
        index /= 64;
    }
}

bool StatusPool::FreeIndexSet::FindFirst(std::size_t& index) const {
    if (m_firstExact) {
        index = m_first;
        return true;
    }
    if (m_levelCount == 0)
        return false;
    const std::uint64_t* words = m_words.data();
    if (words[m_offset[m_levelCount - 1]] == 0)
        return false;
    std::size_t at = 0;
    for (std::size_t level = m_levelCount; level-- > 0;) {
        const std::uint64_t word = words[m_offset[level] + at];
        at = at * 64 + static_cast<std::size_t>(__builtin_ctzll(word));
    }
    index = at;
    return true;
}

} // namespace Util
