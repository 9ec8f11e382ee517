// What tests of several units share.
#pragma once

#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

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

/// That no two of these are equal or hash alike, that copies do, and that all can be shown, even once moved from.
template <class T>
void expect_distinct(const std::vector<T>& all) {
    for (const T& a : all) {
        for (const T& b : all) {
            EXPECT_EQ(a == b, &a == &b) << display(a) << display(b);
            EXPECT_EQ(std::hash<T>{}(a) == std::hash<T>{}(b), &a == &b) << display(a) << display(b);
        }
        T given = a;
        const T taken = std::move(given);
        EXPECT_EQ(taken, a) << display(given);
        EXPECT_EQ(testing::PrintToString(taken), display(a));
    }
}

}  // namespace velmora::test
