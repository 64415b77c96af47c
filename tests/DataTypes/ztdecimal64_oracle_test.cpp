// The C++ half of the decimal oracle: tests/DataTypes/decimal_oracle.py writes reproducible
// cases into a file, runs this test with ZT_DECIMAL_ORACLE_CASES and ZT_DECIMAL_ORACLE_RESULTS
// set, and checks every result against Python's decimal module. Without those variables the
// test is skipped (CTest runs it through the script).
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "Util/ZtDecimal64.h"

namespace {

ZtDecimal64 FromBits(const char* hex) {
    ZtDecimal64 d(ZtDecimal64::NoInit);
    d.SetInternallFromUInt64(std::strtoull(hex, nullptr, 16));
    return d;
}

std::string Hex(const ZtDecimal64& d) {
    char text[24];
    std::snprintf(text, sizeof text, "%016" PRIx64, d.GetInternalToUInt64());
    return text;
}

std::string DoubleHex(double v) {
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    char text[24];
    std::snprintf(text, sizeof text, "%016" PRIx64, bits);
    return text;
}

std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> fields;
    size_t start = 0;
    while (start <= line.size()) {
        size_t end = line.find(' ', start);
        if (end == std::string::npos) {
            end = line.size();
        }
        fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

template <typename T> std::string WithStatus(T value, ZtDecimal64::Status status) {
    return std::to_string(static_cast<int>(status)) + " " + std::to_string(value);
}

// Computes one case; the first field names the operation, the rest are its operands.
std::string Compute(const std::vector<std::string>& f) {
    const std::string& op = f[0];
    auto arg = [&](size_t i) { return FromBits(f.at(i).c_str()); };
    auto place = [&](size_t i) { return std::atoi(f.at(i).c_str()); };
    if (op == "add") {
        return Hex(arg(1) + arg(2));
    }
    if (op == "sub") {
        return Hex(arg(1) - arg(2));
    }
    if (op == "mul") {
        return Hex(arg(1) * arg(2));
    }
    if (op == "div") {
        return Hex(arg(1) / arg(2));
    }
    if (op == "rem") {
        return Hex(arg(1) % arg(2));
    }
    if (op == "fma") {
        return Hex(ZtDecimal64::FMA(arg(1), arg(2), arg(3)));
    }
    if (op == "cmp") {
        ZtDecimal64 a = arg(1), b = arg(2);
        std::string r;
        for (bool bit : {a == b, a != b, a<b, a <= b, a> b, a >= b}) {
            r += bit ? '1' : '0';
        }
        return r;
    }
    if (op == "rtp" || op == "rhe" || op == "rdn" || op == "rhu") {
        ZtDecimal64 a = arg(1);
        int p = place(2);
        if (op == "rtp") {
            return Hex(a.RoundToPlace(p));
        }
        if (op == "rhu") {
            return Hex(a.RoundHalfUp(p));
        }
        return Hex(op == "rhe" ? a.RoundHalfEven(p) : a.RoundDown(p));
    }
    if (op == "scaleb") {
        ZtDecimal64 a = arg(1);
        return Hex(a.ScaleByPowerOf10(place(2)));
    }
    if (op == "parts") {
        ZtDecimal64 a = arg(1);
        return Hex(a.GetWhole()) + " " + Hex(a.GetSignedWhole()) + " " + Hex(a.GetFraction()) +
               " " + Hex(a.GetSignedFraction());
    }
    if (op == "setw" || op == "setf") {
        ZtDecimal64 a = arg(1);
        if (op == "setw") {
            a.SetWhole(arg(2));
        } else {
            a.SetFraction(arg(2));
        }
        return Hex(a);
    }
    if (op == "toint") {
        ZtDecimal64 a = arg(1);
        ZtDecimal64::Status s1, s2, s3, s4;
        int32_t i32 = a.GetInt32Value(s1);
        uint32_t u32 = a.GetUInt32Value(s2);
        int64_t i64 = a.GetInt64Value(s3);
        uint64_t u64 = a.GetUInt64Value(s4);
        return WithStatus(i32, s1) + " " + WithStatus(u32, s2) + " " + WithStatus(i64, s3) + " " +
               WithStatus(u64, s4);
    }
    if (op == "fromint") {
        ZtDecimal64 a, b, c, d;
        a.SetInt32Value(static_cast<int32_t>(std::strtoll(f.at(1).c_str(), nullptr, 10)));
        b.SetUInt32Value(static_cast<uint32_t>(std::strtoull(f.at(2).c_str(), nullptr, 10)));
        c.SetInt64Value(static_cast<int64_t>(std::strtoll(f.at(3).c_str(), nullptr, 10)));
        d.SetUInt64Value(static_cast<uint64_t>(std::strtoull(f.at(4).c_str(), nullptr, 10)));
        return Hex(a) + " " + Hex(b) + " " + Hex(c) + " " + Hex(d);
    }
    if (op == "parse") {
        return Hex(ZtDecimal64(f.at(1).c_str()));
    }
    if (op == "text") {
        return std::string(arg(1).GetStringValue().c_str());
    }
    if (op == "todbl") {
        ZtDecimal64::Status s;
        double v = arg(1).GetDoubleValue(s);
        return std::to_string(static_cast<int>(s)) + " " + DoubleHex(v);
    }
    if (op == "fromdbl") {
        uint64_t bits = std::strtoull(f.at(1).c_str(), nullptr, 16);
        double v;
        std::memcpy(&v, &bits, sizeof v);
        return Hex(ZtDecimal64(v));
    }
    return "?";
}

} // namespace

TEST(ZtDecimal64Oracle, ComputesCasesWrittenByThePythonOracle) {
    const char* casesPath = std::getenv("ZT_DECIMAL_ORACLE_CASES");
    const char* resultsPath = std::getenv("ZT_DECIMAL_ORACLE_RESULTS");
    if (!casesPath || !resultsPath) {
        GTEST_SKIP() << "run by tests/DataTypes/decimal_oracle.py";
    }
    std::ifstream in(casesPath);
    ASSERT_TRUE(in) << casesPath;
    std::ofstream out(resultsPath);
    ASSERT_TRUE(out) << resultsPath;
    std::string line;
    size_t count = 0;
    while (std::getline(in, line)) {
        std::string result = Compute(Split(line));
        ASSERT_NE(result, "?") << "unknown case: " << line;
        out << result << '\n';
        ++count;
    }
    out.flush();
    ASSERT_TRUE(out.good());
    EXPECT_GT(count, 0u);
}
