#include "Util/BlockStringCache.h"

#include "DataTypes/src/blockstringcache_stats.h"
#include "DataTypes/src/valuesreporting.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace Util {

namespace {

// A chunk handed out whole may carry up to this many unused bytes rather than leave a
// fragment too small to be useful.
const std::size_t kSplitSlack = 20;

inline std::uint64_t ReadHeader(const char* chunk) {
    std::uint64_t size;
    std::memcpy(&size, chunk, sizeof size);
    return size;
}

inline void WriteHeader(char* chunk, std::uint64_t size) {
    std::memcpy(chunk, &size, sizeof size);
}

// Copies a string into a chunk just handed out (the two never overlap). Short strings, the
// cache's usual content, are copied in overlapping 8-byte words: cheaper than a call.
inline void CopyString(char* to, const char* from, std::size_t n) {
    if (n < 8 || n > 64) {
        std::memcpy(to, from, n);
        return;
    }
    std::uint64_t word;
    for (std::size_t i = 0; i + 8 < n; i += 8) {
        std::memcpy(&word, from + i, 8);
        std::memcpy(to + i, &word, 8);
    }
    std::memcpy(&word, from + n - 8, 8);
    std::memcpy(to + n - 8, &word, 8);
}

} // namespace

static_assert(BlockStringCache::kHeaderSize == sizeof(std::uint64_t), "8-byte chunk header");

const char* const BlockStringCache::s_pEmptyString = "";

BlockStringCache::BlockStringCache(unsigned int blockSize, bool dumpStatisticsOnFree) {
    ReinitCache(blockSize, dumpStatisticsOnFree);
}

BlockStringCache::BlockStringCache(const BlockStringCache& other) {
    ReinitCache(other.m_blockSize, other.m_dumpStatisticsOnFree);
}

BlockStringCache& BlockStringCache::operator=(const BlockStringCache& other) {
    if (this != &other) {
        ReinitCache(other.m_blockSize, other.m_dumpStatisticsOnFree);
    }
    return *this;
}

BlockStringCache::~BlockStringCache() {
    FreeCache();
}

Status BlockStringCache::ReinitCache(unsigned int blockSize, bool dumpStatisticsOnFree) {
    FreeCache();
    m_blockSize = blockSize;
    m_dumpStatisticsOnFree = dumpStatisticsOnFree;
    m_addCount = m_emptyAddCount = m_replaceCount = m_removeCount = 0;
    m_pFreeList.reset(new (std::nothrow) FreeList);
    if (!VALUES_VERIFY(m_pFreeList != nullptr)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::ReinitCache",
                         "Util::Status Util::BlockStringCache::ReinitCache(unsigned int, bool)");
        return VALUES_REPORT(Status::GetAllocFailed());
    }
    return Status::GetSucceeded();
}

Status BlockStringCache::FreeCache() {
    if (m_dumpStatisticsOnFree && IsInitialized()) {
        DumpStatistics(true);
    }
    FreeAllBlocks();
    FreeFreeList();
    return Status::GetSucceeded();
}

void BlockStringCache::FreeAllBlocks() {
    for (auto& block : m_blocks) {
        std::free(block.first);
    }
    m_blocks.clear();
}

void BlockStringCache::FreeFreeList() {
    m_pFreeList.reset();
}

