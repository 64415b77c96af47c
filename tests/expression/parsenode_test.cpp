#include <gtest/gtest.h>

#include <string>

#include "Util/ExpressionParser.h"
#include "tests/expression/testsymbols.h"

namespace {

TEST(ParseNodeTypes, MatchTheirClassesAndPrecedenceClasses) {
    struct Case {
        Util::ExpressParseNode* node;
        unsigned type;
    } cases[] = {
        {new Util::AddNode, 0x101},
        {new Util::SubNode, 0x102},
        {new Util::MultNode, 0x201},
        {new Util::DivideNode, 0x202},
        {new Util::CompNode(Util::CT_LESS), 0x401},
        {new Util::CompNode(Util::CT_NOT_EQUAL), 0x406},
        {new Util::CompNode(Util::CT_AND), 0x801},
        {new Util::CompNode(Util::CT_OR), 0x1001},
        {new Util::AssignNode, 0x4007},
        {new Util::UMinusNode, 0x4006},
        {new Util::CompNotNode, 0x2001},
        {new Util::FunNode("f"), 0x4004},
        {new Util::NumNode(1.0), 0x4001},
        {new Util::StringNode("s"), 0x4002},
        {new Util::VarNode("v"), 0x4003},
        {new Util::AliasNode("a"), 0x4005},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(static_cast<unsigned>(c.node->GetNodeType()), c.type);
        EXPECT_EQ(c.node->IsLvalue(), c.type == 0x4003);
        delete c.node;
    }
}

TEST(ParseNodeEvaluation, HandBuiltTreesWithMissingChildrenUseNone) {
    Util::AddNode add(new Util::NumNode(2L), nullptr);
    const Util::NodeVariantData& value = add.Calc(Util::NoSymbolTable());
    EXPECT_EQ(value.GetDataType(), Util::NVDT_LONG);
    EXPECT_EQ(static_cast<long>(value), 2);
    EXPECT_EQ(&value, &add.GetValue()); // Calc stores into the node's own value
    Util::FunNode fun("sum");
    fun.AppendLeafNode(nullptr);
    fun.AppendLeafNode(new Util::NumNode(4L));
    ztest::TestSymbols symbols;
    EXPECT_EQ(static_cast<double>(fun.Calc(symbols)), 4.0);
    EXPECT_EQ(fun.GetNumberOfLeafNodes(), 2u);
    EXPECT_EQ(fun.GetLeafNode(2), nullptr);
}

TEST(ParseNodeEvaluation, LongOperandsKeepLongArithmetic) {
    ztest::TestSymbols symbols;
    symbols.variables["seven"] = 7L;
    symbols.variables["zero"] = 0L;
    symbols.variables["twelve"] = "12";
    Util::ExpressionParser parser;
    struct Case {
        const char* text;
        Util::VariantType type;
        const char* value;
    } cases[] = {
        {"seven / zero", Util::UTIL_VT_LONG, "2147483647"},
        {"seven / 2", Util::UTIL_VT_DOUBLE, "3.5"}, // parsed numbers are doubles
        {"twelve + seven", Util::UTIL_VT_LONG, "19"},
        {"1.0 / 0", Util::UTIL_VT_DOUBLE, "1.79769313486e+308"},
    };
    for (const Case& c : cases) {
        ASSERT_EQ(parser.Parse(c.text), Util::PNS_SUCCESS) << c.text;
        Util::Variant result;
        EXPECT_EQ(parser.Execute(result, symbols), Util::PNS_SUCCESS) << c.text;
        EXPECT_EQ(result.GetType(), c.type) << c.text;
        Util::TString text;
        result.GetString(text);
        EXPECT_STREQ(text.c_str(), c.value) << c.text;
    }
}

// A node class from outside the library: the walks must use its own virtual functions.
class TwiceNode : public Util::UnaryNode {
public:
    explicit TwiceNode(Util::ExpressParseNode* child)
        : Util::UnaryNode(static_cast<Util::ParseNodeType>(0x4100), child) {}
    Util::NodeVariantData& Calc(const Util::SymbolLookupValues& symbols) override {
        GetValue() = GetChildNode()->Calc(symbols) * Util::NodeVariantData(2L);
        return GetValue();
    }
    Util::ExpressParseNode* CopyNode() const override {
        return new TwiceNode(GetChildNode()->CopyNode());
    }
    void Print(Util::PrintTheNode& printer, const Util::SymbolLookupValues& symbols) override {
        PrintUnaryNode(printer, symbols, "Twice");
    }
};

TEST(ParseNodeForeign, ClassesFromOutsideAreCalledThroughTheirVirtuals) {
    auto* tree = new Util::AddNode(new TwiceNode(new Util::VarNode("x")), new Util::NumNode(1L));
    ztest::TestSymbols symbols;
    symbols.variables["x"] = 20L;
    Util::ExpressionParserExecute executor(tree);
    Util::Variant result;
    EXPECT_EQ(executor.Execute(result, symbols), Util::PNS_SUCCESS);
    EXPECT_EQ(static_cast<long>(result), 41);
    Util::ExpressParseNode* copy = tree->CopyNode();
    EXPECT_EQ(static_cast<long>(copy->Calc(symbols)), 41);
    delete copy;
    EXPECT_EQ(std::string(executor.Print(symbols, Util::EPPV_NO_VALUES).c_str()),
              "Add\n  Twice\n    Variable x\n  1\n");
    std::vector<Util::TString> names;
    EXPECT_EQ(executor.GetVariableList(names, Util::VLT_VARIABLES, symbols), Util::PNS_SUCCESS);
    ASSERT_EQ(names.size(), 1u);
    EXPECT_STREQ(names[0].c_str(), "x");
    Util::ExpressParseNode base;
    EXPECT_EQ(base.CopyNode(), nullptr);
}

TEST(ParseNodePrint, IndentationIsCappedOnDeepTrees) {
    Util::TString out;
    Util::PrintTheNode printer(&out);
    printer.SetHeight(70);
    printer.PrintLine("x");
    EXPECT_EQ(std::string(out.c_str()), std::string(128, ' ') + "[70] x\n");
}

} // namespace
