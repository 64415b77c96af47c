// ztutil calc: evaluates an expression against variables and aliases given on the command line,
// and the demo section of the expression engine and Util::Variant.
#include "tools/ztutil/registry.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Util/ExpressionParser.h"
#include "Util/Variant.h"

namespace {

const char kUsage[] = "calc [--var NAME=VALUE]... [--alias NAME=EXPR]... [--tree] EXPR";

const char* StatusText(Util::ParseNodeStatus status) {
    switch (status) {
    case Util::PNS_SUCCESS:
        return "success";
    case Util::PNS_ALIAS_PAREN_MISSING:
        return "\"$\" not followed by \"(\"";
    case Util::PNS_RIGHT_PAREN_MISSING:
        return "\")\" missing";
    case Util::PNS_NOT_LVALUE:
        return "the left side of \":=\" is not a variable";
    case Util::PNS_SYNTAX_ERROR:
        return "syntax error";
    case Util::PNS_ALIAS_NAME_MISSING:
        return "no name after \"$(\"";
    case Util::PNS_UNDEFINED_SYMBOL:
        return "undefined symbol";
    case Util::PNS_UNDEFINED_ALIAS:
        return "undefined alias";
    case Util::PNS_NO_PARSE_TREE:
        return "no parse tree";
    case Util::PNS_NO_SYMBOL_TABLE:
        return "no symbol table";
    case Util::PNS_TEXT_OPERATION:
        return "operator applied to text";
    case Util::PNS_WRONG_PARAMETER_COUNT:
        return "wrong number of parameters";
    case Util::PNS_RECURSIVE_ALIAS:
        return "recursive alias";
    case Util::PNS_OUT_OF_MEMORY:
        return "out of memory";
    default:
        return "unknown status";
    }
}

const char* TypeName(const Util::Variant& value) {
    if (value.IsEmpty())
        return "empty";
    if (value.IsIntegerNumber())
        return "long";
    if (value.IsRealNumber())
        return "double";
    if (value.IsString())
        return "string";
    return "bool";
}

std::string TextOf(const Util::Variant& value) {
    Util::TString text;
    value.GetString(text);
    return text.c_str();
}

// A number when the whole text reads as one (a long when integral), else the text itself.
Util::Variant ValueFromText(const std::string& text) {
    if (!text.empty()) {
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        if (end == text.c_str() + text.size() &&
            !std::isspace(static_cast<unsigned char>(text[0]))) {
            if (number == std::trunc(number) && std::fabs(number) < 2147483648.0)
                return Util::Variant(static_cast<long>(number));
            return Util::Variant(number);
        }
    }
    return Util::Variant(text.c_str());
}

class CalcSymbols : public Util::SymbolLookupValues {
public:
    mutable std::map<std::string, Util::Variant> variables;
    mutable std::vector<std::string> assigned;
    std::map<std::string, std::unique_ptr<Util::ExpressionParser>> aliases;

    bool GetSymbolValue(const char* name, Util::Variant& value) const override {
        auto it = variables.find(name);
        if (it == variables.end())
            return false;
        value = it->second;
        return true;
    }

    bool SetSymbolValue(const char* name, Util::Variant value) const override {
        variables[name] = value;
        assigned.push_back(name);
        return true;
    }

    bool GetAliasValue(const char* name, Util::ExpressParseNode** tree) const override {
        auto it = aliases.find(name);
        if (it == aliases.end())
            return false;
        *tree = it->second->GetParseTree();
        return true;
    }

    bool GetFunctionValue(const char* name, Util::ParseNodeStatus& status, Util::Variant& result,
                          const std::vector<Util::Variant>& args) const override {
        const std::string fn(name);
        auto wrongCount = [&status]() {
            status = Util::PNS_WRONG_PARAMETER_COUNT;
            return false;
        };
        if (fn == "abs") {
            if (args.size() != 1)
                return wrongCount();
            result = std::fabs(static_cast<double>(args[0]));
        } else if (fn == "min" || fn == "max") {
            if (args.empty())
                return wrongCount();
            double best = static_cast<double>(args[0]);
            for (const Util::Variant& a : args) {
                const double v = static_cast<double>(a);
                best = fn == "min" ? std::fmin(best, v) : std::fmax(best, v);
            }
            result = best;
        } else if (fn == "round") {
            if (args.empty() || args.size() > 2)
                return wrongCount();
            const double scale = args.size() == 2 ? std::pow(10.0, static_cast<int>(args[1])) : 1;
            result = std::round(static_cast<double>(args[0]) * scale) / scale;
        } else if (fn == "if") {
            if (args.size() != 3)
                return wrongCount();
            result = static_cast<double>(args[0]) != 0 ? args[1] : args[2];
        } else if (fn == "len") {
            if (args.size() != 1)
                return wrongCount();
            result = static_cast<long>(TextOf(args[0]).size());
        } else if (fn == "upper") {
            if (args.size() != 1)
                return wrongCount();
            std::string text = TextOf(args[0]);
            for (char& c : text)
                c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            result = text.c_str();
        } else {
            status = Util::PNS_UNDEFINED_SYMBOL;
            return false;
        }
        return true;
    }
};

bool SplitAssignment(const std::string& text, std::string& name, std::string& value) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0)
        return false;
    name = text.substr(0, equals);
    value = text.substr(equals + 1);
    return true;
}

