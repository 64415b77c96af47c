#include "OperationsManager/src/opsformat.h"

#include <cstdio>

namespace Util {
namespace OpsDetail {

std::string FormatV(const char* format, va_list args) {
    const FormattedText text(format, args);
    return std::string(text.c_str());
}

FormattedText::FormattedText(const char* format, va_list args) {
    m_inline[0] = '\0';
    if (format == nullptr)
        return;
    // Only long texts pay for a second pass.
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(m_inline, sizeof m_inline, format, copy);
    va_end(copy);
    if (needed < 0) {
        m_pText = format;
        return;
    }
    if (static_cast<size_t>(needed) < sizeof m_inline)
        return;
    m_long.resize(static_cast<size_t>(needed) + 1);
    va_copy(copy, args);
    std::vsnprintf(&m_long[0], m_long.size(), format, copy);
    va_end(copy);
    m_long.resize(static_cast<size_t>(needed));
    m_pText = m_long.c_str();
}

} // namespace OpsDetail
} // namespace Util
