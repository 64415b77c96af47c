// Reading the text attributes that configure filters and handlers.
#pragma once

#include <string>

#include "Util/AttributeSet.h"

namespace Util {
namespace OpsDetail {

// True when the attribute exists; its value as text (numbers and booleans as their text) in out.
bool GetTextAttribute(const AttributeSet& attributes, const char* name, std::string& out);
// The attribute as text, or fallback when it is absent.
std::string GetTextAttributeOr(const AttributeSet& attributes, const char* name,
                               const char* fallback);
// "true", "yes", "1" and "on" (any case) are true; absent gives fallback.
bool GetBoolAttributeOr(const AttributeSet& attributes, const char* name, bool fallback);
// A decimal integer; absent or not a number gives fallback.
long GetLongAttributeOr(const AttributeSet& attributes, const char* name, long fallback);

} // namespace OpsDetail
} // namespace Util
