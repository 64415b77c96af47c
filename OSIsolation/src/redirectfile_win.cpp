#include "OSIsolation/src/redirectfile_platform.h"

namespace Util {
namespace Platform {

bool FileNamesAreCaseBlind() {
    return true;
}

} // namespace Platform
} // namespace Util
