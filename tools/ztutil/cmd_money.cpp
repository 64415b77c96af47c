// ztutil's money command and demo: BalType arithmetic on values read as text.
#include "tools/ztutil/registry.h"

#include <iostream>
#include <string>

#include "Util/BalType.h"
#include "Util/BalTypeUtils.h"
#include "Util/ZtDecimal64.h"

namespace {

const char* const kUsage =
    "money A OP B   (OP: + - * / cmp; e.g. money 12.34 + 10%; blanks around A and B are trimmed)";

// The library parses amounts as they stand; the command line is forgiving about blanks.
std::string Trimmed(const std::string& text) {
    const char* blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == std::string::npos)
        return std::string();
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

// Plain decimal text of a number ("+1235E-2" reads 12.35); infinities and NaNs as the library
// writes them.
std::string PlainText(const ZtDecimal64& number) {
    std::string text = number.GetStringValue().c_str();
    size_t e = text.find('E');
    if (e == std::string::npos || text.size() < 2 || !(text[1] >= '0' && text[1] <= '9')) {
        return text;
    }
    bool negative = text[0] == '-';
    std::string digits = text.substr(1, e - 1);
    int exponent = std::stoi(text.substr(e + 1));
    if (exponent >= 0) {
        if (digits != "0") {
            digits.append(static_cast<size_t>(exponent), '0');
        }
    } else {
        size_t decimals = static_cast<size_t>(-exponent);
        if (digits.size() <= decimals) {
            digits.insert(0, decimals - digits.size() + 1, '0');
        }
        digits.insert(digits.size() - decimals, ".");
    }
    return (negative ? "-" : "") + digits;
}

std::string Describe(const BalType& value) {
    std::string text = PlainText(value.GetDecimalAmount());
    if (value.IsPercent()) {
        text += "%";
    }
    return text;
}

void PrintResult(std::ostream& out, const BalType& value) {
    out << "result:   " << Describe(value) << "\n"
        << "kind:     " << (value.IsQty() ? "quantity" : "dollar") << "\n"
        << "percent:  " << (value.IsPercent() ? "yes" : "no") << "\n"
        << "empty:    " << (value.IsEmpty() ? "yes" : "no") << "\n"
        << "error:    " << (value.IsError() ? "yes" : "no") << "\n"
        << "overflow: " << (GetBalTypeOverflowFlag() ? "yes" : "no") << "\n";
}

int RunMoney(const std::vector<std::string>& args) {
    if (args.size() != 3) {
        return ztutil::UsageError(kUsage, "expected three arguments: A OP B");
    }
    const std::string& op = args[1];
    BalType a = String2Bal(Trimmed(args[0]).c_str());
    BalType b = String2Bal(Trimmed(args[2]).c_str());
    if (op == "cmp") {
        std::cout << "compare:  " << BalPickyCompare(a, b, true) << "\n"
                  << "picky:    " << BalPickyCompare(a, b, false) << "\n"
                  << "absolute: " << BalAbsCompare(a, b) << "\n";
        return 0;
    }
    BalType result;
    if (op == "+") {
        result = a + b;
    } else if (op == "-") {
        result = a - b;
    } else if (op == "*" || op == "x") {
        result = a * b;
    } else if (op == "/") {
        result = a / b;
    } else {
        return ztutil::UsageError(kUsage, "unknown operator '" + op + "'");
    }
    PrintResult(std::cout, result);
    return result.IsError() ? 1 : 0;
}

void Show(std::ostream& out, const char* a, const char* op, const char* b, const BalType& r) {
    out << "  " << a << " " << op << " " << b << " = " << Describe(r) << " ("
        << (r.IsQty() ? "quantity" : "dollar") << (r.IsPercent() ? ", percent" : "")
        << (r.IsError() ? ", ERROR" : "") << ")\n";
}

void DemoMoney(std::ostream& out) {
    ResetBalTypeOverflowFlag();
    out << "Text is read as money: two decimals make a dollar amount, more make a quantity,\n"
           "a trailing % a percent.\n";
    Show(out, "19.99", "+", "5.01", String2Bal("19.99") + String2Bal("5.01"));
    Show(out, "10%", "+", "5", String2Bal("10%") + String2Bal("5"));
    Show(out, "12.345", "*", "2", BalMultiplyQnty(String2Bal("12.345"), String2Bal("2")));
    Show(out, "2.50", "*", "1.005", String2Bal("2.50") * String2Bal("1.005"));
    Show(out, "100", "/", "3", String2Bal("100") / String2Bal("3"));
    Show(out, "empty", "+", "5.00", BalEmptyDollar() + String2Bal("5.00"));
    out << "Overflow flag before the overflow: " << (GetBalTypeOverflowFlag() ? "set" : "clear")
        << "\n";
    Show(out, "9999999999999.99", "+", "0.01", String2Bal("9999999999999.99") + String2Bal("0.01"));
    out << "Overflow flag after it: " << (GetBalTypeOverflowFlag() ? "set" : "clear") << "\n";
    Show(out, "1", "/", "0", String2Bal("1") / String2Bal("0"));

    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode6Byte);
    BalType large;
    large.LargePositiveDollar();
    out << "Largest dollar amount in the 6-byte layout: " << Describe(large) << "\n";
    BalTypeLegacy_6Bytes legacy(String2Bal("-1234.56"));
    BalType back;
    legacy.SetFromLegacy6Bytes(back);
    out << "-1234.56 through a 6-byte record: " << Describe(back) << "\n";
    BaltypeLimits::SetLimitMode(BaltypeLimits::LimitMode9Byte);

    char text[16];
    out << "Double2String(1234.5678, 6 digits): "
        << Double2String(text, sizeof text, 1234.5678, 6, true) << "\n";
    out << "Double2String(1e20, 4 digits, 16 bytes): "
        << Double2String(text, sizeof text, 1e20, 4, true) << "\n";
    ResetBalTypeOverflowFlag();
}

} // namespace

ZTUTIL_COMMAND(money, "money A OP B", "Money arithmetic on BalType values", RunMoney);
ZTUTIL_DEMO(30, "Money", DemoMoney);
