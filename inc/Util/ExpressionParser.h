// The expression parser: compiles a text such as  Total := (Price * Qty) - $(Discount)  into a
// tree of parse nodes (Util/ParseNode.h) and evaluates the tree against a caller's symbol table.
//
// Contract: ExpressionParserCompile::Parse builds the tree and returns a ParseNodeStatus; the
// offset of the first error found is kept (GetParseBuffLocation: the tokenizer's read position
// when the error was seen). Parsing never throws for bad input and never recurses on the C++
// stack, so any nesting depth and any length of input is accepted. On a syntax error the parser
// stops and keeps no tree; when the only problems are an assignment to something that is not a
// variable (PNS_NOT_LVALUE: the left side is dropped and the right side kept) or text left over
// after a complete expression (PNS_SYNTAX_ERROR), the tree is kept. Callers test the status before
// executing.
//
// Grammar, loosest first: assignment (right-associative, its left side the comparison just
// before ":="), "||", "&&", comparisons (< <= > >= = !=), + and -, * and /, then factors: numbers,
// 'strings', names, calls name(args), $(alias), (expression), -factor, !factor. Binary operators
// are left-associative within their level; a parenthesised subtree has PNT_PARENTHESIS_BIT set in
// its root's node type. "-" directly before a number gives a negative constant.
//
// ExpressionParserExecute::Execute evaluates the tree (PNS_NO_PARSE_TREE and an empty result
// without one); the status is that of the first failing operand in evaluation order. Several
// parsers can share one tree (ExpressionParserExecute built from another parser); the tree goes
// when its last parser does. A parser, and every parser sharing its tree, is used by one thread
// at a time.
#pragma once

#include <vector>

#include "Util/Export.h"
#include "Util/ParseNode.h"
#include "Util/TString.h"
#include "Util/Tokenizer.h"
#include "Util/Variant.h"

namespace Util {

enum ExpressionParserPrintValues { EPPV_NO_VALUES = 0, EPPV_PRINT_VALUES = 1 };

class ParseTreeHolder;

class ZTUTIL_API ExpressionParserBase {
public:
    ExpressionParserBase();
    virtual ~ExpressionParserBase();

    // Replaces the tree by root (now owned by the parser) and returns the old root, which the
    // caller then owns; when the old tree is still shared with another parser, that parser keeps
    // it and null is returned.
    virtual ExpressParseNode* SetExpressionNode(ExpressParseNode* root);
    virtual ExpressParseNode* GetParseTree() const;
    // Deletes node; deleting this parser's own root also drops the parser's tree.
    virtual void DeleteParseTree(ExpressParseNode* node);
    virtual void SetParseBuffLocation(long location);
    virtual long GetParseBuffLocation() const;
    // The tree as text (see Util/ParseNode.h for the layout); empty without a tree.
    virtual TString Print(const SymbolLookupValues& symbols,
                          ExpressionParserPrintValues printValues);

    ParseNodeStatus GetStatus() const { return m_status; }

protected:
    ExpressionParserBase(const ExpressionParserBase& other); // shares other's tree
    ExpressionParserBase& operator=(const ExpressionParserBase&) = delete;

    void ShareTreeOf(const ExpressionParserBase& other);
    void SetStatus(ParseNodeStatus status) { m_status = status; }

    ParseTreeHolder* m_pTree; // shared, counted
    ParseNodeStatus m_status;
    long m_parseBuffLocation;
};

class ZTUTIL_API ExpressionParserCompile : public virtual ExpressionParserBase {
public:
    // tokenizer: used (not owned) when given; otherwise the parser has its own.
    explicit ExpressionParserCompile(Tokenizer* tokenizer = nullptr);
    ~ExpressionParserCompile() override;
    ExpressionParserCompile(const ExpressionParserCompile&) = delete;
    ExpressionParserCompile& operator=(const ExpressionParserCompile&) = delete;

    ParseNodeStatus Parse(const char* text);

private:
    class Builder;

    Tokenizer* m_pTokenizer;
    Tokenizer m_ownTokenizer;
};

class ZTUTIL_API ExpressionParserExecute : public virtual ExpressionParserBase {
public:
    ExpressionParserExecute();
    // Takes root over.
    explicit ExpressionParserExecute(ExpressParseNode* root);
    // Shares other's tree.
    explicit ExpressionParserExecute(const ExpressionParserBase& other);
    ExpressionParserExecute(const ExpressionParserExecute& other);
    ExpressionParserExecute& operator=(const ExpressionParserExecute&) = delete;
    ~ExpressionParserExecute() override;

    ParseNodeStatus Execute(Variant& result, const SymbolLookupValues& symbols);
    // A null table stands for "no symbol table".
    ParseNodeStatus Execute(Variant& result, const SymbolLookupValues* symbols);

    ParseNodeStatus GetVariableList(std::vector<TString>& names, VariableListTypes types,
                                    const SymbolLookupValues& symbols);
};

class ZTUTIL_API ExpressionParser : public ExpressionParserCompile, public ExpressionParserExecute {
public:
    explicit ExpressionParser(Tokenizer* tokenizer = nullptr);
    ~ExpressionParser() override;
    ExpressionParser(const ExpressionParser&) = delete;
    ExpressionParser& operator=(const ExpressionParser&) = delete;
};

} // namespace Util
