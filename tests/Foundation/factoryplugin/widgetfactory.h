// The factory type that the test plugin registers as "PluginWidget".
#pragma once

#include "Util/FactoryRegistrar.h"

struct WidgetFactory : Util::FactoryRegistrar::BaseFactory {
    virtual int Make() const = 0;
};
