// What tests of several units share.
#pragma once

#include <exception>
#include <limits>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "velmora/config/spec.hpp"

namespace velmora::test {

inline constexpr double inf = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();

inline std::string repeated(std::string_view text, int count) {
    std::string all;
    while (count-- > 0) all += text;
    return all;
}

/// 2^1024 - 2^970, the least integer that is nearest to no finite double.
inline const std::string border =
    "1797693134862315807937289714053034150799341327100378269361737789804449682927647509466490"
    "1797758720709633028641669288791094655554785194040263065748867150582068190890200070838367"
    "6273854845817711531764475730270069855571366959622842914819860834936475292719074168444365"
    "510704342711559699508093042880177904174497792";
/// An integer beyond it.
inline const config::Integer huge = config::Integer::parse("1" + std::string(400, '0')).value();

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
    using config::display;
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
