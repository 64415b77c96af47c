// The log line and message formatting of the reporting path: the per-thread cached parts of a
// line (the second's local-time text, the process and thread ids) and the direct formatting of
// the usual printf conversions, checked against the C library.

// GCC 12 reports a false "may be used uninitialized" inside libstdc++'s <regex> in sanitizer
// builds.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <gtest/gtest.h>

#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "OperationsManager/src/opsformat.h"
#include "OperationsManager/src/opslogfile.h"
#include "tests/OperationsManager/ops_test_platform.h"

using Util::Ops;
using Util::OpsDetail::FormatLogLineAt;
using Util::OpsDetail::LogLine;

namespace {

std::string Ours(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const Util::OpsDetail::FormattedText text(format, args);
    va_end(args);
    return text.c_str();
}

std::string Libc(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vector<char> buffer(16384); // room for every case below
    std::vsnprintf(buffer.data(), buffer.size(), format, args);
    va_end(args);
    return buffer.data();
}

// Both formatters on the same arguments, with the format and arguments shown on failure.
#define EXPECT_FORMATS_AS_LIBC(...) EXPECT_EQ(Ours(__VA_ARGS__), Libc(__VA_ARGS__)) << #__VA_ARGS__

// 2024-02-29 23:59:59 local time: the next second is in the next day and month.
std::time_t LeapDayLastSecond() {
    std::tm local{};
    local.tm_year = 2024 - 1900;
    local.tm_mon = 1;
    local.tm_mday = 29;
    local.tm_hour = 23;
    local.tm_min = 59;
    local.tm_sec = 59;
    local.tm_isdst = -1;
    return std::mktime(&local);
}

std::string Line(const Util::OpsEvent& event, bool strip, std::time_t second, unsigned millis,
                 unsigned long pid, unsigned long tid) {
    LogLine line;
    FormatLogLineAt(event, strip, second, millis, pid, tid, line);
    return std::string(line.Data(), line.Size());
}

} // namespace

TEST(OpsMessageFormat, ConversionsAndLongTextsMatchTheCLibrary) {
    EXPECT_FORMATS_AS_LIBC("no conversion at all");
    EXPECT_FORMATS_AS_LIBC("");
    EXPECT_FORMATS_AS_LIBC("%d|%i|%d|%d", 0, -1, INT_MIN, INT_MAX);
    EXPECT_FORMATS_AS_LIBC("%u|%x|%X|%x", 0u, UINT_MAX, 0xabcdefu, 0x1234u);
    EXPECT_FORMATS_AS_LIBC("%ld|%lu|%lx", LONG_MIN, ULONG_MAX, 0xfeedUL);
    EXPECT_FORMATS_AS_LIBC("%lld|%llu|%llX", LLONG_MIN, ULLONG_MAX, 0xdeadbeefcafeULL);
    EXPECT_FORMATS_AS_LIBC("%zu|%zd|%zx", SIZE_MAX, static_cast<std::ptrdiff_t>(-5),
                           static_cast<std::size_t>(255));
    EXPECT_FORMATS_AS_LIBC("[%s] [%s] [%c]", "text", "", 'Z');
    EXPECT_FORMATS_AS_LIBC("100%% of %s%%", "ledger");
    EXPECT_FORMATS_AS_LIBC("%s", static_cast<const char*>(nullptr));
    EXPECT_FORMATS_AS_LIBC("Posting batch %d of %s", 42, "ledger");
    // Conversions left to the C library, and texts around the stack buffer's size.
    EXPECT_FORMATS_AS_LIBC("%5d|%-5d|%05d|%+d|% d", 42, 42, 42, 42, 42);
    EXPECT_FORMATS_AS_LIBC("%.2f|%e|%g", 3.14159, 1e10, 0.5);
    EXPECT_FORMATS_AS_LIBC("%10s|%-10s|%.3s", "right", "left", "truncated");
    EXPECT_FORMATS_AS_LIBC("%hd|%hhu|%#x|%o", 70000, 300, 255u, 8u);
    EXPECT_FORMATS_AS_LIBC("%d then %5.1f", 7, 2.25); // falls back after a simple start
    for (const std::size_t length : {510u, 511u, 512u, 513u, 5000u}) {
        const std::string text(length, 'x');
        EXPECT_FORMATS_AS_LIBC("%s", text.c_str());
        EXPECT_FORMATS_AS_LIBC("%s%d", text.c_str(), 12345);
        EXPECT_FORMATS_AS_LIBC("%s%.1f", text.c_str(), 1.5);
    }
}

