// GCC 12 reports a false "may be used uninitialized" inside libstdc++'s <regex> when it is built
// with sanitizers; the warning concerns the library's own std::function moves, not this file.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include "OperationsManager/src/opsregexfilter.h"

#include <regex>
#include <string>

#include "OperationsManager/src/opsattributes.h"

namespace Util {
namespace OpsDetail {

namespace {

class RegexFilter : public OpsFilter {
public:
    RegexFilter(RegexField field, const char* keyword, std::string pattern, std::regex regex)
        : m_field(field), m_keyword(keyword), m_pattern(std::move(pattern)),
          m_regex(std::move(regex)) {}
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
        return std::regex_search(subject ? subject : "", m_regex);
    }
    TString Describe() const override {
        return TString((std::string(m_keyword) + "(regexp=" + m_pattern + ")").c_str());
    }

private:
    RegexField m_field;
    const char* m_keyword;
    std::string m_pattern;
    std::regex m_regex;
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
        try {
            std::regex regex(pattern, std::regex::ECMAScript | std::regex::optimize);
            return std::unique_ptr<OpsFilter>(
                new RegexFilter(field, keyword, pattern, std::move(regex)));
        } catch (const std::regex_error& e) {
            error = (std::string(keyword) + ": bad regular expression \"" + pattern + "\" (" +
                     e.what() + ")")
                        .c_str();
            return nullptr;
        }
    };
}

} // namespace OpsDetail
} // namespace Util
