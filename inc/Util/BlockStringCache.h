// Util::BlockStringCache keeps many short zero-terminated strings in a few large heap blocks
// instead of one heap allocation per string. AddString returns a cached copy that stays valid
// until it is removed or replaced, or the cache is freed or re-initialised. Every chunk starts
// with an 8-byte header holding its size (header included); the string follows the header.
// Freed chunks go to a best-fit free list (Util::FreeList) and are reused, never merged: blocks
// are only released as a whole. Empty and null strings map to one shared empty string. Failures
// are reported through the operations manager and give null (or -1); nothing throws.
// A cache is used by one thread at a time.
#pragma once

#include "Util/Compiler.h"
#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/TString.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

namespace Util {

// Free chunks ordered by size, then by the order they were freed. TakeBestFit hands out the
// first chunk of the smallest size not below the request.
class ZTUTIL_API FreeList {
public:
    FreeList();
    ~FreeList();
    FreeList(const FreeList&) = delete;
    FreeList& operator=(const FreeList&) = delete;

    // Lists a free chunk. False (the chunk is not listed) for a chunk below 8 bytes, too small
    // for any string with its header, or when memory for the bookkeeping is exhausted.
    bool Insert(char* start, std::size_t size);
    // Removes the best-fitting chunk and returns its start and size; null when none fits.
    char* TakeBestFit(std::size_t needed, std::size_t& size);
    // TakeBestFit, then a chunk larger than needed by more than slack is split: its remainder
    // (needed bytes further on) goes back into the list and size becomes needed.
    inline char* TakeBestFitAndSplit(std::size_t needed, std::size_t slack, std::size_t& size);
    // The same for the common case, inline and without calls: null, with nothing taken, when
    // the best fit is a large chunk or listing the remainder needs more memory.
    char* TakeSmallFit(std::size_t needed, std::size_t slack, std::size_t& size);
    bool HasChunkOfAtLeast(std::size_t size) const;

    // Counted when asked (statistics only), which keeps the bookkeeping out of every call.
    std::size_t GetCount() const;
    std::size_t GetTotalFree() const;

    // Visits every free chunk in list order.
    template <class F> void ForEach(F&& visit) const;

    // "%ld free buffer(s)", with detail one "free buffer size: ..." line per chunk, then
    // "%lu total free space".
    void FormatStatistics(bool detail, std::vector<TString>& lines) const;
    void DumpStatistics(bool detail) const;

private:
    // Chunks below kSmallSizes bytes sit in one FIFO per exact size, found through a two-level
    // bitmap (one bit per size, one summary bit per 64 sizes); larger ones in an ordered
    // multimap. Both keep the order a single multimap would. Each FIFO is a ring of chunk
    // addresses kept apart from the chunks: taking a chunk then never waits for the chunk's own
    // memory, which a first-freed-first-used list has mostly let go cold. The small-chunk paths
    // are inline: they are the cost of every AddString and RemoveString.
    static constexpr std::size_t kSmallSizes = 1024;
    static constexpr std::size_t kMinChunk = 8;

    struct Taken {
        char* start;
        std::size_t size;
    };
    struct Ring {
        char** slots = nullptr;
        std::uint32_t head = 0;     // slot of the first chunk
        std::uint32_t count = 0;    // chunks listed
        std::uint32_t capacity = 0; // slots, a power of two (or 0)
    };

    std::size_t FindSmall(std::size_t needed) const;
    void PushSmall(char* start, std::size_t size); // the ring has room
    char* PopSmall(std::size_t size);
    bool InsertSlow(char* start, std::size_t size);
    bool Grow(Ring& ring);
    Taken TakeLarge(std::size_t needed, std::size_t slack);
    static unsigned LowestBit(std::uint64_t bits) { return CountTrailingZeros64(bits); }

