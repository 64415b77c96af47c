#include <cfloat>
#include <cstdint>
#include <cstring>
#include <unordered_set>

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

inline double AsDouble(const NodeVariantData& value, std::int32_t asLong, double asDouble) {
    return value.GetDataType() == NVDT_DOUBLE ? asDouble : static_cast<double>(asLong);
}

} // namespace

// The operators of NodeVariantData for two error-free longs or doubles, without building
// temporaries: the same table (any double makes it double arithmetic), the same limits for
// division by zero, 32-bit wrap-around for longs and the 0.0001 tolerance for comparisons.
inline void ParseTreeEngine::CombineNumbers(Kind kind, ExpressParseNode* node,
                                            const NodeVariantData& left,
                                            const NodeVariantData& right) {
    NodeVariantData& value = node->m_value;
    value.m_status = PNS_SUCCESS;
    int order = 0;
    if (left.m_type == NVDT_DOUBLE || right.m_type == NVDT_DOUBLE) {
        const double l = AsDouble(left, left.m_long, left.m_double);
        const double r = AsDouble(right, right.m_long, right.m_double);
        switch (kind) {
        case kAdd:
            value.SetDoubleValue(l + r);
            return;
        case kSub:
            value.SetDoubleValue(l - r);
            return;
        case kMult:
            value.SetDoubleValue(l * r);
            return;
        case kDivide:
            value.SetDoubleValue(r == 0.0 ? DBL_MAX : l / r);
            return;
        default: {
            const double difference = l - r;
            order = difference < -0.0001 ? -1 : difference > 0.0001 ? 1 : 0;
            break;
        }
        }
    } else {
        const std::int64_t l = left.m_long;
        const std::int64_t r = right.m_long;
        auto wrap = [](std::int64_t v) {
            return static_cast<std::int32_t>(
                static_cast<std::uint32_t>(static_cast<std::uint64_t>(v)));
        };
        switch (kind) {
        case kAdd:
            value.SetLongValue(wrap(l + r));
            return;
        case kSub:
            value.SetLongValue(wrap(l - r));
            return;
        case kMult:
            value.SetLongValue(wrap(l * r));
            return;
        case kDivide:
            value.SetLongValue(r == 0 ? 2147483647 : wrap(l / r));
            return;
        default:
            order = l < r ? -1 : l > r ? 1 : 0;
            break;
        }
    }
    bool truth = false;
    switch (static_cast<CompNode*>(node)->GetCompareType()) {
    case CT_LESS:
        truth = order < 0;
        break;
    case CT_LESS_EQUAL:
        truth = order <= 0;
        break;
    case CT_GREATER:
        truth = order > 0;
        break;
    case CT_GREATER_EQUAL:
        truth = order >= 0;
        break;
    case CT_EQUAL:
        truth = order == 0;
        break;
    default:
        truth = order != 0;
        break;
    }
    value.SetLongValue(truth ? 1 : 0);
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
        switch (static_cast<CompNode*>(node)->GetCompareType()) {
        case CT_LESS:
            value = left < right;
            break;
        case CT_LESS_EQUAL:
            value = left <= right;
            break;
        case CT_GREATER:
            value = left > right;
            break;
        case CT_GREATER_EQUAL:
            value = left >= right;
            break;
        case CT_EQUAL:
            value = left == right;
            break;
        default:
            value = left != right;
            break;
        }
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
    NodeVariantData& value = node->m_value;
    switch (kind) {
    case kNum:
    case kString:
        return value;
    case kVar:
        LookUpVariable(static_cast<VarNode*>(node), noTable, symbols);
        return value;
    case kAdd:
    case kSub:
    case kMult:
    case kDivide:
    case kCompare: {
        auto* bin = static_cast<BinNode*>(node);
        const NodeVariantData& left = EvaluateChild(bin->m_pLeft, noTable, symbols, depth);
        const NodeVariantData& right = EvaluateChild(bin->m_pRight, noTable, symbols, depth);
        // A text built by the left operand grows in place instead of being copied again.
        if (kind != kAdd || !HoldsReleasableText(bin->m_pLeft) ||
            !value.AppendTaking(bin->m_pLeft->m_value, right))
            ApplyBinary(kind, node, left, right);
        ReleaseUsedText(bin->m_pLeft);
        ReleaseUsedText(bin->m_pRight);
        return value;
    }
    case kAnd:
    case kOr: {
        auto* bin = static_cast<BinNode*>(node);
        const NodeVariantData& left = EvaluateChild(bin->m_pLeft, noTable, symbols, depth);
        if (left.HasError()) {
            value = left;
            return value;
        }
        const bool decided = kind == kAnd ? left.GetLong() == 0 : left.GetLong() != 0;
        if (decided) {
            value = kind == kAnd ? 0 : 1; // the right side is never looked at
            return value;
        }
        const NodeVariantData& right = EvaluateChild(bin->m_pRight, noTable, symbols, depth);
        if (right.HasError())
            value = right;
        else
            value = right.GetLong() != 0 ? 1 : 0;
        return value;
    }
    case kUMinus:
    case kNot: {
        const NodeVariantData& operand =
            EvaluateChild(static_cast<UnaryNode*>(node)->m_pChild, noTable, symbols, depth);
        if (kind == kUMinus)
            value = -operand;
        else if (operand.HasError())
            value = operand;
        else
            value = operand.GetLong() == 0 ? 1 : 0;
        return value;
    }
    default:
        return EvaluateDeep(node, kind, symbols);
    }
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

// One pass over the tree in evaluation order. Frames say which node is being worked on and how
// far; values holds the results of finished children (pointers into the nodes' own values).
NodeVariantData& ParseTreeEngine::EvaluateDeep(ExpressParseNode* root, Kind rootKind,
                                               const SymbolLookupValues& symbols) {
    if (rootKind == kForeign)
        return root->m_value;

    const bool noTable = IsNoTable(symbols);
    SmallStack<Frame, 24> frames;
    SmallStack<const NodeVariantData*, 24> values;
    SmallStack<const ExpressParseNode*, 8> activeAliases; // alias trees being evaluated
    // Alias trees already evaluated in this walk: an alias used again takes the value its tree
    // still holds. Without this, aliases that each use the previous one twice would take time
    // exponential in their number.
    std::unordered_set<const ExpressParseNode*> evaluatedAliases;

    // Leaves are worked out on the spot; only inner nodes get a frame.
    // Returns whether the child's value is already on the value stack (false: it has a frame).
    auto start = [&](ExpressParseNode* child) {
        if (child == nullptr) {
            values.push_back(&EmptyValue());
            return true;
        }
        const Kind kind = ClassifyExact(child);
        if (kind == kNum || kind == kString) {
            values.push_back(&child->m_value);
        } else if (kind == kVar) {
            LookUpVariable(static_cast<VarNode*>(child), noTable, symbols);
            values.push_back(&child->m_value);
        } else if (kind == kForeign) {
            values.push_back(&child->Calc(symbols));
        } else {
            frames.push_back({child, kind, 0});
            return false;
        }
        return true;
    };
    auto finish = [&](ExpressParseNode* node) {
        frames.pop_back();
        values.push_back(&node->m_value);
    };

    frames.push_back({root, rootKind, 0});
    while (!frames.empty()) {
        Frame& frame = frames.back();
        ExpressParseNode* node = frame.node;
        NodeVariantData& value = node->m_value;
        switch (frame.kind) {
        case kNum:
        case kString:
            finish(node);
            break;

        case kVar:
            LookUpVariable(static_cast<VarNode*>(node), noTable, symbols);
            finish(node);
            break;

        case kAdd:
        case kSub:
        case kMult:
        case kDivide:
        case kCompare: {
            auto* bin = static_cast<BinNode*>(node);
            // A side that is a leaf is ready at once; only an inner node suspends this one.
            if (frame.state == 0) {
                frame.state = 1;
                if (!start(bin->m_pLeft))
                    break;
            }
            if (frame.state == 1) {
                frame.state = 2;
                if (!start(bin->m_pRight))
                    break;
            }
            const NodeVariantData& right = *values.back();
            values.pop_back();
            const NodeVariantData& left = *values.back();
            values.pop_back();
            if (frame.kind != kAdd || !HoldsReleasableText(bin->m_pLeft) ||
                !value.AppendTaking(bin->m_pLeft->m_value, right))
                ApplyBinary(frame.kind, node, left, right);
            ReleaseUsedText(bin->m_pLeft);
            ReleaseUsedText(bin->m_pRight);
            finish(node);
            break;
        }

        case kAnd:
        case kOr: {
            auto* bin = static_cast<BinNode*>(node);
            if (frame.state == 0) {
                frame.state = 1;
                start(bin->m_pLeft);
                break;
            }
            const NodeVariantData& operand = *values.back();
            values.pop_back();
            if (operand.HasError()) {
                value = operand;
            } else if (frame.state == 1) {
                const bool decided =
                    frame.kind == kAnd ? operand.GetLong() == 0 : operand.GetLong() != 0;
                if (!decided) {
                    frame.state = 2;
                    start(bin->m_pRight);
                    break;
                }
                // The right side is never looked at.
                value = frame.kind == kAnd ? 0 : 1;
            } else {
                value = operand.GetLong() != 0 ? 1 : 0;
            }
            finish(node);
            break;
        }

        case kAssign: {
            auto* bin = static_cast<BinNode*>(node);
            if (frame.state == 0) {
                frame.state = 1;
                start(bin->m_pRight);
                break;
            }
            value = *values.back();
            values.pop_back();
            // An error value is not stored in the table.
            if (!value.HasError() && bin->m_pLeft != nullptr && bin->m_pLeft->IsLvalue()) {
                bin->m_pLeft->Assign(value, symbols);
                // The variable now holds the value, which is what a printed tree should show.
                if (ClassifyExact(bin->m_pLeft) == kVar)
                    bin->m_pLeft->m_value = value;
            }
            finish(node);
            break;
        }

        case kUMinus:
        case kNot: {
            if (frame.state == 0) {
                frame.state = 1;
                start(static_cast<UnaryNode*>(node)->m_pChild);
                break;
            }
            const NodeVariantData& operand = *values.back();
            values.pop_back();
            if (frame.kind == kUMinus)
                value = -operand;
            else if (operand.HasError())
                value = operand;
            else
                value = operand.GetLong() == 0 ? 1 : 0;
            finish(node);
            break;
        }

        case kFun: {
            auto* fun = static_cast<FunNode*>(node);
            const char* name = fun->m_name.c_str();
            if (frame.state == 0 && noTable) {
                value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
                finish(node);
                break;
            }
            const std::size_t count = fun->m_children.size();
            if (frame.state < count) {
                const std::size_t index = frame.state++;
                start(fun->m_children[index]);
                break;
            }
            const std::size_t first = values.size() - count;
            const NodeVariantData* failed = nullptr;
            for (std::size_t i = first; i < values.size() && failed == nullptr; ++i) {
                if (values[i]->HasError())
                    failed = values[i];
            }
            if (failed != nullptr) {
                value = *failed;
            } else {
                std::vector<Variant> arguments;
                arguments.reserve(count);
                for (std::size_t i = first; i < values.size(); ++i)
                    arguments.push_back(static_cast<Variant>(*values[i]));
                // A table that says no without saying why reports an undefined symbol.
                ParseNodeStatus status = PNS_UNDEFINED_SYMBOL;
                Variant result;
                if (symbols.GetFunctionValue(name, status, result, arguments)) {
                    value = result;
                } else {
                    value.SetText(status == PNS_WRONG_PARAMETER_COUNT
                                      ? "Invalid number of parameters "
                                      : "Undefined Symbol ",
                                  name, " ", status);
                }
            }
            values.resize_down(first);
            finish(node);
            break;
        }

        case kAlias: {
            const char* name = static_cast<AliasNode*>(node)->m_name.c_str();
            if (frame.state == 1) {
                value = *values.back();
                values.pop_back();
                evaluatedAliases.insert(activeAliases.back());
                activeAliases.pop_back();
                finish(node);
                break;
            }
            ExpressParseNode* tree = nullptr;
            if (noTable) {
                value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
            } else if (!symbols.GetAliasValue(name, &tree) || tree == nullptr) {
                value.SetText("Undefined Alias ", name, " ", PNS_UNDEFINED_ALIAS);
            } else if (evaluatedAliases.count(tree) != 0) {
                value = tree->m_value;
            } else {
                bool recursive = false;
                for (std::size_t i = 0; i < activeAliases.size() && !recursive; ++i)
                    recursive = activeAliases[i] == tree;
                if (!recursive) {
                    frame.state = 1;
                    activeAliases.push_back(tree);
                    start(tree);
                    break;
                }
                value.SetText("Recursive Alias ", name, " ", PNS_RECURSIVE_ALIAS);
            }
            finish(node);
            break;
        }

        default:
            finish(node);
            break;
        }
    }
    return root->m_value;
}

} // namespace Util