TEST(OpsLogLine, CachedSecondTextFollowsTheClockAcrossBoundaries) {
    const Util::MessageContext context("mod/src/a.cpp", 31, "F", "void F()", "fmt");
    const Util::OpsEvent event{Ops::kMessage, Ops::kLvlWarning, context, "text"};
    const std::time_t s = LeapDayLastSecond();
    const std::string tail = " [12:34] LVL_WARNING MESSAGE mod/src/a.cpp (31) : text\n";
    const struct {
        std::time_t second;
        unsigned millis;
        const char* stamp;
    } cases[] = {
        {s, 7, "2024-02-29 23:59:59.007"},
        {s, 999, "2024-02-29 23:59:59.999"},
        {s + 1, 0, "2024-03-01 00:00:00.000"}, // new second, day and month
        {s + 1, 1, "2024-03-01 00:00:00.001"},
        {s, 500, "2024-02-29 23:59:59.500"}, // the clock was set back
        {s + 61, 42, "2024-03-01 00:01:00.042"},
        {s + 86400 * 366 + 1, 3, "2025-03-02 00:00:00.003"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Line(event, false, c.second, c.millis, 12, 34), c.stamp + tail) << c.stamp;
}

TEST(OpsLogLine, FieldsAreExactForEveryShapeOfEvent) {
    const std::time_t s = LeapDayLastSecond();
    const Util::MessageContext full("x/b.cpp", 7, "G", "int G()", nullptr);
    const Util::MessageContext noFile(nullptr, -3, nullptr, nullptr, nullptr);
    const std::string longText(3000, 'y');
    const struct {
        Ops::EventType type;
        Ops::Level level;
        const Util::MessageContext& context;
        std::string text;
        bool strip;
        unsigned long pid, tid;
        std::string expected;
    } cases[] = {
        {Ops::kFuncEnter, Ops::kLvlNA, full, "in", false, 1, 2,
         "[1:2] LVL_NA FUNC_ENTER x/b.cpp (7) : in\n"},
        {Ops::kSendError, Ops::kLvlSevereError, full, "a\nb\r\nc", true, 1, 2,
         "[1:2] LVL_SEVERE_ERROR SEND_ERROR a b  c\n"},
        {Ops::kDump, Ops::kLvlInfoDetail, noFile, "", false, 4294967295ul, 99,
         "[4294967295:99] LVL_INFO_DETAIL DUMP  (-3) : \n"},
        // The ids change in the same thread only after a fork; the cached text follows them.
        {Ops::kDump, Ops::kLvlInfoDetail, full, "forked", true, 5, 5,
         "[5:5] LVL_INFO_DETAIL DUMP forked\n"},
        {Ops::kUnknownEventType, Ops::kUnknownLevel, full, "odd", true, 1, 2,
         "[1:2] UNKNOWN OPS EVENT LEVEL UNKNOWN OPS EVENT odd\n"},
        {Ops::kMessage, Ops::kLvlError, full, longText, false, 1, 2,
         "[1:2] LVL_ERROR MESSAGE x/b.cpp (7) : " + longText + "\n"},
    };
    for (const auto& c : cases) {
        const Util::OpsEvent event{c.type, c.level, c.context, c.text.c_str()};
        EXPECT_EQ(Line(event, c.strip, s, 250, c.pid, c.tid),
                  "2024-02-29 23:59:59.250 " + c.expected);
    }
}

// An event formatted through the per-thread caches.
const Util::MessageContext kThreadContext("t.cpp", 1, "T", "void T()", nullptr);
const Util::OpsEvent kThreadEvent{Ops::kMessage, Ops::kLvlWarning, kThreadContext, "x"};

TEST(OpsLogLine, EachThreadShowsItsOwnIdAndTheProcesss) {
    const Util::OpsEvent& event = kThreadEvent;
    const std::regex ids(R"(^\S+ \S+ \[(\d+):(\d+)\] )");
    constexpr int kThreads = 4;
    std::vector<std::string> lines(kThreads * 2);
    std::vector<unsigned long> expected(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            expected[t] = OpsTest::ThreadId();
            lines[2 * t] = Util::OpsDetail::FormatLogLine(event, true);
            lines[2 * t + 1] = Util::OpsDetail::FormatLogLine(event, true); // from the cache
        });
    for (auto& thread : threads)
        thread.join();
    std::set<std::string> tids;
    for (int i = 0; i < kThreads * 2; ++i) {
        std::smatch match;
        ASSERT_TRUE(std::regex_search(lines[i], match, ids)) << lines[i];
        EXPECT_EQ(match[1], std::to_string(OpsTest::ProcessId()));
        EXPECT_EQ(match[2], std::to_string(expected[i / 2])) << "thread " << i / 2;
        tids.insert(match[2]);
    }
    EXPECT_EQ(tids.size(), std::size_t(kThreads));
}

TEST(OpsLogLine, AForkedChildShowsItsOwnIds) {
    const Util::OpsEvent& event = kThreadEvent;
    const std::string parent = Util::OpsDetail::FormatLogLine(event, true); // fills the caches
    ASSERT_NE(parent.find("[" + std::to_string(OpsTest::ProcessId()) + ":"), std::string::npos);
    GTEST_FLAG_SET(death_test_style, "fast"); // a plain fork on POSIX: the caches are inherited
    EXPECT_EXIT(
        {
            const std::string child = Util::OpsDetail::FormatLogLine(event, true);
            const std::string ids = "[" + std::to_string(OpsTest::ProcessId()) + ":" +
                                    std::to_string(OpsTest::ThreadId()) + "] ";
            std::_Exit(child.find(ids) != std::string::npos ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
