#include <cfloat>
#include <cstdint>
#include <cstring>
#include <unordered_set>

#include "expression/src/noderules.h"
#include "expression/src/parsetreeengine.h"

namespace Util {
namespace {

using Kind = ParseTreeEngine::Kind;

struct Frame {
    ExpressParseNode* node;
    Kind kind;
    std::uint32_t state; // how many children have been started
};

const NodeVariantData& EmptyValue() {
    static const NodeVariantData empty;
    return empty;
}

bool IsNoTable(const SymbolLookupValues& symbols) {
    return &symbols == &NoSymbolTable();
}

} // namespace

namespace {

// A plain number as a double, without the out-of-line conversion.
inline double NumberAsDouble(const NodeVariantData& value, std::int32_t asLong, double asDouble) {
    return value.GetDataType() == NVDT_DOUBLE ? asDouble : static_cast<double>(asLong);
}

static_assert(ParseTreeEngine::kSub - ParseTreeEngine::kAdd == NodeRules::kSubtraction &&
                  ParseTreeEngine::kMult - ParseTreeEngine::kAdd == NodeRules::kMultiplication &&
                  ParseTreeEngine::kDivide - ParseTreeEngine::kAdd == NodeRules::kDivision,
              "the arithmetic kinds follow the order of NodeRules::Arithmetic");

} // namespace

// The operators of NodeVariantData for two error-free longs or doubles, without building
// temporaries: any double makes it double arithmetic, as in the operators' table.
inline void ParseTreeEngine::CombineNumbers(Kind kind, ExpressParseNode* node,
                                            const NodeVariantData& left,
                                            const NodeVariantData& right) {
    NodeVariantData& value = node->m_value;
    value.m_status = PNS_SUCCESS;
    const bool doubles = left.m_type == NVDT_DOUBLE || right.m_type == NVDT_DOUBLE;
    const double l = doubles ? NumberAsDouble(left, left.m_long, left.m_double) : 0.0;
    const double r = doubles ? NumberAsDouble(right, right.m_long, right.m_double) : 0.0;
    if (kind != kCompare) {
        const auto operation = static_cast<NodeRules::Arithmetic>(kind - kAdd);
        if (doubles)
            value.SetDoubleValue(NodeRules::DoubleArithmetic(operation, l, r));
        else
            value.SetLongValue(NodeRules::LongArithmetic(operation, left.m_long, right.m_long));
        return;
    }
    const int order =
        doubles ? NodeRules::DoubleOrder(l, r) : NodeRules::LongOrder(left.m_long, right.m_long);
    value.SetLongValue(NodeRules::Holds(static_cast<CompNode*>(node)->GetCompareType(), order) ? 1
                                                                                               : 0);
}

void ParseTreeEngine::LookUpVariable(VarNode* node, bool noTable,
                                     const SymbolLookupValues& symbols) {
    NodeVariantData& value = node->m_value;
    const char* name = node->m_name.c_str();
    if (noTable) {
        value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
        return;
    }
    Variant symbol;
    if (!symbols.GetSymbolValue(name, symbol)) {
        value.SetText("Undefined Symbol ", name, " ", PNS_UNDEFINED_SYMBOL);
        return;
    }
    const __util_Variant& data = symbol.GetData();
    if (data.vt == UTIL_VT_DOUBLE) {
        value.m_status = PNS_SUCCESS;
        value.SetDoubleValue(data.dblVal);
    } else {
        value = symbol;
    }
}

void ParseTreeEngine::ApplyBinary(Kind kind, ExpressParseNode* node, const NodeVariantData& left,
                                  const NodeVariantData& right) {
    if (IsPlainNumber(left) && IsPlainNumber(right)) {
        CombineNumbers(kind, node, left, right);
        return;
    }
    NodeVariantData& value = node->m_value;
    switch (kind) {
    case kAdd:
        value = left + right;
        break;
    case kSub:
        value = left - right;
        break;
    case kMult:
        value = left * right;
        break;
    case kDivide:
        value = left / right;
        break;
    default:
        value = left.Compared(right, static_cast<CompNode*>(node)->GetCompareType());
        break;
    }
}

// Once a binary node has its value, the value of an inner operand is no longer needed. A long
// text is let go at once: a chain of concatenations a+b+c+... would otherwise keep every prefix
// in its own node, memory growing with the square of the number of terms. Short texts, numbers
// and the leaves' values stay, so a printed tree still shows them.
bool ParseTreeEngine::HoldsReleasableText(ExpressParseNode* child) {
    if (child == nullptr)
        return false;
    const NodeVariantData& value = child->m_value;
    if (value.m_type != NVDT_STRING || value.m_pString == value.m_inline)
        return false;
    const Kind kind = ClassifyExact(child);
    return kind != kNum && kind != kString && kind != kVar && kind != kForeign;
}

void ParseTreeEngine::ReleaseUsedText(ExpressParseNode* child) {
    if (!HoldsReleasableText(child))
        return;
    NodeVariantData& value = child->m_value;
    value.ReleaseHeap();
    value.m_type = NVDT_NONE;
    value.m_actualKnown = false;
    value.m_pString[0] = '\0';
    value.m_length = 0;
}

// ---- the steps -------------------------------------------------------------------------------

void ParseTreeEngine::FinishBinary(Kind kind, BinNode* node, const NodeVariantData& left,
                                   const NodeVariantData& right) {
    // A text built by the left operand grows in place instead of being copied again.
    if (kind != kAdd || !HoldsReleasableText(node->m_pLeft) ||
        !node->m_value.AppendTaking(node->m_pLeft->m_value, right))
        ApplyBinary(kind, node, left, right);
    ReleaseUsedText(node->m_pLeft);
    ReleaseUsedText(node->m_pRight);
}

bool ParseTreeEngine::SettleLogical(Kind kind, ExpressParseNode* node,
                                    const NodeVariantData& left) {
    NodeVariantData& value = node->m_value;
    if (left.HasError()) {
        value = left;
        return true;
    }
    const bool leftIsTrue = NodeRules::IsTrue(left);
    if (!NodeRules::Settles(kind == kAnd, leftIsTrue))
        return false;
    value = leftIsTrue ? 1 : 0;
    return true;
}

void ParseTreeEngine::FinishLogical(ExpressParseNode* node, const NodeVariantData& right) {
    if (right.HasError())
        node->m_value = right;
    else
        node->m_value = NodeRules::IsTrue(right) ? 1 : 0;
}

void ParseTreeEngine::FinishUnary(Kind kind, ExpressParseNode* node,
                                  const NodeVariantData& operand) {
    NodeVariantData& value = node->m_value;
    if (kind == kUMinus)
        value = -operand;
    else if (operand.HasError())
        value = operand;
    else
        value = NodeRules::IsTrue(operand) ? 0 : 1;
}

void ParseTreeEngine::FinishAssign(BinNode* node, const NodeVariantData& value,
                                   const SymbolLookupValues& symbols) {
    node->m_value = value;
    // An error value is not stored in the table.
    ExpressParseNode* target = node->m_pLeft;
    if (node->m_value.HasError() || target == nullptr || !target->IsLvalue())
        return;
    target->Assign(node->m_value, symbols);
    // The variable now holds the value, which is what a printed tree should show.
    if (ClassifyExact(target) == kVar)
        target->m_value = node->m_value;
}

void ParseTreeEngine::FinishCall(FunNode* node, const NodeVariantData* const* arguments,
                                 std::size_t count, const SymbolLookupValues& symbols) {
    NodeVariantData& value = node->m_value;
    for (std::size_t i = 0; i < count; ++i) {
        if (arguments[i]->HasError()) {
            value = *arguments[i];
            return;
        }
    }
    std::vector<Variant> variants;
    variants.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        variants.push_back(static_cast<Variant>(*arguments[i]));
        // A text argument the Variant cannot hold (no memory for its copy) comes out empty.
        if (arguments[i]->GetDataType() == NVDT_STRING &&
            variants.back().GetData().vt == UTIL_VT_EMPTY) {
            value.SetOutOfMemory();
            return;
        }
    }
    // A table that says no without saying why reports an undefined symbol.
    ParseNodeStatus status = PNS_UNDEFINED_SYMBOL;
    Variant result;
    const char* name = node->m_name.c_str();
    if (symbols.GetFunctionValue(name, status, result, variants)) {
        value = result;
    } else {
        value.SetText(status == PNS_WRONG_PARAMETER_COUNT ? "Invalid number of parameters "
                                                          : "Undefined Symbol ",
                      name, " ", status);
    }
}

