#include <string>

#include "expression/src/parsetreeengine.h"

namespace Util {
namespace {

using Kind = ParseTreeEngine::Kind;

const char* CompareLabel(CompareType type) {
    switch (type) {
    case CT_LESS:
        return "LT";
    case CT_LESS_EQUAL:
        return "LTE";
    case CT_GREATER:
        return "GT";
    case CT_GREATER_EQUAL:
        return "GTE";
    case CT_EQUAL:
        return "EQ";
    case CT_NOT_EQUAL:
        return "NEQ";
    case CT_AND:
        return "AND";
    default:
        return "OR";
    }
}

bool IsTruthValued(Kind kind) {
    return kind == ParseTreeEngine::kCompare || kind == ParseTreeEngine::kAnd ||
           kind == ParseTreeEngine::kOr || kind == ParseTreeEngine::kNot;
}

struct PrintItem {
    ExpressParseNode* node;
    int height;
};

struct ListItem {
    ExpressParseNode* node; // null: leaving the alias tree on top of the active list
};

} // namespace

void ParseTreeEngine::Print(ExpressParseNode* root, PrintTheNode& printer,
                            const SymbolLookupValues& symbols, const char* rootLabel) {
    if (root == nullptr)
        return;
    const int baseHeight = printer.GetHeight();
    SmallStack<PrintItem, 32> work;
    work.push_back({root, baseHeight});
    std::string line;
    while (!work.empty()) {
        const PrintItem item = work.back();
        work.pop_back();
        ExpressParseNode* node = item.node;
        const bool isRoot = node == root && item.height == baseHeight;
        const Kind kind = isRoot ? ClassifyRoot(node) : ClassifyExact(node);
        printer.SetHeight(item.height);
        if (kind == kForeign && !isRoot) {
            node->Print(printer, symbols);
            continue;
        }

        switch (kind) {
        case kAdd:
            line = "Add";
            break;
        case kSub:
            line = "Sub";
            break;
        case kMult:
            line = "Mult";
            break;
        case kDivide:
            line = "Divide";
            break;
        case kCompare:
        case kAnd:
        case kOr:
            line = CompareLabel(static_cast<CompNode*>(node)->GetCompareType());
            break;
        case kAssign:
            line = "Assign";
            break;
        case kUMinus:
            line = "UnaryMinus";
            break;
        case kNot:
            line = "CompNegate";
            break;
        case kFun:
            line = "Function ";
            line += static_cast<FunNode*>(node)->m_name.c_str();
            break;
        case kNum:
            line = node->m_value.GetText();
            break;
        case kString:
            line = "\"";
            line += node->m_value.GetText();
            line += "\"";
            break;
        case kVar:
            line = "Variable ";
            line += static_cast<VarNode*>(node)->m_name.c_str();
            break;
        case kAlias:
            line = "$(";
            line += static_cast<AliasNode*>(node)->m_name.c_str();
            line += ")";
            break;
        default:
            line = "Unknown";
            break;
        }
        if (isRoot && rootLabel != nullptr)
            line = rootLabel;

        if (printer.GetPrintValues()) {
            const NodeVariantData& value = node->m_value;
            line += " (";
            if (value.GetDataType() == NVDT_STRING) {
                line += "\"";
                line += value.GetText();
                line += "\"";
            } else if (value.GetDataType() == NVDT_NONE) {
                line += "undefined";
            } else if (IsTruthValued(kind) && value.GetDataType() == NVDT_LONG) {
                line += value.GetLong() != 0 ? "true" : "false";
            } else {
                line += value.GetText();
            }
            line += ")";
        }
        printer.PrintLine(line.c_str());

        // Children go on the stack last-first so they print first-first.
        switch (node->m_shape) {
        case ExpressParseNode::kBinary: {
            auto* bin = static_cast<BinNode*>(node);
            if (bin->m_pRight != nullptr)
                work.push_back({bin->m_pRight, item.height + 1});
            if (bin->m_pLeft != nullptr)
                work.push_back({bin->m_pLeft, item.height + 1});
            break;
        }
        case ExpressParseNode::kUnary: {
            auto* unary = static_cast<UnaryNode*>(node);
            if (unary->m_pChild != nullptr)
                work.push_back({unary->m_pChild, item.height + 1});
            break;
        }
        case ExpressParseNode::kMulti: {
            auto* multi = static_cast<MultiValueNode*>(node);
            for (std::size_t i = multi->m_children.size(); i-- > 0;) {
                if (multi->m_children[i] != nullptr)
                    work.push_back({multi->m_children[i], item.height + 1});
            }
            break;
        }
        default:
            break;
        }
    }
    printer.SetHeight(baseHeight);
}

ParseNodeStatus ParseTreeEngine::ListVariables(ExpressParseNode* root, std::vector<TString>& names,
                                               VariableListTypes types,
                                               const SymbolLookupValues& symbols) {
    ParseNodeStatus result = PNS_SUCCESS;
    auto note = [&result](ParseNodeStatus status) {
        if (result == PNS_SUCCESS)
            result = status;
    };
    SmallStack<ListItem, 32> work;
    SmallStack<const ExpressParseNode*, 8> activeAliases;
    if (root != nullptr)
        work.push_back({root});
    bool first = true;
    while (!work.empty()) {
        ExpressParseNode* node = work.back().node;
        work.pop_back();
        if (node == nullptr) {
            activeAliases.pop_back();
            continue;
        }
        const Kind kind = first ? ClassifyRoot(node) : ClassifyExact(node);
        if (kind == kForeign && !first) {
            note(node->GetVariableList(names, types, symbols));
            continue;
        }
        first = false;

        if (kind == kVar) {
            names.push_back(TString(static_cast<VarNode*>(node)->m_name.c_str()));
        } else if (kind == kFun && (types & VLT_FUNCTIONS) != 0) {
            names.push_back(TString(static_cast<FunNode*>(node)->m_name.c_str()));
        } else if (kind == kAlias) {
            const char* name = static_cast<AliasNode*>(node)->m_name.c_str();
            if ((types & VLT_ALIASES) != 0)
                names.push_back(TString(name));
            if ((types & VLT_EXPAND_ALIASES) != 0) {
                ExpressParseNode* tree = nullptr;
                if (&symbols == &NoSymbolTable()) {
                    note(PNS_NO_SYMBOL_TABLE);
                } else if (!symbols.GetAliasValue(name, &tree) || tree == nullptr) {
                    note(PNS_UNDEFINED_ALIAS);
                } else {
                    bool recursive = false;
                    for (std::size_t i = 0; i < activeAliases.size() && !recursive; ++i)
                        recursive = activeAliases[i] == tree;
                    if (recursive) {
                        note(PNS_RECURSIVE_ALIAS);
                    } else {
                        activeAliases.push_back(tree);
                        work.push_back({nullptr}); // leave the alias after its tree
                        work.push_back({tree});
                    }
                }
            }
            continue;
        }

        switch (node->m_shape) {
        case ExpressParseNode::kBinary: {
            auto* bin = static_cast<BinNode*>(node);
            if (bin->m_pRight != nullptr)
                work.push_back({bin->m_pRight});
            if (bin->m_pLeft != nullptr)
                work.push_back({bin->m_pLeft});
            break;
        }
        case ExpressParseNode::kUnary: {
            auto* unary = static_cast<UnaryNode*>(node);
            if (unary->m_pChild != nullptr)
                work.push_back({unary->m_pChild});
            break;
        }
        case ExpressParseNode::kMulti: {
            auto* multi = static_cast<MultiValueNode*>(node);
            for (std::size_t i = multi->m_children.size(); i-- > 0;) {
                if (multi->m_children[i] != nullptr)
                    work.push_back({multi->m_children[i]});
            }
            break;
        }
        default:
            break;
        }
    }
    return result;
}

} // namespace Util
