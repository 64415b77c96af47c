#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "Util/ExpressionParser.h"
#include "Util/MemoryManager.h"

namespace Util {
namespace {

// Binding strength of the binary operators, loosest first. Assignment sits below all of them.
enum Precedence : unsigned char {
    kPrecAssign = 0,
    kPrecOr = 1,
    kPrecAnd = 2,
    kPrecCompare = 3,
    kPrecAdd = 4,
    kPrecMult = 5
};

struct BinaryOperator {
    Precedence precedence;
    ParseNodeType type;      // for + - * /
    CompareType compareType; // for the comparisons, And and Or (0 otherwise)
};

bool LookUpBinary(Tokenizer::EToken token, BinaryOperator& op) {
    switch (token) {
    case Tokenizer::Plus:
        op = {kPrecAdd, PNT_ADD, CompareType(0)};
        return true;
    case Tokenizer::Minus:
        op = {kPrecAdd, PNT_SUB, CompareType(0)};
        return true;
    case Tokenizer::Times:
        op = {kPrecMult, PNT_MULT, CompareType(0)};
        return true;
    case Tokenizer::Divide:
        op = {kPrecMult, PNT_DIVIDE, CompareType(0)};
        return true;
    case Tokenizer::Less:
        op = {kPrecCompare, PNT_NONE, CT_LESS};
        return true;
    case Tokenizer::LessEqual:
        op = {kPrecCompare, PNT_NONE, CT_LESS_EQUAL};
        return true;
    case Tokenizer::Greater:
        op = {kPrecCompare, PNT_NONE, CT_GREATER};
        return true;
    case Tokenizer::GreaterEqual:
        op = {kPrecCompare, PNT_NONE, CT_GREATER_EQUAL};
        return true;
    case Tokenizer::Equal:
        op = {kPrecCompare, PNT_NONE, CT_EQUAL};
        return true;
    case Tokenizer::NotEqual:
        op = {kPrecCompare, PNT_NONE, CT_NOT_EQUAL};
        return true;
    case Tokenizer::AndOp:
        op = {kPrecAnd, PNT_NONE, CT_AND};
        return true;
    case Tokenizer::OrOp:
        op = {kPrecOr, PNT_NONE, CT_OR};
        return true;
    default:
        return false;
    }
}

using NodePtr = std::unique_ptr<ExpressParseNode>;

// Every node of the parser is made here, so that an allocation failure (real or injected by the
// test hook) is one std::bad_alloc, which Parse turns into PNS_OUT_OF_MEMORY.
template <typename T, typename... Args> std::unique_ptr<T> MakeNode(Args&&... args) {
    if (Detail::ShouldFailAllocation())
        throw std::bad_alloc();
    return std::unique_ptr<T>(new T(std::forward<Args>(args)...));
}

} // namespace

// An operator-precedence parser with explicit stacks: operands waiting for their operator, and
// operators, prefixes, parentheses and open function calls waiting for their operands. It builds
// the same trees as the grammar's recursive rules with their left-associativity rotation, at any
// depth of nesting. The operand stack owns its nodes, and open calls are freed with the builder,
// so a parse that fails half-way (out of memory) leaks nothing.
class ExpressionParserCompile::Builder {
public:
    explicit Builder(Tokenizer& tokenizer) : m_tokenizer(tokenizer) {}
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;
    ~Builder() { DiscardAll(); }

    // The root (or null) and the status; location is where the first error was seen.
    ExpressParseNode* Run(ParseNodeStatus& status, long& location);

private:
    enum PendingKind : unsigned char {
        kBinary,
        kAssign,        // ":=" after a variable
        kAssignDropped, // ":=" after something else: only the right side is kept
        kMinusPrefix,
        kNotPrefix,
        kParen,
        kCall
    };
    struct Pending {
        PendingKind kind;
        BinaryOperator op;
        long location;
        FunNode* call; // kCall: the node collecting the arguments
        // Operands on the stack when this entry was pushed: the entry has its (right) operand
        // once the stack is taller than this.
        std::size_t operandsBefore;
    };
    void Push(PendingKind kind, long location, BinaryOperator op = {}, FunNode* call = nullptr) {
        m_pending.push_back({kind, op, location, call, m_operands.size()});
    }

