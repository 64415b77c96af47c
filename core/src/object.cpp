#include "Util/Exception.h"

namespace Util {

Object::~Object() = default;

const char* Object::GetClassName() const {
    return "Util::Object";
}

IClone::~IClone() = default;

} // namespace Util
