#include "Util/AttributeSet.h"

#include <cstdio>
#include <cstring>

namespace Util {

const boost::any* AttributeSet::Find(const char* name) const {
    if (name == nullptr)
        return nullptr;
    for (const auto& entry : m_attributes) {
        if (entry.first == name)
            return &entry.second;
    }
    return nullptr;
}

void AttributeSet::Store(const char* name, boost::any value) {
    if (name == nullptr)
        return;
    bool replaced = false;
    for (auto& entry : m_attributes) {
        if (entry.first == name) {
            entry.second = std::move(value);
            replaced = true;
            break;
        }
    }
    if (!replaced)
        m_attributes.emplace_back(name, std::move(value));
    AttributeHasChanged();
}

void AttributeSet::ClearAttribute(const char* name) {
    if (name == nullptr)
        return;
    for (auto it = m_attributes.begin(); it != m_attributes.end(); ++it) {
        if (it->first == name) {
            m_attributes.erase(it);
            break;
        }
    }
    AttributeHasChanged();
}

bool AttributeSet::AttributeExists(const char* name) const {
    return Find(name) != nullptr;
}

void AttributeSet::ClearAttributes() {
    m_attributes.clear();
    AttributeHasChanged();
}

void AttributeSet::SetAttribute(const char* name, const char* value) {
    Store(name, TString(value));
}
void AttributeSet::SetAttribute(const char* name, const TString& value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, short value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, int value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, long value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, long long value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, double value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, bool value) {
    Store(name, value);
}
void AttributeSet::SetAttribute(const char* name, const boost::any& value) {
    Store(name, value);
}

void AttributeSet::SetAttributes(const AttributeSet& other) {
    if (&other == this)
        return;
    for (const auto& entry : other.m_attributes) {
        bool replaced = false;
        for (auto& mine : m_attributes) {
            if (mine.first == entry.first) {
                mine.second = entry.second;
                replaced = true;
                break;
            }
        }
        if (!replaced)
            m_attributes.push_back(entry);
    }
    AttributeHasChanged();
}

template <typename T> bool AttributeSet::GetTyped(const char* name, T& value) const {
    const boost::any* found = Find(name);
    if (found == nullptr)
        return false;
    value = boost::any_cast<T>(*found);
    return true;
}

bool AttributeSet::GetStringAttribute(const char* name, TString& value) const {
    const boost::any* found = Find(name);
    if (found == nullptr)
        return false;
    const std::type_info& type = found->type();
    char text[64];
    if (type == typeid(TString)) {
        value = boost::any_cast<const TString&>(*found);
    } else if (type == typeid(long)) {
        std::snprintf(text, sizeof text, "%ld", boost::any_cast<long>(*found));
        value = text;
    } else if (type == typeid(bool)) {
        value = boost::any_cast<bool>(*found) ? "true" : "false";
    } else if (type == typeid(int)) {
        std::snprintf(text, sizeof text, "%d", boost::any_cast<int>(*found));
        value = text;
    } else if (type == typeid(short)) {
        std::snprintf(text, sizeof text, "%d", static_cast<int>(boost::any_cast<short>(*found)));
        value = text;
    } else if (type == typeid(long long)) {
        std::snprintf(text, sizeof text, "%lld",
                      static_cast<long long>(boost::any_cast<long long>(*found)));
        value = text;
    } else if (type == typeid(double)) {
        std::snprintf(text, sizeof text, "%g", boost::any_cast<double>(*found));
        value = text;
    } else if (type == typeid(std::string)) {
        value = boost::any_cast<const std::string&>(*found).c_str();
    } else if (type == typeid(const char*)) {
        value = boost::any_cast<const char*>(*found);
    } else {
        throw boost::bad_any_cast();
    }
    return true;
}

bool AttributeSet::GetShortAttribute(const char* name, short& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetIntAttribute(const char* name, int& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetLongAttribute(const char* name, long& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetInt64Attribute(const char* name, long long& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetDoubleAttribute(const char* name, double& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetBoolAttribute(const char* name, bool& value) const {
    return GetTyped(name, value);
}
bool AttributeSet::GetAnyAttribute(const char* name, boost::any& value) const {
    const boost::any* found = Find(name);
    if (found == nullptr)
        return false;
    value = *found;
    return true;
}

std::vector<std::string> AttributeSet::GetAttributeNames() const {
    std::vector<std::string> names;
    names.reserve(m_attributes.size());
    for (const auto& entry : m_attributes)
        names.push_back(entry.first);
    return names;
}

} // namespace Util