Status BlockStringCache::AllocateNewBlock() {
    char* pNewBlock = static_cast<char*>(std::malloc(m_blockSize == 0 ? 1 : m_blockSize));
    if (!VALUES_VERIFY(pNewBlock != NULL)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::AllocateNewBlock",
                         "Util::Status Util::BlockStringCache::AllocateNewBlock()");
        return VALUES_REPORT(Status::GetAllocFailed());
    }
    bool insertSucceeded = false;
    try {
        insertSucceeded = m_blocks.emplace(pNewBlock, m_blockSize).second;
    } catch (const std::exception&) {
        insertSucceeded = false;
    }
    if (!VALUES_VERIFY(insertSucceeded)) {
        std::free(pNewBlock);
        VALUES_LOCAL_OPS("Util::BlockStringCache::AllocateNewBlock",
                         "Util::Status Util::BlockStringCache::AllocateNewBlock()");
        return VALUES_REPORT(Status::GetAllocFailed());
    }
    // A block the free list cannot take (one too small for any string) would only pile up.
    if (!AddBufferToFreeList(pNewBlock, m_blockSize)) {
        m_blocks.erase(pNewBlock);
        std::free(pNewBlock);
        VALUES_LOCAL_OPS("Util::BlockStringCache::AllocateNewBlock",
                         "Util::Status Util::BlockStringCache::AllocateNewBlock()");
        return VALUES_REPORT(Status::GetAllocFailed());
    }
    return Status::GetSucceeded();
}

bool BlockStringCache::AddBufferToFreeList(char* start, std::size_t size) {
    return m_pFreeList->Insert(start, size);
}

inline char* BlockStringCache::GetFromFreeList(std::size_t byteLength) {
    std::size_t needed = byteLength + kHeaderSize;
    std::size_t size = 0;
    char* chunk = m_pFreeList->TakeBestFitAndSplit(needed, kSplitSlack, size);
    if (chunk == nullptr) {
        return nullptr;
    }
    WriteHeader(chunk, size);
    return chunk + kHeaderSize;
}

char* BlockStringCache::GetBytesFromCache(std::size_t byteLength) {
    char* pBytes = GetFromFreeList(byteLength);
    if (pBytes != nullptr) {
        return pBytes;
    }
    return GetBytesFromNewBlock(byteLength);
}

char* BlockStringCache::GetBytesFromNewBlock(std::size_t byteLength) {
    // A block that is still whole serves as well as a new one, so a request that fits no block
    // allocates at most one block, however often it is repeated.
    char* pBytes = nullptr;
    if (!m_pFreeList->HasChunkOfAtLeast(m_blockSize) && AllocateNewBlock().Succeeded()) {
        pBytes = GetFromFreeList(byteLength);
    }
    VALUES_VERIFY(pBytes != NULL);
    return pBytes;
}

bool BlockStringCache::ValidateBufferIsInCache(const char*) const {
    // Looking the address up among the blocks would cost more than the removal itself; the
    // header check in ReturnToFreeList catches the common mistakes.
    return true;
}

bool BlockStringCache::ReturnToFreeList(const char* s, std::size_t byteLength) {
    if (!ValidateBufferIsInCache(s)) {
        return false;
    }
    char* chunk = const_cast<char*>(s) - kHeaderSize;
    std::uint64_t chunkSize = ReadHeader(chunk);
    // A header no chunk of this cache can have means a buffer the cache never handed out.
    if (!VALUES_VERIFY(chunkSize >= byteLength + kHeaderSize && chunkSize <= m_blockSize)) {
        return false;
    }
    return AddBufferToFreeList(chunk, static_cast<std::size_t>(chunkSize));
}

const char* BlockStringCache::AddString(const char* s) {
    if (!VALUES_VERIFY(IsInitialized())) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::AddString",
                         "const char* Util::BlockStringCache::AddString(const char*)");
        VALUES_REPORT(Status::GetFailed());
        return nullptr;
    }
    if (s == nullptr || *s == '\0') {
        ++m_emptyAddCount;
        return s_pEmptyString;
    }
    std::size_t byteLength = std::strlen(s) + 1;
    if (!VALUES_VERIFY(byteLength <= m_blockSize)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::AddString",
                         "const char* Util::BlockStringCache::AddString(const char*)");
        VALUES_REPORT(Status::GetInvalidArg());
        return nullptr;
    }
    char* pAlloc = GetBytesFromCache(byteLength);
    if (!VALUES_VERIFY(pAlloc != NULL)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::AddString",
                         "const char* Util::BlockStringCache::AddString(const char*)");
        VALUES_REPORT(Status::GetAllocFailed());
        return nullptr;
    }
    CopyString(pAlloc, s, byteLength);
    ++m_addCount;
    return pAlloc;
}

