#include "OperationsManager/src/opsformat.h"

#include <cstdio>

namespace Util {
namespace OpsDetail {

std::string FormatV(const char* format, va_list args) {
    if (format == nullptr)
        return std::string();
    // Most diagnostic texts fit on the stack; only long ones pay for a second pass.
    char buffer[512];
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(buffer, sizeof buffer, format, copy);
    va_end(copy);
    if (needed < 0)
        return std::string(format);
    if (static_cast<size_t>(needed) < sizeof buffer)
        return std::string(buffer, static_cast<size_t>(needed));
    std::string text(static_cast<size_t>(needed) + 1, '\0');
    va_copy(copy, args);
    std::vsnprintf(&text[0], text.size(), format, copy);
    va_end(copy);
    text.resize(static_cast<size_t>(needed));
    return text;
}

} // namespace OpsDetail
} // namespace Util
