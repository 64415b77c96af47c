#include "Util/RunningObjectTable.h"

namespace Util {

SystemObjectRegistrar::SystemObjectRegistrar() = default;

SystemObjectRegistrar::~SystemObjectRegistrar() = default;

SystemObjectRegistrar* SystemObjectRegistrar::instance() {
    // Never destroyed: modules may remove their objects from their own static destructors.
    static SystemObjectRegistrar* const registrar = new SystemObjectRegistrar;
    return registrar;
}

} // namespace Util
