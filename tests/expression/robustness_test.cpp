#include <gtest/gtest.h>

#include <string>

#include "Util/ExpressionParser.h"
#include "tests/expression/testsymbols.h"

using Util::ExpressionParser;
using Util::Variant;

namespace {

// Parses, evaluates, copies, prints, lists and destroys; returns the value as text.
std::string Exercise(const std::string& text, Util::ParseNodeStatus expectedParse,
                     Util::ParseNodeStatus expectedExecute, const char* what) {
    ztest::TestSymbols symbols;
    symbols.variables["x"] = 1L;
    ExpressionParser parser;
    EXPECT_EQ(parser.Parse(text.c_str()), expectedParse) << what;
    Variant result;
    EXPECT_EQ(parser.Execute(result, symbols), expectedExecute) << what;
    if (Util::ExpressParseNode* root = parser.GetParseTree()) {
        Util::ExpressParseNode* copy = root->CopyNode();
        EXPECT_NE(copy, nullptr) << what;
        Util::ExpressionParserExecute copied(copy);
        Variant again;
        EXPECT_EQ(copied.Execute(again, symbols), expectedExecute) << what;
        EXPECT_TRUE(again == result.GetData()) << what;
        const Util::TString printed = parser.Print(symbols, Util::EPPV_PRINT_VALUES);
        EXPECT_FALSE(printed.IsEmpty()) << what;
        std::vector<Util::TString> names;
        parser.GetVariableList(names, Util::VLT_EXPAND_ALIASES, symbols);
    }
    Util::TString value;
    result.GetString(value);
    return value.c_str();
}

std::string Repeat(const char* piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

// Deep nesting, long chains and a million characters: each is parsed, evaluated, copied, printed
// and listed without running out of stack.
TEST(ExpressionRobustness, DeepAndLongInputs) {
    const Util::ParseNodeStatus ok = Util::PNS_SUCCESS, noTree = Util::PNS_NO_PARSE_TREE;
    const struct {
        const char* what;
        std::string text;
        Util::ParseNodeStatus parse, execute;
        const char* value; // null when there is no value to check
    } cases[] = {
        {"parens", Repeat("(", 10000) + "x + 1" + Repeat(")", 10000), ok, ok, "2"},
        {"open", Repeat("(", 10000), Util::PNS_SYNTAX_ERROR, noTree, nullptr},
        {"unclosed", Repeat("(", 10000) + "1", Util::PNS_RIGHT_PAREN_MISSING, ok, "1"},
        {"nested", Repeat("x+(", 10000) + "x" + Repeat(")", 10000), ok, ok, "10001"},
        {"minus chain", Repeat("-", 100001) + "x", ok, ok, "-1"},
        {"not chain", Repeat("!", 100000) + "x", ok, ok, "1"},
        {"calls", Repeat("sum(", 10000) + "x" + Repeat(")", 10000), ok, ok, "1"},
        {"sum", "x" + Repeat(" + x*x", 199999), ok, ok, "200000"},
        {"single quote", "'abc", Util::PNS_SYNTAX_ERROR, noTree, nullptr},
        {"double quote", "1 + \"abc", Util::PNS_SYNTAX_ERROR, ok, "1"},
    };
    for (const auto& c : cases) {
        const std::string value = Exercise(c.text, c.parse, c.execute, c.what);
        if (c.value != nullptr) {
            EXPECT_EQ(value, c.value) << c.what;
        }
    }
}

TEST(ExpressionRobustness, DeepHandBuiltTreesDestroyWithoutRecursion) {
    Util::ExpressParseNode* root = new Util::NumNode(1L);
    for (int i = 0; i < 300000; ++i)
        root = (i % 3 == 0)   ? static_cast<Util::ExpressParseNode*>(new Util::UMinusNode(root))
               : (i % 3 == 1) ? static_cast<Util::ExpressParseNode*>(
                                    new Util::SubNode(new Util::NumNode(0L), root))
                              : static_cast<Util::ExpressParseNode*>(
                                    new Util::AddNode(root, new Util::NumNode(0L)));
    EXPECT_EQ(static_cast<long>(root->Calc(Util::NoSymbolTable())), 1);
    delete root;
}

TEST(ExpressionRobustness, EveryByteValueParsesOrGivesAStatus) {
    for (int b = 1; b < 256; ++b) {
        const std::string texts[] = {std::string(1, static_cast<char>(b)),
                                     "x" + std::string(1, static_cast<char>(b)) + "1",
                                     "(" + std::string(1, static_cast<char>(b)) + ")"};
        for (const std::string& text : texts) {
            ztest::TestSymbols symbols;
            ExpressionParser parser;
            const Util::ParseNodeStatus status = parser.Parse(text.c_str());
            Variant result;
            const Util::ParseNodeStatus executed = parser.Execute(result, symbols);
            if (parser.GetParseTree() == nullptr) {
                EXPECT_NE(status, Util::PNS_SUCCESS) << b;
                EXPECT_EQ(executed, Util::PNS_NO_PARSE_TREE) << b;
            }
            EXPECT_GE(parser.GetParseBuffLocation(), 0) << b;
            EXPECT_LE(parser.GetParseBuffLocation(), static_cast<long>(text.size())) << b;
        }
    }
}

TEST(ExpressionRobustness, LongNamesAndStrings) {
    const std::string name(5000, 'n');
    ztest::TestSymbols symbols;
    symbols.variables[name] = 3L;
    ExpressionParser parser;
    ASSERT_EQ(parser.Parse((name + " * 2").c_str()), Util::PNS_SUCCESS);
    Variant result;
    EXPECT_EQ(parser.Execute(result, symbols), Util::PNS_SUCCESS);
    EXPECT_EQ(static_cast<int>(result), 6);
    ASSERT_EQ(parser.Parse(("'" + name + "' - 1").c_str()), Util::PNS_SUCCESS);
    EXPECT_EQ(parser.Execute(result, symbols), Util::PNS_TEXT_OPERATION);
    Util::TString text;
    result.GetString(text);
    EXPECT_EQ(std::string(text.c_str()), name + " SUBTRACT 1");
}

} // namespace
