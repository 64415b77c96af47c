// Money and decimal arithmetic: ZtDecimal64 against the Intel library called directly, BalType
// against a raw decimal64 operation, and plain double arithmetic as the physical reference.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "DataTypes/src/ztdecimal64_bid.h"
#include "Util/BalType.h"
#include "Util/ZtDecimal64.h"

namespace {
constexpr size_t kCount = 1024;

// Money-like operands: up to 11 whole digits with cents, both signs, fixed seed.
struct Operands {
    std::vector<ZtDecimal64> a, b;
    std::vector<BID_UINT64> rawA, rawB;
    std::vector<BalType> balA, balB;
    std::vector<double> dblA, dblB;

    Operands() {
        std::mt19937_64 rng(20261122);
        std::uniform_int_distribution<int64_t> cents(-99999999999LL, 99999999999LL);
        for (size_t i = 0; i < kCount; ++i) {
            for (int side = 0; side < 2; ++side) {
                int64_t value = cents(rng);
                if (value == 0) {
                    value = 1;
                }
                ZtDecimal64 d = ZtDecimal64::ScaleB(ZtDecimal64(static_cast<long long>(value)), -2);
                BalType bal;
                bal.SetFromDecimal(d, BalKindDollar, false, false);
                (side ? b : a).push_back(d);
                (side ? rawB : rawA).push_back(d.GetInternalToUInt64());
                (side ? balB : balA).push_back(bal);
                (side ? dblB : dblA).push_back(static_cast<double>(value) / 100.0);
            }
        }
    }
};

const Operands& Data() {
    static const Operands data;
    return data;
}

template <typename T, typename Op>
void Run(benchmark::State& state, const std::vector<T>& a, const std::vector<T>& b, Op op) {
    std::vector<decltype(op(a[0], b[0]))> out(kCount);
    for (auto _ : state) {
        for (size_t i = 0; i < kCount; ++i) {
            out[i] = op(a[i], b[i]);
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kCount));
}

// ZtDecimal64 against the library.
void BM_Ours_Decimal64Add(benchmark::State& s) {
    Run(s, Data().a, Data().b, [](const ZtDecimal64& x, const ZtDecimal64& y) { return x + y; });
}
void BM_Peer_Decimal64Add(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_add(x, y); });
}
void BM_Ours_Decimal64Mul(benchmark::State& s) {
    Run(s, Data().a, Data().b, [](const ZtDecimal64& x, const ZtDecimal64& y) { return x * y; });
}
void BM_Peer_Decimal64Mul(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_mul(x, y); });
}

// BalType against the raw decimal64 operation it is built on.
void BM_Ours_BalTypeAdd(benchmark::State& s) {
    Run(s, Data().balA, Data().balB, [](const BalType& x, const BalType& y) { return x + y; });
}
void BM_Peer_BalTypeAdd(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_add(x, y); });
}
void BM_Ours_BalTypeSub(benchmark::State& s) {
    Run(s, Data().balA, Data().balB, [](const BalType& x, const BalType& y) { return x - y; });
}
void BM_Peer_BalTypeSub(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_sub(x, y); });
}
void BM_Ours_BalTypeMul(benchmark::State& s) {
    Run(s, Data().balA, Data().balB, [](const BalType& x, const BalType& y) { return x * y; });
}
void BM_Peer_BalTypeMul(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_mul(x, y); });
}
void BM_Ours_BalTypeDiv(benchmark::State& s) {
    Run(s, Data().balA, Data().balB, [](const BalType& x, const BalType& y) { return x / y; });
}
void BM_Peer_BalTypeDiv(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB, [](BID_UINT64 x, BID_UINT64 y) { return bid64_div(x, y); });
}
void BM_Ours_BalTypeCompare(benchmark::State& s) {
    Run(s, Data().balA, Data().balB, [](const BalType& x, const BalType& y) { return int(x < y); });
}
void BM_Peer_BalTypeCompare(benchmark::State& s) {
    Run(s, Data().rawA, Data().rawB,
        [](BID_UINT64 x, BID_UINT64 y) { return int(bid64_quiet_less(x, y) != 0); });
}

// Plain double arithmetic: what the hardware does without decimal rules.
void BM_Ref_DoubleAdd(benchmark::State& s) {
    Run(s, Data().dblA, Data().dblB, [](double x, double y) { return x + y; });
}
void BM_Ref_DoubleSub(benchmark::State& s) {
    Run(s, Data().dblA, Data().dblB, [](double x, double y) { return x - y; });
}
void BM_Ref_DoubleMul(benchmark::State& s) {
    Run(s, Data().dblA, Data().dblB, [](double x, double y) { return x * y; });
}
void BM_Ref_DoubleDiv(benchmark::State& s) {
    Run(s, Data().dblA, Data().dblB, [](double x, double y) { return x / y; });
}
void BM_Ref_DoubleCompare(benchmark::State& s) {
    Run(s, Data().dblA, Data().dblB, [](double x, double y) { return int(x < y); });
}
} // namespace

BENCHMARK(BM_Ours_Decimal64Add);
BENCHMARK(BM_Peer_Decimal64Add);
BENCHMARK(BM_Ours_Decimal64Mul);
BENCHMARK(BM_Peer_Decimal64Mul);
BENCHMARK(BM_Ours_BalTypeAdd);
BENCHMARK(BM_Peer_BalTypeAdd);
BENCHMARK(BM_Ours_BalTypeSub);
BENCHMARK(BM_Peer_BalTypeSub);
BENCHMARK(BM_Ours_BalTypeMul);
BENCHMARK(BM_Peer_BalTypeMul);
BENCHMARK(BM_Ours_BalTypeDiv);
BENCHMARK(BM_Peer_BalTypeDiv);
BENCHMARK(BM_Ours_BalTypeCompare);
BENCHMARK(BM_Peer_BalTypeCompare);
BENCHMARK(BM_Ref_DoubleAdd);
BENCHMARK(BM_Ref_DoubleSub);
BENCHMARK(BM_Ref_DoubleMul);
BENCHMARK(BM_Ref_DoubleDiv);
BENCHMARK(BM_Ref_DoubleCompare);

BENCHMARK_MAIN();
