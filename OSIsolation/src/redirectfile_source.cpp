#include "OSIsolation/src/redirectfile_source.h"

namespace Util {
namespace RedirectSource {

TString DefaultIniPath() {
    return TString();
}

std::vector<Entry> ReadRedirectSection(const char*) {
    return {};
}

} // namespace RedirectSource
} // namespace Util
