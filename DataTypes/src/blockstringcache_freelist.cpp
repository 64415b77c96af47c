#include "DataTypes/src/blockstringcache_stats.h"
#include "Util/BlockStringCache.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace Util {

FreeList::FreeList() {
    std::fill(std::begin(m_head), std::end(m_head), nullptr);
    std::fill(std::begin(m_tail), std::end(m_tail), nullptr);
    std::memset(m_bits, 0, sizeof m_bits);
}

FreeList::~FreeList() = default;

void FreeList::InsertLarge(char* start, std::size_t size) {
    m_large.emplace(size, start); // after the chunks of equal size already listed
    ++m_count;
    m_totalFree += size;
}

char* FreeList::TakeLarge(std::size_t needed, std::size_t slack, std::size_t& size) {
    auto it = m_large.lower_bound(needed < kSmallSizes ? kSmallSizes : needed);
    if (it == m_large.end()) {
        return nullptr;
    }
    char* start = it->second;
    std::size_t found = it->first;
    std::size_t rest = found - needed;
    if (rest > slack && rest >= kSmallSizes) {
        // The remainder stays large: re-key the map node in place instead of freeing one and
        // allocating another. This is the common case while a fresh block fills up.
        // The shorter chunk goes after every listed chunk of its size and before any larger
        // one; usually that is where it already was, and the hint makes the insertion cheap.
        auto hint = m_large.upper_bound(rest);
        if (hint == it) {
            ++hint;
        }
        auto node = m_large.extract(it);
        node.key() = rest;
        node.mapped() = start + needed;
        m_large.insert(hint, std::move(node));
        m_totalFree -= needed;
        size = needed;
        return start;
    }
    m_large.erase(it);
    --m_count;
    m_totalFree -= found;
    size = found;
    if (rest > slack && Insert(start + needed, rest)) {
        size = needed;
    }
    // Without room to list the remainder it stays with the handed-out chunk.
    return start;
}

bool FreeList::HasChunkOfAtLeast(std::size_t size) const {
    if (FindSmall(size) < kSmallSizes) {
        return true;
    }
    return m_large.lower_bound(size) != m_large.end();
}

void FreeList::FormatStatistics(bool detail, std::vector<TString>& lines) const {
    ValuesStatistics::FormatLines sink{lines};
    ValuesStatistics::EmitFreeList(*this, detail, sink);
}

void FreeList::DumpStatistics(bool detail) const {
    ValuesStatistics::DumpLines sink{"Util::FreeList::DumpStatistics",
                                     "void Util::FreeList::DumpStatistics(bool) const"};
    ValuesStatistics::EmitFreeList(*this, detail, sink);
}

} // namespace Util
