#include <cstdio>

#include "Util/OpsSourceContext.h"

namespace Util {

const TString& SourceContext::GetVisualStudioPrefix() const {
    if (!m_pPrefix) {
        char buffer[512];
        std::snprintf(buffer, sizeof buffer, "%s (%d) : ", m_file ? m_file : "",
                      static_cast<int>(m_line));
        m_pPrefix.reset(new TString(buffer));
    }
    return *m_pPrefix;
}

} // namespace Util
