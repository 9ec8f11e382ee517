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

/// The name of an error's very type, without its namespaces.
inline std::string type_of(const std::exception& error) {
    if (typeid(error) == typeid(ValueError)) return "ValueError";
    if (typeid(error) == typeid(TypeError)) return "TypeError";
    if (typeid(error) == typeid(OverflowError)) return "OverflowError";
    return typeid(error) == typeid(config::ConfigKeyError) ? "ConfigKeyError" : "another error";
}

/// An error's type and message and, behind "<-", the type of its cause, whose message it must hold.
inline std::string text_of(const std::exception& error) {
    std::string text = type_of(error) + ": " + message_of(error);
    const auto* refusal = dynamic_cast<const config::ConfigKeyError*>(&error);
    if (refusal == nullptr || refusal->cause() == nullptr) return text;
    try {
        std::rethrow_exception(refusal->cause());
    } catch (const std::exception& cause) {
        EXPECT_TRUE(text.ends_with("(" + message_of(cause) + ")")) << text;
        return text + " <- " + type_of(cause);
    }
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