// ---- the recursive walk ----------------------------------------------------------------------

namespace {

// How deep the recursive evaluation may go before it hands a subtree to the explicit-stack walk:
// enough for every formula people write, small enough that the C++ stack never notices.
const int kMaxRecursion = 48;

} // namespace

// Evaluates the common kinds of node by plain recursion, bounded by kMaxRecursion; calls,
// aliases, assignments and anything deeper go to EvaluateDeep, which never comes back here, so
// the recursion stays bounded whatever the tree.
const NodeVariantData& ParseTreeEngine::EvaluateShallow(ExpressParseNode* node, Kind kind,
                                                        bool noTable,
                                                        const SymbolLookupValues& symbols,
                                                        int depth) {
    switch (kind) {
    case kNum:
    case kString:
        break;
    case kVar:
        LookUpVariable(static_cast<VarNode*>(node), noTable, symbols);
        break;
    case kAdd:
    case kSub:
    case kMult:
    case kDivide:
    case kCompare: {
        auto* bin = static_cast<BinNode*>(node);
        const NodeVariantData& left = EvaluateChild(bin->m_pLeft, noTable, symbols, depth);
        const NodeVariantData& right = EvaluateChild(bin->m_pRight, noTable, symbols, depth);
        FinishBinary(kind, bin, left, right);
        break;
    }
    case kAnd:
    case kOr: {
        auto* bin = static_cast<BinNode*>(node);
        if (!SettleLogical(kind, bin, EvaluateChild(bin->m_pLeft, noTable, symbols, depth)))
            FinishLogical(bin, EvaluateChild(bin->m_pRight, noTable, symbols, depth));
        break;
    }
    case kUMinus:
    case kNot:
        FinishUnary(
            kind, node,
            EvaluateChild(static_cast<UnaryNode*>(node)->m_pChild, noTable, symbols, depth));
        break;
    default:
        return EvaluateDeep(node, kind, symbols);
    }
    return node->m_value;
}

