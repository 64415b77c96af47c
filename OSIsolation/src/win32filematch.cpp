// Windows' find-first pattern matching. The pattern is first rewritten the way Windows rewrites
// it before the file system sees it (trailing dots dropped, "*.*" becoming "*", and the DOS
// forms of '*', '?' and '.' next to a dot or a wildcard), then run as a small automaton over the
// name, one set of pattern positions per name byte.
#include "Util/Win32Wildcard.h"

#include <array>
#include <cstring>
#include <vector>

namespace Util {

namespace {

enum Token : int {
    Star = 256,    // any run of characters
    DosStar = 257, // any run that stops at the name's last dot (it may take the dot itself)
    DosQm = 258,   // one character other than '.', or nothing at a dot or the end
    DosDot = 259,  // a dot, or nothing at the end of the name
};

int Fold(unsigned char c) {
    return (c >= 'A' && c <= 'Z') ? c - 'A' + 'a' : c;
}

// Small sets live on the stack; long fuzzed patterns fall back to the heap.
class PositionSet {
public:
    explicit PositionSet(std::size_t size) : m_size(size) {
        if (size > m_small.size()) {
            m_large.resize(size);
            m_data = m_large.data();
        } else {
            m_data = m_small.data();
        }
        Clear();
    }
    PositionSet(const PositionSet&) = delete;
    PositionSet& operator=(const PositionSet&) = delete;
    void Clear() { std::memset(m_data, 0, m_size); }
    unsigned char& operator[](std::size_t i) { return m_data[i]; }
    bool Any() const {
        for (std::size_t i = 0; i < m_size; ++i)
            if (m_data[i])
                return true;
        return false;
    }

private:
    std::size_t m_size;
    std::array<unsigned char, 300> m_small;
    std::vector<unsigned char> m_large;
    unsigned char* m_data;
};

void Translate(const char* pattern, std::vector<int>& tokens) {
    const std::size_t length = std::strlen(pattern);
    std::size_t end = length;
    while (end > 0 && pattern[end - 1] == '.')
        --end;
    if (end == 3 && std::strncmp(pattern, "*.*", 3) == 0) {
        tokens.push_back(Star);
        return;
    }
    tokens.reserve(end);
    for (std::size_t i = 0; i < end; ++i) {
        const char c = pattern[i];
        const char next = i + 1 < length ? pattern[i + 1] : '\0';
        if (c == '?')
            tokens.push_back(DosQm);
        else if (c == '*')
            tokens.push_back(next == '.' ? DosStar : Star);
        else if (c == '.' && (next == '?' || next == '*'))
            tokens.push_back(DosDot);
        else
            tokens.push_back(Fold(static_cast<unsigned char>(c)));
    }
}

// Follows the moves that take no character at name position `atDot`/`atEnd`.
void Close(const std::vector<int>& tokens, PositionSet& state, bool atDot, bool atEnd) {
    for (std::size_t p = 0; p < tokens.size(); ++p) {
        if (!state[p])
            continue;
        const int token = tokens[p];
        if (token == Star || token == DosStar || (token == DosQm && (atDot || atEnd)) ||
            (token == DosDot && atEnd))
            state[p + 1] = 1;
    }
}

} // namespace

bool HasWin32Wildcard(const char* pattern) {
    return pattern != nullptr && std::strpbrk(pattern, "*?") != nullptr;
}

bool MatchesWin32Wildcard(const char* pattern, const char* name) {
    if (pattern == nullptr || name == nullptr)
        return false;
    // A pattern of dots only names "." or ".." itself.
    if (pattern[std::strspn(pattern, ".")] == '\0')
        return std::strcmp(pattern, name) == 0;

    thread_local std::vector<int> tokens;
    tokens.clear();
    Translate(pattern, tokens);

    const std::size_t nameLength = std::strlen(name);
    const char* lastDotPtr = std::strrchr(name, '.');
    const std::size_t lastDot =
        lastDotPtr ? static_cast<std::size_t>(lastDotPtr - name) : nameLength;

    PositionSet first(tokens.size() + 1);
    PositionSet second(tokens.size() + 1);
    PositionSet* state = &first;
    PositionSet* next = &second;
    (*state)[0] = 1;
    for (std::size_t i = 0; i < nameLength; ++i) {
        const unsigned char c = static_cast<unsigned char>(name[i]);
        Close(tokens, *state, c == '.', false);
        next->Clear();
        for (std::size_t p = 0; p < tokens.size(); ++p) {
            if (!(*state)[p])
                continue;
            const int token = tokens[p];
            switch (token) {
            case Star:
                (*next)[p] = 1;
                break;
            case DosStar:
                if (i <= lastDot)
                    (*next)[p] = 1;
                break;
            case DosQm:
                if (c != '.')
                    (*next)[p + 1] = 1;
                break;
            case DosDot:
                if (c == '.')
                    (*next)[p + 1] = 1;
                break;
            default:
                if (token == Fold(c))
                    (*next)[p + 1] = 1;
                break;
            }
        }
        std::swap(state, next);
        if (!state->Any())
            return false;
    }
    Close(tokens, *state, false, true);
    return (*state)[tokens.size()] != 0;
}

} // namespace Util
