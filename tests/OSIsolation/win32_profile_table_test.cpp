// The behaviour table of the Win32 profile functions. Each row is a file's bytes, one call, the
// bytes it must return, its result and last error, and the file's bytes afterwards. The same
// table runs against our POSIX engine and, on Windows, against kernel32 itself.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Util/Win32.h"
#include "tests/OSIsolation/wine_deviations.h"

using namespace Util::Win32;

namespace fs = std::filesystem;
namespace W = Util::Win32;

namespace {

template <std::size_t N> std::string B(const char (&s)[N]) {
    return std::string(s, N - 1);
}

// UTF-16 LE with its byte order mark, from ASCII text.
std::string Utf16Le(const std::string& ascii) {
    std::string out("\xFF\xFE", 2);
    for (char c : ascii) {
        out += c;
        out += '\0';
    }
    return out;
}

std::string Utf16Be(const std::string& ascii) {
    std::string out("\xFE\xFF", 2);
    for (char c : ascii) {
        out += '\0';
        out += c;
    }
    return out;
}

enum class Call { String, Int, Section, SectionNames, Write, WriteSection };

constexpr DWORD kAnyError = 0xFFFFFFFF;
const char* const kNoFile = "\x01no file";

struct Row {
    const char* name;
    std::string before; // the file's bytes, or kNoFile
    Call call;
    const char* section;
    const char* key;
    const char* arg; // default, value, or the entries of a section
    DWORD size;      // buffer size, or the default of GetPrivateProfileIntA
    DWORD result;
    std::string returned; // bytes expected at the start of the buffer
    DWORD error;          // kAnyError where Windows versions differ
    std::string after;    // the file's bytes after the call, or kNoFile
};

const std::string kBase = "[section1]\r\nname1=val1\r\nname2=\"val2\"\r\nname3\r\nname4=a\r\n"
                          "[section2]\r\n";
const std::string kSections = "[section1]\r\nname1=val1\r\nname2=\r\nname3\r\nname4=val4\r\n"
                              "[section2]\r\n[section3]\r\n=val5\r\n";
const std::string kThree = "[section1]\r\n[section2]\r\n[section3]\r\n";
const std::string kApps = "[App1]\r\nkey1=string1\r\nkey2=string2\r\n[App2]\r\nkey4=string4\r\n";
const std::string kSame = "\x02same";

const DWORD OK = ERROR_SUCCESS, NOTFOUND = ERROR_FILE_NOT_FOUND, MORE = ERROR_MORE_DATA;

// clang-format off
const Row kRows[] = {
    // Reading values
    {"ValueFound", kBase, Call::String, "section1", "name1", "default", 260, 4, B("val1\0"), OK, kSame},
    {"NamesAreCaseBlind", kBase, Call::String, "SECTION1", "NaMe1", "default", 260, 4, B("val1\0"), OK, kSame},
    {"CallerNamesLoseSpaces", kBase, Call::String, " section1 ", " name1 ", "default", 260, 4, B("val1\0"), OK, kSame},
    {"DoubleQuotesRemoved", kBase, Call::String, "section1", "name2", "default", 260, 4, B("val2\0"), OK, kSame},
    {"SingleQuotesRemoved", "[s]\r\nk='v w'\r\n", Call::String, "s", "k", "", 260, 3, B("v w\0"), OK, kSame},
    {"MismatchedQuotesKept", "[s]\r\nk=\"v'\r\n", Call::String, "s", "k", "", 260, 3, B("\"v'\0"), OK, kSame},
    {"BlanksInFileIgnored", "  [ s ]\r\n \t k \t=  v v \t\r\n", Call::String, "s", "k", "", 260, 3, B("v v\0"), OK, kSame},
    {"LineWithoutEqualsIsNoKey", kBase, Call::String, "section1", "name3", "default", 260, 7, B("default\0"), kAnyError, kSame},
    {"CommentIsNoKey", "[s]\r\n;k=v\r\n", Call::String, "s", ";k", "d", 260, 1, B("d\0"), kAnyError, kSame},
    {"FirstDuplicateKeyWins", "[s]\r\nk=1\r\nk=2\r\n", Call::String, "s", "k", "", 260, 1, B("1\0"), OK, kSame},
    {"FirstDuplicateSectionWins", "[s]\r\nk=1\r\n[S]\r\nk=2\r\nj=3\r\n", Call::String, "s", "j", "d", 260, 1, B("d\0"), kAnyError, kSame},
    {"LinesBeforeFirstSectionIgnored", "k=v\r\n[s]\r\n", Call::String, "s", "k", "d", 260, 1, B("d\0"), kAnyError, kSame},
    {"TextAfterBracketIgnored", "[s]junk\r\nk=v\r\n", Call::String, "s", "k", "", 260, 1, B("v\0"), OK, kSame},
    {"UnclosedBracketEndsAtLineEnd", "[s\r\nk=v\r\n", Call::String, "s", "k", "", 260, 1, B("v\0"), OK, kSame},
    {"LfLineEnds", "[s]\nk=v\n", Call::String, "s", "k", "", 260, 1, B("v\0"), OK, kSame},
    {"CrLineEnds", "[s]\rk=v\r", Call::String, "s", "k", "", 260, 1, B("v\0"), OK, kSame},
    {"Utf16LeRead", Utf16Le("[s]\r\nk=v\r\n"), Call::String, "s", "k", "", 260, 1, B("v\0"), OK, kSame},
    {"Utf8BomBreaksFirstLine", "\xEF\xBB\xBF[s]\r\nk=v\r\n[t]\r\nk=w\r\n", Call::String, "s", "k", "d", 260, 1, B("d\0"), kAnyError, kSame},
    {"Utf8BomLaterLinesRead", "\xEF\xBB\xBF[s]\r\nk=v\r\n[t]\r\nk=w\r\n", Call::String, "t", "k", "d", 260, 1, B("w\0"), OK, kSame},
    {"Utf16BeNotRecognised", Utf16Be("[s]\r\nk=v\r\n"), Call::String, "s", "k", "d", 260, 1, B("d\0"), kAnyError, kSame},
    // Defaults and buffers
    {"MissingKeyGivesDefault", kBase, Call::String, "section1", "nokey", "default", 260, 7, B("default\0"), kAnyError, kSame},
    {"DefaultLosesTrailingSpaces", kBase, Call::String, "nosection", "k", " one two  ", 260, 8, B(" one two\0"), kAnyError, kSame},
    {"NullDefaultIsEmpty", kBase, Call::String, "section1", "nokey", nullptr, 260, 0, B("\0"), kAnyError, kSame},
    {"MissingFileGivesDefault", kNoFile, Call::String, "s", "k", "default", 260, 7, B("default\0"), NOTFOUND, kNoFile},
    {"ValueTruncated", kBase, Call::String, "section1", "name1", "", 4, 3, B("val\0"), MORE, kSame},
    {"ValueFitsExactly", kBase, Call::String, "section1", "name1", "", 5, 4, B("val1\0"), OK, kSame},
    {"SizeOneGivesNothing", kBase, Call::String, "section1", "name4", "", 1, 0, B("\0"), kAnyError, kSame},
    {"SizeZeroLeavesBuffer", kBase, Call::String, "section1", "name1", "", 0, 0, B("\x0c"), kAnyError, kSame},
    // Name lists
    {"SectionNames", kBase, Call::String, nullptr, "name1", "default", 260, 18, B("section1\0section2\0\0"), OK, kSame},
    {"KeyNames", kBase, Call::String, "section1", nullptr, "default", 260, 18, B("name1\0name2\0name4\0\0"), OK, kSame},
    {"SectionNamesTruncated", kBase, Call::String, nullptr, "name1", "", 16, 14, B("section1\0secti\0\0"), MORE, kSame},
    {"KeyNamesTruncated", kBase, Call::String, "section1", nullptr, "", 16, 14, B("name1\0name2\0na\0\0"), MORE, kSame},
    {"SectionNamesRoomToSpare", kThree, Call::SectionNames, nullptr, nullptr, nullptr, 29, 27, B("section1\0section2\0section3\0\0"), OK, kSame},
    {"SectionNamesExactSizeCountsAsShort", kThree, Call::SectionNames, nullptr, nullptr, nullptr, 28, 26, B("section1\0section2\0section3\0\0"), kAnyError, kSame},
    {"SectionNamesShort", kThree, Call::SectionNames, nullptr, nullptr, nullptr, 27, 25, B("section1\0section2\0section\0\0"), kAnyError, kSame},
    {"DuplicateSectionsListed", "[a]\r\n[b]\r\n[A]\r\n", Call::SectionNames, nullptr, nullptr, nullptr, 260, 6, B("a\0b\0A\0\0"), OK, kSame},
    {"SectionNamesOfMissingFile", kNoFile, Call::SectionNames, nullptr, nullptr, nullptr, 10, 0, B("\0\x0c"), kAnyError, kNoFile},
    // Sections
    {"SectionLines", kSections, Call::Section, "section1", nullptr, nullptr, 100, 35, B("name1=val1\0name2=\0name3\0name4=val4\0\0"), OK, kSame},
    {"SectionLinesShort", kSections, Call::Section, "section1", nullptr, nullptr, 24, 22, B("name1=val1\0name2=\0name\0\0"), kAnyError, kSame},
    {"SectionWithEmptyKey", kSections, Call::Section, "section3", nullptr, nullptr, 100, 6, B("=val5\0\0"), OK, kSame},
    {"EmptySection", kSections, Call::Section, "section2", nullptr, nullptr, 100, 0, B("\0"), OK, kSame},
    {"SectionOfNullName", kSections, Call::Section, nullptr, nullptr, nullptr, 100, 0, "", ERROR_INVALID_PARAMETER, kSame},
    // Numbers
    {"IntMinusOne", "[s]\r\nk=-1\r\n", Call::Int, "s", "k", nullptr, 1, 4294967295u, "", kAnyError, kSame},
    {"IntPlusSign", "[s]\r\nk=+1\r\n", Call::Int, "s", "k", nullptr, 0, 1, "", kAnyError, kSame},
    {"IntWrapsAt32Bits", "[s]\r\nk=4294967297\r\n", Call::Int, "s", "k", nullptr, 0, 1, "", kAnyError, kSame},
    {"IntNegativeWraps", "[s]\r\nk=-4294967297\r\n", Call::Int, "s", "k", nullptr, 0, 4294967295u, "", kAnyError, kSame},
    {"IntLeadingDigits", "[s]\r\nk=42A94967297\r\n", Call::Int, "s", "k", nullptr, 7, 42, "", kAnyError, kSame},
    {"IntNoDigitsIsZero", "[s]\r\nk=B4294967297\r\n", Call::Int, "s", "k", nullptr, 7, 0, "", kAnyError, kSame},
    {"IntHex", "[s]\r\nk=0x1F\r\n", Call::Int, "s", "k", nullptr, 7, 31, "", kAnyError, kSame},
    {"IntMissingKeyGivesDefault", "[s]\r\n", Call::Int, "s", "k", nullptr, 70, 70, "", kAnyError, kSame},
    // Writing
    {"WriteCreatesFile", kNoFile, Call::Write, "App", "key", "string", 0, TRUE, "", kAnyError, "[App]\r\nkey=string\r\n"},
    {"WriteEmptyValue", kNoFile, Call::Write, "App", "key", "", 0, TRUE, "", kAnyError, "[App]\r\nkey=\r\n"},
    {"WriteNamesLoseSpacesValueKeepsThem", "", Call::Write, " App ", " key ", " v ", 0, TRUE, "", kAnyError, "[App]\r\nkey= v \r\n"},
    {"WriteNewKeyAfterSectionsLastKey", kApps, Call::Write, "App1", "key3", "string3", 0, TRUE, "", kAnyError,
     "[App1]\r\nkey1=string1\r\nkey2=string2\r\nkey3=string3\r\n[App2]\r\nkey4=string4\r\n"},
    {"WriteNewSectionAtEnd", kApps, Call::Write, "App3", "key5", "string5", 0, TRUE, "", kAnyError, kApps + "[App3]\r\nkey5=string5\r\n"},
    {"WriteKeepsExistingSpelling", "[App]\r\nKey=old\r\n", Call::Write, "APP", "KEY", "New", 0, TRUE, "", kAnyError, "[App]\r\nKey=New\r\n"},
    {"WriteNullValueRemovesKey", kApps, Call::Write, "App1", "key2", nullptr, 0, TRUE, "", kAnyError,
     "[App1]\r\nkey1=string1\r\n[App2]\r\nkey4=string4\r\n"},
    {"WriteNullValueOfMissingKey", kApps, Call::Write, "App1", "nokey", nullptr, 0, TRUE, "", kAnyError, kSame},
    {"WriteNullKeyRemovesSection", kApps, Call::Write, "App1", nullptr, "ignored", 0, TRUE, "", kAnyError, "[App2]\r\nkey4=string4\r\n"},
    {"WriteRemovingLastKeyKeepsHeader", "[App3]\r\nkey5=string5\r\n", Call::Write, "App3", "key5", nullptr, 0, TRUE, "", kAnyError, "[App3]\r\n"},
    {"WriteKeepsOtherLines", "; top\r\n[s]\r\n; note\r\nk=1\r\nname3\r\n", Call::Write, "s", "k", "2", 0, TRUE, "", kAnyError,
     "; top\r\n[s]\r\n; note\r\nk=2\r\nname3\r\n"},
    {"WriteNullSectionFails", "", Call::Write, nullptr, "key", "string", 0, FALSE, "", NOTFOUND, kSame},
    {"WriteKeepsUtf16", Utf16Le("[s]\r\nk=v\r\n"), Call::Write, "s", "k", "w", 0, TRUE, "", kAnyError, Utf16Le("[s]\r\nk=w\r\n")},
    {"WriteSectionReplacesLines", "[s]\r\na=1\r\nb=2\r\n[t]\r\n", Call::WriteSection, "s", nullptr, "c=3\0d=4\0", 0, TRUE, "", kAnyError,
     "[s]\r\nc=3\r\nd=4\r\n[t]\r\n"},
    {"WriteSectionCreatesSection", "[t]\r\n", Call::WriteSection, "s", nullptr, "c=3\0", 0, TRUE, "", kAnyError, "[t]\r\n[s]\r\nc=3\r\n"},
};
// clang-format on

void PrintTo(const Row& row, std::ostream* os) {
    *os << row.name;
}

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return kNoFile;
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class ProfileTable : public ::testing::TestWithParam<Row> {
protected:
    void SetUp() override {
        static std::atomic<int> counter{0};
        m_dir = fs::temp_directory_path() /
                ("zt_profile_" +
                 std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()) + "_" +
                 std::to_string(counter++));
        fs::create_directories(m_dir);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(m_dir, ec);
    }
    fs::path m_dir;
};