inline const NodeVariantData& ParseTreeEngine::EvaluateChild(ExpressParseNode* child, bool noTable,
                                                             const SymbolLookupValues& symbols,
                                                             int depth) {
    if (child == nullptr)
        return EmptyValue();
    const Kind kind = ClassifyExact(child);
    if (kind == kNum || kind == kString)
        return child->m_value;
    if (kind == kVar) {
        LookUpVariable(static_cast<VarNode*>(child), noTable, symbols);
        return child->m_value;
    }
    if (kind == kForeign)
        return child->Calc(symbols);
    if (depth >= kMaxRecursion)
        return EvaluateDeep(child, kind, symbols);
    return EvaluateShallow(child, kind, noTable, symbols, depth + 1);
}

NodeVariantData& ParseTreeEngine::Evaluate(ExpressParseNode* root, Kind rootKind,
                                           const SymbolLookupValues& symbols) {
    if (rootKind == kForeign)
        return root->m_value;
    EvaluateShallow(root, rootKind, IsNoTable(symbols), symbols, 0);
    return root->m_value;
}

// ---- the explicit-stack walk -----------------------------------------------------------------

// One pass over a tree in evaluation order. Frames say which inner node is being worked on and
// how far; values holds the results of finished children (pointers into the nodes' own values).
// Each step works on the frame on top: it either starts a child (and returns, so the child's
// frame runs next) or finishes its node.
class ParseTreeEngine::DeepWalk {
public:
    explicit DeepWalk(const SymbolLookupValues& symbols)
        : m_symbols(symbols), m_noTable(IsNoTable(symbols)) {}

    void Run(ExpressParseNode* root, Kind rootKind) {
        m_frames.push_back({root, rootKind, 0});
        while (!m_frames.empty()) {
            Frame& frame = m_frames.back();
            switch (frame.kind) {
            case kAdd:
            case kSub:
            case kMult:
            case kDivide:
            case kCompare:
                StepBinary(frame);
                break;
            case kAnd:
            case kOr:
                StepLogical(frame);
                break;
            case kAssign:
                StepAssign(frame);
                break;
            case kUMinus:
            case kNot:
                StepUnary(frame);
                break;
            case kFun:
                StepCall(frame);
                break;
            case kAlias:
                StepAlias(frame);
                break;
            case kVar:
                LookUpVariable(static_cast<VarNode*>(frame.node), m_noTable, m_symbols);
                Finish(frame.node);
                break;
            default: // numbers and texts hold their values already
                Finish(frame.node);
                break;
            }
        }
    }

private:
    // Leaves are worked out on the spot; only inner nodes get a frame. Returns whether the
    // child's value is already on the value stack (false: it has a frame, which runs next; the
    // caller's frame reference may then be stale and must not be used).
    bool Start(ExpressParseNode* child) {
        if (child == nullptr) {
            m_values.push_back(&EmptyValue());
            return true;
        }
        const Kind kind = ClassifyExact(child);
        if (kind == kNum || kind == kString) {
            m_values.push_back(&child->m_value);
        } else if (kind == kVar) {
            LookUpVariable(static_cast<VarNode*>(child), m_noTable, m_symbols);
            m_values.push_back(&child->m_value);
        } else if (kind == kForeign) {
            m_values.push_back(&child->Calc(m_symbols));
        } else {
            m_frames.push_back({child, kind, 0});
            return false;
        }
        return true;
    }

    void Finish(ExpressParseNode* node) {
        m_frames.pop_back();
        m_values.push_back(&node->m_value);
    }

