// Shared pieces of the redirected-file tests: a temporary directory with a rule that sends the
// requested directory "<tmp>/asked" (which does not exist) to "<tmp>/real" (which holds the
// files), a capture of the MESSAGE events, and the expected event lines.
#pragma once

#include "Util/FileAccReplace.h"
#include "Util/ReDirectFile.h"
#include "Util/Win32.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace FileAccTest {

// What a table row calls; returns a number that shows the outcome (1/0, a code, a count).
struct Env;
using Call = std::function<long(Env&)>;

struct Env : OpsTest::OpsRunning {
    std::string asked, real;
    std::string pipe = "\\\\.\\pipe\\zt_fileacc_" + std::to_string(std::random_device()());
    std::shared_ptr<OpsTest::CaptureHandler> capture;
    std::deque<std::string> keep; // the texts handed out as const char*

    void SetUp() override {
        OpsTest::OpsRunning::SetUp();
        asked = m_dir.File("asked");
        real = m_dir.File("real");
        std::filesystem::create_directories(real + "/sub");
        m_dir.Write("real/a.txt", "hello");
        ASSERT_TRUE(Util::ReDirectFile::SetRules({{asked.c_str(), real.c_str()}}).Succeeded());
        capture = OpsTest::Subscribe("EVENT_TYPE_FILTER", "type", "MESSAGE");
    }
    void TearDown() override {
        Util::ReDirectFile::ClearRules();
        OpsTest::OpsRunning::TearDown();
    }

    // The requested and the real name of a file below the two directories.
    const char* Asked(const std::string& rest) { return Keep(asked + "/" + rest); }
    const char* Real(const std::string& rest) { return Keep(real + "/" + rest); }
    const char* Keep(std::string text) {
        keep.push_back(std::move(text));
        return keep.back().c_str();
    }
    bool Exists(const std::string& rest) const {
        return std::filesystem::exists(std::filesystem::path(real) / rest);
    }

    // The texts of the events raised so far, with the two directories written as {A} and {R}.
    std::vector<std::string> Events() const {
        std::vector<std::string> texts;
        for (const OpsTest::Captured& event : capture->Events()) {
            std::string text = event.text;
            for (const auto& [dir, mark] :
                 {std::pair{real, "{R}"}, std::pair{asked, "{A}"}, std::pair{pipe, "{P}"}})
                for (std::size_t at; (at = text.find(dir)) != std::string::npos;)
                    text.replace(at, dir.size(), mark);
            texts.push_back(text);
        }
        return texts;
    }
};

// The caller's source and line that every row passes.
#define ZT_TEST_CALLER "caller.cpp", 42

// The line of a traced name: rest is the name below {A} and {R}; fields the function's own.
inline std::string Traced(const std::string& fn, const std::string& rest, const std::string& fields,
                          const std::string& o = "", const std::string& r = "") {
    return "," + fn + ", " + o + "Original,\"{A}/" + rest + "\"," + r + "Redirected ,\"{R}/" +
           rest + "\" " + fields + ",  source, caller.cpp,line, 42";
}

// The line of a failed call: the traced line and the Win32 error.
inline std::string Failed(const std::string& fn, const std::string& rest, int error,
                          const std::string& o = "", const std::string& r = "") {
    return Traced(fn, rest, ",, ", o, r) + ", Error:" + std::to_string(error);
}

struct Row {
    const char* name;
    Call call;
    long result;
    std::vector<std::string> events;
};

inline void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

inline std::string RowName(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

} // namespace FileAccTest
