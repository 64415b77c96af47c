// The expression engine against muparser: evaluating and compiling a small formula with four
// variables, a chain of comparisons, and a string concatenation (muparser has no string values,
// so that row has no peer).
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <cstring>
#include <string>
#include <vector>

#include "Util/ExpressionParser.h"

namespace {

// A small symbol table as an application might keep one: names and values in an array.
class BenchSymbols : public Util::SymbolLookupValues {
public:
    void Set(const char* name, const Util::Variant& value) {
        for (Entry& e : m_entries) {
            if (e.name == name) {
                e.value = value;
                return;
            }
        }
        m_entries.push_back({name, value});
    }
    bool GetSymbolValue(const char* name, Util::Variant& value) const override {
        for (const Entry& e : m_entries) {
            if (e.name[0] == name[0] && std::strcmp(e.name.c_str(), name) == 0) {
                value = e.value;
                return true;
            }
        }
        return false;
    }

private:
    struct Entry {
        std::string name;
        Util::Variant value;
    };
    std::vector<Entry> m_entries;
};

const char kArith[] = "a*b + c/d - 3";
const char kChain[] = "a < b && b < c && c < d || a = d";

BenchSymbols NumberSymbols() {
    BenchSymbols symbols;
    symbols.Set("a", 1.5);
    symbols.Set("b", 2.5);
    symbols.Set("c", 7.0);
    symbols.Set("d", 8.0);
    return symbols;
}

void EvaluateOurs(benchmark::State& state, const char* text, const BenchSymbols& symbols) {
    Util::ExpressionParser parser;
    if (parser.Parse(text) != Util::PNS_SUCCESS)
        state.SkipWithError("parse failed");
    Util::Variant result;
    for (auto _ : state) {
        parser.Execute(result, symbols);
        benchmark::DoNotOptimize(result);
    }
}

struct PeerVariables {
    double a = 1.5, b = 2.5, c = 7.0, d = 8.0;
    void Define(mu::Parser& parser) {
        parser.DefineVar("a", &a);
        parser.DefineVar("b", &b);
        parser.DefineVar("c", &c);
        parser.DefineVar("d", &d);
    }
};

void EvaluatePeer(benchmark::State& state, const char* text) {
    PeerVariables vars;
    mu::Parser parser;
    vars.Define(parser);
    parser.SetExpr(text);
    parser.Eval(); // muparser compiles on its first evaluation
    for (auto _ : state)
        benchmark::DoNotOptimize(parser.Eval());
}

void BM_Ours_EvalArith(benchmark::State& state) {
    EvaluateOurs(state, kArith, NumberSymbols());
}
void BM_Peer_EvalArith(benchmark::State& state) {
    EvaluatePeer(state, kArith);
}

void BM_Ours_EvalCompareChain(benchmark::State& state) {
    EvaluateOurs(state, kChain, NumberSymbols());
}
void BM_Peer_EvalCompareChain(benchmark::State& state) {
    EvaluatePeer(state, "a < b && b < c && c < d || a == d");
}

void BM_Ours_CompileArith(benchmark::State& state) {
    Util::ExpressionParser parser;
    for (auto _ : state)
        benchmark::DoNotOptimize(parser.Parse(kArith));
}

// muparser parses when an expression is first evaluated, so its compile is SetExpr + Eval.
void BM_Peer_CompileArith(benchmark::State& state) {
    PeerVariables vars;
    mu::Parser parser;
    vars.Define(parser);
    for (auto _ : state) {
        parser.SetExpr(kArith);
        benchmark::DoNotOptimize(parser.Eval());
    }
}

void BM_Ours_EvalStringConcat(benchmark::State& state) {
    BenchSymbols symbols;
    symbols.Set("first", "Ledger");
    symbols.Set("last", "Account");
    EvaluateOurs(state, "first + ' ' + last + ' #' + 42", symbols);
}

void BM_Ours_CompileEvalLongSum(benchmark::State& state) {
    std::string text = "a";
    for (int i = 1; i < 1000; ++i)
        text += " + a";
    const BenchSymbols symbols = NumberSymbols();
    Util::ExpressionParser parser;
    Util::Variant result;
    for (auto _ : state) {
        parser.Parse(text.c_str());
        parser.Execute(result, symbols);
        benchmark::DoNotOptimize(result);
    }
}

void BM_Peer_CompileEvalLongSum(benchmark::State& state) {
    std::string text = "a";
    for (int i = 1; i < 1000; ++i)
        text += " + a";
    PeerVariables vars;
    mu::Parser parser;
    vars.Define(parser);
    for (auto _ : state) {
        parser.SetExpr(text);
        benchmark::DoNotOptimize(parser.Eval());
    }
}

} // namespace

BENCHMARK(BM_Ours_EvalArith);
BENCHMARK(BM_Peer_EvalArith);
BENCHMARK(BM_Ours_EvalCompareChain);
BENCHMARK(BM_Peer_EvalCompareChain);
BENCHMARK(BM_Ours_CompileArith);
BENCHMARK(BM_Peer_CompileArith);
BENCHMARK(BM_Ours_EvalStringConcat);
BENCHMARK(BM_Ours_CompileEvalLongSum);
BENCHMARK(BM_Peer_CompileEvalLongSum);

BENCHMARK_MAIN();
