// Util::AttributeSet: a set of named values held as boost::any.
//
// Typed setters store text (as Util::TString), short, int, long, long long (__int64), double, bool
// or any boost::any value under a name; names are case-sensitive and a set replaces any earlier
// value of that name. Typed getters return false when the name is absent and throw
// boost::bad_any_cast when the value has another type. GetStringAttribute is the one lenient
// reader: it gives integers as decimal text, a bool as "true" or "false" and a double as %g,
// and throws boost::bad_any_cast only for values of other types.
//
// After every change (set, clear one, clear all) the virtual AttributeHasChanged is called, so
// that a derived class can drop whatever it derived from the attributes. The virtual slots are,
// in order: ClearAttribute, AttributeExists, ClearAttributes, AttributeHasChanged. The class
// has no virtual destructor: never delete a derived object through an AttributeSet pointer.
// One thread at a time, like any value.
#pragma once

#include "Util/Export.h"
#include "Util/TString.h"

#include <boost/any.hpp>

#include <string>
#include <utility>
#include <vector>

namespace Util {

class ZTUTIL_API AttributeSet {
public:
    AttributeSet() = default;
    AttributeSet(const AttributeSet&) = default;
    AttributeSet& operator=(const AttributeSet&) = default;

    virtual void ClearAttribute(const char* name);
    virtual bool AttributeExists(const char* name) const;
    virtual void ClearAttributes();
    virtual void AttributeHasChanged() {}

    void SetAttribute(const char* name, const char* value);
    void SetAttribute(const char* name, const TString& value);
    void SetAttribute(const char* name, short value);
    void SetAttribute(const char* name, int value);
    void SetAttribute(const char* name, long value);
    void SetAttribute(const char* name, long long value);
    void SetAttribute(const char* name, double value);
    void SetAttribute(const char* name, bool value);
    void SetAttribute(const char* name, const boost::any& value);
    // Copies every attribute of other into this set, replacing values of the same name.
    void SetAttributes(const AttributeSet& other);

    bool GetStringAttribute(const char* name, TString& value) const;
    bool GetShortAttribute(const char* name, short& value) const;
    bool GetIntAttribute(const char* name, int& value) const;
    bool GetLongAttribute(const char* name, long& value) const;
    bool GetInt64Attribute(const char* name, long long& value) const;
    bool GetDoubleAttribute(const char* name, double& value) const;
    bool GetBoolAttribute(const char* name, bool& value) const;
    bool GetAnyAttribute(const char* name, boost::any& value) const;

    std::size_t GetAttributeCount() const { return m_attributes.size(); }
    // The attribute names, in the order they were first set.
    std::vector<std::string> GetAttributeNames() const;

private:
    using Entry = std::pair<std::string, boost::any>;

    const boost::any* Find(const char* name) const;
    void Store(const char* name, boost::any value);
    template <typename T> bool GetTyped(const char* name, T& value) const;

    // Few attributes per set: a vector searched in order beats a tree here.
    std::vector<Entry> m_attributes;
};

} // namespace Util