    Tokenizer::EToken Next() { return m_token = m_tokenizer.GetNextToken(); }
    void Record(ParseNodeStatus status) {
        if (m_status == PNS_SUCCESS) {
            m_status = status;
            m_location = m_tokenizer.GetInputLineLocation();
        }
    }
    void Fail(ParseNodeStatus status) { Record(status); }
    // After a syntax error: builds what the stacks hold into one partial tree, dropping the
    // operators that never got their operand.
    ExpressParseNode* Salvage();
    void DiscardAll();
    void PushOperand(NodePtr node, long location) {
        node->SetInputBuffLocation(location);
        m_operands.push_back(std::move(node));
    }
    NodePtr PopOperand() {
        NodePtr node = std::move(m_operands.back());
        m_operands.pop_back();
        return node;
    }
    const std::string& CopySymbolName();
    const std::string& CopyStringLiteral();
    void ApplyPrefixes();
    // Replaces the operand on top of the stack by the prefix applied to it.
    void BuildPrefix(const Pending& prefix);
    // Replaces the two operands on top of the stack by the binary operator or assignment.
    void BuildBinary(const Pending& op);
    // Builds pending binary operators at least as strong as floor; with assignments, also the
    // assignments, so that everything down to the nearest parenthesis or call is complete.
    void Reduce(unsigned char floor, bool assignments);
    bool ExpectOperand(); // false on a syntax error (already recorded)
    bool AfterOperand(bool& done);

