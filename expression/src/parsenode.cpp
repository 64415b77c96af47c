#include "Util/ParseNode.h"

#include <cstring>

#include "expression/src/parsetreeengine.h"

namespace Util {

// ---- symbol table --------------------------------------------------------------------------

SymbolLookupValues::~SymbolLookupValues() = default;

bool SymbolLookupValues::GetSymbolValue(const char*, Variant&) const {
    return false;
}

bool SymbolLookupValues::SetSymbolValue(const char*, Variant) const {
    return false;
}

bool SymbolLookupValues::GetFunctionValue(const char*, ParseNodeStatus&, Variant&,
                                          const std::vector<Variant>&) const {
    return false;
}

bool SymbolLookupValues::GetAliasValue(const char*, ExpressParseNode**) const {
    return false;
}

const SymbolLookupValues& NoSymbolTable() {
    static const SymbolLookupValues none;
    return none;
}

// ---- names -----------------------------------------------------------------------------------

NodeName::NodeName(const char* name, std::size_t length) {
    m_inline[0] = '\0';
    Set(name, length);
}

NodeName::NodeName(const NodeName& other) {
    m_inline[0] = '\0';
    Set(other.m_pText, other.m_length);
}

NodeName& NodeName::operator=(const NodeName& other) {
    if (this != &other) {
        NodeName copy(other);
        if (m_pText != m_inline)
            delete[] m_pText;
        m_pText = m_inline;
        Set(copy.m_pText, copy.m_length);
    }
    return *this;
}

NodeName::~NodeName() {
    if (m_pText != m_inline)
        delete[] m_pText;
}

void NodeName::Set(const char* name, std::size_t length) {
    if (name == nullptr)
        length = 0;
    if (length + 1 > sizeof m_inline)
        m_pText = new char[length + 1];
    if (length != 0)
        std::memcpy(m_pText, name, length);
    m_pText[length] = '\0';
    m_length = length;
}

// ---- print context ---------------------------------------------------------------------------

void PrintTheNode::PrintLine(const char* text) {
    if (m_pBuffer == nullptr)
        return;
    // Deep trees would otherwise print quadratic amounts of indentation.
    const int kMaxIndent = 64;
    const int height = m_height < 0 ? 0 : m_height;
    const int indent = height > kMaxIndent ? kMaxIndent : height;
    std::string line(static_cast<std::size_t>(indent) * 2, ' ');
    if (height > kMaxIndent) {
        line += '[';
        line += std::to_string(height);
        line += "] ";
    }
    line += text;
    line += '\n';
    *m_pBuffer += line.c_str();
}

// ---- base node -------------------------------------------------------------------------------

ExpressParseNode::ExpressParseNode(ParseNodeType type) : m_nodeType(type) {}

ExpressParseNode::ExpressParseNode(const ExpressParseNode& other)
    : m_nodeType(other.m_nodeType), m_inputBuffLocation(other.m_inputBuffLocation),
      m_shape(other.m_shape), m_value(other.m_value) {}

ExpressParseNode::~ExpressParseNode() = default;

NodeVariantData& ExpressParseNode::Calc(const SymbolLookupValues&) {
    return m_value;
}

ExpressParseNode* ExpressParseNode::CopyNode() const {
    const ParseTreeEngine::Kind kind = ParseTreeEngine::ClassifyRoot(this);
    return kind == ParseTreeEngine::kForeign ? nullptr : ParseTreeEngine::Copy(this, kind);
}

ParseNodeStatus ExpressParseNode::GetVariableList(std::vector<TString>& names,
                                                  VariableListTypes types,
                                                  const SymbolLookupValues& symbols) {
    return ParseTreeEngine::ListVariables(this, names, types, symbols);
}

void ExpressParseNode::Print(PrintTheNode& printer, const SymbolLookupValues& symbols) {
    ParseTreeEngine::Print(this, printer, symbols, nullptr);
}

bool ExpressParseNode::IsLvalue() const {
    return false;
}

void ExpressParseNode::Assign(const NodeVariantData&, const SymbolLookupValues&) {}

void ExpressParseNode::SetParenthesized(bool on) {
    if (on)
        m_nodeType |= PNT_PARENTHESIS_BIT;
    else
        m_nodeType &= ~static_cast<std::uint32_t>(PNT_PARENTHESIS_BIT);
}

// ---- binary nodes ----------------------------------------------------------------------------

BinNode::BinNode(ParseNodeType type, ExpressParseNode* left, ExpressParseNode* right)
    : ExpressParseNode(type), m_pLeft(left), m_pRight(right) {
    m_shape = kBinary;
}

BinNode::BinNode(const BinNode& other)
    : ExpressParseNode(other), m_pLeft(nullptr), m_pRight(nullptr) {}

BinNode::~BinNode() {
    ExpressParseNode* children[2] = {m_pLeft, m_pRight};
    m_pLeft = m_pRight = nullptr;
    ParseTreeEngine::DeleteSubtrees(children, 2);
}

void BinNode::Print(PrintTheNode& printer, const SymbolLookupValues& symbols) {
    ParseTreeEngine::Print(this, printer, symbols, nullptr);
}

ExpressParseNode* BinNode::SetLeftLeafNode(ExpressParseNode* node) {
    ExpressParseNode* old = m_pLeft;
    m_pLeft = node;
    return old;
}

ExpressParseNode* BinNode::SetRightLeafNode(ExpressParseNode* node) {
    ExpressParseNode* old = m_pRight;
    m_pRight = node;
    return old;
}

ExpressParseNode* BinNode::GetLeftLeafNode() const {
    return m_pLeft;
}
ExpressParseNode* BinNode::GetRightLeafNode() const {
    return m_pRight;
}

void BinNode::PrintBinaryNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                              const char* label) {
    ParseTreeEngine::Print(this, printer, symbols, label);
}

