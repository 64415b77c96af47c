// Events from this module carry its source text, without the extension.
#define ZT_SOURCE_FILE "DataTypes/src/blockstringcache"

#include "Util/BlockStringCache.h"

#include "DataTypes/src/blockstringcache_stats.h"
#include "DataTypes/src/valuesreporting.h"

#include <cstdlib>
#include <cstring>

#include "Util/Compiler.h"
#include "Util/MemoryManager.h"

// The successful paths are laid out straight; failures and new blocks go out of line.

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
// cache's usual content, are copied as two overlapping words of 8, 16 or 32 bytes: one branch
// on the size class instead of a call or a loop.
template <std::size_t W> inline void CopyWords(char* to, const char* from, std::size_t n) {
    std::memcpy(to, from, W);
    std::memcpy(to + n - W, from + n - W, W);
}

// Returns the copy.
inline char* CopyString(char* to, const char* from, std::size_t n) {
    if (n <= 16) {
        if (n < 8) {
            return static_cast<char*>(std::memcpy(to, from, n));
        }
        CopyWords<8>(to, from, n);
    } else if (n <= 32) {
        CopyWords<16>(to, from, n);
    } else if (n <= 64) {
        CopyWords<32>(to, from, n);
    } else {
        return static_cast<char*>(std::memcpy(to, from, n));
    }
    return to;
}

// A failed call's status, reported under the calling function's name; kept out of line so that
// the successful paths carry none of its set-up.
ZT_COLD void ReportFailure(const char* function, const char* signature, long line,
                           const Status& status) {
    LocalOps valuesLocalOps(ZT_SOURCE_FILE, line, function, signature);
    (void)valuesLocalOps.ReportStatus(status, line);
}

const char* const kAddString = "Util::BlockStringCache::AddString";
const char* const kAddStringSig = "const char* Util::BlockStringCache::AddString(const char*)";
const char* const kReplaceString = "Util::BlockStringCache::ReplaceString";
const char* const kReplaceStringSig =
    "const char* Util::BlockStringCache::ReplaceString(const char*, const char*)";

} // namespace

static_assert(BlockStringCache::kHeaderSize == sizeof(std::uint64_t), "8-byte chunk header");

const char* const BlockStringCache::s_pEmptyString = "";

BlockStringCache::BlockStringCache(unsigned int blockSize, bool dumpStatisticsOnFree) {
    (void)ReinitCache(blockSize, dumpStatisticsOnFree);
}

BlockStringCache::BlockStringCache(const BlockStringCache& other) {
    (void)ReinitCache(other.m_blockSize, other.m_dumpStatisticsOnFree);
}

BlockStringCache& BlockStringCache::operator=(const BlockStringCache& other) {
    if (this != &other) {
        (void)ReinitCache(other.m_blockSize, other.m_dumpStatisticsOnFree);
    }
    return *this;
}

BlockStringCache::~BlockStringCache() {
    (void)FreeCache();
}

Status BlockStringCache::ReinitCache(unsigned int blockSize, bool dumpStatisticsOnFree) {
    (void)FreeCache();
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

inline bool BlockStringCache::AddBufferToFreeList(char* start, std::size_t size) {
    return m_pFreeList->Insert(start, size);
}

Status BlockStringCache::AllocateNewBlock() {
    char* pNewBlock = Detail::ShouldFailAllocation()
                          ? nullptr
                          : static_cast<char*>(std::malloc(m_blockSize == 0 ? 1 : m_blockSize));
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

inline char* BlockStringCache::GetBytesFromCache(std::size_t byteLength) {
    char* pBytes = GetFromFreeList(byteLength);
    if (!ZT_UNLIKELY(pBytes == nullptr)) {
        return pBytes;
    }
    return GetBytesFromNewBlock(byteLength);
}

ZT_NOINLINE char* BlockStringCache::GetBytesFromNewBlock(std::size_t byteLength) {
    // A block that is still whole serves as well as a new one, so a request that fits no block
    // allocates at most one block, however often it is repeated.
    char* pBytes = nullptr;
    if (!m_pFreeList->HasChunkOfAtLeast(m_blockSize) && AllocateNewBlock().Succeeded()) {
        pBytes = GetFromFreeList(byteLength);
    }
    VALUES_VERIFY(pBytes != NULL);
    return pBytes;
}

inline bool BlockStringCache::ValidateBufferIsInCache(const char*) const {
    // Looking the address up among the blocks would cost more than the removal itself; the
    // header check in ReturnToFreeList catches the common mistakes.
    return true;
}

inline bool BlockStringCache::ReturnToFreeList(const char* s, std::size_t byteLength) {
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
        ReportFailure(kAddString, kAddStringSig, __LINE__, Status::GetFailed());
        return nullptr;
    }
    if (s == nullptr || *s == '\0') {
        ++m_emptyAddCount;
        return s_pEmptyString;
    }
    std::size_t byteLength = std::strlen(s) + 1;
    if (!VALUES_VERIFY(byteLength <= m_blockSize)) {
        ReportFailure(kAddString, kAddStringSig, __LINE__, Status::GetInvalidArg());
        return nullptr;
    }
    // The usual case, a listed chunk below 1024 bytes, calls nothing but the copy; everything
    // else goes through GetBytesFromCache out of line.
    std::size_t size = 0;
    char* chunk = m_pFreeList->TakeSmallFit(byteLength + kHeaderSize, kSplitSlack, size);
    if (ZT_UNLIKELY(chunk == nullptr)) {
        return AddStringSlow(s, byteLength);
    }
    WriteHeader(chunk, size);
    ++m_addCount;
    return CopyString(chunk + kHeaderSize, s, byteLength);
}

ZT_NOINLINE const char* BlockStringCache::AddStringSlow(const char* s, std::size_t byteLength) {
    char* pAlloc = GetBytesFromCache(byteLength);
    // Reported as AddString's own verification.
    if (!GetOps().Verify(pAlloc != NULL, "pAlloc != NULL", ZT_SOURCE_FILE, __LINE__, "AddString",
                         kAddStringSig)) {
        ReportFailure(kAddString, kAddStringSig, __LINE__, Status::GetAllocFailed());
        return nullptr;
    }
    ++m_addCount;
    return CopyString(pAlloc, s, byteLength);
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
        ReportFailure(kReplaceString, kReplaceStringSig, __LINE__, Status::GetFailed());
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
        ReportFailure(kReplaceString, kReplaceStringSig, __LINE__, Status::GetInvalidArg());
        return nullptr;
    }
    ++m_replaceCount;
    if (origByteLength == newByteLength) {
        std::memmove(const_cast<char*>(oldStr), newStr, newByteLength);
        return oldStr;
    }
    // The new text may lie inside the old string. The free list keeps its bookkeeping outside
    // the chunks, and taking a chunk writes only its header, which precedes any string in it:
    // the text is still intact when it is copied, though source and target may overlap.
    ReturnToFreeList(oldStr, origByteLength);
    char* pResultStr = GetBytesFromCache(newByteLength);
    if (!VALUES_VERIFY(pResultStr != NULL)) {
        ReportFailure(kReplaceString, kReplaceStringSig, __LINE__, Status::GetAllocFailed());
        return nullptr;
    }
    std::memmove(pResultStr, newStr, newByteLength);
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
