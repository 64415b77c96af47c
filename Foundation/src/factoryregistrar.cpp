#include "Util/FactoryRegistrar.h"

#include "Util/DynamicLibrary.h"
#include "Util/StringHelpers.h"

#include <map>
#include <memory>
#include <mutex>

namespace Util {

namespace {

struct NameLess {
    bool operator()(const TString& a, const TString& b) const {
        return CompareStrings(a.c_str(), b.c_str(), CaseInsensitive) < 0;
    }
};

// Never destroyed: factories registered by libraries must outlive every static destructor that
// might still look one up, and loaded libraries stay loaded until the process ends.
struct Registry {
    // Guards the factory map only; never held while a library loads, because the library's
    // initialisers come back to register, possibly while another thread holds the loader's lock.
    std::mutex factoriesLock;
    std::map<TString, const FactoryRegistrar::BaseFactory*, NameLess> factories;
    // Serialises loading, so that each library is loaded once.
    std::mutex librariesLock;
    std::map<TString, std::unique_ptr<DynamicLibrary>, NameLess> libraries;

    const FactoryRegistrar::BaseFactory* Find(const TString& name) {
        std::lock_guard<std::mutex> hold(factoriesLock);
        auto found = factories.find(name);
        return found == factories.end() ? nullptr : found->second;
    }
};

Registry& TheRegistry() {
    static Registry* const registry = new Registry;
    return *registry;
}

void LoadOnce(Registry& registry, const TString& libraryName) {
    std::lock_guard<std::mutex> hold(registry.librariesLock);
    if (registry.libraries.count(libraryName) != 0)
        return;
    auto library = std::make_unique<DynamicLibrary>();
    Status status = library->Load(libraryName.c_str());
    if (status.Failed()) {
        TString what("Cannot load library ");
        what += libraryName;
        throw FactoryRegistrar::LibraryLoadError(what.c_str(), status);
    }
    registry.libraries.emplace(libraryName, std::move(library));
}

} // namespace

FactoryRegistrar::BaseFactory::~BaseFactory() = default;

FactoryRegistrar::LibraryLoadError::LibraryLoadError(const char* what, const Status& status)
    : std::runtime_error(what), m_status(status) {}

FactoryRegistrar::LibraryLoadError::~LibraryLoadError() = default;

void FactoryRegistrar::RegisterFactory(const TString& name, const BaseFactory& factory) {
    Registry& registry = TheRegistry();
    std::lock_guard<std::mutex> hold(registry.factoriesLock);
    registry.factories.emplace(name, &factory);
}

const FactoryRegistrar::BaseFactory& FactoryRegistrar::GetFactory(const TString& name) {
    const BaseFactory* factory = TheRegistry().Find(name);
    if (factory == nullptr)
        throw std::runtime_error("Factory is not yet registered");
    return *factory;
}

const FactoryRegistrar::BaseFactory& FactoryRegistrar::GetFactory(const TString& name,
                                                                  const TString& libraryName) {
    Registry& registry = TheRegistry();
    if (const BaseFactory* factory = registry.Find(name))
        return *factory;
    LoadOnce(registry, libraryName);
    const BaseFactory* factory = registry.Find(name);
    if (factory == nullptr)
        throw std::runtime_error("Factory is not yet registered, even after loading DLL");
    return *factory;
}

void FactoryRegistrar::UnRegisterFactory(const TString&) {}

} // namespace Util
