#include "OSIsolation/src/fileaccreplace_shared.h"

#include <cstdarg>

namespace Util {
namespace FileAcc {

const char* const kModuleFile = "OSIsolation/src/fileaccreplace";

void Raise(Ops::Level level, const SourceContext& where, const char* format, ...) {
    va_list args;
    va_start(args, format);
    GetOps().MessageV(where, level, format, args);
    va_end(args);
}

} // namespace FileAcc
} // namespace Util
