#include <atomic>

#include "Util/ExpressionParser.h"

namespace Util {

// The tree shared by the parsers that refer to it.
class ParseTreeHolder {
public:
    explicit ParseTreeHolder(ExpressParseNode* root) : m_pRoot(root) {}
    ~ParseTreeHolder() { delete m_pRoot; }

    ExpressParseNode* m_pRoot;
    std::atomic<long> m_references{1};
};

namespace {

ParseTreeHolder* Acquire(ParseTreeHolder* holder) {
    if (holder != nullptr)
        holder->m_references.fetch_add(1, std::memory_order_relaxed);
    return holder;
}

void Release(ParseTreeHolder* holder) {
    if (holder != nullptr && holder->m_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete holder;
}

} // namespace

ExpressionParserBase::ExpressionParserBase()
    : m_pTree(nullptr), m_status(PNS_SUCCESS), m_parseBuffLocation(0) {}

ExpressionParserBase::ExpressionParserBase(const ExpressionParserBase& other)
    : m_pTree(Acquire(other.m_pTree)), m_status(other.m_status),
      m_parseBuffLocation(other.m_parseBuffLocation) {}

ExpressionParserBase::~ExpressionParserBase() {
    Release(m_pTree);
}

void ExpressionParserBase::ShareTreeOf(const ExpressionParserBase& other) {
    if (other.m_pTree == m_pTree)
        return;
    ParseTreeHolder* tree = Acquire(other.m_pTree);
    Release(m_pTree);
    m_pTree = tree;
}

ExpressParseNode* ExpressionParserBase::SetExpressionNode(ExpressParseNode* root) {
    ExpressParseNode* old = nullptr;
    if (m_pTree != nullptr) {
        if (m_pTree->m_references.load(std::memory_order_acquire) == 1) {
            old = m_pTree->m_pRoot;
            m_pTree->m_pRoot = nullptr;
        }
        Release(m_pTree);
        m_pTree = nullptr;
    }
    if (root != nullptr)
        m_pTree = new ParseTreeHolder(root);
    return old;
}

ExpressParseNode* ExpressionParserBase::GetParseTree() const {
    return m_pTree != nullptr ? m_pTree->m_pRoot : nullptr;
}

void ExpressionParserBase::DeleteParseTree(ExpressParseNode* node) {
    if (node == nullptr)
        return;
    if (m_pTree != nullptr && m_pTree->m_pRoot == node) {
        Release(m_pTree);
        m_pTree = nullptr;
        return;
    }
    delete node;
}

void ExpressionParserBase::SetParseBuffLocation(long location) {
    m_parseBuffLocation = location;
}

long ExpressionParserBase::GetParseBuffLocation() const {
    return m_parseBuffLocation;
}

TString ExpressionParserBase::Print(const SymbolLookupValues& symbols,
                                    ExpressionParserPrintValues printValues) {
    TString text;
    ExpressParseNode* root = GetParseTree();
    if (root == nullptr)
        return text;
    PrintTheNode printer(&text);
    printer.SetPrintValues(printValues == EPPV_PRINT_VALUES);
    root->Print(printer, symbols);
    return text;
}

// ---- execution -------------------------------------------------------------------------------

ExpressionParserExecute::ExpressionParserExecute() = default;

ExpressionParserExecute::ExpressionParserExecute(ExpressParseNode* root) {
    SetExpressionNode(root);
}

ExpressionParserExecute::ExpressionParserExecute(const ExpressionParserBase& other)
    : ExpressionParserBase(other) {}

ExpressionParserExecute::ExpressionParserExecute(const ExpressionParserExecute& other)
    : ExpressionParserBase(other) {}

ExpressionParserExecute::~ExpressionParserExecute() = default;

ParseNodeStatus ExpressionParserExecute::Execute(Variant& result,
                                                 const SymbolLookupValues& symbols) {
    m_status = PNS_SUCCESS;
    ExpressParseNode* root = GetParseTree();
    if (root == nullptr) {
        result.Clear();
        m_status = PNS_NO_PARSE_TREE;
        return m_status;
    }
    const NodeVariantData& value = root->Calc(symbols);
    m_status = value.GetErrorStatus();
    result = static_cast<Variant>(value);
    // A text the result cannot hold (no memory for its copy) leaves it empty.
    if (value.GetDataType() == NVDT_STRING && result.GetData().vt == UTIL_VT_EMPTY)
        m_status = PNS_OUT_OF_MEMORY;
    return m_status;
}

ParseNodeStatus ExpressionParserExecute::Execute(Variant& result,
                                                 const SymbolLookupValues* symbols) {
    return Execute(result, symbols != nullptr ? *symbols : NoSymbolTable());
}

ParseNodeStatus ExpressionParserExecute::GetVariableList(std::vector<TString>& names,
                                                         VariableListTypes types,
                                                         const SymbolLookupValues& symbols) {
    ExpressParseNode* root = GetParseTree();
    if (root == nullptr)
        return PNS_NO_PARSE_TREE;
    return root->GetVariableList(names, types, symbols);
}

ExpressionParser::ExpressionParser(Tokenizer* tokenizer) : ExpressionParserCompile(tokenizer) {}

ExpressionParser::~ExpressionParser() = default;

} // namespace Util