#define ZT_NODE_METHODS(Class, KindName)                                                           \
    NodeVariantData& Class::Calc(const SymbolLookupValues& symbols) {                              \
        return ParseTreeEngine::Evaluate(this, ParseTreeEngine::KindName, symbols);                \
    }                                                                                              \
    ExpressParseNode* Class::CopyNode() const {                                                    \
        return ParseTreeEngine::Copy(this, ParseTreeEngine::KindName);                             \
    }

ZT_NODE_METHODS(AddNode, kAdd)
ZT_NODE_METHODS(SubNode, kSub)
ZT_NODE_METHODS(MultNode, kMult)
ZT_NODE_METHODS(DivideNode, kDivide)
ZT_NODE_METHODS(AssignNode, kAssign)
ZT_NODE_METHODS(UMinusNode, kUMinus)
ZT_NODE_METHODS(CompNotNode, kNot)
ZT_NODE_METHODS(FunNode, kFun)
ZT_NODE_METHODS(NumNode, kNum)
ZT_NODE_METHODS(StringNode, kString)
ZT_NODE_METHODS(VarNode, kVar)
ZT_NODE_METHODS(AliasNode, kAlias)
#undef ZT_NODE_METHODS

CompNode::CompNode(CompareType kind, ExpressParseNode* left, ExpressParseNode* right)
    : BinNode(NodeTypeOf(kind), left, right), m_compareType(kind) {}

ParseNodeType CompNode::NodeTypeOf(CompareType kind) {
    switch (kind) {
    case CT_AND:
        return PNT_COMP_AND;
    case CT_OR:
        return PNT_COMP_OR;
    default:
        return static_cast<ParseNodeType>(0x400 + static_cast<int>(kind));
    }
}

NodeVariantData& CompNode::Calc(const SymbolLookupValues& symbols) {
    const ParseTreeEngine::Kind kind = m_compareType == CT_AND  ? ParseTreeEngine::kAnd
                                       : m_compareType == CT_OR ? ParseTreeEngine::kOr
                                                                : ParseTreeEngine::kCompare;
    return ParseTreeEngine::Evaluate(this, kind, symbols);
}

ExpressParseNode* CompNode::CopyNode() const {
    return ParseTreeEngine::Copy(this, ParseTreeEngine::ClassifyRoot(this));
}

