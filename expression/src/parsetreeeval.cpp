#include <cstring>

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

// One pass over the tree in evaluation order. Frames say which node is being worked on and how
// far; values holds the results of finished children (pointers into the nodes' own values).
NodeVariantData& ParseTreeEngine::Evaluate(ExpressParseNode* root, Kind rootKind,
                                           const SymbolLookupValues& symbols) {
    if (rootKind == kForeign)
        return root->m_value;

    SmallStack<Frame, 48> frames;
    SmallStack<const NodeVariantData*, 48> values;
    SmallStack<const ExpressParseNode*, 8> activeAliases; // alias trees being evaluated

    auto start = [&](ExpressParseNode* child) {
        if (child == nullptr) {
            values.push_back(&EmptyValue());
            return;
        }
        const Kind kind = ClassifyExact(child);
        if (kind == kForeign)
            values.push_back(&child->Calc(symbols));
        else
            frames.push_back({child, kind, 0});
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

        case kVar: {
            const char* name = static_cast<VarNode*>(node)->m_name.c_str();
            if (IsNoTable(symbols)) {
                value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
            } else {
                Variant symbol;
                if (symbols.GetSymbolValue(name, symbol))
                    value = symbol;
                else
                    value.SetText("Undefined Symbol ", name, " ", PNS_UNDEFINED_SYMBOL);
            }
            finish(node);
            break;
        }

        case kAdd:
        case kSub:
        case kMult:
        case kDivide:
        case kCompare: {
            auto* bin = static_cast<BinNode*>(node);
            if (frame.state == 0) {
                frame.state = 1;
                start(bin->m_pLeft);
                break;
            }
            if (frame.state == 1) {
                frame.state = 2;
                start(bin->m_pRight);
                break;
            }
            const NodeVariantData& right = *values.back();
            values.pop_back();
            const NodeVariantData& left = *values.back();
            values.pop_back();
            switch (frame.kind) {
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
            if (!value.HasError() && bin->m_pLeft != nullptr && bin->m_pLeft->IsLvalue())
                bin->m_pLeft->Assign(value, symbols);
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
            if (frame.state == 0 && IsNoTable(symbols)) {
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
                activeAliases.pop_back();
                finish(node);
                break;
            }
            ExpressParseNode* tree = nullptr;
            if (IsNoTable(symbols)) {
                value.SetText("Undefined Symbol table ", name, " ", PNS_NO_SYMBOL_TABLE);
            } else if (!symbols.GetAliasValue(name, &tree) || tree == nullptr) {
                value.SetText("Undefined Alias ", name, " ", PNS_UNDEFINED_ALIAS);
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
