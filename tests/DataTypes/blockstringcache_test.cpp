#include "Util/BlockStringCache.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using Util::BlockStringCache;

namespace {

std::uint64_t HeaderOf(const char* s) {
    std::uint64_t size;
    std::memcpy(&size, s - BlockStringCache::kHeaderSize, sizeof size);
    return size;
}

std::vector<std::string> Lines(const BlockStringCache& cache, bool detail) {
    std::vector<Util::TString> lines;
    cache.FormatStatistics(detail, lines);
    std::vector<std::string> out;
    for (const auto& l : lines)
        out.emplace_back(l.c_str());
    return out;
}

} // namespace

TEST(BlockStringCacheAdd, EmptyAndNullShareOneStringAndAllocateNothing) {
    BlockStringCache cache;
    const char* a = cache.AddString("");
    const char* b = cache.AddString("");
    const char* c = cache.AddString(nullptr);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, c);
    EXPECT_EQ(a, BlockStringCache::GetEmptyString());
    EXPECT_STREQ(a, "");
    EXPECT_EQ(cache.GetBlockCount(), 0u);
    EXPECT_EQ(cache.GetEmptyAddCount(), 3u);
    EXPECT_EQ(cache.GetAddCount(), 0u);
    EXPECT_EQ(cache.RemoveString(a), 0);
    EXPECT_EQ(cache.GetRemoveCount(), 0u);
}

TEST(BlockStringCacheAdd, CopiesBehindAnEightByteSizeHeader) {
    BlockStringCache cache;
    const char* s = cache.AddString("hello");
    ASSERT_NE(s, nullptr);
    EXPECT_STREQ(s, "hello");
    EXPECT_EQ(HeaderOf(s), 6u + 8u);
    // The first chunk starts the block; the next one follows directly.
    const char* t = cache.AddString("world!");
    EXPECT_EQ(t, s + 6 + 8);
    EXPECT_EQ(HeaderOf(t), 7u + 8u);
    EXPECT_EQ(cache.GetBlockCount(), 1u);
    EXPECT_EQ(cache.GetFreeList()->GetTotalFree(), 65535u - 14 - 15);
}

TEST(BlockStringCacheAdd, BoundaryLengthsOfTheDefaultBlock) {
    const struct {
        size_t length;
        bool fits;
    } cases[] = {{65526, true}, {65527, false}, {65534, false}, {65535, false}, {70000, false}};
    for (const auto& c : cases) {
        BlockStringCache cache;
        std::string text(c.length, 'q');
        const char* s = cache.AddString(text.c_str());
        EXPECT_EQ(s != nullptr, c.fits) << c.length;
        if (c.fits) {
            EXPECT_EQ(text, s);
            EXPECT_EQ(HeaderOf(s), 65535u); // the whole block: the 1 spare byte stays with it
            EXPECT_EQ(cache.GetFreeList()->GetCount(), 0u);
        }
        // Fitting the length check but not a block allocates one block, and only once.
        size_t blocks = c.length + 1 <= 65535 ? 1 : 0;
        const char* again = cache.AddString(text.c_str());
        if (!c.fits) {
            EXPECT_EQ(again, nullptr);
            EXPECT_EQ(cache.GetBlockCount(), blocks) << c.length;
        }
    }
}

TEST(BlockStringCacheAdd, BlocksTooSmallForAnyStringAreNotKept) {
    for (unsigned size : {0u, 1u, 5u, 9u}) {
        BlockStringCache cache(size);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(cache.AddString("a"), nullptr) << size;
        EXPECT_LE(cache.GetBlockCount(), 1u) << size;
    }
    BlockStringCache smallest(10);
    EXPECT_STREQ(smallest.AddString("a"), "a");
    EXPECT_STREQ(smallest.AddString("b"), "b");
    EXPECT_EQ(smallest.GetBlockCount(), 2u);
}

TEST(BlockStringCacheAdd, FailsWhenNotInitialised) {
    BlockStringCache cache;
    ASSERT_TRUE(cache.FreeCache().Succeeded());
    EXPECT_FALSE(cache.IsInitialized());
    EXPECT_EQ(cache.AddString("x"), nullptr);
    EXPECT_EQ(cache.ReplaceString("x", "y"), nullptr);
    EXPECT_EQ(cache.RemoveString("x"), -1);
    ASSERT_TRUE(cache.ReinitCache(128, false).Succeeded());
    EXPECT_STREQ(cache.AddString("x"), "x");
    EXPECT_EQ(cache.GetBlockSize(), 128u);
}