// ---- unary nodes -----------------------------------------------------------------------------

UnaryNode::UnaryNode(ParseNodeType type, ExpressParseNode* child)
    : ExpressParseNode(type), m_pChild(child) {
    m_shape = kUnary;
}

UnaryNode::UnaryNode(const UnaryNode& other) : ExpressParseNode(other), m_pChild(nullptr) {}

UnaryNode::~UnaryNode() {
    ExpressParseNode* child = m_pChild;
    m_pChild = nullptr;
    ParseTreeEngine::DeleteSubtrees(&child, 1);
}

void UnaryNode::Print(PrintTheNode& printer, const SymbolLookupValues& symbols) {
    ParseTreeEngine::Print(this, printer, symbols, nullptr);
}

void UnaryNode::PrintUnaryNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                               const char* label) {
    ParseTreeEngine::Print(this, printer, symbols, label);
}

ExpressParseNode* UnaryNode::SetChildNode(ExpressParseNode* node) {
    ExpressParseNode* old = m_pChild;
    m_pChild = node;
    return old;
}

// ---- nodes with a list of children -----------------------------------------------------------

MultiValueNode::MultiValueNode(ParseNodeType type) : ExpressParseNode(type) {
    m_shape = kMulti;
}

MultiValueNode::MultiValueNode(const MultiValueNode& other) : ExpressParseNode(other) {}

MultiValueNode::~MultiValueNode() {
    std::vector<ExpressParseNode*> children;
    children.swap(m_children);
    ParseTreeEngine::DeleteSubtrees(children.data(), children.size());
}

void MultiValueNode::Print(PrintTheNode& printer, const SymbolLookupValues& symbols) {
    ParseTreeEngine::Print(this, printer, symbols, nullptr);
}

void MultiValueNode::AppendLeafNode(ExpressParseNode* node) {
    m_children.push_back(node);
}

std::size_t MultiValueNode::GetNumberOfLeafNodes() const {
    return m_children.size();
}

ExpressParseNode* MultiValueNode::GetLeafNode(std::size_t index) const {
    return index < m_children.size() ? m_children[index] : nullptr;
}

void MultiValueNode::PrintMultiValueNode(PrintTheNode& printer, const SymbolLookupValues& symbols,
                                         const char* label) {
    ParseTreeEngine::Print(this, printer, symbols, label);
}

FunNode::FunNode(const char* name)
    : MultiValueNode(PNT_FUN), m_name(name, name != nullptr ? std::strlen(name) : 0) {}

FunNode::FunNode(const char* name, std::size_t length)
    : MultiValueNode(PNT_FUN), m_name(name, length) {}

// ---- leaves ----------------------------------------------------------------------------------

NumNode::NumNode(double value) : ExpressParseNode(PNT_NUM) {
    m_value = value;
}

NumNode::NumNode(long value) : ExpressParseNode(PNT_NUM) {
    m_value = value;
}

StringNode::StringNode(const char* text) : ExpressParseNode(PNT_STRING) {
    m_value = text;
}

VarNode::VarNode(const char* name)
    : ExpressParseNode(PNT_VAR), m_name(name, name != nullptr ? std::strlen(name) : 0) {}

VarNode::VarNode(const char* name, std::size_t length)
    : ExpressParseNode(PNT_VAR), m_name(name, length) {}

bool VarNode::IsLvalue() const {
    return true;
}

void VarNode::Assign(const NodeVariantData& value, const SymbolLookupValues& symbols) {
    // A failed store is deliberately silent: no node takes an error for it.
    if (&symbols == &NoSymbolTable())
        return;
    symbols.SetSymbolValue(m_name.c_str(), static_cast<Variant>(value));
}

AliasNode::AliasNode(const char* name)
    : ExpressParseNode(PNT_ALIAS), m_name(name, name != nullptr ? std::strlen(name) : 0) {}

AliasNode::AliasNode(const char* name, std::size_t length)
    : ExpressParseNode(PNT_ALIAS), m_name(name, length) {}

} // namespace Util