int BlockStringCache::RemoveString(const char* s) {
    if (!VALUES_VERIFY(IsInitialized())) {
        return -1;
    }
    if (s == nullptr || *s == '\0') {
        return 0;
    }
    ++m_removeCount;
    // The chunk's size comes from its header; the string's own length is not needed (reading
    // it would cost more than the rest of the removal), only its smallest possible value.
    return ReturnToFreeList(s, 2) ? 0 : -1;
}

const char* BlockStringCache::ReplaceString(const char* oldStr, const char* newStr) {
    if (!VALUES_VERIFY(IsInitialized())) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::ReplaceString",
                         "const char* Util::BlockStringCache::ReplaceString(const char*, const "
                         "char*)");
        VALUES_REPORT(Status::GetFailed());
        return nullptr;
    }
    if (oldStr == nullptr || *oldStr == '\0') {
        return AddString(newStr);
    }
    if (newStr == nullptr || *newStr == '\0') {
        RemoveString(oldStr);
        return AddString(newStr);
    }
    std::size_t origByteLength = std::strlen(oldStr) + 1;
    std::size_t newByteLength = std::strlen(newStr) + 1;
    if (!VALUES_VERIFY(origByteLength <= m_blockSize) ||
        !VALUES_VERIFY(newByteLength <= m_blockSize)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::ReplaceString",
                         "const char* Util::BlockStringCache::ReplaceString(const char*, const "
                         "char*)");
        VALUES_REPORT(Status::GetInvalidArg());
        return nullptr;
    }
    ++m_replaceCount;
    if (origByteLength == newByteLength) {
        std::memmove(const_cast<char*>(oldStr), newStr, newByteLength);
        return oldStr;
    }
    // The new text may lie inside the old chunk, which the free list may write into (its
    // links) once the chunk is returned: copy such a text aside first.
    std::string aside;
    const char* source = newStr;
    auto chunk = reinterpret_cast<std::uintptr_t>(oldStr) - kHeaderSize;
    auto from = reinterpret_cast<std::uintptr_t>(newStr);
    if (from >= chunk && from - chunk < ReadHeader(oldStr - kHeaderSize)) {
        try {
            aside.assign(newStr, newByteLength - 1);
        } catch (const std::exception&) {
            VALUES_LOCAL_OPS("Util::BlockStringCache::ReplaceString",
                             "const char* Util::BlockStringCache::ReplaceString(const char*, "
                             "const char*)");
            VALUES_REPORT(Status::GetAllocFailed());
            return nullptr;
        }
        source = aside.c_str();
    }
    ReturnToFreeList(oldStr, origByteLength);
    char* pResultStr = GetBytesFromCache(newByteLength);
    if (!VALUES_VERIFY(pResultStr != NULL)) {
        VALUES_LOCAL_OPS("Util::BlockStringCache::ReplaceString",
                         "const char* Util::BlockStringCache::ReplaceString(const char*, const "
                         "char*)");
        VALUES_REPORT(Status::GetAllocFailed());
        return nullptr;
    }
    std::memcpy(pResultStr, source, newByteLength);
    return pResultStr;
}

void BlockStringCache::FormatStatistics(bool detail, std::vector<TString>& lines) const {
    ValuesStatistics::FormatLines sink{lines};
    ValuesStatistics::EmitCache(*this, detail, sink);
}

void BlockStringCache::DumpStatistics(bool detail) const {
    ValuesStatistics::DumpLines sink{"Util::BlockStringCache::DumpStatistics",
                                     "void Util::BlockStringCache::DumpStatistics(bool) const"};
    ValuesStatistics::EmitCache(*this, detail, sink);
}

} // namespace Util
