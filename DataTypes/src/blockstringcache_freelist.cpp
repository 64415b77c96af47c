#include "DataTypes/src/blockstringcache_stats.h"
#include "Util/BlockStringCache.h"

#include <cstring>
#include <new>

namespace Util {

namespace {
inline unsigned LowestBit(std::uint64_t bits) {
    return static_cast<unsigned>(__builtin_ctzll(bits));
}
} // namespace

FreeList::FreeList() {
    std::memset(m_head, 0xFF, sizeof m_head);
    std::memset(m_tail, 0xFF, sizeof m_tail);
    std::memset(m_bits, 0, sizeof m_bits);
}

FreeList::~FreeList() = default;

std::uint32_t FreeList::NewNode(char* start) {
    std::uint32_t index = m_freeNodes;
    if (index != kNone) {
        m_freeNodes = m_nodes[index].next;
        m_nodes[index] = Node{start, kNone};
        return index;
    }
    if (m_nodes.size() >= kNone) {
        throw std::bad_alloc();
    }
    m_nodes.push_back(Node{start, kNone});
    return static_cast<std::uint32_t>(m_nodes.size() - 1);
}

bool FreeList::Insert(char* start, std::size_t size) {
    try {
        if (size < kSmallSizes) {
            std::uint32_t node = NewNode(start);
            if (m_tail[size] == kNone) {
                m_head[size] = node;
                m_bits[size >> 6] |= std::uint64_t(1) << (size & 63);
                m_summary |= 1u << (size >> 6);
            } else {
                m_nodes[m_tail[size]].next = node;
            }
            m_tail[size] = node;
        } else {
            m_large.emplace(size, start); // after the chunks of equal size already listed
        }
    } catch (const std::exception&) {
        return false;
    }
    ++m_count;
    m_totalFree += size;
    return true;
}

// The smallest listed size in [needed, kSmallSizes), or kSmallSizes when there is none.
std::size_t FreeList::FindSmall(std::size_t needed) const {
    if (needed >= kSmallSizes) {
        return kSmallSizes;
    }
    std::size_t word = needed >> 6;
    std::uint64_t bits = m_bits[word] & (~std::uint64_t(0) << (needed & 63));
    if (bits != 0) {
        return (word << 6) + LowestBit(bits);
    }
    std::uint32_t higher = m_summary & ~((2u << word) - 1);
    if (higher == 0) {
        return kSmallSizes;
    }
    std::size_t next = LowestBit(higher);
    return (next << 6) + LowestBit(m_bits[next]);
}

bool FreeList::HasChunkOfAtLeast(std::size_t size) const {
    if (FindSmall(size) < kSmallSizes) {
        return true;
    }
    return m_large.lower_bound(size) != m_large.end();
}

char* FreeList::TakeBestFit(std::size_t needed, std::size_t& size) {
    std::size_t small = FindSmall(needed);
    if (small < kSmallSizes) {
        std::uint32_t node = m_head[small];
        char* start = m_nodes[node].start;
        m_head[small] = m_nodes[node].next;
        if (m_head[small] == kNone) {
            m_tail[small] = kNone;
            std::uint64_t& word = m_bits[small >> 6];
            word &= ~(std::uint64_t(1) << (small & 63));
            if (word == 0) {
                m_summary &= ~(1u << (small >> 6));
            }
        }
        m_nodes[node].next = m_freeNodes;
        m_freeNodes = node;
        --m_count;
        m_totalFree -= small;
        size = small;
        return start;
    }
    auto it = m_large.lower_bound(needed < kSmallSizes ? kSmallSizes : needed);
    if (it == m_large.end()) {
        return nullptr;
    }
    size = it->first;
    char* start = it->second;
    m_large.erase(it);
    --m_count;
    m_totalFree -= size;
    return start;
}

char* FreeList::TakeBestFitAndSplit(std::size_t needed, std::size_t slack, std::size_t& size) {
    // Carving a large chunk whose remainder stays large re-keys the map node in place instead
    // of freeing and allocating one: the common case while a fresh block fills up.
    if (FindSmall(needed) == kSmallSizes) {
        auto it = m_large.lower_bound(needed < kSmallSizes ? kSmallSizes : needed);
        if (it == m_large.end()) {
            return nullptr;
        }
        std::size_t rest = it->first - needed;
        if (it->first - needed > slack && rest >= kSmallSizes) {
            char* start = it->second;
            auto node = m_large.extract(it);
            node.key() = rest;
            node.mapped() = start + needed;
            m_large.insert(std::move(node));
            m_totalFree -= needed;
            size = needed;
            return start;
        }
    }
    char* start = TakeBestFit(needed, size);
    if (start != nullptr && size - needed > slack) {
        if (Insert(start + needed, size - needed)) {
            size = needed;
        }
        // Without room to list the remainder it stays with the handed-out chunk.
    }
    return start;
}

void FreeList::FormatStatistics(bool detail, std::vector<TString>& lines) const {
    ValuesStatistics::FormatLines sink{lines};
    ValuesStatistics::EmitFreeList(*this, detail, sink);
}

void FreeList::DumpStatistics(bool detail) const {
    ValuesStatistics::DumpLines sink;
    ValuesStatistics::EmitFreeList(*this, detail, sink);
}

} // namespace Util
