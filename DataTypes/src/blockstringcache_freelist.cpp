#include "DataTypes/src/blockstringcache_stats.h"
#include "Util/BlockStringCache.h"

#include <cstdlib>
#include <cstring>

namespace Util {

FreeList::FreeList() {
    std::memset(m_bits, 0, sizeof m_bits);
}

FreeList::~FreeList() {
    for (Ring& ring : m_rings) {
        std::free(ring.slots);
    }
}

// Doubles a full ring, its chunks moved to the front in order. Out of line: a ring grows only
// until it holds the most chunks of its size ever free at once.
bool FreeList::Grow(Ring& ring) {
    const std::uint32_t kFirstCapacity = 8;
    if (ring.capacity > (std::uint32_t(1) << 30)) {
        return false;
    }
    std::uint32_t capacity = ring.capacity == 0 ? kFirstCapacity : 2 * ring.capacity;
    auto slots = static_cast<char**>(std::malloc(capacity * sizeof(char*)));
    if (slots == nullptr) {
        return false;
    }
    for (std::uint32_t i = 0; i < ring.count; ++i) {
        slots[i] = ring.slots[(ring.head + i) & (ring.capacity - 1)];
    }
    std::free(ring.slots);
    ring.slots = slots;
    ring.head = 0;
    ring.capacity = capacity;
    return true;
}

bool FreeList::InsertSlow(char* start, std::size_t size) {
    if (size < kMinChunk) {
        return false;
    }
    if (size < kSmallSizes) {
        if (!Grow(m_rings[size])) {
            return false;
        }
        PushSmall(start, size);
        return true;
    }
    try {
        m_large.emplace(size, start); // after the chunks of equal size already listed
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

FreeList::Taken FreeList::TakeLarge(std::size_t needed, std::size_t slack) {
    auto it = m_large.lower_bound(needed < kSmallSizes ? kSmallSizes : needed);
    if (it == m_large.end()) {
        return {nullptr, 0};
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
        return {start, needed};
    }
    m_large.erase(it);
    if (rest > slack && Insert(start + needed, rest)) {
        return {start, needed};
    }
    // Without room to list the remainder it stays with the handed-out chunk.
    return {start, found};
}

std::size_t FreeList::GetCount() const {
    std::size_t count = m_large.size();
    for (const Ring& ring : m_rings) {
        count += ring.count;
    }
    return count;
}

std::size_t FreeList::GetTotalFree() const {
    std::size_t total = 0;
    for (std::size_t size = 0; size < kSmallSizes; ++size) {
        total += size * m_rings[size].count;
    }
    for (const auto& entry : m_large) {
        total += entry.first;
    }
    return total;
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
