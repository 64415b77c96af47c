#include <gtest/gtest.h>

#include "tests/expression/casenames.h"

#include <algorithm>
#include <string>
#include <vector>

#include "Util/ExpressionParser.h"
#include "tests/expression/testsymbols.h"

using Util::ExpressionParser;
using Util::ParseNodeStatus;
using Util::Variant;

namespace {

struct Outcome {
    ParseNodeStatus parse;
    ParseNodeStatus execute;
    std::string value;
};

Outcome Evaluate(const char* text, const Util::SymbolLookupValues& symbols) {
    ExpressionParser parser;
    Outcome outcome;
    outcome.parse = parser.Parse(text);
    Variant result;
    outcome.execute = parser.Execute(result, symbols);
    Util::TString value;
    result.GetString(value);
    outcome.value = value.c_str();
    return outcome;
}

ztest::TestSymbols Numbers() {
    ztest::TestSymbols symbols;
    symbols.variables["a"] = 10L;
    symbols.variables["b"] = 4L;
    symbols.variables["c"] = 3L;
    symbols.variables["t"] = 1L;
    symbols.variables["f"] = 0L;
    symbols.variables["s"] = "ab";
    return symbols;
}

struct ValueCase {
    const char* text;
    const char* value;
};

void PrintTo(const ValueCase& c, std::ostream* os) {
    *os << '"' << c.text << '"';
}

class ParserValues : public ::testing::TestWithParam<ValueCase> {};

TEST_P(ParserValues, EvaluateAsWritten) {
    const ztest::TestSymbols symbols = Numbers();
    const Outcome outcome = Evaluate(GetParam().text, symbols);
    EXPECT_EQ(outcome.parse, Util::PNS_SUCCESS) << GetParam().text;
    EXPECT_EQ(outcome.execute, Util::PNS_SUCCESS) << GetParam().text;
    EXPECT_EQ(outcome.value, GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    PrecedenceAndAssociativity, ParserValues,
    ::testing::Values(
        ValueCase{"1 + 2 * 3", "7"}, ValueCase{"(1 + 2) * 3", "9"}, ValueCase{"10 - 4 - 3", "3"},
        ValueCase{"8 / 4 / 2", "1"}, ValueCase{"a - b + c", "9"}, ValueCase{"a - (b + c)", "3"},
        ValueCase{"a / b * c", "6"}, ValueCase{"a - b * c + 1", "-1"}, ValueCase{"2 * -3", "-6"},
        ValueCase{"- - 3", "3"}, ValueCase{"-a * 2", "-20"}, ValueCase{"-(a - b)", "-6"},
        ValueCase{"1 < 2 < 3", "1"}, ValueCase{"3 > 2 > 1", "0"}, ValueCase{"1 + 1 = 2", "1"},
        ValueCase{"a <> b", "1"}, ValueCase{"f && t || t", "1"}, ValueCase{"t || t && f", "1"},
        ValueCase{"(t || t) && f", "0"}, ValueCase{"f && f || f", "0"},
        ValueCase{"not f and t", "1"}, ValueCase{"!(a = 10)", "0"},
        ValueCase{"'x' + 'y' + 1", "xy1"}, ValueCase{"s + 'c'", "abc"},
        ValueCase{"TRUE + true", "2"}, ValueCase{"1e1 + .5", "10.5"},
        ValueCase{"sum(1, 2, 3) * 2", "12"}, ValueCase{"sum()", "0"},
        ValueCase{"two(1, sum(2, 3))", "15"}, ValueCase{"0.1 + 0.2 = 0.3", "1"}),
    ztest::TextName());

TEST(ParserTrees, RotateToLeftAssociativeShapes) {
    struct Case {
        const char* text;
        const char* tree;
    } cases[] = {
        {"a - b + c", "Add\n  Sub\n    Variable a\n    Variable b\n  Variable c\n"},
        {"8 / 4 / 2", "Divide\n  Divide\n    8\n    4\n  2\n"},
        {"a && b || c", "OR\n  AND\n    Variable a\n    Variable b\n  Variable c\n"},
        {"a || b && c", "OR\n  Variable a\n  AND\n    Variable b\n    Variable c\n"},
        {"a := b := 5", "Assign\n  Variable a\n  Assign\n    Variable b\n    5\n"},
        {"a && b := c", "AND\n  Variable a\n  Assign\n    Variable b\n    Variable c\n"},
        {"-x * !y", "Mult\n  UnaryMinus\n    Variable x\n  CompNegate\n    Variable y\n"},
        {"f(1, 'a') <= $(z)", "LTE\n  Function f\n    1\n    \"a\"\n  $(z)\n"},
    };
    for (const Case& c : cases) {
        ExpressionParser parser;
        ASSERT_EQ(parser.Parse(c.text), Util::PNS_SUCCESS) << c.text;
        EXPECT_EQ(std::string(parser.Print(Util::NoSymbolTable(), Util::EPPV_NO_VALUES).c_str()),
                  c.tree)
            << c.text;
    }
}

TEST(ParserTrees, ParenthesesSetTheBitOnTheInnerRoot) {
    ExpressionParser parser;
    ASSERT_EQ(parser.Parse("(a + b) * c"), Util::PNS_SUCCESS);
    auto* mult = dynamic_cast<Util::BinNode*>(parser.GetParseTree());
    ASSERT_NE(mult, nullptr);
    EXPECT_EQ(mult->GetNodeType(), Util::PNT_MULT);
    EXPECT_EQ(mult->GetLeftLeafNode()->GetNodeType(), Util::PNT_ADD | Util::PNT_PARENTHESIS_BIT);
    ASSERT_EQ(parser.Parse("((((7))))"), Util::PNS_SUCCESS);
    EXPECT_EQ(parser.GetParseTree()->GetNodeType(), Util::PNT_NUM | Util::PNT_PARENTHESIS_BIT);
}

struct StatusCase {
    const char* name;
    const char* text;
    ParseNodeStatus status;
    long location;
    const char* tree; // the tree kept, as printed; null when none is kept
};

void PrintTo(const StatusCase& c, std::ostream* os) {
    *os << '"' << c.text << '"';
}

// A failed parse keeps what it built: an operator left without its operand is dropped, an
// unclosed parenthesis or call keeps its contents, and Execute evaluates the partial tree.
class ParserStatuses : public ::testing::TestWithParam<StatusCase> {};

TEST_P(ParserStatuses, ReportStatusOffsetAndKeptTree) {
    ExpressionParser parser;
    const StatusCase& c = GetParam();
    EXPECT_EQ(parser.Parse(c.text), c.status) << c.text;
    EXPECT_EQ(parser.GetStatus(), c.status) << c.text;
    EXPECT_EQ(parser.GetParseBuffLocation(), c.location) << c.text;
    ASSERT_EQ(parser.GetParseTree() != nullptr, c.tree != nullptr) << c.text;
    Variant result;
    if (c.tree == nullptr) {
        EXPECT_EQ(parser.Execute(result, Util::NoSymbolTable()), Util::PNS_NO_PARSE_TREE);
        return;
    }
    EXPECT_EQ(std::string(parser.Print(Util::NoSymbolTable(), Util::EPPV_NO_VALUES).c_str()),
              c.tree)
        << c.text;
    EXPECT_NE(parser.Execute(result, Util::NoSymbolTable()), Util::PNS_NO_PARSE_TREE);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ParserStatuses,
    ::testing::Values(
        StatusCase{"NotLvalue", "3 := 4", Util::PNS_NOT_LVALUE, 4, "4\n"},
        StatusCase{"SumNotLvalue", "a + b := 4", Util::PNS_NOT_LVALUE, 8, "4\n"},
        StatusCase{"MissingRightOperand", "1 +", Util::PNS_SYNTAX_ERROR, 3, "1\n"},
        StatusCase{"Empty", "", Util::PNS_SYNTAX_ERROR, 0, nullptr},
        StatusCase{"TextLeftOver", "1 2", Util::PNS_SYNTAX_ERROR, 3, "1\n"},
        StatusCase{"BadOperand", "1 + ?", Util::PNS_SYNTAX_ERROR, 4, "1\n"},
        StatusCase{"UnclosedParen", "(1 + 2", Util::PNS_RIGHT_PAREN_MISSING, 6, "Add\n  1\n  2\n"},
        StatusCase{"CommaInParens", "(1, 2)", Util::PNS_RIGHT_PAREN_MISSING, 3, "1\n"},
        StatusCase{"ExtraParen", "1 + 2)", Util::PNS_SYNTAX_ERROR, 6, "Add\n  1\n  2\n"},
        StatusCase{"AliasWithoutParen", "$x", Util::PNS_ALIAS_PAREN_MISSING, 2, nullptr},
        StatusCase{"AliasCut", "$(", Util::PNS_ALIAS_NAME_MISSING, 2, nullptr},
        StatusCase{"AliasNumber", "$(1)", Util::PNS_ALIAS_NAME_MISSING, 3, nullptr},
        StatusCase{"AliasUnclosed", "$(x", Util::PNS_RIGHT_PAREN_MISSING, 3, nullptr},
        StatusCase{"AliasAfterOperand", "2 * $(", Util::PNS_ALIAS_NAME_MISSING, 6, "2\n"},
        StatusCase{"EmptyArgument", "f(1,,2)", Util::PNS_SYNTAX_ERROR, 5, "Function f\n  1\n"},
        StatusCase{"ArgumentsWithoutComma", "f(1 2)", Util::PNS_RIGHT_PAREN_MISSING, 5,
                   "Function f\n  1\n"},
        StatusCase{"CallCut", "f(1", Util::PNS_RIGHT_PAREN_MISSING, 3, "Function f\n  1\n"},
        StatusCase{"CallCutInSum", "1 + f(2 * 3", Util::PNS_RIGHT_PAREN_MISSING, 11,
                   "Add\n  1\n  Function f\n    Mult\n      2\n      3\n"},
        StatusCase{"TrailingComma", "f(1,", Util::PNS_SYNTAX_ERROR, 4, "Function f\n  1\n"},
        StatusCase{"UnclosedString", "'open", Util::PNS_SYNTAX_ERROR, 5, nullptr},
        StatusCase{"SingleAmpersand", "a & b", Util::PNS_SYNTAX_ERROR, 3, "Variable a\n"},
        StatusCase{"NotLvalueThenCut", "3 := 4 +", Util::PNS_NOT_LVALUE, 4, "4\n"},
        StatusCase{"PrefixCut", "-(1 * -", Util::PNS_SYNTAX_ERROR, 7, "UnaryMinus\n  1\n"}),
    [](const ::testing::TestParamInfo<StatusCase>& info) { return std::string(info.param.name); });

TEST(ParserExecute, WithoutATreeOrWithANullTable) {
    ExpressionParser parser;
    Variant result(5);
    EXPECT_EQ(parser.Execute(result, Util::NoSymbolTable()), Util::PNS_NO_PARSE_TREE);
    EXPECT_TRUE(result.IsEmpty());
    ASSERT_EQ(parser.Parse("v"), Util::PNS_SUCCESS);
    EXPECT_EQ(parser.Execute(result, static_cast<const Util::SymbolLookupValues*>(nullptr)),
              Util::PNS_NO_SYMBOL_TABLE);
}

TEST(ParserExecute, AssignmentStoresRightToLeftAndAFailedStoreLeavesNoError) {
    ztest::TestSymbols symbols;
    const Outcome outcome = Evaluate("a := b := 5", symbols);
    EXPECT_EQ(outcome.execute, Util::PNS_SUCCESS);
    EXPECT_EQ(outcome.value, "5");
    EXPECT_EQ(symbols.stores, (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(static_cast<double>(symbols.variables["a"]), 5.0);
    EXPECT_EQ(static_cast<double>(symbols.variables["b"]), 5.0);

    symbols.refuseStores = true;
    const Outcome refused = Evaluate("a := 2 * 3", symbols);
    EXPECT_EQ(refused.execute, Util::PNS_SUCCESS);
    EXPECT_EQ(refused.value, "6");
    EXPECT_EQ(Evaluate("a := 2", Util::NoSymbolTable()).execute, Util::PNS_SUCCESS);
}

TEST(ParserExecute, ShortCircuitNeverLooksUpTheSkippedSide) {
    struct Case {
        const char* text;
        const char* value;
        std::vector<std::string> lookups;
    } cases[] = {
        {"0 && x", "0", {}},    {"1 || x", "1", {}},    {"y && x", "0", {"y"}},
        {"z || x", "1", {"z"}}, {"1 && x", "1", {"x"}}, {"0 || sum(x)", "1", {"x", "sum()"}},
    };
    for (const Case& c : cases) {
        ztest::TestSymbols symbols;
        symbols.variables["x"] = 1L;
        symbols.variables["y"] = 0L;
        symbols.variables["z"] = 2L;
        const Outcome outcome = Evaluate(c.text, symbols);
        EXPECT_EQ(outcome.value, c.value) << c.text;
        EXPECT_EQ(symbols.lookups, c.lookups) << c.text;
    }
}

TEST(ParserExecute, MessagesCarryTheirStatusAndExactText) {
    ztest::TestSymbols symbols;
    symbols.variables["one"] = 1L;
    ASSERT_EQ(symbols.AddAlias("ok", "one + 1"), Util::PNS_SUCCESS);
    ASSERT_EQ(symbols.AddAlias("self", "$(self) + 1"), Util::PNS_SUCCESS);
    struct Case {
        const char* text;
        const Util::SymbolLookupValues* table;
        ParseNodeStatus status;
        const char* value;
    } cases[] = {
        {"1 + x * 2", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol x "},
        {"x", &Util::NoSymbolTable(), Util::PNS_NO_SYMBOL_TABLE, "Undefined Symbol table x "},
        {"$(nope)", &symbols, Util::PNS_UNDEFINED_ALIAS, "Undefined Alias nope "},
        {"$(ok)", &Util::NoSymbolTable(), Util::PNS_NO_SYMBOL_TABLE, "Undefined Symbol table ok "},
        {"two(1)", &symbols, Util::PNS_WRONG_PARAMETER_COUNT, "Invalid number of parameters two "},
        {"nofun(1)", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol nofun "},
        {"g()", &Util::NoSymbolTable(), Util::PNS_NO_SYMBOL_TABLE, "Undefined Symbol table g "},
        {"s - 1", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol s "},
        {"'s' - 1", &symbols, Util::PNS_TEXT_OPERATION, "s SUBTRACT 1"},
        {"$(self)", &symbols, Util::PNS_RECURSIVE_ALIAS, "Recursive Alias self "},
        {"y && 1", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol y "},
        {"!y", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol y "},
        {"sum(1, y)", &symbols, Util::PNS_UNDEFINED_SYMBOL, "Undefined Symbol y "},
        {"$(ok) * 10", &symbols, Util::PNS_SUCCESS, "20"},
    };
    for (const Case& c : cases) {
        const Outcome outcome = Evaluate(c.text, *c.table);
        EXPECT_EQ(outcome.parse, Util::PNS_SUCCESS) << c.text;
        EXPECT_EQ(outcome.execute, c.status) << c.text;
        EXPECT_EQ(outcome.value, c.value) << c.text;
    }
}

TEST(ParserTrees, CopiesEvaluateAfterTheOriginalIsGone) {
    ztest::TestSymbols symbols = Numbers();
    Util::ExpressParseNode* copy = nullptr;
    {
        ExpressionParser parser;
        ASSERT_EQ(parser.Parse("(a - b) * sum(c, 'x' + 1 = 'x1') + $(q) - -2"), Util::PNS_SUCCESS);
        copy = parser.GetParseTree()->CopyNode();
    }
    ASSERT_NE(copy, nullptr);
    symbols.AddAlias("q", "100");
    Util::ExpressionParserExecute executor(copy);
    Variant result;
    EXPECT_EQ(executor.Execute(result, symbols), Util::PNS_SUCCESS);
    EXPECT_EQ(static_cast<double>(result), (10 - 4) * (3 + 1) + 100 + 2);
}

TEST(ParserTrees, SharedTreesOutliveTheirFirstParser) {
    auto* first = new ExpressionParser;
    ASSERT_EQ(first->Parse("6 * 7"), Util::PNS_SUCCESS);
    Util::ExpressionParserExecute second(*first);
    EXPECT_EQ(second.GetParseTree(), first->GetParseTree());
    EXPECT_EQ(first->SetExpressionNode(nullptr), nullptr); // still shared: not handed out
    delete first;
    Variant result;
    EXPECT_EQ(second.Execute(result, Util::NoSymbolTable()), Util::PNS_SUCCESS);
    EXPECT_EQ(static_cast<int>(result), 42);
    Util::ExpressParseNode* old = second.SetExpressionNode(new Util::NumNode(1L));
    ASSERT_NE(old, nullptr); // sole owner: the old root is the caller's now
    second.DeleteParseTree(old);
}

TEST(ParserVariables, ListNamesWithAliasFlags) {
    ztest::TestSymbols symbols;
    symbols.AddAlias("inner", "p + $(deeper)");
    symbols.AddAlias("deeper", "q");
    symbols.AddAlias("loop", "$(loop)");
    struct Case {
        const char* text;
        int flags;
        ParseNodeStatus status;
        std::vector<std::string> names;
    } cases[] = {
        {"a + b * a", 0, Util::PNS_SUCCESS, {"a", "b", "a"}},
        {"x + $(inner) + f(y)", 0, Util::PNS_SUCCESS, {"x", "y"}},
        {"x + $(inner) + f(y)",
         Util::VLT_ALIASES | Util::VLT_FUNCTIONS,
         Util::PNS_SUCCESS,
         {"x", "inner", "f", "y"}},
        {"x + $(inner)",
         Util::VLT_ALIASES | Util::VLT_EXPAND_ALIASES,
         Util::PNS_SUCCESS,
         {"x", "inner", "p", "deeper", "q"}},
        {"$(missing) + z", Util::VLT_EXPAND_ALIASES, Util::PNS_UNDEFINED_ALIAS, {"z"}},
        {"$(loop)", Util::VLT_EXPAND_ALIASES, Util::PNS_RECURSIVE_ALIAS, {}},
    };
    for (const Case& c : cases) {
        ExpressionParser parser;
        ASSERT_EQ(parser.Parse(c.text), Util::PNS_SUCCESS) << c.text;
        std::vector<Util::TString> names;
        EXPECT_EQ(
            parser.GetVariableList(names, static_cast<Util::VariableListTypes>(c.flags), symbols),
            c.status)
            << c.text;
        std::vector<std::string> got;
        for (const Util::TString& n : names)
            got.push_back(n.c_str());
        EXPECT_EQ(got, c.names) << c.text;
    }
    ExpressionParser parser;
    parser.Parse("$(inner)");
    std::vector<Util::TString> names;
    EXPECT_EQ(parser.GetVariableList(names, Util::VLT_EXPAND_ALIASES, Util::NoSymbolTable()),
              Util::PNS_NO_SYMBOL_TABLE);
}

TEST(ParserPrint, ShowsValuesWhenAsked) {
    ztest::TestSymbols symbols = Numbers();
    ExpressionParser parser;
    ASSERT_EQ(parser.Parse("total := a > b && s + 'c' = 'abc'"), Util::PNS_SUCCESS);
    Variant result;
    ASSERT_EQ(parser.Execute(result, symbols), Util::PNS_SUCCESS);
    EXPECT_EQ(std::string(parser.Print(symbols, Util::EPPV_PRINT_VALUES).c_str()),
              "Assign (1)\n"
              "  Variable total (1)\n"
              "  AND (true)\n"
              "    GT (true)\n"
              "      Variable a (10)\n"
              "      Variable b (4)\n"
              "    EQ (true)\n"
              "      Add (\"abc\")\n"
              "        Variable s (\"ab\")\n"
              "        \"c\" (\"c\")\n"
              "      \"abc\" (\"abc\")\n");
}

} // namespace
