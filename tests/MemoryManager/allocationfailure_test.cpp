// Failure injection: the Nth allocation fails, for N = 1, 2, 3, ... until a run needs fewer.
// Every run must end in its documented failure (or its full result), and give back what it took
// (the memory manager's count here, everything else under AddressSanitizer).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "Util/Base64Coder.h"
#include "Util/BlockStringCache.h"
#include "Util/ExpressionParser.h"
#include "Util/MemoryManager.h"
#include "Util/Status.h"
#include "tests/expression/testsymbols.h"

namespace {

enum class Outcome { kCompleted, kFailedAsDocumented, kWrong };

struct Scenario {
    const char* name;
    std::function<Outcome()> run;
};

Outcome StatusRoundTrip() {
    // More live statuses than the pool has spare entries, so that it must grow.
    try {
        std::vector<Util::Status> held;
        for (int i = 0; i < 3000; ++i) {
            Util::Status status(-1000 - i, "Cannot open %FileName%");
            status.SetAttribute("FileName", "ledger.dat");
            held.push_back(status);
        }
        const Util::TString& text = held.back().GetStatusMessage();
        return std::strcmp(text.c_str(), "Cannot open ledger.dat") == 0 ? Outcome::kCompleted
                                                                        : Outcome::kWrong;
    } catch (const std::bad_alloc&) {
        return Outcome::kFailedAsDocumented;
    }
}

Outcome ParseAndEvaluate() {
    const std::string tail(150, 'z'); // longer than a value's inline text
    const std::string text = "x * 2 + sum(1, 2, 3) + two(1, 2) + -x + '" + tail + "'";
    Util::ExpressionParser parser;
    ztest::TestSymbols symbols;
    symbols.variables["x"] = Util::Variant(5L);
    const Util::ParseNodeStatus parsed = parser.Parse(text.c_str());
    if (parsed == Util::PNS_OUT_OF_MEMORY)
        return parser.GetParseTree() == nullptr ? Outcome::kFailedAsDocumented : Outcome::kWrong;
    if (parsed != Util::PNS_SUCCESS)
        return Outcome::kWrong;
    Util::Variant result;
    const Util::ParseNodeStatus executed = parser.Execute(result, symbols);
    if (executed == Util::PNS_OUT_OF_MEMORY)
        return Outcome::kFailedAsDocumented;
    const Util::__util_Variant& data = result.GetData();
    if (executed != Util::PNS_SUCCESS || data.vt != Util::UTIL_VT_STRING)
        return Outcome::kWrong;
    return data.pszVal == "23" + tail ? Outcome::kCompleted : Outcome::kWrong;
}

Outcome Base64RoundTrip() {
    std::vector<unsigned char> bytes(5000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * 7);
    Base64Coder coder;
    coder.Encode(bytes.data(), bytes.size());
    const std::string encoded = coder.EncodedMessage();
    if (encoded.empty())
        return Outcome::kFailedAsDocumented;
    coder.Decode(encoded.c_str());
    if (coder.GetDecodedSize() == 0)
        return Outcome::kFailedAsDocumented;
    return coder.GetDecodedSize() == bytes.size() &&
                   std::memcmp(coder.DecodedMessage(), bytes.data(), bytes.size()) == 0
               ? Outcome::kCompleted
               : Outcome::kWrong;
}

Outcome StringCacheChurn() {
    Util::BlockStringCache cache(512);
    std::vector<const char*> strings;
    bool failed = false;
    for (int i = 0; i < 200; ++i) {
        const std::string text(static_cast<std::size_t>(10 + i % 90),
                               static_cast<char>('a' + i % 26));
        const char* kept = cache.AddString(text.c_str());
        if (kept == nullptr) {
            failed = true;
            continue;
        }
        if (text != kept)
            return Outcome::kWrong;
        strings.push_back(kept);
        if (i % 3 == 0) {
            if (cache.RemoveString(strings.front()) != 0)
                return Outcome::kWrong;
            strings.erase(strings.begin());
        }
    }
    return failed ? Outcome::kFailedAsDocumented : Outcome::kCompleted;
}

class AllocationFailure : public ::testing::TestWithParam<Scenario> {
protected:
    void TearDown() override { Util::SetAllocationFailureCountdown(0); }
};

TEST_P(AllocationFailure, EveryFailingAllocationEndsInTheDocumentedFailure) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    std::size_t failures = 0;
    for (std::size_t n = 1; n < 100000; ++n) {
        const std::size_t blocksBefore = memory.GetOutstandingBlocks();
        Util::SetAllocationFailureCountdown(n);
        const Outcome outcome = GetParam().run();
        const bool injected = Util::AllocationFailureInjected();
        Util::SetAllocationFailureCountdown(0);
        ASSERT_EQ(memory.GetOutstandingBlocks(), blocksBefore) << "allocation " << n;
        if (!injected) {
            // Fewer allocations than n: the run must have completed, and the walk is over.
            EXPECT_EQ(outcome, Outcome::kCompleted) << "allocation " << n;
            break;
        }
        ASSERT_NE(outcome, Outcome::kWrong) << "allocation " << n;
        failures += outcome == Outcome::kFailedAsDocumented ? 1 : 0;
    }
    EXPECT_GT(failures, 0u) << "no allocation of this scenario can be made to fail";
}

INSTANTIATE_TEST_SUITE_P(Walk, AllocationFailure,
                         ::testing::Values(Scenario{"StatusRoundTrip", StatusRoundTrip},
                                           Scenario{"ParseAndEvaluate", ParseAndEvaluate},
                                           Scenario{"Base64RoundTrip", Base64RoundTrip},
                                           Scenario{"StringCacheChurn", StringCacheChurn}),
                         [](const ::testing::TestParamInfo<Scenario>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