    Tokenizer& m_tokenizer;
    Tokenizer::EToken m_token = Tokenizer::EndOfInput;
    ParseNodeStatus m_status = PNS_SUCCESS;
    long m_location = 0;
    std::vector<NodePtr> m_operands;
    std::vector<Pending> m_pending;
    std::string m_text;
    bool m_expectOperand = true;
};

void ExpressionParserCompile::Builder::DiscardAll() {
    m_operands.clear();
    for (const Pending& pending : m_pending) {
        if (pending.kind == kCall)
            delete pending.call;
    }
    m_pending.clear();
}

const std::string& ExpressionParserCompile::Builder::CopySymbolName() {
    m_text.assign(m_tokenizer.GetSymbolLength() + 10, '\0');
    m_tokenizer.GetSymbolName(&m_text[0], m_text.size());
    m_text.resize(m_tokenizer.GetSymbolLength());
    return m_text;
}

const std::string& ExpressionParserCompile::Builder::CopyStringLiteral() {
    m_text.assign(m_tokenizer.GetStringLength() + 10, '\0');
    m_tokenizer.GetString(&m_text[0], m_text.size());
    m_text.resize(m_tokenizer.GetStringLength());
    return m_text;
}

void ExpressionParserCompile::Builder::BuildPrefix(const Pending& prefix) {
    NodePtr operand = PopOperand();
    NodePtr node;
    if (prefix.kind == kMinusPrefix)
        node = MakeNode<UMinusNode>(operand.get());
    else
        node = MakeNode<CompNotNode>(operand.get());
    operand.release(); // now the prefix node's child
    PushOperand(std::move(node), prefix.location);
}

void ExpressionParserCompile::Builder::BuildBinary(const Pending& op) {
    NodePtr right = PopOperand();
    NodePtr left = PopOperand();
    NodePtr node;
    if (op.kind == kAssign) {
        node = MakeNode<AssignNode>(left.get(), right.get());
    } else {
        switch (op.op.type) {
        case PNT_ADD:
            node = MakeNode<AddNode>(left.get(), right.get());
            break;
        case PNT_SUB:
            node = MakeNode<SubNode>(left.get(), right.get());
            break;
        case PNT_MULT:
            node = MakeNode<MultNode>(left.get(), right.get());
            break;
        case PNT_DIVIDE:
            node = MakeNode<DivideNode>(left.get(), right.get());
            break;
        default:
            node = MakeNode<CompNode>(op.op.compareType, left.get(), right.get());
            break;
        }
    }
    const long location = left->GetInputBuffLocation();
    left.release(); // both are now the new node's children
    right.release();
    PushOperand(std::move(node), location);
}

void ExpressionParserCompile::Builder::ApplyPrefixes() {
    while (!m_pending.empty() &&
           (m_pending.back().kind == kMinusPrefix || m_pending.back().kind == kNotPrefix)) {
        const Pending prefix = m_pending.back();
        m_pending.pop_back();
        BuildPrefix(prefix);
    }
}

void ExpressionParserCompile::Builder::Reduce(unsigned char floor, bool assignments) {
    while (!m_pending.empty()) {
        const Pending top = m_pending.back();
        if ((top.kind == kBinary && top.op.precedence >= floor) ||
            (assignments && top.kind == kAssign)) {
            m_pending.pop_back();
            BuildBinary(top);
        } else if (assignments && top.kind == kAssignDropped) {
            m_pending.pop_back(); // the right side stands alone
        } else {
            break;
        }
    }
}

bool ExpressionParserCompile::Builder::ExpectOperand() {
    const long location = m_tokenizer.GetInputLineLocation();
    switch (m_token) {
    case Tokenizer::Minus:
        if (Next() == Tokenizer::Number) {
            PushOperand(MakeNode<NumNode>(-m_tokenizer.GetNumber()), location);
            Next();
            m_expectOperand = false;
        } else {
            Push(kMinusPrefix, location);
        }
        return true;
    case Tokenizer::NotOp:
        Push(kNotPrefix, location);
        Next();
        return true;
    case Tokenizer::LeftParen:
        Push(kParen, location);
        Next();
        return true;
    case Tokenizer::Number:
        PushOperand(MakeNode<NumNode>(m_tokenizer.GetNumber()), location);
        Next();
        m_expectOperand = false;
        return true;
    case Tokenizer::StringLiteral:
        PushOperand(MakeNode<StringNode>(CopyStringLiteral().c_str()), location);
        Next();
        m_expectOperand = false;
        return true;
    case Tokenizer::SymbolName: {
        const std::string& name = CopySymbolName();
        if (Next() != Tokenizer::LeftParen) {
            PushOperand(MakeNode<VarNode>(name.c_str(), name.size()), location);
            m_expectOperand = false;
            return true;
        }
        std::unique_ptr<FunNode> call = MakeNode<FunNode>(name.c_str(), name.size());
        call->SetInputBuffLocation(location);
        if (Next() == Tokenizer::RightParen) {
            m_operands.push_back(std::move(call));
            Next();
            m_expectOperand = false;
        } else {
            Push(kCall, location, {}, call.get());
            call.release(); // freed with the pending entry
        }
        return true;
    }
    case Tokenizer::AliasMark: {
        if (Next() != Tokenizer::LeftParen) {
            Fail(PNS_ALIAS_PAREN_MISSING);
            return false;
        }
        if (Next() != Tokenizer::SymbolName) {
            Fail(PNS_ALIAS_NAME_MISSING);
            return false;
        }
        const std::string& name = CopySymbolName();
        if (Next() != Tokenizer::RightParen) {
            Fail(PNS_RIGHT_PAREN_MISSING);
            return false;
        }
        PushOperand(MakeNode<AliasNode>(name.c_str(), name.size()), location);
        Next();
        m_expectOperand = false;
        return true;
    }
    default:
        Fail(PNS_SYNTAX_ERROR);
        return false;
    }
}

bool ExpressionParserCompile::Builder::AfterOperand(bool& done) {
    ApplyPrefixes();
    BinaryOperator op{};
    if (LookUpBinary(m_token, op)) {
        Reduce(op.precedence, false);
        Push(kBinary, m_tokenizer.GetInputLineLocation(), op);
        Next();
        m_expectOperand = true;
        return true;
    }
    if (m_token == Tokenizer::AssignOp) {
        // The left side of ":=" is the comparison just parsed, not what lies before it.
        Reduce(kPrecCompare, false);
        if (m_operands.back()->IsLvalue()) {
            Push(kAssign, m_tokenizer.GetInputLineLocation());
        } else {
            Record(PNS_NOT_LVALUE);
            PopOperand(); // and freed
            Push(kAssignDropped, m_tokenizer.GetInputLineLocation());
        }
        Next();
        m_expectOperand = true;
        return true;
    }

    Reduce(kPrecAssign, true);
    if (m_pending.empty()) {
        if (m_token != Tokenizer::EndOfInput)
            Record(PNS_SYNTAX_ERROR); // text left over; the expression itself is kept
        done = true;
        return true;
    }
    Pending& open = m_pending.back();
    if (open.kind == kParen) {
        if (m_token != Tokenizer::RightParen) {
            Fail(PNS_RIGHT_PAREN_MISSING);
            return false;
        }
        m_pending.pop_back();
        m_operands.back()->SetParenthesized(true);
        Next();
        return true; // still after an operand
    }
    // An open call: the operand is its next argument.
    FunNode* call = open.call;
    NodePtr argument = PopOperand();
    call->AppendLeafNode(argument.get());
    argument.release();
    if (m_token == Tokenizer::Comma) {
        Next();
        m_expectOperand = true;
        return true;
    }
    if (m_token == Tokenizer::RightParen) {
        m_operands.push_back(NodePtr(call));
        m_pending.pop_back();
        Next();
        return true;
    }
    Fail(PNS_RIGHT_PAREN_MISSING); // the arguments collected so far go with the call
    return false;
}

ExpressParseNode* ExpressionParserCompile::Builder::Run(ParseNodeStatus& status, long& location) {
    m_token = m_tokenizer.GetCurrentToken();
    bool done = false;
    bool ok = true;
    while (ok && !done)
        ok = m_expectOperand ? ExpectOperand() : AfterOperand(done);
    status = m_status;
    location = m_location;
    if (!ok)
        return Salvage();
    if (m_operands.size() != 1)
        return nullptr;
    return PopOperand().release();
}

ExpressParseNode* ExpressionParserCompile::Builder::Salvage() {
    while (!m_pending.empty()) {
        const Pending top = m_pending.back();
        m_pending.pop_back();
        const bool complete = m_operands.size() > top.operandsBefore;
        switch (top.kind) {
        case kBinary:
        case kAssign:
            // An operator without its right operand is dropped; its left operand stays.
            if (complete)
                BuildBinary(top);
            break;
        case kMinusPrefix:
        case kNotPrefix:
            if (complete)
                BuildPrefix(top);
            break;
        case kCall: {
            NodePtr call(top.call);
            if (complete) {
                NodePtr argument = PopOperand();
                top.call->AppendLeafNode(argument.get());
                argument.release();
            }
            m_operands.push_back(std::move(call));
            break;
        }
        case kParen:
        case kAssignDropped:
            break;
        }
    }
    if (m_operands.size() != 1)
        return nullptr;
    return PopOperand().release();
}

ExpressionParserCompile::ExpressionParserCompile(Tokenizer* tokenizer)
    : m_pTokenizer(tokenizer != nullptr ? tokenizer : &m_ownTokenizer) {}

ExpressionParserCompile::~ExpressionParserCompile() = default;

ParseNodeStatus ExpressionParserCompile::Parse(const char* text) {
    m_status = PNS_SUCCESS;
    m_parseBuffLocation = 0;
    m_pTokenizer->SetBuffer(text);
    delete SetExpressionNode(nullptr);

    ParseNodeStatus status = PNS_SUCCESS;
    long location = 0;
    ExpressParseNode* root = nullptr;
    try {
        Builder builder(*m_pTokenizer);
        root = builder.Run(status, location);
    } catch (const std::bad_alloc&) {
        // The builder has freed whatever it had built.
        root = nullptr;
        status = PNS_OUT_OF_MEMORY;
        location = m_pTokenizer->GetInputLineLocation();
    }
    SetExpressionNode(root);
    if (status != PNS_SUCCESS)
        SetParseBuffLocation(location);
    m_status = status;
    return status;
}

} // namespace Util
