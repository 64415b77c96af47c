#include "Util/Tokenizer.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

namespace Util {
namespace {

// The C classification functions take an int that must be an unsigned char value or EOF; plain
// char is signed here, so bytes above 127 would be out of their domain.
inline bool IsSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}
inline bool IsAlpha(char c) {
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}
inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool EqualsKeyword(const char* name, std::size_t length, const char* keyword) {
    std::size_t i = 0;
    for (; i < length; ++i) {
        if (keyword[i] == '\0' || std::tolower(static_cast<unsigned char>(name[i])) !=
                                      static_cast<unsigned char>(keyword[i]))
            return false;
    }
    return keyword[i] == '\0';
}

bool BoundedCopy(char* buffer, std::size_t bufferSize, const char* source, std::size_t length) {
    if (buffer == nullptr || bufferSize == 0)
        return false;
    if (source == nullptr || length + 1 > bufferSize) {
        buffer[0] = '\0';
        return source == nullptr && length == 0;
    }
    std::memcpy(buffer, source, length);
    buffer[length] = '\0';
    return true;
}

} // namespace

Tokenizer::Tokenizer(const char* text) {
    SetBuffer(text);
}

void Tokenizer::SetBuffer(const char* text) {
    *this = Tokenizer();
    m_pStart = text;
    m_pPos = text;
    if (text != nullptr)
        GetNextToken();
}

Tokenizer::EToken Tokenizer::GetNextToken() {
    m_token = ReadToken();
    return m_token;
}

long Tokenizer::GetInputLineLocation() const {
    return m_pStart == nullptr ? 0 : static_cast<long>(m_pPos - m_pStart);
}

bool Tokenizer::GetSymbolName(char* buffer, std::size_t bufferSize) const {
    return BoundedCopy(buffer, bufferSize, m_pSymbol, m_symbolLength);
}

bool Tokenizer::GetString(char* buffer, std::size_t bufferSize) const {
    return BoundedCopy(buffer, bufferSize, m_pString, m_stringLength);
}

void Tokenizer::EatWhiteSpace() {
    while (IsSpace(*m_pPos))
        ++m_pPos;
}

Tokenizer::EToken Tokenizer::ReadToken() {
    if (m_pPos == nullptr)
        return EndOfInput;
    EatWhiteSpace();
    const char c = *m_pPos;
    const char next = c == '\0' ? '\0' : m_pPos[1];
    switch (c) {
    case '\0':
        return EndOfInput;
    case '!':
        m_pPos += next == '=' ? 2 : 1;
        return next == '=' ? NotEqual : NotOp;
    case '"':
    case '\'': {
        const char* end = std::strchr(m_pPos + 1, c);
        if (end == nullptr) {
            // Unterminated: park on the terminator so the next call reports the end.
            m_pPos += std::strlen(m_pPos);
            return BadToken;
        }
        m_pString = m_pPos + 1;
        m_stringLength = static_cast<std::size_t>(end - m_pString);
        m_pPos = end + 1;
        return StringLiteral;
    }
    case '$':
        ++m_pPos;
        return AliasMark;
    case '(':
        ++m_pPos;
        return LeftParen;
    case ')':
        ++m_pPos;
        return RightParen;
    case '*':
        ++m_pPos;
        return Times;
    case '+':
        ++m_pPos;
        return Plus;
    case '-':
        ++m_pPos;
        return Minus;
    case '/':
        ++m_pPos;
        return Divide;
    case ',':
        ++m_pPos;
        return Comma;
    case '&':
        m_pPos += next == '&' ? 2 : 1;
        return next == '&' ? AndOp : BadToken;
    case '|':
        m_pPos += next == '|' ? 2 : 1;
        return next == '|' ? OrOp : BadToken;
    case ':':
        m_pPos += next == '=' ? 2 : 1;
        return next == '=' ? AssignOp : BadToken;
    case '<':
        if (next == '=' || next == '>') {
            m_pPos += 2;
            return next == '=' ? LessEqual : NotEqual;
        }
        ++m_pPos;
        return Less;
    case '>':
        m_pPos += next == '=' ? 2 : 1;
        return next == '=' ? GreaterEqual : Greater;
    case '=':
        m_pPos += next == '=' ? 2 : 1;
        return Equal;
    default:
        break;
    }

    if (c == '.' || IsDigit(c)) {
        char* end = nullptr;
        const double value = std::strtod(m_pPos, &end);
        // A "." that strtod cannot read is still a number, 0, and the position moves past it
        // so that the next token starts after it.
        if (end == m_pPos) {
            m_number = 0.0;
            ++m_pPos;
            return Number;
        }
        m_number = value;
        m_pPos = end;
        return Number;
    }

    if (IsAlpha(c) || c == '_') {
        const char* begin = m_pPos;
        ++m_pPos;
        while (IsAlpha(*m_pPos) || IsDigit(*m_pPos) || *m_pPos == '_' || *m_pPos == '.')
            ++m_pPos;
        m_pSymbol = begin;
        m_symbolLength = static_cast<std::size_t>(m_pPos - begin);
        if (EqualsKeyword(begin, m_symbolLength, "and"))
            return AndOp;
        if (EqualsKeyword(begin, m_symbolLength, "or"))
            return OrOp;
        if (EqualsKeyword(begin, m_symbolLength, "not"))
            return NotOp;
        if (EqualsKeyword(begin, m_symbolLength, "true")) {
            m_number = 1.0;
            return Number;
        }
        if (EqualsKeyword(begin, m_symbolLength, "false")) {
            m_number = 0.0;
            return Number;
        }
        return SymbolName;
    }

    return BadToken;
}

} // namespace Util
