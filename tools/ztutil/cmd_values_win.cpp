#include "tools/ztutil/cmd_values_stdio.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>

namespace ztutil {
void UseBinaryStdio() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}
} // namespace ztutil
