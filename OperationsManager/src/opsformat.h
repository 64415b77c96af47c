// printf-style formatting into a std::string for the reporting path.
#pragma once

#include <cstdarg>
#include <string>

namespace Util {
namespace OpsDetail {

std::string FormatV(const char* format, va_list args);

} // namespace OpsDetail
} // namespace Util
