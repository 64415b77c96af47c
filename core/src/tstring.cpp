#include "Util/TString.h"

#include <cstdio>

namespace Norvane {
namespace Utilities {

void FormatStringV(std::string& out, const char* format, va_list args) {
    out.clear();
    if (format == nullptr)
        return;
    char small[256];
    va_list copy;
    va_copy(copy, args);
    int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0)
        return;
    if (static_cast<std::size_t>(needed) < sizeof small) {
        out.assign(small, static_cast<std::size_t>(needed));
        return;
    }
    out.resize(static_cast<std::size_t>(needed) + 1);
    va_copy(copy, args);
    std::vsnprintf(&out[0], out.size(), format, copy);
    va_end(copy);
    out.resize(static_cast<std::size_t>(needed));
}

} // namespace Utilities
} // namespace Norvane
