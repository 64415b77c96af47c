// Value types against their peers: Base64 against OpenSSL's block functions, the block string
// cache against one heap allocation per string (strdup + free).
#include "Util/Base64Coder.h"
#include "Util/BlockStringCache.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <openssl/evp.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

const size_t kMiB = 1 << 20;

std::vector<unsigned char> RandomBytes(size_t n) {
    std::mt19937 rng(1);
    std::vector<unsigned char> v(n);
    for (auto& b : v) {
        b = static_cast<unsigned char>(rng());
    }
    return v;
}

std::string EncodedMiB() {
    auto in = RandomBytes(kMiB);
    std::string out(4 * ((kMiB + 2) / 3) + 1, '\0');
    int n = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&out[0]), in.data(),
                            static_cast<int>(kMiB));
    out.resize(static_cast<size_t>(n));
    return out;
}

void BM_Ours_Base64Encode1MiB(benchmark::State& state) {
    auto in = RandomBytes(kMiB);
    Base64Coder coder;
    for (auto _ : state) {
        coder.Encode(in.data(), in.size());
        benchmark::DoNotOptimize(coder.EncodedMessage());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}

void BM_Peer_Base64Encode1MiB(benchmark::State& state) {
    auto in = RandomBytes(kMiB);
    std::vector<unsigned char> out(4 * ((kMiB + 2) / 3) + 1);
    for (auto _ : state) {
        int n = EVP_EncodeBlock(out.data(), in.data(), static_cast<int>(in.size()));
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}

void BM_Ours_Base64Decode1MiB(benchmark::State& state) {
    std::string text = EncodedMiB();
    Base64Coder coder;
    for (auto _ : state) {
        coder.Decode(reinterpret_cast<const unsigned char*>(text.data()), text.size());
        benchmark::DoNotOptimize(coder.DecodedMessage());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}

void BM_Peer_Base64Decode1MiB(benchmark::State& state) {
    std::string text = EncodedMiB();
    std::vector<unsigned char> out(text.size());
    for (auto _ : state) {
        int n = EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                static_cast<int>(text.size()));
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kMiB));
}

// 4096 strings of 8 to 64 bytes with their terminator, side by side in one buffer, drawn in a
// fixed order (a power of two, so that picking the next one costs no division).
class ChurnStrings {
public:
    static const size_t kCount = 4096;
    ChurnStrings() {
        std::mt19937 rng(2);
        std::vector<size_t> offsets;
        for (size_t i = 0; i < kCount; ++i) {
            offsets.push_back(m_text.size());
            size_t n = 7 + rng() % 57;
            for (size_t k = 0; k < n; ++k) {
                m_text.push_back(static_cast<char>('a' + rng() % 26));
            }
            m_text.push_back('\0');
        }
        for (size_t offset : offsets) {
            m_strings.push_back(m_text.data() + offset);
        }
    }
    const char* operator[](size_t i) const { return m_strings[i & (kCount - 1)]; }

private:
    std::string m_text;
    std::vector<const char*> m_strings;
};

// The two sides of the string-store benchmarks, with the same calls.
struct CacheStore {
    Util::BlockStringCache cache;
    const char* Add(const char* text) { return cache.AddString(text); }
    void Remove(const char* text) { cache.RemoveString(text); }
};

struct HeapStore {
    const char* Add(const char* text) { return strdup(text); }
    void Remove(const char* text) { std::free(const_cast<char*>(text)); }
};

// Keeps liveCount strings alive; each step removes the one in the slot pickSlot chooses and adds
// the next string in its place. Everything still alive is removed at the end.
template <class Store, class PickSlot>
void Churn(benchmark::State& state, size_t liveCount, PickSlot pickSlot) {
    ChurnStrings strings;
    Store store;
    std::vector<const char*> live(liveCount);
    for (size_t i = 0; i < liveCount; ++i)
        live[i] = store.Add(strings[i]);
    size_t next = liveCount;
    for (auto _ : state) {
        size_t slot = pickSlot(next);
        store.Remove(live[slot]);
        live[slot] = store.Add(strings[next]);
        benchmark::DoNotOptimize(live[slot]);
        ++next;
    }
    for (const char* p : live)
        store.Remove(p);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// Steady churn: 1024 strings stay alive; each step replaces the oldest.
const size_t kLive = 1024;

size_t OldestSlot(size_t next) {
    return next & (kLive - 1);
}

void BM_Ours_AddRemove8to64(benchmark::State& state) {
    Churn<CacheStore>(state, kLive, OldestSlot);
}

void BM_Peer_AddRemove8to64(benchmark::State& state) {
    Churn<HeapStore>(state, kLive, OldestSlot);
}

// A larger, longer-lived population: 65536 strings stay alive (a few megabytes, more than the
// processor's caches), and each step replaces one picked at random, so that lifetimes vary
// as they do in an application. The slot comes from a xorshift step, the same on both sides.
const size_t kLiveLarge = 65536;

struct RandomSlot {
    uint32_t state = 12345;
    size_t operator()(size_t) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state & (kLiveLarge - 1);
    }
};

void BM_Ours_Churn64K8to64(benchmark::State& state) {
    Churn<CacheStore>(state, kLiveLarge, RandomSlot());
}

void BM_Peer_Churn64K8to64(benchmark::State& state) {
    Churn<HeapStore>(state, kLiveLarge, RandomSlot());
}

// The same pair with nothing else alive: the freed chunk comes straight back.
void BM_Ours_AddRemovePair8to64(benchmark::State& state) {
    ChurnStrings strings;
    Util::BlockStringCache cache;
    size_t next = 0;
    for (auto _ : state) {
        const char* s = cache.AddString(strings[next++]);
        benchmark::DoNotOptimize(s);
        cache.RemoveString(s);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

void BM_Peer_AddRemovePair8to64(benchmark::State& state) {
    ChurnStrings strings;
    size_t next = 0;
    for (auto _ : state) {
        char* s = strdup(strings[next++]);
        benchmark::DoNotOptimize(s);
        std::free(s);
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// A batch: 1000 strings added, then all removed (a document's strings loaded and released).
const size_t kBatch = 1000;

void BM_Ours_AddThenRemove1000(benchmark::State& state) {
    ChurnStrings strings;
    Util::BlockStringCache cache;
    std::vector<const char*> held(kBatch);
    size_t next = 0;
    for (auto _ : state) {
        for (size_t i = 0; i < kBatch; ++i) {
            held[i] = cache.AddString(strings[next++]);
        }
        for (size_t i = 0; i < kBatch; ++i) {
            cache.RemoveString(held[i]);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kBatch));
}

void BM_Peer_AddThenRemove1000(benchmark::State& state) {
    ChurnStrings strings;
    std::vector<char*> held(kBatch);
    size_t next = 0;
    for (auto _ : state) {
        for (size_t i = 0; i < kBatch; ++i) {
            held[i] = strdup(strings[next++]);
        }
        for (size_t i = 0; i < kBatch; ++i) {
            std::free(held[i]);
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kBatch));
}

size_t HeapInUse() {
    struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

const size_t kMillion = 1000000;

// One million 16-character strings held at once; "bytes_per_string" is the heap they take.
void BM_Ours_Hold1M16(benchmark::State& state) {
    const char* text = "abcdefghijklmnop";
    std::vector<const char*> held(kMillion);
    double perString = 0;
    for (auto _ : state) {
        size_t before = HeapInUse();
        Util::BlockStringCache cache;
        for (size_t i = 0; i < kMillion; ++i) {
            held[i] = cache.AddString(text);
        }
        perString = static_cast<double>(HeapInUse() - before) / kMillion;
        benchmark::DoNotOptimize(held.data());
    }
    state.counters["bytes_per_string"] = perString;
}

void BM_Peer_Hold1M16(benchmark::State& state) {
    const char* text = "abcdefghijklmnop";
    std::vector<char*> held(kMillion);
    double perString = 0;
    for (auto _ : state) {
        size_t before = HeapInUse();
        for (size_t i = 0; i < kMillion; ++i) {
            held[i] = strdup(text);
        }
        perString = static_cast<double>(HeapInUse() - before) / kMillion;
        benchmark::DoNotOptimize(held.data());
        for (char* p : held) {
            std::free(p);
        }
    }
    state.counters["bytes_per_string"] = perString;
}

} // namespace

BENCHMARK(BM_Ours_Base64Encode1MiB);
BENCHMARK(BM_Peer_Base64Encode1MiB);
BENCHMARK(BM_Ours_Base64Decode1MiB);
BENCHMARK(BM_Peer_Base64Decode1MiB);
BENCHMARK(BM_Ours_AddRemove8to64);
BENCHMARK(BM_Peer_AddRemove8to64);
BENCHMARK(BM_Ours_Churn64K8to64);
BENCHMARK(BM_Peer_Churn64K8to64);
BENCHMARK(BM_Ours_AddRemovePair8to64);
BENCHMARK(BM_Peer_AddRemovePair8to64);
BENCHMARK(BM_Ours_AddThenRemove1000);
BENCHMARK(BM_Peer_AddThenRemove1000);
BENCHMARK(BM_Ours_Hold1M16)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Peer_Hold1M16)->Iterations(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
