#include "Util/OpsBridge.h"

namespace Util {

OpsBridge::~OpsBridge() = default;

} // namespace Util
