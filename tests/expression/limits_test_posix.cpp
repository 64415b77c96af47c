// Memory and work limits of evaluation, checked in a child process under an address-space limit
// (POSIX only: fork and setrlimit). Sanitizer builds reserve terabytes of shadow memory, so the
// limited cases are skipped there.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Util/ExpressionParser.h"
#include "tests/expression/testsymbols.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZT_LIMITS_UNDER_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZT_LIMITS_UNDER_SANITIZER 1
#endif
#endif

namespace {

#ifndef ZT_LIMITS_UNDER_SANITIZER
// Runs check in a child whose address space may grow by `extra` bytes; the child's exit status
// is check's result (0 for success), or 99 when it died.
int RunWithMemoryLimit(std::size_t extra, int (*check)()) {
    long pages = 0;
    if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld", &pages) != 1)
            pages = 0;
        std::fclose(statm);
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const rlim_t limit = static_cast<rlim_t>(pages) * ::sysconf(_SC_PAGESIZE) + extra;
        const struct rlimit rl = {limit, limit};
        ::setrlimit(RLIMIT_AS, &rl);
        ::_exit(check());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

// A chain of many short concatenations needs memory for the result, not for every prefix.
int ConcatenateTwentyThousandTerms() {
    ztest::TestSymbols symbols;
    symbols.variables["s"] = "abcdefghij";
    std::string text = "s";
    for (int i = 1; i < 20000; ++i)
        text += " + s";
    Util::ExpressionParser parser;
    Util::Variant result;
    if (parser.Parse(text.c_str()) != Util::PNS_SUCCESS ||
        parser.Execute(result, symbols) != Util::PNS_SUCCESS)
        return 1;
    Util::TString value;
    result.GetString(value);
    return value.GetLength() == 200000 ? 0 : 2;
}
#endif

// a0 = ten characters, a_i = $(a_{i-1}) + $(a_{i-1}): a23 would be 84 MB.
void AddDoublingAliases(ztest::TestSymbols& symbols, int count, const char* first) {
    symbols.AddAlias("a0", first);
    for (int i = 1; i <= count; ++i) {
        const std::string previous = "$(a" + std::to_string(i - 1) + ")";
        symbols.AddAlias("a" + std::to_string(i), (previous + " + " + previous).c_str());
    }
}

#ifndef ZT_LIMITS_UNDER_SANITIZER
int RunningOutOfMemoryIsAnError() {
    ztest::TestSymbols symbols;
    AddDoublingAliases(symbols, 23, "\"abcdefghij\"");
    Util::ExpressionParser parser;
    Util::Variant result;
    if (parser.Parse("$(a23)") != Util::PNS_SUCCESS)
        return 1;
    return parser.Execute(result, symbols) == Util::PNS_OUT_OF_MEMORY ? 0 : 2;
}
#endif

} // namespace

TEST(ExpressionLimits, ConcatenationMemoryIsLinearAndExhaustionIsAnError) {
#ifdef ZT_LIMITS_UNDER_SANITIZER
    GTEST_SKIP() << "address-space limits do not work under sanitizers";
#else
    const std::size_t extra = std::size_t(64) << 20;
    EXPECT_EQ(RunWithMemoryLimit(extra, ConcatenateTwentyThousandTerms), 0);
    EXPECT_EQ(RunWithMemoryLimit(extra, RunningOutOfMemoryIsAnError), 0);
#endif
}

TEST(ExpressionLimits, EachAliasIsEvaluatedOncePerExecution) {
    ztest::TestSymbols symbols;
    AddDoublingAliases(symbols, 22, "1");
    Util::ExpressionParser parser;
    ASSERT_EQ(parser.Parse("$(a22) + $(a22)"), Util::PNS_SUCCESS);
    Util::Variant result;
    ASSERT_EQ(parser.Execute(result, symbols), Util::PNS_SUCCESS);
    EXPECT_EQ(static_cast<long>(result), 1L << 23);
    // Two lookups per alias level (the second answered from the first), for each top-level use.
    EXPECT_LE(symbols.lookups.size(), 2u * 2u * 23u);
}
