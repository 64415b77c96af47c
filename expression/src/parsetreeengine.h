// The tree walks behind the parse nodes' virtual functions. Copying, printing, listing and
// deleting keep their own explicit stacks (inline for small trees, on the heap beyond), so the
// depth of a tree never becomes depth of C++ calls. Evaluation recurses through the first levels
// of a tree, which is fastest for the formulas people write, and hands anything deeper (and calls,
// aliases and assignments) to an explicit-stack walk that never recurses back. Nodes of classes
// derived outside the library are handed to their own virtual functions, which recurse only as
// deep as their own subtrees.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

#include "Util/ParseNode.h"

namespace Util {

// A stack of trivially copyable items: N inline, then a heap block that doubles.
template <typename T, std::size_t N> class SmallStack {
    static_assert(std::is_trivially_copyable<T>::value, "SmallStack holds plain items");

public:
    SmallStack() = default;
    SmallStack(const SmallStack&) = delete;
    SmallStack& operator=(const SmallStack&) = delete;
    ~SmallStack() {
        if (m_pItems != m_inline)
            std::free(m_pItems);
    }

    bool empty() const { return m_size == 0; }
    std::size_t size() const { return m_size; }
    T& back() { return m_pItems[m_size - 1]; }
    T& operator[](std::size_t index) { return m_pItems[index]; }
    void pop_back() { --m_size; }
    void resize_down(std::size_t size) { m_size = size; }
    void push_back(const T& item) {
        if (m_size == m_capacity)
            Grow();
        m_pItems[m_size++] = item;
    }

private:
    void Grow() {
        const std::size_t capacity = m_capacity * 2;
        T* items = static_cast<T*>(std::malloc(capacity * sizeof(T)));
        if (items == nullptr)
            throw std::bad_alloc();
        std::memcpy(static_cast<void*>(items), m_pItems, m_size * sizeof(T));
        if (m_pItems != m_inline)
            std::free(m_pItems);
        m_pItems = items;
        m_capacity = capacity;
    }

    T m_inline[N];
    T* m_pItems = m_inline;
    std::size_t m_size = 0;
    std::size_t m_capacity = N;
};

class ParseTreeEngine {
public:
    // What the walks know a node to be. kForeign: a class the library does not know, reached
    // through its virtual functions.
    enum Kind : std::uint8_t {
        kForeign,
        kAdd,
        kSub,
        kMult,
        kDivide,
        kCompare,
        kAnd,
        kOr,
        kAssign,
        kUMinus,
        kNot,
        kFun,
        kNum,
        kString,
        kVar,
        kAlias
    };

    // The kind of a node met inside a tree: exactly one of the library's classes, else foreign.
    // The answer is kept in the node: a node's class never changes, and its type only through
    // SetNodeType, which forgets it.
    static Kind ClassifyExact(const ExpressParseNode* node) {
        if (node->m_kindCache != 0)
            return static_cast<Kind>(node->m_kindCache - 1);
        const Kind kind = ClassifyUncached(node);
        node->m_kindCache = static_cast<std::uint8_t>(kind + 1);
        return kind;
    }
    static Kind ClassifyUncached(const ExpressParseNode* node);
    // The kind of the node a walk starts from: any object of (a class derived from) a library
    // class counts as that class.
    static Kind ClassifyRoot(const ExpressParseNode* node);

    static NodeVariantData& Evaluate(ExpressParseNode* root, Kind kind,
                                     const SymbolLookupValues& symbols);
    static ExpressParseNode* Copy(const ExpressParseNode* root, Kind kind);
    static ParseNodeStatus ListVariables(ExpressParseNode* root, std::vector<TString>& names,
                                         VariableListTypes types,
                                         const SymbolLookupValues& symbols);
    // Prints root (with label, when given, instead of its own) and everything below it.
    static void Print(ExpressParseNode* root, PrintTheNode& printer,
                      const SymbolLookupValues& symbols, const char* label);

    // Evaluate: recursion for shallow trees, handing deep or unusual subtrees to EvaluateDeep,
    // which walks with explicit stacks only (a DeepWalk).
    static NodeVariantData& EvaluateDeep(ExpressParseNode* root, Kind kind,
                                         const SymbolLookupValues& symbols);
    static const NodeVariantData& EvaluateShallow(ExpressParseNode* node, Kind kind, bool noTable,
                                                  const SymbolLookupValues& symbols, int depth);
    static inline const NodeVariantData& EvaluateChild(ExpressParseNode* child, bool noTable,
                                                       const SymbolLookupValues& symbols,
                                                       int depth);
    class DeepWalk;

    // The steps of evaluation, one per kind of node, shared by both walks. Each stores its
    // result in the node's own value.
    // Add, Sub, Mult, Divide and the comparisons, once both operands are known.
    static void FinishBinary(Kind kind, BinNode* node, const NodeVariantData& left,
                             const NodeVariantData& right);
    // And, Or after the left operand: true when that settles the value (the right operand is
    // then never evaluated), false when the right operand is needed (then FinishLogical).
    static bool SettleLogical(Kind kind, ExpressParseNode* node, const NodeVariantData& left);
    static void FinishLogical(ExpressParseNode* node, const NodeVariantData& right);
    // UMinus, Not.
    static void FinishUnary(Kind kind, ExpressParseNode* node, const NodeVariantData& operand);
    // Assign, once the right side is known.
    static void FinishAssign(BinNode* node, const NodeVariantData& value,
                             const SymbolLookupValues& symbols);
    // A function call, once its arguments are known.
    static void FinishCall(FunNode* node, const NodeVariantData* const* arguments,
                           std::size_t count, const SymbolLookupValues& symbols);
    static void LookUpVariable(VarNode* node, bool noTable, const SymbolLookupValues& symbols);
    static void ApplyBinary(Kind kind, ExpressParseNode* node, const NodeVariantData& left,
                            const NodeVariantData& right);
    // Lets go of a used inner operand's long text (see parsetreeeval.cpp).
    static bool HoldsReleasableText(ExpressParseNode* child);
    static void ReleaseUsedText(ExpressParseNode* child);
    static bool IsPlainNumber(const NodeVariantData& value) {
        return value.m_status == PNS_SUCCESS &&
               (value.m_type == NVDT_LONG || value.m_type == NVDT_DOUBLE);
    }
    static inline void CombineNumbers(Kind kind, ExpressParseNode* node,
                                      const NodeVariantData& left, const NodeVariantData& right);

    // Deletes the given subtrees without recursing through the destructors.
    static void DeleteSubtrees(ExpressParseNode* const* nodes, std::size_t count);
};

} // namespace Util
