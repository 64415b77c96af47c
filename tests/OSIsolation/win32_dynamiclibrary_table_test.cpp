// LoadLibraryA / GetProcAddress behind Util::DynamicLibrary: results and last-error values as
// Windows gives them (see win32_lasterror_table_test.cpp for how these tables work).
#include "Util/DynamicLibrary.h"
#include "Util/Win32.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

using namespace Util::Win32;

namespace {

namespace fs = std::filesystem;

// A scratch folder of its own with a text file that is not a library.
class Scratch {
public:
    Scratch()
        : m_dir(fs::temp_directory_path() /
                ("zt_dll_table_" + std::to_string(std::random_device()()))) {
        fs::create_directories(m_dir);
        std::ofstream(m_dir / "notalibrary.dll") << "plain text, no library\n";
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
    }
    std::string Path(const char* name) const { return (m_dir / name).string(); }

private:
    fs::path m_dir;
};

struct LoadRow {
    const char* name;
    const char* file; // in the scratch folder; null for the test plug-in
    bool loads;
    DWORD error; // the last error and the "Win32Error" attribute after a failure
};

class Win32LoadLibraryTable : public ::testing::TestWithParam<LoadRow> {};

TEST_P(Win32LoadLibraryTable, LoadsOrFailsWithTheWin32Error) {
    const LoadRow& row = GetParam();
    Scratch scratch;
    const std::string path = row.file ? scratch.Path(row.file) : std::string(ZT_TEST_PLUGIN_PATH);
    Util::Win32::SetLastError(ERROR_SUCCESS);
    Util::DynamicLibrary lib;
    Util::Status status = lib.Load(path.c_str());
    ASSERT_EQ(status.Succeeded(), row.loads) << status.GetStatusMessage().c_str();
    EXPECT_EQ(lib.IsLoaded(), row.loads);
    if (row.loads)
        return;
    EXPECT_EQ(Util::Win32::GetLastError(), row.error);
    long attribute = 0;
    EXPECT_TRUE(status.GetLongAttribute("Win32Error", attribute));
    EXPECT_EQ(static_cast<DWORD>(attribute), row.error);
}

const LoadRow kLoadRows[] = {
    {"RealLibrary", nullptr, true, ERROR_SUCCESS},
    {"MissingFile", "missing.dll", false, ERROR_MOD_NOT_FOUND},
    {"MissingFolder", "nofolder/missing.dll", false, ERROR_MOD_NOT_FOUND},
    {"FileThatIsNotALibrary", "notalibrary.dll", false, ERROR_BAD_EXE_FORMAT},
};

INSTANTIATE_TEST_SUITE_P(Rows, Win32LoadLibraryTable, ::testing::ValuesIn(kLoadRows),
                         [](const ::testing::TestParamInfo<LoadRow>& info) {
                             return std::string(info.param.name);
                         });

struct SymbolRow {
    const char* name;
    const char* symbol;
    bool found;
    DWORD error; // the last error after a failed lookup
};

class Win32GetProcAddressTable : public ::testing::TestWithParam<SymbolRow> {};

TEST_P(Win32GetProcAddressTable, FindsExportsOnly) {
    const SymbolRow& row = GetParam();
    Util::DynamicLibrary lib;
    ASSERT_TRUE(lib.Load(ZT_TEST_PLUGIN_PATH).Succeeded());
    Util::Win32::SetLastError(ERROR_SUCCESS);
    EXPECT_EQ(lib.GetSymbol(row.symbol) != nullptr, row.found);
    if (!row.found) {
        EXPECT_EQ(Util::Win32::GetLastError(), row.error);
    }
}

const SymbolRow kSymbolRows[] = {
    {"Function", "zt_plugin_answer", true, ERROR_SUCCESS},
    {"Data", "zt_plugin_counter", true, ERROR_SUCCESS},
    {"Missing", "zt_plugin_missing", false, ERROR_PROC_NOT_FOUND},
    {"NamesAreCaseSensitive", "ZT_PLUGIN_ANSWER", false, ERROR_PROC_NOT_FOUND},
    {"EmptyName", "", false, ERROR_PROC_NOT_FOUND},
};

INSTANTIATE_TEST_SUITE_P(Rows, Win32GetProcAddressTable, ::testing::ValuesIn(kSymbolRows),
                         [](const ::testing::TestParamInfo<SymbolRow>& info) {
                             return std::string(info.param.name);
                         });

} // namespace