void ShowParseError(std::ostream& err, const char* what, const std::string& text,
                    const Util::ExpressionParser& parser) {
    const long at = parser.GetParseBuffLocation();
    err << what << ": status " << parser.GetStatus() << " (" << StatusText(parser.GetStatus())
        << ") at offset " << at << "\n  " << text << "\n  "
        << std::string(static_cast<std::size_t>(at), ' ') << "^\n";
}

int RunCalc(const std::vector<std::string>& args) {
    CalcSymbols symbols;
    bool tree = false;
    std::string expression;
    bool haveExpression = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--tree") {
            tree = true;
        } else if (arg == "--var" || arg == "--alias") {
            std::string name, value;
            if (i + 1 >= args.size() || !SplitAssignment(args[i + 1], name, value))
                return ztutil::UsageError(kUsage, arg + " needs NAME=VALUE");
            ++i;
            if (arg == "--var") {
                symbols.variables[name] = ValueFromText(value);
                continue;
            }
            auto parser = std::make_unique<Util::ExpressionParser>();
            if (parser->Parse(value.c_str()) != Util::PNS_SUCCESS) {
                ShowParseError(std::cerr, ("alias " + name).c_str(), value, *parser);
                return 1;
            }
            symbols.aliases[name] = std::move(parser);
        } else if (!haveExpression && (arg.empty() || arg[0] != '-' || arg.size() == 1 ||
                                       !std::isalpha(static_cast<unsigned char>(arg[1])))) {
            expression = arg;
            haveExpression = true;
        } else {
            return ztutil::UsageError(kUsage, haveExpression ? "more than one expression"
                                                             : "unknown option " + arg);
        }
    }
    if (!haveExpression)
        return ztutil::UsageError(kUsage, "no expression given");

    Util::ExpressionParser parser;
    if (parser.Parse(expression.c_str()) != Util::PNS_SUCCESS) {
        ShowParseError(std::cerr, "parse error", expression, parser);
        return 1;
    }
    Util::Variant result;
    const Util::ParseNodeStatus status = parser.Execute(result, symbols);
    if (tree)
        std::cout << parser.Print(symbols, Util::EPPV_PRINT_VALUES).c_str();
    if (status != Util::PNS_SUCCESS) {
        std::cerr << "evaluation error: status " << status << " (" << StatusText(status)
                  << "): " << TextOf(result) << "\n";
        return 1;
    }
    for (const std::string& name : symbols.assigned)
        std::cout << name << " := " << TextOf(symbols.variables[name]) << "\n";
    std::cout << TextOf(result) << " (" << TypeName(result) << ")\n";
    return 0;
}

void DemoCalc(std::ostream& out) {
    CalcSymbols symbols;
    symbols.variables["Price"] = 12.5;
    symbols.variables["Qty"] = 4L;
    auto discount = std::make_unique<Util::ExpressionParser>();
    discount->Parse("Price * Qty * 0.1");
    symbols.aliases["Discount"] = std::move(discount);

    const char* formula = "Total := (Price * Qty) - $(Discount)";
    Util::ExpressionParser parser;
    parser.Parse(formula);
    Util::Variant result;
    const Util::ParseNodeStatus status = parser.Execute(result, symbols);
    out << "Price = 12.5, Qty = 4, alias Discount = Price * Qty * 0.1\n";
    out << formula << "  ->  " << TextOf(result) << " (status " << status << ")\n";
    out << "The assignment stored Total = " << TextOf(symbols.variables["Total"]) << "\n";
    out << "Its tree with values:\n" << parser.Print(symbols, Util::EPPV_PRINT_VALUES).c_str();

    Util::ExpressionParser failing;
    failing.Parse("(Price + 1");
    out << "\"(Price + 1\" gives status " << failing.GetStatus() << " ("
        << StatusText(failing.GetStatus()) << ") at offset " << failing.GetParseBuffLocation()
        << "\n";
    failing.Parse("'ab' - 3");
    failing.Execute(result, symbols);
    out << "'ab' - 3 gives \"" << TextOf(result) << "\" with status " << failing.GetStatus()
        << "\n";

    out << "Variant: \"TRUE\" as bool is "
        << (static_cast<bool>(Util::Variant("TRUE")) ? "true" : "false") << "; 0.1 as text is \""
        << TextOf(Util::Variant(0.1)) << "\"; -1 as unsigned int "
        << (Util::Variant(-1).ChangeType(Util::UTIL_VT_UINT) ? "converts" : "fails (lost data)")
        << "\n";
}

} // namespace

ZTUTIL_COMMAND(calc, kUsage, "Evaluate an expression with variables, aliases and functions",
               RunCalc);
ZTUTIL_DEMO(40, "Expression engine and Variant", DemoCalc);
