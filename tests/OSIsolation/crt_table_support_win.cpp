// On Windows the C runtime's parameter checks call the invalid-parameter handler, which ends the
// process unless one is installed; the tables want the documented errno results instead.
#include <stdlib.h>

namespace {

void IgnoreInvalidParameter(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t) {}

const bool installed = (_set_invalid_parameter_handler(IgnoreInvalidParameter), true);

} // namespace
