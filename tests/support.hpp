// What tests of several units share.
#pragma once

#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "velmora/config/spec.hpp"

namespace velmora::test {

/// The name of an error's very type, without its namespaces, and its message.
inline std::string text_of(const std::exception& error) {
    const std::pair<const std::type_info&, const char*> types[] = {{typeid(ValueError), "ValueError"},
                                                                   {typeid(TypeError), "TypeError"},
                                                                   {typeid(OverflowError), "OverflowError"},
                                                                   {typeid(config::ConfigKeyError), "ConfigKeyError"}};
    for (const auto& [type, name] : types) {
        if (typeid(error) == type) return std::string(name) + ": " + message_of(error);
    }
    return std::string("another error: ") + error.what();
}

/// What `action` comes to: the text or the display form of what it returns, or its error.
template <class Action>
std::string outcome(Action action) {
    try {
        if constexpr (std::is_convertible_v<decltype(action()), std::string>) {
            return action();
        } else {
            return display(action());
        }
    } catch (const std::exception& error) {
        return text_of(error);
    }
}

}  // namespace velmora::test
