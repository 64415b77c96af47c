// Readable test names for tables keyed by expression text: "a<>b" becomes "a_Ne_b", so that CTest
// and a failure name the row instead of dumping its bytes.
#pragma once

#include <cctype>
#include <string>

namespace ztest {

inline std::string NameFromText(const char* text) {
    static const struct {
        char c;
        const char* word;
    } words[] = {{'+', "Plus"},  {'-', "Minus"}, {'*', "Times"}, {'/', "Div"},   {'<', "Lt"},
                 {'>', "Gt"},    {'=', "Eq"},    {'!', "Not"},   {'&', "Amp"},   {'|', "Bar"},
                 {':', "Colon"}, {'(', "Open"},  {')', "Close"}, {',', "Comma"}, {'$', "Alias"},
                 {'.', "Dot"},   {'\'', "Q"},    {'"', "DQ"},    {'?', "Query"}};
    std::string name;
    for (const char* p = text; *p != '\0'; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (std::isalnum(c)) {
            name += static_cast<char>(c);
            continue;
        }
        const char* word = "X";
        for (const auto& w : words) {
            if (w.c == *p)
                word = w.word;
        }
        if (std::isspace(c))
            word = "";
        if (*word != '\0')
            name += std::string("_") + word + "_";
    }
    std::string squeezed;
    for (char c : name) {
        if (c != '_' || (!squeezed.empty() && squeezed.back() != '_'))
            squeezed += c;
    }
    while (!squeezed.empty() && squeezed.back() == '_')
        squeezed.pop_back();
    return squeezed.empty() ? "Empty" : squeezed;
}

// The name generator for a parameterized table whose rows have a `text` member.
struct TextName {
    template <class Info> std::string operator()(const Info& info) const {
        return NameFromText(info.param.text);
    }
};

} // namespace ztest
