// The expression engine on arbitrary text: parsing, evaluation, copying, printing, listing and
// destroying must never crash, and a failed parse must say where it stopped within the text.
#include "Util/ExpressionParser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// Knows a few names, aliases that may refer to each other (and to themselves), and a function.
class FuzzSymbols : public Util::SymbolLookupValues {
public:
    FuzzSymbols() {
        m_alias.Parse("a + $(b)");
        m_other.Parse("$(a) * 2");
    }
    bool GetSymbolValue(const char* name, Util::Variant& value) const override {
        if (name[0] == 'x')
            value = 3L;
        else if (name[0] == 's')
            value = "12";
        else if (name[0] == 'd')
            value = 0.5;
        else
            return false;
        return true;
    }
    bool SetSymbolValue(const char*, Util::Variant) const override { return true; }
    bool GetFunctionValue(const char* name, Util::ParseNodeStatus& status, Util::Variant& result,
                          const std::vector<Util::Variant>& arguments) const override {
        if (name[0] != 'f') {
            status = Util::PNS_UNDEFINED_SYMBOL;
            return false;
        }
        if (arguments.size() > 3) {
            status = Util::PNS_WRONG_PARAMETER_COUNT;
            return false;
        }
        result = static_cast<long>(arguments.size());
        return true;
    }
    bool GetAliasValue(const char* name, Util::ExpressParseNode** tree) const override {
        if (name[0] == 'a')
            *tree = m_alias.GetParseTree();
        else if (name[0] == 'b')
            *tree = m_other.GetParseTree();
        else
            return false;
        return true;
    }

private:
    Util::ExpressionParser m_alias;
    Util::ExpressionParser m_other;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzSymbols symbols;
    const std::string text(reinterpret_cast<const char*>(data), size); // stops at the first zero
    Util::ExpressionParser parser;
    const Util::ParseNodeStatus status = parser.Parse(text.c_str());
    if (status != Util::PNS_SUCCESS &&
        (parser.GetParseBuffLocation() < 0 ||
         static_cast<std::size_t>(parser.GetParseBuffLocation()) > text.size()))
        std::abort();
    Util::Variant result;
    parser.Execute(result, symbols);
    parser.Execute(result, Util::NoSymbolTable());
    if (Util::ExpressParseNode* root = parser.GetParseTree()) {
        Util::ExpressionParserExecute copy(root->CopyNode());
        Util::Variant again;
        copy.Execute(again, symbols);
        parser.Print(symbols, Util::EPPV_PRINT_VALUES);
        std::vector<Util::TString> names;
        parser.GetVariableList(
            names,
            static_cast<Util::VariableListTypes>(Util::VLT_ALIASES | Util::VLT_EXPAND_ALIASES),
            symbols);
    }
    Util::TString text2;
    result.GetString(text2);
    return 0;
}