TEST(BlockStringCacheReuse, FreedChunkIsReusedBestFitFirstFreedFirst) {
    BlockStringCache cache;
    const char* a = cache.AddString("0123456789");
    const char* b = cache.AddString("abcdefghij");
    cache.AddString("keep");
    ASSERT_EQ(cache.RemoveString(a), 0);
    ASSERT_EQ(cache.RemoveString(b), 0);
    // Same size: the chunk freed first comes back first.
    EXPECT_EQ(cache.AddString("ABCDEFGHIJ"), a);
    EXPECT_EQ(cache.AddString("KLMNOPQRST"), b);

    // A chunk larger than needed by at most 20 bytes is handed out whole; by more, it splits.
    const char* big = cache.AddString(std::string(40, 'b').c_str()); // 49-byte chunk
    cache.RemoveString(big);
    const char* whole = cache.AddString(std::string(20, 'w').c_str()); // needs 29: 20 spare
    EXPECT_EQ(whole, big);
    EXPECT_EQ(HeaderOf(whole), 49u);
    cache.RemoveString(whole);
    const char* part = cache.AddString(std::string(19, 'p').c_str()); // needs 28: 21 spare
    EXPECT_EQ(part, big);
    EXPECT_EQ(HeaderOf(part), 28u);
    // The remainder of 21 bytes is a chunk of its own, fit for a 12-character string.
    EXPECT_EQ(cache.AddString("123456789012"), big + 28);
}

TEST(BlockStringCacheReplace, SameLengthInPlaceOtherwiseMoves) {
    BlockStringCache cache;
    const char* s = cache.AddString("alpha");
    EXPECT_EQ(cache.ReplaceString(s, "omega"), s);
    EXPECT_STREQ(s, "omega");
    const char* longer = cache.ReplaceString(s, "omega and more");
    EXPECT_NE(longer, s);
    EXPECT_STREQ(longer, "omega and more");
    EXPECT_EQ(cache.ReplaceString(longer, ""), BlockStringCache::GetEmptyString());
    EXPECT_STREQ(cache.ReplaceString(nullptr, "fresh"), "fresh");
    EXPECT_EQ(cache.GetReplaceCount(), 2u);
    EXPECT_EQ(cache.GetRemoveCount(), 1u);

    // A suffix of the old string survives its own chunk being reused.
    const char* text = cache.AddString("a fairly long string to be shortened in place");
    const char* tail = cache.ReplaceString(text, text + 14);
    EXPECT_STREQ(tail, "string to be shortened in place");

    // Also when the reused chunk is split inside the text being copied.
    std::string hundred(100, 'x');
    for (size_t i = 0; i < hundred.size(); ++i)
        hundred[i] = static_cast<char>('a' + i % 26);
    const char* wide = cache.AddString(hundred.c_str());
    const char* half = cache.ReplaceString(wide, wide + 50);
    EXPECT_EQ(half, wide);
    EXPECT_EQ(std::string(half), hundred.substr(50));

    std::string huge(70000, 'h');
    EXPECT_EQ(cache.ReplaceString(tail, huge.c_str()), nullptr);
    EXPECT_STREQ(tail, "string to be shortened in place");
}

TEST(BlockStringCacheStatistics, LinesCountEveryOperation) {
    BlockStringCache cache(1000);
    const char* a = cache.AddString("first");
    cache.AddString("");
    a = cache.ReplaceString(a, "second");
    cache.RemoveString(a);
    auto lines = Lines(cache, true);
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[0], "1 block(s) of size 1000 bytes allocated, 1000 bytes total allocation");
    EXPECT_EQ(lines[1], "AddString called 1 times with non-empty string");
    EXPECT_EQ(lines[2], "AddString called 1 times with an empty string");
    EXPECT_EQ(lines[3], "ReplaceString called 1 times");
    EXPECT_EQ(lines[4], "RemoveString called 1 times");
    EXPECT_EQ(lines[5], "3 free buffer(s)");
    // In size order: "first" (14 bytes), "second" (15), then the rest of the block.
    auto start = reinterpret_cast<std::uintptr_t>(a) - 8 - 14;
    char expected[128];
    std::snprintf(expected, sizeof expected, "free buffer size: 14\t\tstart: %#lx\tend: %#lx",
                  static_cast<unsigned long>(start), static_cast<unsigned long>(start + 14));
    EXPECT_EQ(lines[6], expected);
    EXPECT_EQ(lines[7].rfind("free buffer size: 15\t\t", 0), 0u);
    EXPECT_EQ(lines[8].rfind("free buffer size: 971\t\t", 0), 0u);
    EXPECT_EQ(lines[9], "1000 total free space");
    EXPECT_EQ(Lines(cache, false).size(), 7u);
}

