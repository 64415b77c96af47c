// Filters built from arbitrary attribute values, matched against arbitrary events: the first
// line is a regular expression (and an INI group), the rest the event's text. Building either
// succeeds or says why; matching never crashes or stalls, whatever the pattern and the text.
// The INI reader of the value filter parses the same bytes: keys come out lower-cased and values
// trimmed.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "OperationsManager/src/opsinifile.h"
#include "Util/Ops.h"
#include "Util/OpsSubscriptionManager.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = input.find('\n');
    const std::string pattern = input.substr(0, newline);
    const std::string text = newline == std::string::npos ? "" : input.substr(newline + 1);

    Util::OpsSubscriptionManager& manager = Util::GetOps().GetSubscriptionManager();
    static const char* const kRegexKeywords[] = {"MESSAGE_FILTER", "FILE_NAME_FILTER",
                                                 "FUNC_NAME_FILTER", "FUNC_SIG_FILTER"};
    const char* keyword = kRegexKeywords[size % 4];
    Util::AttributeSet attributes;
    attributes.SetAttribute("regexp", pattern.c_str());
    Util::TString error;
    std::unique_ptr<Util::OpsFilter> filter = manager.CreateFilter(keyword, attributes, error);
    if (!filter && error.IsEmpty())
        std::abort();
    if (filter) {
        const Util::MessageContext context(text.c_str(), 1, text.c_str(), text.c_str(),
                                           text.c_str());
        (void)filter->Matches(
            Util::OpsEvent{Util::Ops::kMessage, Util::Ops::kLvlError, context, text.c_str()});
        (void)filter->Describe();
    }

    Util::AttributeSet ini;
    ini.SetAttribute("file_name", "fuzz-missing.ini");
    ini.SetAttribute("group", pattern.c_str());
    ini.SetAttribute("expected_value", text.c_str());
    std::unique_ptr<Util::OpsFilter> iniFilter =
        manager.CreateFilter("INI_VALUE_FILTER", ini, error);
    if (iniFilter)
        (void)iniFilter->Describe();

    for (const auto& entry : Util::OpsDetail::IniFileReader::Parse(input)) {
        for (char c : entry.first)
            if (std::isupper(static_cast<unsigned char>(c)))
                std::abort();
        const std::string& value = entry.second;
        if (!value.empty() && (std::isspace(static_cast<unsigned char>(value.front())) ||
                               std::isspace(static_cast<unsigned char>(value.back()))))
            std::abort();
    }
    return 0;
}
