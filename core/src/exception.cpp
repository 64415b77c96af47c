#include "Util/Exception.h"

namespace Util {

Exception::Exception(const Status& status) : m_status(status) {}

Exception::Exception(const Exception& other)
    : Object(other), IClone(other), m_status(other.m_status) {}

Exception& Exception::operator=(const Exception& other) {
    m_status = other.m_status;
    return *this;
}

Exception::~Exception() = default;

std::unique_ptr<IClone> Exception::Clone() const {
    return std::unique_ptr<IClone>(new Exception(m_status));
}

} // namespace Util
