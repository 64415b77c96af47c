// Util::TRunningObjectTable<Object>: live objects by name; Util::SystemObjectRegistrar, the
// process-wide table of Util::Object.
//
// The table does not own its objects: AddObject stores a pointer under a name (a later
// AddObject of the same name, in any case, replaces the earlier pointer; a null name or object
// is ignored), GetObject returns it, and RemoveObject takes the entry out and returns the
// object without destroying it. Both give null for a null or unknown name. Names match without
// regard to case (CompareStrings' case-blind order). Every operation is safe from any thread.
// SystemObjectRegistrar::instance() creates the single table on first call and never destroys
// it.
#pragma once

#include "Util/Exception.h"
#include "Util/Export.h"
#include "Util/StringHelpers.h"
#include "Util/TString.h"

#include <map>
#include <mutex>

// <windows.h> maps GetObject to GetObjectA; the table's member keeps its own name.
#if defined(_WIN32) && defined(GetObject)
#undef GetObject
#endif

namespace Util {

template <class Object> class TRunningObjectTable {
public:
    TRunningObjectTable() = default;
    TRunningObjectTable(const TRunningObjectTable&) = delete;
    TRunningObjectTable& operator=(const TRunningObjectTable&) = delete;
    virtual ~TRunningObjectTable() = default;

    virtual void AddObject(Object* object, const char* name) {
        if (object == nullptr || name == nullptr)
            return;
        std::lock_guard<std::mutex> hold(m_lock);
        m_objects[TString(name)] = object;
    }

    virtual Object* GetObject(const char* name) {
        if (name == nullptr)
            return nullptr;
        std::lock_guard<std::mutex> hold(m_lock);
        auto found = m_objects.find(TString(name));
        return found == m_objects.end() ? nullptr : found->second;
    }

    virtual Object* RemoveObject(const char* name) {
        if (name == nullptr)
            return nullptr;
        std::lock_guard<std::mutex> hold(m_lock);
        auto found = m_objects.find(TString(name));
        if (found == m_objects.end())
            return nullptr;
        Object* object = found->second;
        m_objects.erase(found);
        return object;
    }

private:
    struct NameLess {
        bool operator()(const TString& a, const TString& b) const {
            return CompareStrings(a.c_str(), b.c_str(), CaseInsensitive) < 0;
        }
    };
    std::mutex m_lock;
    std::map<TString, Object*, NameLess> m_objects;
};

class ZTUTIL_API SystemObjectRegistrar : public TRunningObjectTable<Object> {
public:
    static SystemObjectRegistrar* instance();

private:
    SystemObjectRegistrar();
    ~SystemObjectRegistrar() override;
};

} // namespace Util
