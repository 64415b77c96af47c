// Util::FactoryRegistrar: the process-wide registry of factories by name.
//
// A module registers its factories (objects derived from FactoryRegistrar::BaseFactory, owned
// and kept alive by the module) from its static initialisers; users look them up by name and
// cast to the factory type they expect. Names match without regard to case (CompareStrings'
// case-blind order). The first registration of a name wins; later ones are ignored, and
// UnRegisterFactory deliberately does nothing, so a factory stays registered for the life of
// the process.
//
// GetFactory(name) throws std::runtime_error "Factory is not yet registered" for an unknown
// name. GetFactory(name, libraryName) first loads the library that should register it (once
// per library name, compared without case; the library then stays loaded) and throws
// "Factory is not yet registered, even after loading DLL" when it still is missing, or
// FactoryRegistrar::LibraryLoadError (a std::runtime_error carrying the loader's status, with
// the attributes "Library", "Reason" and "Win32Error") when the library cannot be loaded.
// Every operation is safe from any thread; a library's initialisers may register factories
// while it is being loaded on behalf of another thread.
#pragma once

#include "Util/Export.h"
#include "Util/Status.h"
#include "Util/TString.h"

#include <stdexcept>

namespace Util {

class ZTUTIL_API FactoryRegistrar {
public:
    class ZTUTIL_API BaseFactory {
    public:
        virtual ~BaseFactory();
    };

    class ZTUTIL_API LibraryLoadError : public std::runtime_error {
    public:
        LibraryLoadError(const char* what, const Status& status);
        ~LibraryLoadError() override;
        const Status& GetStatus() const { return m_status; }

    private:
        Status m_status;
    };

    static void RegisterFactory(const TString& name, const BaseFactory& factory);
    static const BaseFactory& GetFactory(const TString& name);
    static const BaseFactory& GetFactory(const TString& name, const TString& libraryName);
    static void UnRegisterFactory(const TString& name);

    FactoryRegistrar() = delete;
};

} // namespace Util
