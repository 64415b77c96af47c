// The parse tree of an expression: Util::ExpressParseNode and its node classes, the caller's
// symbol table (Util::SymbolLookupValues) and the print context (Util::PrintTheNode).
//
// Contract: a node owns its children and computes its value (Calc) into the NodeVariantData it
// owns, returning a reference to it; failures travel as statuses inside the values, never as
// exceptions. CopyNode, GetVariableList, Print and the destructors walk trees with explicit
// stacks, and Calc recurses at most 48 levels before continuing with explicit stacks, so trees of
// any depth (hundreds of thousands of levels) are safe; nodes of classes
// derived outside the library are handled through their own virtual functions. A node with a
// missing child (null) treats it as a value of type none. A tree is used by one thread at a time
// (evaluation writes the values held in its nodes).
//
// Names a node holds (variables, aliases, functions) are kept inline up to 99 characters and on
// the heap beyond. The symbol table returned by NoSymbolTable() stands for "no table": variables,
// aliases and functions then evaluate to "Undefined Symbol table <name> " with
// PNS_NO_SYMBOL_TABLE. An alias whose tree refers back to itself evaluates to
// "Recursive Alias <name> " with PNS_RECURSIVE_ALIAS instead of looping.
//
// Printing writes one line per node, children after their parent and indented two spaces per
// level below the starting height (levels beyond 64 are written as "[level] " after 64 levels of
// indentation). Labels: Add, Sub, Mult, Divide, LT, LTE, GT, GTE, EQ, NEQ, AND, OR, Assign,
// UnaryMinus, CompNegate, Function <name>, Variable <name>, $(<name>), numbers as "%g" (longs in
// decimal), string constants in double quotes, Unknown for a node of another class. With values
// printed, " (value)" follows the label: text in double quotes, "true"/"false" for comparisons
// and negations, "undefined" for a value without type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Util/Export.h"
#include "Util/ParseNodeValue.h"
#include "Util/TString.h"
#include "Util/Variant.h"

namespace Util {

class ExpressParseNode;
class ParseTreeEngine;

enum ParseNodeType {
    PNT_NONE = 0,
    PNT_ADD = 0x101,
    PNT_SUB = 0x102,
    PNT_MULT = 0x201,
    PNT_DIVIDE = 0x202,
    PNT_COMP_LESS = 0x401,
    PNT_COMP_LESS_EQUAL = 0x402,
    PNT_COMP_GREATER = 0x403,
    PNT_COMP_GREATER_EQUAL = 0x404,
    PNT_COMP_EQUAL = 0x405,
    PNT_COMP_NOT_EQUAL = 0x406,
    PNT_COMP_AND = 0x801,
    PNT_COMP_OR = 0x1001,
    PNT_COMP_NOT = 0x2001,
    PNT_NUM = 0x4001,
    PNT_STRING = 0x4002,
    PNT_VAR = 0x4003,
    PNT_FUN = 0x4004,
    PNT_ALIAS = 0x4005,
    PNT_UMINUS = 0x4006,
    PNT_ASSIGN = 0x4007,

    PNT_PARENTHESIS_BIT = 0x80, // the subtree was written in parentheses
    PNT_CLASS_MASK = 0xFF00     // the precedence class
};

enum CompareType {
    CT_LESS = 1,
    CT_LESS_EQUAL = 2,
    CT_GREATER = 3,
    CT_GREATER_EQUAL = 4,
    CT_EQUAL = 5,
    CT_NOT_EQUAL = 6,
    CT_AND = 7,
    CT_OR = 8
};

// Flags for GetVariableList. Variable names are always listed.
enum VariableListTypes {
    VLT_VARIABLES = 0x1,
    VLT_FUNCTIONS = 0x2,     // also list function names
    VLT_ALIASES = 0x4,       // also list alias names
    VLT_EXPAND_ALIASES = 0x8 // look each alias up and walk its tree with the same flags
};

// The caller's symbol table. The base versions find nothing and return false.
class ZTUTIL_API SymbolLookupValues {
public:
    virtual ~SymbolLookupValues();
    virtual bool GetSymbolValue(const char* name, Variant& value) const;
    virtual bool SetSymbolValue(const char* name, Variant value) const;
    // On false, status says why: PNS_WRONG_PARAMETER_COUNT for a wrong number of arguments,
    // anything else for an unknown function.
    virtual bool GetFunctionValue(const char* name, ParseNodeStatus& status, Variant& result,
                                  const std::vector<Variant>& arguments) const;
    // tree stays owned by the table.
    virtual bool GetAliasValue(const char* name, ExpressParseNode** tree) const;
};

// Stands for "no symbol table given".
ZTUTIL_API const SymbolLookupValues& NoSymbolTable();

class ZTUTIL_API PrintTheNode {
public:
    PrintTheNode() = default;
    explicit PrintTheNode(TString* buffer) : m_pBuffer(buffer) {}