    Ring m_rings[kSmallSizes];
    std::uint64_t m_bits[kSmallSizes / 64];
    std::uint32_t m_summary = 0;
    std::multimap<std::size_t, char*> m_large;
};

// The smallest listed size in [needed, kSmallSizes), or kSmallSizes when there is none.
inline std::size_t FreeList::FindSmall(std::size_t needed) const {
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

inline void FreeList::PushSmall(char* start, std::size_t size) {
    Ring& ring = m_rings[size];
    ring.slots[(ring.head + ring.count) & (ring.capacity - 1)] = start;
    ++ring.count;
    // Setting the bits whether or not they were set costs less than a mispredicted branch.
    m_bits[size >> 6] |= std::uint64_t(1) << (size & 63);
    m_summary |= 1u << (size >> 6);
}

inline char* FreeList::PopSmall(std::size_t size) {
    Ring& ring = m_rings[size];
    char* start = ring.slots[ring.head];
    ring.head = (ring.head + 1) & (ring.capacity - 1);
    --ring.count;
    // Clearing the bits of an emptied ring without branching: whether a ring empties depends on
    // the sizes asked for, which no predictor follows.
    std::uint64_t& word = m_bits[size >> 6];
    word &= ~(std::uint64_t(ring.count == 0) << (size & 63));
    m_summary &= ~(std::uint32_t(word == 0) << (size >> 6));
    return start;
}

inline bool FreeList::Insert(char* start, std::size_t size) {
    if (size - kMinChunk < kSmallSizes - kMinChunk &&
        m_rings[size].count != m_rings[size].capacity) {
        PushSmall(start, size);
        return true;
    }
    // Everything else out of line, where it costs the common case no saved registers.
    return InsertSlow(start, size);
}

inline char* FreeList::TakeBestFit(std::size_t needed, std::size_t& size) {
    return TakeBestFitAndSplit(needed, ~std::size_t(0), size);
}

inline char* FreeList::TakeBestFitAndSplit(std::size_t needed, std::size_t slack,
                                           std::size_t& size) {
    std::size_t small = FindSmall(needed);
    if (small == kSmallSizes) {
        Taken taken = TakeLarge(needed, slack);
        size = taken.size;
        return taken.start;
    }
    char* start = PopSmall(small);
    size = small;
    if (small - needed > slack && Insert(start + needed, small - needed)) {
        size = needed;
    }
    return start;
}

inline char* FreeList::TakeSmallFit(std::size_t needed, std::size_t slack, std::size_t& size) {
    std::size_t small = FindSmall(needed);
    if (small == kSmallSizes) {
        return nullptr;
    }
    std::size_t rest = small - needed;
    if (rest > slack) {
        const Ring& ring = m_rings[rest];
        if (rest < kMinChunk || ring.count == ring.capacity) {
            return nullptr;
        }
        char* start = PopSmall(small);
        PushSmall(start + needed, rest);
        size = needed;
        return start;
    }
    size = small;
    return PopSmall(small);
}

template <class F> void FreeList::ForEach(F&& visit) const {
    for (std::size_t size = 0; size < kSmallSizes; ++size) {
        const Ring& ring = m_rings[size];
        for (std::uint32_t i = 0; i < ring.count; ++i) {
            visit(ring.slots[(ring.head + i) & (ring.capacity - 1)], size);
        }
    }
    for (const auto& entry : m_large) {
        visit(entry.second, entry.first);
    }
}

class ZTUTIL_API BlockStringCache {
public:
    static constexpr unsigned int kDefaultBlockSize = 65535;
    static constexpr std::size_t kHeaderSize = 8;

    // dumpStatisticsOnFree: FreeCache (and so the destructor and ReinitCache) first writes the
    // statistics, with the free-list detail, through the operations manager.
    explicit BlockStringCache(unsigned int blockSize = kDefaultBlockSize,
                              bool dumpStatisticsOnFree = false);
    // Copies take the configuration only (block size and flag): the copy starts empty.
    BlockStringCache(const BlockStringCache& other);
    BlockStringCache& operator=(const BlockStringCache& other);
    ~BlockStringCache();

    // Frees everything, then starts an empty cache with the given configuration; the
    // statistics counters start again from zero.
    Status ReinitCache(unsigned int blockSize = kDefaultBlockSize,
                       bool dumpStatisticsOnFree = false);
    // Frees every block and the free list; the cache is then not initialised.
    Status FreeCache();
    bool IsInitialized() const { return m_pFreeList != nullptr; }

    const char* AddString(const char* s);
    // Returns the pointer to use from now on (old itself when the lengths are equal).
    const char* ReplaceString(const char* oldStr, const char* newStr);
    // 0, or -1 when the cache is not initialised or the buffer's header is impossible.
    int RemoveString(const char* s);

    void FormatStatistics(bool detail, std::vector<TString>& lines) const;
    void DumpStatistics(bool detail) const;

    unsigned int GetBlockSize() const { return m_blockSize; }
    bool GetDumpStatisticsOnFree() const { return m_dumpStatisticsOnFree; }
    std::size_t GetBlockCount() const { return m_blocks.size(); }
    const FreeList* GetFreeList() const { return m_pFreeList.get(); }
    unsigned long GetAddCount() const { return m_addCount; }
    unsigned long GetEmptyAddCount() const { return m_emptyAddCount; }
    unsigned long GetReplaceCount() const { return m_replaceCount; }
    unsigned long GetRemoveCount() const { return m_removeCount; }
    static const char* GetEmptyString() { return s_pEmptyString; }

private:
    Status AllocateNewBlock();
    char* GetBytesFromCache(std::size_t byteLength);
    char* GetBytesFromNewBlock(std::size_t byteLength);
    const char* AddStringSlow(const char* s, std::size_t byteLength);
    char* GetFromFreeList(std::size_t byteLength);
    bool ReturnToFreeList(const char* s, std::size_t byteLength);
    bool AddBufferToFreeList(char* start, std::size_t size);
    bool ValidateBufferIsInCache(const char* s) const;
    void FreeAllBlocks();
    void FreeFreeList();

    static const char* const s_pEmptyString;

    unsigned int m_blockSize = kDefaultBlockSize;
    bool m_dumpStatisticsOnFree = false;
    std::map<char*, unsigned int> m_blocks; // block start -> size, ordered by address
    std::unique_ptr<FreeList> m_pFreeList;
    unsigned long m_addCount = 0;
    unsigned long m_emptyAddCount = 0;
    unsigned long m_replaceCount = 0;
    unsigned long m_removeCount = 0;
};

} // namespace Util
