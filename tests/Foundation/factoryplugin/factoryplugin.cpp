// A shared library whose static initialiser registers a factory, as a module of the
// application does; loaded on demand by the factory tests.
#include "tests/Foundation/factoryplugin/widgetfactory.h"

namespace {

struct PluginWidgetFactory : WidgetFactory {
    int Make() const override { return 1234; }
};

const PluginWidgetFactory g_factory;

const bool g_registered = [] {
    Util::FactoryRegistrar::RegisterFactory("PluginWidget", g_factory);
    return true;
}();

} // namespace
