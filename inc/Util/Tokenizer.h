// Util::Tokenizer: splits the zero-terminated text of an expression into tokens for the
// expression parser.
//
// Contract: the tokenizer works in place over the caller's text, which must outlive it; it never
// allocates and never copies the text. It keeps exactly one current token and moves on only when
// GetNextToken is called. Positions are offsets from the start of the text. On EndOfInput, and on
// a byte it does not recognise, the position does not move, so asking again returns the same
// token. Names and string literals are copied out by GetSymbolName / GetString into a buffer of
// the caller's size; a copy that does not fit fails (the buffer gets an empty text) rather than
// overrunning. One tokenizer is used by one thread at a time.
#pragma once

#include <cstddef>

#include "Util/Export.h"

namespace Util {

class ZTUTIL_API Tokenizer {
public:
    enum EToken {
        EndOfInput = 0,
        BadToken = 1,
        Number = 2,
        Plus = 3,
        Times = 4,
        Minus = 5,
        Divide = 6,
        LeftParen = 7,
        RightParen = 8,
        AssignOp = 9,
        SymbolName = 10,
        Less = 11,
        LessEqual = 12,
        Greater = 13,
        GreaterEqual = 14,
        Equal = 15,
        NotEqual = 16,
        NotOp = 17,
        AndOp = 18,
        OrOp = 19,
        StringLiteral = 20,
        AliasMark = 21,
        Comma = 22
    };

    Tokenizer() = default;
    // Starts on text and reads its first token.
    explicit Tokenizer(const char* text);
    Tokenizer(const Tokenizer&) = default;
    Tokenizer& operator=(const Tokenizer&) = default;

    // Starts over on a new text and reads its first token.
    void SetBuffer(const char* text);

    EToken GetNextToken();
    EToken GetCurrentToken() const { return m_token; }

    // The value of the current Number token (1.0 and 0.0 for the keywords true and false).
    double GetNumber() const { return m_number; }

    std::size_t GetSymbolLength() const { return m_symbolLength; }
    // Copies the current identifier, zero-terminated. False (and an empty buffer, when it has room
    // for the terminator) when bufferSize is not at least GetSymbolLength() + 1.
    bool GetSymbolName(char* buffer, std::size_t bufferSize) const;

    std::size_t GetStringLength() const { return m_stringLength; }
    // Copies the current string literal without its quotes; fails like GetSymbolName.
    bool GetString(char* buffer, std::size_t bufferSize) const;

    // The read position (just past the current token) as an offset from the start of the text.
    long GetInputLineLocation() const;

private:
    void EatWhiteSpace();
    EToken ReadToken();

    const char* m_pStart = nullptr;
    const char* m_pPos = nullptr;
    const char* m_pSymbol = nullptr;
    std::size_t m_symbolLength = 0;
    const char* m_pString = nullptr;
    std::size_t m_stringLength = 0;
    EToken m_token = EndOfInput;
    double m_number = 0.0;
};

} // namespace Util