TEST(BlockStringCacheCopy, CopiesTakeTheConfigurationOnly) {
    BlockStringCache a(4096, true);
    a.AddString("content");
    BlockStringCache b(a);
    EXPECT_EQ(b.GetBlockSize(), 4096u);
    EXPECT_TRUE(b.GetDumpStatisticsOnFree());
    EXPECT_EQ(b.GetBlockCount(), 0u);
    BlockStringCache c;
    c.AddString("gone");
    c = a;
    EXPECT_EQ(c.GetBlockSize(), 4096u);
    EXPECT_EQ(c.GetBlockCount(), 0u);
    EXPECT_EQ(c.GetAddCount(), 0u);
}

// The free list against the plain ordered multimap it stands for: the same chunks come out in
// the same order (equal sizes first listed, first taken), whatever the mix of sizes (both sides
// of the small/large boundary) and whichever of its paths takes them.
TEST(FreeListModel, HandsOutWhatAnOrderedMultimapWould) {
    std::mt19937 rng(77);
    // Listed chunks belong to the list (it may keep its links in them): keep them apart.
    std::vector<std::unique_ptr<char[]>> memory;
    Util::FreeList list;
    std::multimap<size_t, char*> model;
    auto fresh = [&memory](size_t size) {
        memory.emplace_back(new char[size]);
        return memory.back().get();
    };
    for (int step = 0; step < 30000; ++step) {
        if (rng() % 2 == 0) {
            size_t size = rng() % 4 == 0 ? 900 + rng() % 300 : 8 + rng() % 120;
            if (rng() % 200 == 0)
                size = 65535;
            char* p = fresh(size);
            ASSERT_TRUE(list.Insert(p, size));
            model.emplace(size, p);
        } else {
            size_t needed = 10 + rng() % (rng() % 8 == 0 ? 1500 : 100);
            size_t size = 0;
            // The inline path either serves the request as the general one would or declines
            // without taking anything; TakeBestFit never splits.
            const unsigned path = rng() % 3;
            const size_t slack = path == 2 ? ~size_t(0) : 20;
            char* got = path == 0 ? list.TakeSmallFit(needed, slack, size) : nullptr;
            if (got == nullptr)
                got = path == 2 ? list.TakeBestFit(needed, size)
                                : list.TakeBestFitAndSplit(needed, slack, size);
            auto it = model.lower_bound(needed);
            if (it == model.end()) {
                ASSERT_EQ(got, nullptr) << "step " << step;
                continue;
            }
            char* start = it->second;
            size_t found = it->first;
            model.erase(it);
            ASSERT_EQ(got, start) << "step " << step;
            if (found - needed > slack) {
                model.emplace(found - needed, start + needed);
                ASSERT_EQ(size, needed);
            } else {
                ASSERT_EQ(size, found);
            }
        }
        ASSERT_EQ(list.GetCount(), model.size());
    }
    std::vector<std::pair<size_t, char*>> listed;
    list.ForEach([&listed](char* p, size_t size) { listed.emplace_back(size, p); });
    const std::vector<std::pair<size_t, char*>> expected(model.begin(), model.end());
    EXPECT_EQ(listed, expected);
}

// Best fit: the smallest listed size that is large enough, whatever was freed first; the
// remainder of a split queues behind the chunks of its size already listed.
TEST(FreeListOrder, SmallestFittingSizeThenRemainderQueuesLast) {
    std::vector<char> memory(4096);
    char* base = memory.data();
    Util::FreeList list;
    const struct {
        size_t offset;
        size_t size;
    } listed[] = {{0, 300}, {400, 60}, {500, 30}, {600, 28}, {700, 60}, {800, 2000}};
    for (const auto& c : listed)
        ASSERT_TRUE(list.Insert(base + c.offset, c.size));
    const struct {
        size_t needed;
        size_t offset; // of the chunk handed out
        size_t size;   // handed out
    } takes[] = {
        {29, 500, 30},   // 30 beats the 60s and the 300
        {31, 400, 31},   // the first 60, split: 29 bytes remain at 431
        {31, 700, 31},   // the second 60, split: another 29 at 731
        {28, 600, 28},   // exact size
        {29, 431, 29},   // the remainders, in the order they were made
        {29, 731, 29},   //
        {29, 0, 29},     // then the 300, split (271 left at 29)
        {280, 800, 280}, // 271 is too small: the 2000, split
        {271, 29, 271},  // the remainder of the 300, handed out whole
    };
    for (const auto& t : takes) {
        size_t got = 0;
        char* p = list.TakeBestFitAndSplit(t.needed, 20, got);
        EXPECT_EQ(p, base + t.offset) << t.needed;
        EXPECT_EQ(got, t.size) << t.needed;
    }
    EXPECT_EQ(list.GetCount(), 1u);
    EXPECT_EQ(list.GetTotalFree(), 2000u - 280u);
}

