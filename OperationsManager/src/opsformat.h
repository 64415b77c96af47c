// printf-style formatting for the reporting path.
#pragma once

#include <cstdarg>
#include <string>

#include "Util/Export.h"

namespace Util {
namespace OpsDetail {

std::string FormatV(const char* format, va_list args);

// The formatted text of one event: on the stack when short (most diagnostic texts are), so that
// reporting an event allocates nothing. A null format gives an empty text.
class ZTUTIL_API FormattedText {
public:
    FormattedText(const char* format, va_list args);
    FormattedText(const FormattedText&) = delete;
    FormattedText& operator=(const FormattedText&) = delete;
    const char* c_str() const { return m_pText; }

private:
    char m_inline[512];
    std::string m_long;
    const char* m_pText = m_inline;
};

} // namespace OpsDetail
} // namespace Util
