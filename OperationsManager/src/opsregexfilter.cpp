#include "OperationsManager/src/opsregexfilter.h"

#include <memory>
#include <string>

#include <re2/re2.h>

#include "OperationsManager/src/opsattributes.h"

namespace Util {
namespace OpsDetail {

namespace {

// Patterns come from files that anybody may edit and are searched in texts that other modules
// supply, so the engine must not backtrack or recurse: RE2 runs in time linear in the text and
// in memory bounded by the limit below, whatever the pattern.
const int64_t kMaxProgramMemory = 8 << 20;
// The cost of a search grows with the text and with the pattern's length (a long literal defeats
// the DFA's cache): 1000 characters keeps a search of a 100,000-character text well under a
// second, and no sensible filter comes near it.
const std::size_t kMaxPatternLength = 1000;

RE2::Options FilterOptions() {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_never_capture(true);
    options.set_max_mem(kMaxProgramMemory);
    return options;
}

class RegexFilter : public OpsFilter {
public:
    RegexFilter(RegexField field, const char* keyword, std::unique_ptr<const RE2> regex)
        : m_field(field), m_keyword(keyword), m_regex(std::move(regex)) {}
    bool Matches(const OpsEvent& event) const override {
        const char* subject = nullptr;
        switch (m_field) {
        case RegexField::kFile:
            subject = event.context.GetFile();
            break;
        case RegexField::kFunction:
            subject = event.context.GetFunction();
            break;
        case RegexField::kSignature:
            subject = event.context.GetSignature();
            break;
        case RegexField::kMessage:
            subject = event.text;
            break;
        }
        return RE2::PartialMatch(subject ? subject : "", *m_regex);
    }
    TString Describe() const override {
        return TString((std::string(m_keyword) + "(regexp=" + m_regex->pattern() + ")").c_str());
    }

private:
    RegexField m_field;
    const char* m_keyword;
    std::unique_ptr<const RE2> m_regex;
};

} // namespace

OpsFilterFactory MakeRegexFilterFactory(RegexField field, const char* keyword) {
    return [field, keyword](const AttributeSet& attributes,
                            TString& error) -> std::unique_ptr<OpsFilter> {
        std::string pattern;
        if (!GetTextAttribute(attributes, "regexp", pattern)) {
            error = (std::string(keyword) + " needs the attribute \"regexp\"").c_str();
            return nullptr;
        }
        if (pattern.size() > kMaxPatternLength) {
            error = (std::string(keyword) + ": the regular expression is longer than " +
                     std::to_string(kMaxPatternLength) + " characters")
                        .c_str();
            return nullptr;
        }
        std::unique_ptr<const RE2> regex(new RE2(pattern, FilterOptions()));
        if (!regex->ok()) {
            error = (std::string(keyword) + ": bad regular expression \"" + pattern + "\" (" +
                     regex->error() + ")")
                        .c_str();
            return nullptr;
        }
        return std::unique_ptr<OpsFilter>(new RegexFilter(field, keyword, std::move(regex)));
    };
}

} // namespace OpsDetail
} // namespace Util
