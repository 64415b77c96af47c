#include "OSIsolation/src/redirectfile_platform.h"

namespace Util {
namespace Platform {

bool FileNamesAreCaseBlind() {
    return false;
}

} // namespace Platform
} // namespace Util
