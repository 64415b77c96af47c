// Shared by the filter and handler registries: find a keyword's factory under the registry's
// lock, then build outside it, turning an unknown keyword or a throwing factory into an error.
#pragma once

#include "Util/AttributeSet.h"
#include "Util/TString.h"

#include <exception>
#include <map>
#include <mutex>
#include <string>

namespace Util {
namespace OpsDetail {

template <typename Factory>
auto CreateFromRegistry(std::mutex& mutex, const std::map<std::string, Factory>& registry,
                        const char* keyword, const char* what, const AttributeSet& attributes,
                        TString& error) -> decltype(std::declval<Factory>()(attributes, error)) {
    Factory factory;
    {
        std::lock_guard<std::mutex> lock(mutex);
        const auto it = registry.find(keyword);
        if (it != registry.end())
            factory = it->second;
    }
    if (!factory) {
        error = (std::string("Unknown ") + what + " \"" + keyword + "\"").c_str();
        return nullptr;
    }
    try {
        return factory(attributes, error);
    } catch (const std::exception& e) {
        error = (std::string(keyword) + ": " + e.what()).c_str();
        return nullptr;
    }
}

} // namespace OpsDetail
} // namespace Util
