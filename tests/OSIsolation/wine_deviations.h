// Rows of the behaviour tables where Wine, as the tests run it, differs from Windows. Under Wine
// such a row is skipped with its reason; on Linux and on Windows itself it runs.
#pragma once

#include "tests/test_platform.h"

#include <string>

namespace WineDeviations {

constexpr const char* kReadOnlyAsRoot =
    "Wine keeps the read-only attribute as Unix permissions, which do not stop root";
constexpr const char* kProfileLists = "Wine ends a list cut short with one null, not two, and "
                                      "sets no ERROR_MORE_DATA";

// The reason the running test differs under Wine, or null.
inline const char* Reason() {
    static const struct {
        const char* test;
        const char* reason;
    } kRows[] = {
        {"Win32File/CreateFileTable.FollowsTheDisposition/TruncateNeedsWriteAccess",
         "Wine truncates a file opened for reading only"},
        {"Win32File/CreateFileTable.FollowsTheDisposition/ReadOnlyRefusesWriting", kReadOnlyAsRoot},
        {"Win32File/CreateFileTable.FollowsTheDisposition/ReadOnlyRefusesCreateAlways",
         kReadOnlyAsRoot},
        {"Win32File/NameOperation.SucceedsOrFailsAsWindows/CopyOverReadOnly", kReadOnlyAsRoot},
        {"Win32File.CopyKeepsTargetWhenRefused", kReadOnlyAsRoot},
        {"Win32File/FindFiles.ListsWhatWindowsLists/StarDot",
         "Wine's \"*.\" also matches names with an extension"},
        {"Win32File/FindFiles.ListsWhatWindowsLists/TwoQuestionMarks",
         "Wine's '?' before a dot does not match nothing"},
        {"Win32File.FindListsDotEntriesAndRejectsBadHandles",
         "Wine's FindClose accepts a search handle closed before"},
        {"Crt/Open.OpensOrRefuses/ReadOnlyForWriting", kReadOnlyAsRoot},
        {"Crt/Open.OpensOrRefuses/ReadOnlyTruncate", kReadOnlyAsRoot},
        {"Crt/Stream.OpensOrRefuses/ReadOnlyForWriting", kReadOnlyAsRoot},
        {"Crt/Stream.OpensOrRefuses/ReadOnlyForUpdate", kReadOnlyAsRoot},
        {"Win32Profile/ProfileTable.Behaves/CommentIsNoKey",
         "Wine reads a line starting with ';' as a key"},
        {"Win32Profile/ProfileTable.Behaves/UnclosedBracketEndsAtLineEnd",
         "Wine takes no section from '[' without ']'"},
        {"Win32Profile/ProfileTable.Behaves/Utf8BomBreaksFirstLine",
         "Wine skips a UTF-8 byte-order mark"},
        {"Win32Profile/ProfileTable.Behaves/Utf16BeNotRecognised",
         "Wine reads UTF-16 big-endian text"},
        {"Win32Profile/ProfileTable.Behaves/ValueTruncated",
         "Wine sets no ERROR_MORE_DATA for a value cut short"},
        {"Win32Profile/ProfileTable.Behaves/SectionNamesTruncated", kProfileLists},
        {"Win32Profile/ProfileTable.Behaves/KeyNamesTruncated", kProfileLists},
        {"Win32Profile/ProfileTable.Behaves/SectionNamesExactSizeCountsAsShort", kProfileLists},
        {"Win32Profile/ProfileTable.Behaves/SectionNamesShort", kProfileLists},
        {"Win32Profile/ProfileTable.Behaves/WriteNamesLoseSpacesValueKeepsThem",
         "Wine keeps trailing blanks of written names and drops leading blanks of the value"},
    };
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (test == nullptr)
        return nullptr;
    const std::string name = std::string(test->test_suite_name()) + "." + test->name();
    for (const auto& row : kRows)
        if (name == row.test)
            return row.reason;
    return nullptr;
}

} // namespace WineDeviations

// At the top of a table test: skips the row under Wine when Wine is known to differ there.
#define ZT_SKIP_WINE_DEVIATION()                                                                   \
    if (const char* zt_wine_reason = ZtTest::UnderWine() ? WineDeviations::Reason() : nullptr;     \
        zt_wine_reason == nullptr) {                                                               \
    } else                                                                                         \
        GTEST_SKIP() << "Wine differs from Windows: " << zt_wine_reason
