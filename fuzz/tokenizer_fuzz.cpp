// The tokenizer on its own: every token lies within the text, positions never go backwards, the
// end is reached, and names and strings copy into buffers of exactly their size.
#include "Util/Tokenizer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const long length = static_cast<long>(std::char_traits<char>::length(text.c_str()));
    Util::Tokenizer tokenizer(text.c_str());
    long last = 0;
    for (std::size_t steps = 0;; ++steps) {
        const Util::Tokenizer::EToken token = tokenizer.GetCurrentToken();
        const long at = tokenizer.GetInputLineLocation();
        if (at < last || at > length || steps > text.size() + 1)
            std::abort();
        last = at;
        if (token == Util::Tokenizer::SymbolName) {
            std::vector<char> name(tokenizer.GetSymbolLength() + 1, 'x');
            if (!tokenizer.GetSymbolName(name.data(), name.size()) || name.back() != '\0')
                std::abort();
            if (tokenizer.GetSymbolLength() > 0 &&
                tokenizer.GetSymbolName(name.data(), tokenizer.GetSymbolLength()))
                std::abort();
        } else if (token == Util::Tokenizer::StringLiteral) {
            std::vector<char> string(tokenizer.GetStringLength() + 1, 'x');
            if (!tokenizer.GetString(string.data(), string.size()) || string.back() != '\0')
                std::abort();
        }
        if (token == Util::Tokenizer::EndOfInput || token == Util::Tokenizer::BadToken)
            break;
        tokenizer.GetNextToken();
    }
    return 0;
}