    const NodeVariantData& Pop() {
        const NodeVariantData* value = m_values.back();
        m_values.pop_back();
        return *value;
    }

    void StepBinary(Frame& frame) {
        auto* bin = static_cast<BinNode*>(frame.node);
        // A side that is a leaf is ready at once; only an inner node suspends this one.
        if (frame.state == 0) {
            frame.state = 1;
            if (!Start(bin->m_pLeft))
                return;
        }
        if (frame.state == 1) {
            frame.state = 2;
            if (!Start(bin->m_pRight))
                return;
        }
        const NodeVariantData& right = Pop();
        const NodeVariantData& left = Pop();
        FinishBinary(frame.kind, bin, left, right);
        Finish(bin);
    }

    void StepLogical(Frame& frame) {
        auto* bin = static_cast<BinNode*>(frame.node);
        if (frame.state == 0) {
            frame.state = 1;
            Start(bin->m_pLeft);
            return;
        }
        const NodeVariantData& operand = Pop();
        if (frame.state == 1) {
            if (!SettleLogical(frame.kind, bin, operand)) {
                frame.state = 2;
                Start(bin->m_pRight);
                return;
            }
        } else {
            FinishLogical(bin, operand);
        }
        Finish(bin);
    }

    void StepAssign(Frame& frame) {
        auto* bin = static_cast<BinNode*>(frame.node);
        if (frame.state == 0) {
            frame.state = 1;
            Start(bin->m_pRight);
            return;
        }
        FinishAssign(bin, Pop(), m_symbols);
        Finish(bin);
    }

    void StepUnary(Frame& frame) {
        auto* unary = static_cast<UnaryNode*>(frame.node);
        if (frame.state == 0) {
            frame.state = 1;
            Start(unary->m_pChild);
            return;
        }
        FinishUnary(frame.kind, unary, Pop());
        Finish(unary);
    }

    void StepCall(Frame& frame) {
        auto* fun = static_cast<FunNode*>(frame.node);
        if (frame.state == 0 && m_noTable) {
            fun->m_value.SetText("Undefined Symbol table ", fun->m_name.c_str(), " ",
                                 PNS_NO_SYMBOL_TABLE);
            Finish(fun);
            return;
        }
        const std::size_t count = fun->m_children.size();
        if (frame.state < count) {
            const std::size_t index = frame.state++;
            Start(fun->m_children[index]);
            return;
        }
        const std::size_t first = m_values.size() - count;
        FinishCall(fun, count != 0 ? &m_values[first] : nullptr, count, m_symbols);
        m_values.resize_down(first);
        Finish(fun);
    }

    void StepAlias(Frame& frame) {
        auto* alias = static_cast<AliasNode*>(frame.node);
        NodeVariantData& value = alias->m_value;
        if (frame.state == 1) {
            value = Pop();
            m_evaluatedAliases.insert(m_activeAliases.back());
            m_activeAliases.pop_back();
            Finish(alias);
            return;
        }
        const char* name = alias->m_name.c_str();
        ExpressParseNode* tree = nullptr;
        if (m_noTable) {
            value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
        } else if (!m_symbols.GetAliasValue(name, &tree) || tree == nullptr) {
            value.SetText("Undefined Alias ", name, " ", PNS_UNDEFINED_ALIAS);
        } else if (m_evaluatedAliases.count(tree) != 0) {
            // Used again: the tree still holds its value. Without this, aliases that each use
            // the previous one twice would take time exponential in their number.
            value = tree->m_value;
        } else if (IsActive(tree)) {
            value.SetText("Recursive Alias ", name, " ", PNS_RECURSIVE_ALIAS);
        } else {
            frame.state = 1;
            m_activeAliases.push_back(tree);
            Start(tree);
            return;
        }
        Finish(alias);
    }

    bool IsActive(const ExpressParseNode* tree) {
        for (std::size_t i = 0; i < m_activeAliases.size(); ++i) {
            if (m_activeAliases[i] == tree)
                return true;
        }
        return false;
    }

    const SymbolLookupValues& m_symbols;
    const bool m_noTable;
    SmallStack<Frame, 24> m_frames;
    SmallStack<const NodeVariantData*, 24> m_values;
    SmallStack<const ExpressParseNode*, 8> m_activeAliases; // alias trees being evaluated
    std::unordered_set<const ExpressParseNode*> m_evaluatedAliases;
};

NodeVariantData& ParseTreeEngine::EvaluateDeep(ExpressParseNode* root, Kind rootKind,
                                               const SymbolLookupValues& symbols) {
    if (rootKind == kForeign)
        return root->m_value;
    DeepWalk(symbols).Run(root, rootKind);
    return root->m_value;
}

} // namespace Util
