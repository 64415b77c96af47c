// Windows' find-first pattern matching. The pattern is first rewritten the way Windows rewrites
// it before the file system sees it (trailing dots dropped, "*.*" becoming "*", and the DOS
// forms of '*', '?' and '.' next to a dot or a wildcard). What is left is either plain characters
// and stars, matched greedily with one backtracking point, or it holds a DOS form and runs as a
// small automaton over the name, one set of pattern positions per name byte.
#include "Util/Win32Wildcard.h"

#include <array>
#include <cstring>

namespace Util {

namespace {

enum Token : int {
    Star = 256,    // any run of characters
    DosStar = 257, // any run that stops at the name's last dot (it may take the dot itself)
    DosQm = 258,   // one character other than '.', or nothing at a dot or the end
    DosDot = 259,  // a dot, or nothing at the end of the name
};

constexpr std::array<unsigned char, 256> MakeFoldTable() {
    std::array<unsigned char, 256> table{};
    for (int c = 0; c < 256; ++c)
        table[c] = static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return table;
}
constexpr std::array<unsigned char, 256> kFold = MakeFoldTable();

int Fold(char c) {
    return kFold[static_cast<unsigned char>(c)];
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
            tokens.push_back(Fold(c));
    }
}

// The greedy form: plain characters and '*' only. A DOS star directly before a literal dot
// behaves as a plain star there, since the dot it must reach lies at or before the name's last
// dot anyway.
bool ToStars(const std::vector<int>& tokens, std::string& text) {
    text.clear();
    text.reserve(tokens.size());
    for (std::size_t p = 0; p < tokens.size(); ++p) {
        const int token = tokens[p];
        if (token == Star || (token == DosStar && p + 1 < tokens.size() && tokens[p + 1] == '.'))
            text.push_back('*');
        else if (token < 256)
            text.push_back(static_cast<char>(token));
        else
            return false;
    }
    return true;
}

// '*' matches any run; every other character of the pattern is already folded. On a mismatch
// the last star takes one more character of the name; an earlier star never needs to.
bool MatchStars(const char* pattern, const char* name) {
    const char* p = pattern;
    const unsigned char* s = reinterpret_cast<const unsigned char*>(name);
    const char* starP = nullptr;
    const unsigned char* starS = nullptr;
    for (;;) {
        if (*p == '*') {
            while (*p == '*')
                ++p;
            if (*p == '\0')
                return true;
            starP = p;
            starS = s;
            continue;
        }
        if (*s == '\0')
            return *p == '\0';
        if (static_cast<unsigned char>(*p) == kFold[*s]) {
            ++p;
            ++s;
            continue;
        }
        if (starP == nullptr)
            return false;
        p = starP;
        s = ++starS;
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

bool MatchGeneral(const std::vector<int>& tokens, const char* name) {
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
        const char c = name[i];
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

} // namespace

Win32Wildcard::Win32Wildcard(const char* pattern) {
    if (pattern == nullptr)
        return;
    // A pattern of dots only names "." or ".." itself.
    if (pattern[std::strspn(pattern, ".")] == '\0') {
        m_form = Form::Exact;
        m_text = pattern;
        return;
    }
    Translate(pattern, m_tokens);
    if (ToStars(m_tokens, m_text)) {
        m_form = Form::Stars;
        m_tokens.clear();
    } else {
        m_form = Form::General;
        m_text.clear();
    }
}

bool Win32Wildcard::Matches(const char* name) const {
    if (name == nullptr)
        return false;
    switch (m_form) {
    case Form::Exact:
        return m_text == name;
    case Form::Stars:
        return MatchStars(m_text.c_str(), name);
    case Form::General:
        return MatchGeneral(m_tokens, name);
    case Form::Nothing:
        break;
    }
    return false;
}

bool HasWin32Wildcard(const char* pattern) {
    return pattern != nullptr && std::strpbrk(pattern, "*?") != nullptr;
}

bool MatchesWin32Wildcard(const char* pattern, const char* name) {
    if (pattern == nullptr || name == nullptr)
        return false;
    struct Prepared {
        std::string pattern;
        Win32Wildcard wildcard{nullptr};
        bool ready = false;
    };
    thread_local Prepared last;
    if (!last.ready || last.pattern != pattern) {
        last.ready = false;
        last.wildcard = Win32Wildcard(pattern);
        last.pattern = pattern;
        last.ready = true;
    }
    return last.wildcard.Matches(name);
}

} // namespace Util
