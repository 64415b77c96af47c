// Util::Object, Util::IClone and Util::Exception.
//
// Object is the root of the library's polymorphic classes: a virtual destructor and
// GetClassName(), which names the class ("Util::Object" for the root). IClone is the cloning
// interface: Clone() returns an owning pointer to a copy. Exception carries a Util::Status where
// a constructor or operator cannot return one; it does not override GetClassName, so it names
// itself "Util::Object". Clone() returns a new Exception sharing the same status.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"

#include <memory>

namespace Util {

class ZTUTIL_API Object {
public:
    virtual ~Object();
    virtual const char* GetClassName() const;
};

class ZTUTIL_API IClone {
public:
    virtual ~IClone();
    virtual std::unique_ptr<IClone> Clone() const = 0;
};

class ZTUTIL_API Exception : public Object, public IClone {
public:
    explicit Exception(const Status& status);
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() override;

    Status GetStatus() const { return m_status; }
    std::unique_ptr<IClone> Clone() const override;

private:
    Status m_status;
};

} // namespace Util
