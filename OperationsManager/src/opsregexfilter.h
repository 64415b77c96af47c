// The regular-expression filters: FILE_NAME_FILTER, FUNC_NAME_FILTER, FUNC_SIG_FILTER and
// MESSAGE_FILTER, each with the attribute "regexp" (RE2 syntax, compiled once, searched in
// linear time).
#pragma once

#include "Util/OpsFilter.h"

namespace Util {
namespace OpsDetail {

enum class RegexField { kFile, kFunction, kSignature, kMessage };

OpsFilterFactory MakeRegexFilterFactory(RegexField field, const char* keyword);

} // namespace OpsDetail
} // namespace Util