TEST_P(ProfileTable, Behaves) {
    ZT_SKIP_WINE_DEVIATION();
    const Row& row = GetParam();
    const fs::path file = m_dir / "test.ini";
    if (row.before != kNoFile)
        std::ofstream(file, std::ios::binary) << row.before;
    const std::string name = file.string();

    char buffer[300];
    std::memset(buffer, 0x0c, sizeof buffer);
    W::SetLastError(0xdeadbeef);
    DWORD result = 0;
    switch (row.call) {
    case Call::String:
        result = W::GetPrivateProfileStringA(row.section, row.key, row.arg, buffer, row.size,
                                             name.c_str());
        break;
    case Call::Int:
        result = W::GetPrivateProfileIntA(row.section, row.key, static_cast<INT>(row.size),
                                          name.c_str());
        break;
    case Call::Section:
        result = W::GetPrivateProfileSectionA(row.section, buffer, row.size, name.c_str());
        break;
    case Call::SectionNames:
        result = W::GetPrivateProfileSectionNamesA(buffer, row.size, name.c_str());
        break;
    case Call::Write:
        result = static_cast<DWORD>(
            W::WritePrivateProfileStringA(row.section, row.key, row.arg, name.c_str()));
        break;
    case Call::WriteSection:
        result =
            static_cast<DWORD>(W::WritePrivateProfileSectionA(row.section, row.arg, name.c_str()));
        break;
    }
    const DWORD error = W::GetLastError();

    if (row.call == Call::Write || row.call == Call::WriteSection)
        EXPECT_EQ(result != 0, row.result != 0);
    else
        EXPECT_EQ(result, row.result);
    EXPECT_EQ(std::string(buffer, row.returned.size()), row.returned);
    if (row.error != kAnyError) {
        EXPECT_EQ(error, row.error);
    }
    EXPECT_EQ(ReadAll(file), row.after == kSame ? row.before : row.after);
}

INSTANTIATE_TEST_SUITE_P(Win32Profile, ProfileTable, ::testing::ValuesIn(kRows),
                         [](const ::testing::TestParamInfo<Row>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
