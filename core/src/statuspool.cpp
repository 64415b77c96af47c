#include "Util/Status.h"

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
    boost::shared_ptr<StatusImpl> result;
    Take(result);
    return result;
}

void StatusPool::Take(boost::shared_ptr<StatusImpl>& result) {
    Detail::ElidableSpinGuard guard(m_lock);
    std::size_t index = 0;
    while (m_free.FindFirst(index)) {
        m_free.Clear(index);
        const boost::shared_ptr<StatusImpl>& slot = m_list[index];
        if (slot.use_count() == 1) {
            result = slot;
            guard.Release();
            result->Reset();
            return;
        }
    }
    if (m_list.size() >= std::min<std::size_t>(m_list.max_size(), UINT32_MAX))
        throw std::length_error("list too long");
    result = boost::make_shared<StatusImpl>();
    if (m_list.size() == m_capacity) {
        m_capacity = m_capacity == 0 ? 1024 : m_capacity * 2;
        m_free.Resize(m_capacity);
        // Entries are marked free when their last Status handle drops. One released through
        // a bare shared pointer is not; find those once per doubling, which keeps the cost
        // of this walk constant per created entry.
        SweepFreeEntries();
    }
    m_list.push_back(result);
    result->m_pPoolSlot = &m_list.back();
    result->m_poolIndex = static_cast<std::uint32_t>(m_list.size() - 1);
}

void StatusPool::SweepFreeEntries() {
    for (std::size_t i = 0; i < m_list.size(); ++i) {
        if (m_list[i].use_count() == 1)
            m_free.Set(i);
    }
}

void StatusPool::MarkFree(std::uint32_t index) {
    Detail::ElidableSpinGuard guard(m_lock);
    if (index < m_list.size())
        m_free.Set(index);
}

void StatusPool::FreeIndexSet::Resize(std::size_t count) {
    std::vector<std::vector<std::uint64_t>> levels;
    std::size_t words = (count + 63) / 64;
    levels.emplace_back(words, 0);
    if (!m_levels.empty())
        std::copy(m_levels[0].begin(), m_levels[0].end(), levels[0].begin());
    while (levels.back().size() > 1) {
        const auto& below = levels.back();
        std::vector<std::uint64_t> above((below.size() + 63) / 64, 0);
        for (std::size_t i = 0; i < below.size(); ++i) {
            if (below[i] != 0)
                above[i / 64] |= std::uint64_t{1} << (i % 64);
        }
        levels.push_back(std::move(above));
    }
    m_levels.swap(levels);
}

void StatusPool::FreeIndexSet::Set(std::size_t index) {
    for (auto& level : m_levels) {
        std::uint64_t& word = level[index / 64];
        bool wasEmpty = word == 0;
        word |= std::uint64_t{1} << (index % 64);
        if (!wasEmpty)
            break;
        index /= 64;
    }
}

void StatusPool::FreeIndexSet::Clear(std::size_t index) {
    for (auto& level : m_levels) {
        std::uint64_t& word = level[index / 64];
        word &= ~(std::uint64_t{1} << (index % 64));
        if (word != 0)
            break;
        index /= 64;
    }
}

bool StatusPool::FreeIndexSet::FindFirst(std::size_t& index) const {
    if (m_levels.empty() || m_levels.back()[0] == 0)
        return false;
    std::size_t at = 0;
    for (std::size_t level = m_levels.size(); level-- > 0;) {
        std::uint64_t word = m_levels[level][at];
        at = at * 64 + static_cast<std::size_t>(__builtin_ctzll(word));
    }
    index = at;
    return true;
}

} // namespace Util
