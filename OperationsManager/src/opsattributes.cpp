#include "OperationsManager/src/opsattributes.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace Util {
namespace OpsDetail {

bool GetTextAttribute(const AttributeSet& attributes, const char* name, std::string& out) {
    TString value;
    try {
        if (!attributes.GetStringAttribute(name, value))
            return false;
    } catch (const boost::bad_any_cast&) {
        return false;
    }
    out.assign(value.c_str(), value.GetLength());
    return true;
}

std::string GetTextAttributeOr(const AttributeSet& attributes, const char* name,
                               const char* fallback) {
    std::string value;
    return GetTextAttribute(attributes, name, value) ? value : std::string(fallback);
}

bool GetBoolAttributeOr(const AttributeSet& attributes, const char* name, bool fallback) {
    std::string value;
    if (!GetTextAttribute(attributes, name, value))
        return fallback;
    std::transform(value.begin(), value.end(), value.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (value == "true" || value == "yes" || value == "1" || value == "on")
        return true;
    if (value == "false" || value == "no" || value == "0" || value == "off")
        return false;
    return fallback;
}

long GetLongAttributeOr(const AttributeSet& attributes, const char* name, long fallback) {
    std::string value;
    if (!GetTextAttribute(attributes, name, value) || value.empty())
        return fallback;
    char* end = nullptr;
    const long number = std::strtol(value.c_str(), &end, 10);
    return end && *end == '\0' ? number : fallback;
}

} // namespace OpsDetail
} // namespace Util
