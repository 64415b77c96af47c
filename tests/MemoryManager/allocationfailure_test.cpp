// Failure injection: the Nth allocation fails, for N = 1, 2, 3, ... until a run needs fewer.
// Every run must end in its documented failure (or its full result), and give back what it took
// (the memory manager's count here, everything else under AddressSanitizer).
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include "Util/Base64Coder.h"
#include "Util/BlockStringCache.h"
#include "Util/ExpressionParser.h"
#include "Util/MemoryManager.h"
#include "Util/OpsSubscriptionFileManager.h"
#include "Util/PersistentKeyValueMap.h"
#include "Util/Status.h"
#include "tests/expression/testsymbols.h"

namespace {

enum class Outcome { kCompleted, kFailedAsDocumented, kWrong };

struct Scenario {
    const char* name;
    std::function<Outcome()> run;
    // Before each run, and after it with the injection off: the user's files as they must be.
    std::function<void()> prepare = [] {};
    std::function<::testing::AssertionResult()> verify = [] {
        return ::testing::AssertionSuccess();
    };
};

namespace fs = std::filesystem;

const fs::path& ScratchDir() {
    static const fs::path dir = [] {
        fs::path d = fs::temp_directory_path() / ("zt_allocfail_" + std::to_string(::getpid()));
        fs::remove_all(d);
        fs::create_directories(d);
        return d;
    }();
    // Built after dir, so gone before it: the directory goes when the program ends.
    static const struct Remover {
        ~Remover() {
            std::error_code ignored;
            fs::remove_all(dir, ignored);
        }
    } remover;
    return dir;
}

std::string ReadBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void WriteBytes(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

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

// A settings repository on disk, read and changed through a fresh storage each run.
namespace Settings {

using Norvane::Utilities::KeyValueQuery;
using Map = Norvane::Utilities::PersistentKeyValueMap<Norvane::Utilities::UserDefinedDirectory,
                                                      Norvane::Utilities::ReadWriteAccess,
                                                      Norvane::Utilities::StdUser>;

fs::path File() {
    return ScratchDir() / "Settings.xml";
}

KeyValueQuery Query(const char* section, const char* key) {
    KeyValueQuery query;
    query.section = section;
    query.key = key;
    return query;
}

Map Open() {
    return Map("Ledger.ini", std::make_shared<Map::Storage>(File().string().c_str()));
}

// The repository as the user has it, and as the completed run leaves it; made once, without
// injection, by the library itself.
struct Files {
    std::string original, changed;
};

const Files& Expected() {
    static const Files files = [] {
        Files made;
        fs::remove(File());
        {
            Map map = Open();
            if (map.SetValue(Query("Paths", "Data"), "C:\\Ledger") != 0 ||
                map.SetValue(Query("Printing", "Copies"), "2") != 0)
                return made;
        }
        made.original = ReadBytes(File());
        if (Open().SetValue(Query("Paths", "Backup"), "D:\\Copies") != 0)
            return made;
        made.changed = ReadBytes(File());
        return made;
    }();
    return files;
}

void Prepare() {
    const std::string original = Expected().original;
    for (const auto& entry : fs::directory_iterator(ScratchDir()))
        fs::remove(entry.path());
    WriteBytes(File(), original);
}

Outcome RoundTrip() {
    try {
        Map map = Open();
        Util::TString value;
        long hr = map.GetValue(Query("Paths", "Data"), "", value);
        if (hr < 0)
            return Outcome::kFailedAsDocumented;
        if (hr != 0 || std::strcmp(value.c_str(), "C:\\Ledger") != 0)
            return Outcome::kWrong;
        hr = map.SetValue(Query("Paths", "Backup"), "D:\\Copies");
        if (hr < 0)
            return Outcome::kFailedAsDocumented;
        hr = map.GetValue(Query("Paths", nullptr), "", value); // the key list, by XPath
        if (hr < 0)
            return Outcome::kFailedAsDocumented;
        const std::string keys(value.c_str(), value.GetLength());
        if (hr != 0 || keys != std::string("Data\0Backup\0\0", 13))
            return Outcome::kWrong;
        hr = Open().GetValue(Query("Paths", "Backup"), "", value);
        if (hr < 0)
            return Outcome::kFailedAsDocumented;
        return hr == 0 && std::strcmp(value.c_str(), "D:\\Copies") == 0 ? Outcome::kCompleted
                                                                        : Outcome::kWrong;
    } catch (const std::bad_alloc&) {
        return Outcome::kFailedAsDocumented; // a storage that cannot be built, a status
    }
}

// The file is never lost, moved aside or half written: it holds the user's repository, or that
// repository with the one change.
::testing::AssertionResult Verify() {
    const std::string bytes = ReadBytes(File());
    if (bytes != Expected().original && bytes != Expected().changed)
        return ::testing::AssertionFailure()
               << "the repository holds " << bytes.size() << " unexpected bytes";
    for (const auto& entry : fs::directory_iterator(ScratchDir())) {
        const std::string name = entry.path().filename().string();
        if (name.find("corrupt") != std::string::npos)
            return ::testing::AssertionFailure() << "the repository was moved aside: " << name;
    }
    return ::testing::AssertionSuccess();
}

} // namespace Settings

// A subscription file parsed from disk: four subscriptions, or a failure that says memory.
namespace Subscriptions {

fs::path File() {
    return ScratchDir() / "Diagnostics.ops";
}

const std::string& Original() {
    static const std::string bytes = ReadBytes(ZT_SOURCE_DIR "/examples/Diagnostics.ops");
    return bytes;
}

Outcome Parse() {
    try {
        std::vector<Util::OpsSubscriptionManager::Subscription> subscriptions;
        const Util::Status status =
            Util::OpsSubscriptionFileManager::ParseFile(File().string().c_str(), subscriptions);
        if (status.Succeeded())
            return subscriptions.size() == 4 ? Outcome::kCompleted : Outcome::kWrong;
        if (status.GetStatusCode() != Util::Status::GetAllocFailed().GetStatusCode() ||
            !subscriptions.empty())
            return Outcome::kWrong;
        return std::strstr(status.GetStatusMessage().c_str(), "Diagnostics.ops") != nullptr
                   ? Outcome::kFailedAsDocumented
                   : Outcome::kWrong;
    } catch (const std::bad_alloc&) {
        return Outcome::kFailedAsDocumented;
    }
}

::testing::AssertionResult Verify() {
    if (ReadBytes(File()) != Original())
        return ::testing::AssertionFailure() << "the subscription file changed";
    return ::testing::AssertionSuccess();
}

} // namespace Subscriptions

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

class AllocationFailure : public ::testing::TestWithParam<Scenario> {
protected:
    void TearDown() override { Util::SetAllocationFailureCountdown(0); }
};

TEST_P(AllocationFailure, EveryFailingAllocationEndsInTheDocumentedFailure) {
    Util::IMemoryManager& memory = Util::GetMemoryManager();
    std::size_t failures = 0;
    for (std::size_t n = 1; n < 100000; ++n) {
        GetParam().prepare();
        const std::size_t blocksBefore = memory.GetOutstandingBlocks();
        Util::SetAllocationFailureCountdown(n);
        const Outcome outcome = GetParam().run();
        const bool injected = Util::AllocationFailureInjected();
        Util::SetAllocationFailureCountdown(0);
        ASSERT_EQ(memory.GetOutstandingBlocks(), blocksBefore) << "allocation " << n;
        ASSERT_TRUE(GetParam().verify()) << "allocation " << n;
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

INSTANTIATE_TEST_SUITE_P(
    Walk, AllocationFailure,
    ::testing::Values(Scenario{"StatusRoundTrip", StatusRoundTrip},
                      Scenario{"ParseAndEvaluate", ParseAndEvaluate},
                      Scenario{"Base64RoundTrip", Base64RoundTrip},
                      Scenario{"StringCacheChurn", StringCacheChurn},
                      Scenario{"SettingsRepositoryRoundTrip", Settings::RoundTrip,
                               Settings::Prepare, Settings::Verify},
                      Scenario{"SubscriptionFileParse", Subscriptions::Parse,
                               [] { WriteBytes(Subscriptions::File(), Subscriptions::Original()); },
                               Subscriptions::Verify}),
    [](const ::testing::TestParamInfo<Scenario>& info) { return std::string(info.param.name); });

} // namespace
