// A symbol table for the expression tests: named variables, aliases compiled from text, a
// function or two, and a record of every name looked up.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Util/ExpressionParser.h"

namespace ztest {

class TestSymbols : public Util::SymbolLookupValues {
public:
    mutable std::map<std::string, Util::Variant> variables;
    mutable std::vector<std::string> lookups;
    mutable std::vector<std::string> stores;
    bool refuseStores = false;

    bool GetSymbolValue(const char* name, Util::Variant& value) const override {
        lookups.push_back(name);
        auto it = variables.find(name);
        if (it == variables.end())
            return false;
        value = it->second;
        return true;
    }

    bool SetSymbolValue(const char* name, Util::Variant value) const override {
        stores.push_back(name);
        if (refuseStores)
            return false;
        variables[name] = value;
        return true;
    }

    // sum(...) adds its arguments; two(a, b) needs exactly two; anything else is unknown.
    bool GetFunctionValue(const char* name, Util::ParseNodeStatus& status, Util::Variant& result,
                          const std::vector<Util::Variant>& arguments) const override {
        lookups.push_back(std::string(name) + "()");
        const std::string fn(name);
        if (fn == "sum") {
            double total = 0;
            for (const Util::Variant& a : arguments)
                total += static_cast<double>(a);
            result = total;
            return true;
        }
        if (fn == "two") {
            if (arguments.size() != 2) {
                status = Util::PNS_WRONG_PARAMETER_COUNT;
                return false;
            }
            result = static_cast<double>(arguments[0]) * 10 + static_cast<double>(arguments[1]);
            return true;
        }
        return false;
    }

    bool GetAliasValue(const char* name, Util::ExpressParseNode** tree) const override {
        lookups.push_back(std::string("$") + name);
        auto it = aliases.find(name);
        if (it == aliases.end())
            return false;
        *tree = it->second->GetParseTree();
        return true;
    }

    // Compiles text as the alias name; returns the parse status.
    Util::ParseNodeStatus AddAlias(const std::string& name, const char* text) {
        auto parser = std::make_unique<Util::ExpressionParser>();
        const Util::ParseNodeStatus status = parser->Parse(text);
        aliases[name] = std::move(parser);
        return status;
    }

private:
    std::map<std::string, std::unique_ptr<Util::ExpressionParser>> aliases;
};

} // namespace ztest
