#include "tools/ztutil/cmd_values_stdio.h"

namespace ztutil {
// POSIX streams carry bytes unchanged.
void UseBinaryStdio() {}
} // namespace ztutil
