#include "expression/src/parsetreeengine.h"

#include <typeinfo>

namespace Util {
namespace {

using Kind = ParseTreeEngine::Kind;

template <typename T> bool Exactly(const ExpressParseNode* node) {
    return typeid(*node) == typeid(T);
}

template <typename T> bool IsA(const ExpressParseNode* node) {
    return dynamic_cast<const T*>(node) != nullptr;
}

template <bool kExact> Kind Classify(const ExpressParseNode* node) {
    auto is = [node](auto* tag) {
        using T = std::remove_pointer_t<decltype(tag)>;
        return kExact ? Exactly<T>(node) : IsA<T>(node);
    };
    switch (node->GetNodeType() & ~static_cast<std::uint32_t>(PNT_PARENTHESIS_BIT)) {
    case PNT_ADD:
        return is(static_cast<AddNode*>(nullptr)) ? ParseTreeEngine::kAdd
                                                  : ParseTreeEngine::kForeign;
    case PNT_SUB:
        return is(static_cast<SubNode*>(nullptr)) ? ParseTreeEngine::kSub
                                                  : ParseTreeEngine::kForeign;
    case PNT_MULT:
        return is(static_cast<MultNode*>(nullptr)) ? ParseTreeEngine::kMult
                                                   : ParseTreeEngine::kForeign;
    case PNT_DIVIDE:
        return is(static_cast<DivideNode*>(nullptr)) ? ParseTreeEngine::kDivide
                                                     : ParseTreeEngine::kForeign;
    case PNT_COMP_LESS:
    case PNT_COMP_LESS_EQUAL:
    case PNT_COMP_GREATER:
    case PNT_COMP_GREATER_EQUAL:
    case PNT_COMP_EQUAL:
    case PNT_COMP_NOT_EQUAL:
    case PNT_COMP_AND:
    case PNT_COMP_OR: {
        if (!is(static_cast<CompNode*>(nullptr)))
            return ParseTreeEngine::kForeign;
        const CompareType type = static_cast<const CompNode*>(node)->GetCompareType();
        return type == CT_AND  ? ParseTreeEngine::kAnd
               : type == CT_OR ? ParseTreeEngine::kOr
                               : ParseTreeEngine::kCompare;
    }
    case PNT_ASSIGN:
        return is(static_cast<AssignNode*>(nullptr)) ? ParseTreeEngine::kAssign
                                                     : ParseTreeEngine::kForeign;
    case PNT_UMINUS:
        return is(static_cast<UMinusNode*>(nullptr)) ? ParseTreeEngine::kUMinus
                                                     : ParseTreeEngine::kForeign;
    case PNT_COMP_NOT:
        return is(static_cast<CompNotNode*>(nullptr)) ? ParseTreeEngine::kNot
                                                      : ParseTreeEngine::kForeign;
    case PNT_FUN:
        return is(static_cast<FunNode*>(nullptr)) ? ParseTreeEngine::kFun
                                                  : ParseTreeEngine::kForeign;
    case PNT_NUM:
        return is(static_cast<NumNode*>(nullptr)) ? ParseTreeEngine::kNum
                                                  : ParseTreeEngine::kForeign;
    case PNT_STRING:
        return is(static_cast<StringNode*>(nullptr)) ? ParseTreeEngine::kString
                                                     : ParseTreeEngine::kForeign;
    case PNT_VAR:
        return is(static_cast<VarNode*>(nullptr)) ? ParseTreeEngine::kVar
                                                  : ParseTreeEngine::kForeign;
    case PNT_ALIAS:
        return is(static_cast<AliasNode*>(nullptr)) ? ParseTreeEngine::kAlias
                                                    : ParseTreeEngine::kForeign;
    default:
        return ParseTreeEngine::kForeign;
    }
}

} // namespace

ParseTreeEngine::Kind ParseTreeEngine::ClassifyUncached(const ExpressParseNode* node) {
    return Classify<true>(node);
}

ParseTreeEngine::Kind ParseTreeEngine::ClassifyRoot(const ExpressParseNode* node) {
    return Classify<false>(node);
}

// ---- deletion --------------------------------------------------------------------------------

void ParseTreeEngine::DeleteSubtrees(ExpressParseNode* const* nodes, std::size_t count) {
    SmallStack<ExpressParseNode*, 32> work;
    for (std::size_t i = 0; i < count; ++i) {
        if (nodes[i] != nullptr)
            work.push_back(nodes[i]);
    }
    while (!work.empty()) {
        ExpressParseNode* node = work.back();
        work.pop_back();
        // Take the children out first, so that this node's destructor finds none and the depth
        // of the tree never becomes depth of destructor calls.
        switch (node->m_shape) {
        case ExpressParseNode::kBinary: {
            auto* bin = static_cast<BinNode*>(node);
            if (bin->m_pLeft != nullptr)
                work.push_back(bin->m_pLeft);
            if (bin->m_pRight != nullptr)
                work.push_back(bin->m_pRight);
            bin->m_pLeft = bin->m_pRight = nullptr;
            break;
        }
        case ExpressParseNode::kUnary: {
            auto* unary = static_cast<UnaryNode*>(node);
            if (unary->m_pChild != nullptr)
                work.push_back(unary->m_pChild);
            unary->m_pChild = nullptr;
            break;
        }
        case ExpressParseNode::kMulti: {
            auto* multi = static_cast<MultiValueNode*>(node);
            for (ExpressParseNode* child : multi->m_children) {
                if (child != nullptr)
                    work.push_back(child);
            }
            multi->m_children.clear();
            break;
        }
        default:
            break;
        }
        delete node;
    }
}

// ---- copying ---------------------------------------------------------------------------------

namespace {

ExpressParseNode* CloneWithoutChildren(const ExpressParseNode* node, Kind kind) {
    switch (kind) {
    case ParseTreeEngine::kAdd:
        return new AddNode(*static_cast<const AddNode*>(node));
    case ParseTreeEngine::kSub:
        return new SubNode(*static_cast<const SubNode*>(node));
    case ParseTreeEngine::kMult:
        return new MultNode(*static_cast<const MultNode*>(node));
    case ParseTreeEngine::kDivide:
        return new DivideNode(*static_cast<const DivideNode*>(node));
    case ParseTreeEngine::kCompare:
    case ParseTreeEngine::kAnd:
    case ParseTreeEngine::kOr:
        return new CompNode(*static_cast<const CompNode*>(node));
    case ParseTreeEngine::kAssign:
        return new AssignNode(*static_cast<const AssignNode*>(node));
    case ParseTreeEngine::kUMinus:
        return new UMinusNode(*static_cast<const UMinusNode*>(node));
    case ParseTreeEngine::kNot:
        return new CompNotNode(*static_cast<const CompNotNode*>(node));
    case ParseTreeEngine::kFun:
        return new FunNode(*static_cast<const FunNode*>(node));
    case ParseTreeEngine::kNum:
        return new NumNode(*static_cast<const NumNode*>(node));
    case ParseTreeEngine::kString:
        return new StringNode(*static_cast<const StringNode*>(node));
    case ParseTreeEngine::kVar:
        return new VarNode(*static_cast<const VarNode*>(node));
    case ParseTreeEngine::kAlias:
        return new AliasNode(*static_cast<const AliasNode*>(node));
    default:
        return nullptr;
    }
}

struct CopyItem {
    const ExpressParseNode* source;
    ExpressParseNode** slot;
};

} // namespace

ExpressParseNode* ParseTreeEngine::Copy(const ExpressParseNode* root, Kind rootKind) {
    if (root == nullptr || rootKind == kForeign)
        return nullptr;
    ExpressParseNode* result = nullptr;
    SmallStack<CopyItem, 32> work;
    work.push_back({root, &result});
    bool first = true;
    try {
        while (!work.empty()) {
            const CopyItem item = work.back();
            work.pop_back();
            const Kind kind = first ? rootKind : ClassifyExact(item.source);
            first = false;
            if (kind == kForeign) {
                *item.slot = item.source->CopyNode();
                continue;
            }
            ExpressParseNode* clone = CloneWithoutChildren(item.source, kind);
            *item.slot = clone;
            switch (clone->m_shape) {
            case ExpressParseNode::kBinary: {
                const auto* from = static_cast<const BinNode*>(item.source);
                auto* to = static_cast<BinNode*>(clone);
                if (from->m_pRight != nullptr)
                    work.push_back({from->m_pRight, &to->m_pRight});
                if (from->m_pLeft != nullptr)
                    work.push_back({from->m_pLeft, &to->m_pLeft});
                break;
            }
            case ExpressParseNode::kUnary: {
                const auto* from = static_cast<const UnaryNode*>(item.source);
                auto* to = static_cast<UnaryNode*>(clone);
                if (from->m_pChild != nullptr)
                    work.push_back({from->m_pChild, &to->m_pChild});
                break;
            }
            case ExpressParseNode::kMulti: {
                const auto* from = static_cast<const MultiValueNode*>(item.source);
                auto* to = static_cast<MultiValueNode*>(clone);
                // Sized once, so the slots handed out stay where they are.
                to->m_children.assign(from->m_children.size(), nullptr);
                for (std::size_t i = from->m_children.size(); i-- > 0;) {
                    if (from->m_children[i] != nullptr)
                        work.push_back({from->m_children[i], &to->m_children[i]});
                }
                break;
            }
            default:
                break;
            }
        }
    } catch (...) {
        // Out of memory half-way: the partial copy is complete as a tree (unfilled slots are
        // null), so it can be deleted normally.
        DeleteSubtrees(&result, 1);
        throw;
    }
    return result;
}

} // namespace Util