    void SetBuffer(TString* buffer) { m_pBuffer = buffer; }
    TString* GetBuffer() const { return m_pBuffer; }
    void SetHeight(int height) { m_height = height; }
    int GetHeight() const { return m_height; }
    void SetPrintValues(bool printValues) { m_printValues = printValues; }
    bool GetPrintValues() const { return m_printValues; }

    // Writes text as one line at the current height.
    void PrintLine(const char* text);

private:
    TString* m_pBuffer = nullptr;
    int m_height = 0;
    bool m_printValues = false;
};

// A name kept inline up to 99 characters, on the heap beyond.
class ZTUTIL_API NodeName {
public:
    NodeName() { m_inline[0] = '\0'; }
    NodeName(const char* name, std::size_t length);
    NodeName(const NodeName& other);
    NodeName& operator=(const NodeName& other);
    ~NodeName();
    const char* c_str() const { return m_pText; }
    std::size_t GetLength() const { return m_length; }

private:
    void Set(const char* name, std::size_t length);
    char* m_pText = m_inline;
    std::size_t m_length = 0;
    char m_inline[100];
};

class ZTUTIL_API ExpressParseNode {
public:
    explicit ExpressParseNode(ParseNodeType type = PNT_NONE);
    virtual ~ExpressParseNode();

    virtual NodeVariantData& Calc(const SymbolLookupValues& symbols);
    // A deep copy; the base class cannot copy itself and returns null.
    virtual ExpressParseNode* CopyNode() const;
    virtual ParseNodeStatus GetVariableList(std::vector<TString>& names, VariableListTypes types,
                                            const SymbolLookupValues& symbols);
    virtual void Print(PrintTheNode& printer, const SymbolLookupValues& symbols);
    virtual bool IsLvalue() const;
    virtual void Assign(const NodeVariantData& value, const SymbolLookupValues& symbols);

    // The node type, with PNT_PARENTHESIS_BIT when the subtree was parenthesised.
    ParseNodeType GetNodeType() const { return static_cast<ParseNodeType>(m_nodeType); }
    void SetNodeType(ParseNodeType type) {
        m_nodeType = type;
        m_kindCache = 0;
    }
    void SetParenthesized(bool on);
    void SetInputBuffLocation(long location) { m_inputBuffLocation = location; }
    long GetInputBuffLocation() const { return m_inputBuffLocation; }
    NodeVariantData& GetValue() { return m_value; }
    const NodeVariantData& GetValue() const { return m_value; }

protected:
    friend class ParseTreeEngine;
    enum Shape : std::uint8_t { kLeaf, kUnary, kBinary, kMulti };

    ExpressParseNode(const ExpressParseNode& other);
    ExpressParseNode& operator=(const ExpressParseNode&) = delete;

    std::uint32_t m_nodeType;
    long m_inputBuffLocation = 0;
    Shape m_shape = kLeaf;
    mutable std::uint8_t m_kindCache = 0; // what the tree walks found this node to be, plus one
    NodeVariantData m_value;
};

class ZTUTIL_API BinNode : public ExpressParseNode {
public:
    BinNode(ParseNodeType type, ExpressParseNode* left = nullptr,
            ExpressParseNode* right = nullptr);
    ~BinNode() override;

    void Print(PrintTheNode& printer, const SymbolLookupValues& symbols) override;
    // Replace a child; the old one is returned to the caller, who then owns it.
    virtual ExpressParseNode* SetLeftLeafNode(ExpressParseNode* node);
    virtual ExpressParseNode* SetRightLeafNode(ExpressParseNode* node);
    virtual ExpressParseNode* GetLeftLeafNode() const;
    virtual ExpressParseNode* GetRightLeafNode() const;
    virtual void PrintBinaryNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                                 const char* label);

protected:
    friend class ParseTreeEngine;
    BinNode(const BinNode& other); // copies the node without its children