// Many strings across many small blocks, checked against a plain map after every step.
TEST(BlockStringCacheModel, RandomOperationsKeepEveryStringIntact) {
    std::mt19937 rng(2024);
    BlockStringCache cache(512);
    std::map<int, std::string> model;
    std::map<int, const char*> held;
    int nextKey = 0;
    auto randomText = [&rng] {
        size_t n = rng() % 3 == 0 ? rng() % 500 : rng() % 40;
        std::string s(n, ' ');
        for (auto& c : s)
            c = static_cast<char>('a' + rng() % 26);
        return s;
    };
    for (int step = 0; step < 20000; ++step) {
        unsigned op = rng() % 10;
        if (model.empty() || op < 4) {
            std::string s = randomText();
            const char* p = cache.AddString(s.c_str());
            ASSERT_NE(p, nullptr);
            model[nextKey] = s;
            held[nextKey++] = p;
        } else {
            auto it = model.begin();
            std::advance(it, rng() % model.size());
            int key = it->first;
            if (op < 7) {
                std::string s = randomText();
                const char* p = cache.ReplaceString(held[key], s.c_str());
                ASSERT_NE(p, nullptr);
                model[key] = s;
                held[key] = p;
            } else {
                ASSERT_EQ(cache.RemoveString(held[key]), 0);
                model.erase(key);
                held.erase(key);
            }
        }
        if (step % 500 == 0 || step == 19999) {
            for (const auto& entry : model)
                ASSERT_EQ(entry.second, held[entry.first]) << "step " << step;
        }
    }
    EXPECT_GT(cache.GetBlockCount(), 10u);
    // Every byte of every block is either free or held by a live chunk.
    size_t live = 0;
    for (const auto& entry : held) {
        if (!entry.second[0])
            continue;
        live += HeaderOf(entry.second);
    }
    EXPECT_EQ(live + cache.GetFreeList()->GetTotalFree(), cache.GetBlockCount() * 512);
}

// ---- what the cache reports through the operations manager ----

namespace {

class BlockStringCacheReporting : public OpsTest::OpsRunning {
protected:
    std::vector<std::string> Texts(Util::Ops::EventType type) const {
        std::vector<std::string> texts;
        for (const auto& e : m_events->Events()) {
            if (e.type == type)
                texts.push_back(e.text);
        }
        return texts;
    }
    void SetUp() override {
        OpsRunning::SetUp();
        m_events = OpsTest::Subscribe();
    }
    std::shared_ptr<OpsTest::CaptureHandler> m_events;
};

} // namespace

TEST_F(BlockStringCacheReporting, FailuresRaiseNamedVerificationsAndReportStatuses) {
    BlockStringCache cache;
    EXPECT_EQ(cache.AddString(std::string(65527, 'x').c_str()), nullptr);
    EXPECT_EQ(cache.AddString(std::string(65535, 'x').c_str()), nullptr);
    const char* s = cache.AddString("abc");
    EXPECT_EQ(cache.ReplaceString(s, std::string(70000, 'y').c_str()), nullptr);
    (void)cache.FreeCache();
    EXPECT_EQ(cache.AddString("x"), nullptr);
    EXPECT_EQ(cache.RemoveString("x"), -1);

    EXPECT_EQ(Texts(Util::Ops::kVerify),
              (std::vector<std::string>{
                  "(pBytes != NULL) is false", "(pAlloc != NULL) is false",
                  "(byteLength <= m_blockSize) is false", "(newByteLength <= m_blockSize) is false",
                  "(IsInitialized()) is false", "(IsInitialized()) is false"}));
    auto statuses = Texts(Util::Ops::kFuncStatus);
    ASSERT_EQ(statuses.size(), 4u);
    const char* expected[] = {"Status Reported: Memory failure, function = "
                              "Util::BlockStringCache::AddString, signature = ",
                              "Status Reported: Invalid Argument, function = "
                              "Util::BlockStringCache::AddString, signature = ",
                              "Status Reported: Invalid Argument, function = "
                              "Util::BlockStringCache::ReplaceString, signature = ",
                              "Status Reported: Failed, function = "
                              "Util::BlockStringCache::AddString, signature = "};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(statuses[i].rfind(expected[i], 0), 0u) << statuses[i];
}

TEST_F(BlockStringCacheReporting, StatisticsAreWrittenAsDumpEvents) {
    BlockStringCache cache(2048, true);
    cache.AddString("one");
    cache.AddString("");
    std::vector<Util::TString> lines;
    cache.FormatStatistics(true, lines);
    cache.DumpStatistics(true);
    auto dumped = Texts(Util::Ops::kDump);
    ASSERT_EQ(dumped.size(), lines.size());
    for (size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(dumped[i], lines[i].c_str());
    // The flag writes them once more when the cache is freed.
    (void)cache.FreeCache();
    EXPECT_EQ(Texts(Util::Ops::kDump).size(), 2 * lines.size());
    (void)cache.FreeCache();
    EXPECT_EQ(Texts(Util::Ops::kDump).size(), 2 * lines.size());
}