    ExpressParseNode* m_pLeft;
    ExpressParseNode* m_pRight;
};

class ZTUTIL_API AddNode : public BinNode {
public:
    AddNode(ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr)
        : BinNode(PNT_ADD, left, right) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API SubNode : public BinNode {
public:
    SubNode(ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr)
        : BinNode(PNT_SUB, left, right) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API MultNode : public BinNode {
public:
    MultNode(ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr)
        : BinNode(PNT_MULT, left, right) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API DivideNode : public BinNode {
public:
    DivideNode(ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr)
        : BinNode(PNT_DIVIDE, left, right) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API CompNode : public BinNode {
public:
    CompNode(CompareType kind, ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr);
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
    CompareType GetCompareType() const { return m_compareType; }

    static ParseNodeType NodeTypeOf(CompareType kind);

private:
    CompareType m_compareType;
};

// left must be a VarNode (or another node whose IsLvalue is true).
class ZTUTIL_API AssignNode : public BinNode {
public:
    AssignNode(ExpressParseNode* left = nullptr, ExpressParseNode* right = nullptr)
        : BinNode(PNT_ASSIGN, left, right) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API UnaryNode : public ExpressParseNode {
public:
    UnaryNode(ParseNodeType type, ExpressParseNode* child = nullptr);
    ~UnaryNode() override;
    void Print(PrintTheNode& printer, const SymbolLookupValues& symbols) override;
    virtual void PrintUnaryNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                                const char* label);
    ExpressParseNode* GetChildNode() const { return m_pChild; }
    ExpressParseNode* SetChildNode(ExpressParseNode* node); // returns the old child

protected:
    friend class ParseTreeEngine;
    UnaryNode(const UnaryNode& other); // without the child

    ExpressParseNode* m_pChild;
};

class ZTUTIL_API UMinusNode : public UnaryNode {
public:
    explicit UMinusNode(ExpressParseNode* child = nullptr) : UnaryNode(PNT_UMINUS, child) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API CompNotNode : public UnaryNode {
public:
    explicit CompNotNode(ExpressParseNode* child = nullptr) : UnaryNode(PNT_COMP_NOT, child) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API MultiValueNode : public ExpressParseNode {
public:
    explicit MultiValueNode(ParseNodeType type);
    ~MultiValueNode() override;
    void Print(PrintTheNode& printer, const SymbolLookupValues& symbols) override;
    virtual void AppendLeafNode(ExpressParseNode* node); // takes ownership
    virtual std::size_t GetNumberOfLeafNodes() const;
    virtual ExpressParseNode* GetLeafNode(std::size_t index) const; // null when out of range
    virtual void PrintMultiValueNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                                     const char* label);

protected:
    friend class ParseTreeEngine;
    MultiValueNode(const MultiValueNode& other); // without the children

    std::vector<ExpressParseNode*> m_children;
};

class ZTUTIL_API FunNode : public MultiValueNode {
public:
    explicit FunNode(const char* name);
    FunNode(const char* name, std::size_t length);
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
    const char* GetFunctionName() const { return m_name.c_str(); }

private:
    friend class ParseTreeEngine;
    NodeName m_name;
};

class ZTUTIL_API NumNode : public ExpressParseNode {
public:
    explicit NumNode(double value);
    explicit NumNode(long value);
    explicit NumNode(int value) : NumNode(static_cast<long>(value)) {}
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API StringNode : public ExpressParseNode {
public:
    explicit StringNode(const char* text);
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
};

class ZTUTIL_API VarNode : public ExpressParseNode {
public:
    explicit VarNode(const char* name);
    VarNode(const char* name, std::size_t length);
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
    bool IsLvalue() const override;
    // Stores value in the table. A failed store leaves no error anywhere (intended).
    void Assign(const NodeVariantData& value, const SymbolLookupValues& symbols) override;
    const char* GetSymbolName() const { return m_name.c_str(); }

private:
    friend class ParseTreeEngine;
    NodeName m_name;
};

class ZTUTIL_API AliasNode : public ExpressParseNode {
public:
    explicit AliasNode(const char* name);
    AliasNode(const char* name, std::size_t length);
    NodeVariantData& Calc(const SymbolLookupValues& symbols) override;
    ExpressParseNode* CopyNode() const override;
    const char* GetAliasName() const { return m_name.c_str(); }

private:
    friend class ParseTreeEngine;
    NodeName m_name;
};

} // namespace Util
