// Reading a value as a C++ type: `ConfigValue::as` and `get`. Included by value.hpp.
#pragma once

#include <concepts>
#include <filesystem>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

namespace detail {

template <class T>
inline constexpr bool is_optional = false;
template <class T>
inline constexpr bool is_optional<std::optional<T>> = true;

/// What a value that holds a `T` is called; a text only for what values hold.
template <class T>
inline constexpr std::nullopt_t type_text = std::nullopt;
template <>
inline constexpr std::string_view type_text<std::monostate> = "null";
template <>
inline constexpr std::string_view type_text<bool> = "a flag";
template <>
inline constexpr std::string_view type_text<Integer> = "an integer";
template <>
inline constexpr std::string_view type_text<double> = "a float";
template <>
inline constexpr std::string_view type_text<std::string> = "a text";
template <>
inline constexpr std::string_view type_text<List> = "a list";
template <>
inline constexpr std::string_view type_text<Mapping> = "a mapping";

template <class T>
concept Held = std::convertible_to<decltype(type_text<T>), std::string_view>;

/// What `ConfigValue::as<T>` accepts, in words.
template <class T>
std::string wanted_text() {
    if constexpr (Held<T>) {
        return std::string(type_text<T>);
    } else if constexpr (BuiltinInteger<T>) {
        return "an integer from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
               std::to_string(std::numeric_limits<T>::max());
    } else if constexpr (std::same_as<T, Number>) {
        return "a number";
    } else if constexpr (std::same_as<T, std::filesystem::path>) {
        return wanted_text<std::string>();
    } else if constexpr (is_vector<T>) {
        return "a list, each item " + wanted_text<typename T::value_type>();
    } else if constexpr (is_optional<T>) {
        return "null or " + wanted_text<typename T::value_type>();
    } else {
        return "a value";
    }
}

/// Throws the TypeError of a value that is not what is `wanted`.
[[noreturn]] VELMORA_EXPORT void refuse(std::string_view wanted, const ConfigValue& got);

}  // namespace detail

template <class T>
std::optional<T> ConfigValue::as() const {
    if constexpr (std::same_as<T, ConfigValue>) {
        return *this;
    } else if constexpr (detail::Held<T>) {
        const auto* held = get_if<T>();
        return held != nullptr ? std::optional<T>(*held) : std::nullopt;
    } else if constexpr (BuiltinInteger<T>) {
        const auto* held = get_if<Integer>();
        return held != nullptr ? held->as<T>() : std::nullopt;
    } else if constexpr (std::same_as<T, Number>) {
        if (const auto* held = get_if<Integer>()) return *held;
        const auto* held = get_if<double>();
        return held != nullptr ? std::optional<T>(*held) : std::nullopt;
    } else if constexpr (std::same_as<T, std::filesystem::path>) {
        const auto* held = get_if<std::string>();
        return held != nullptr ? std::optional<T>(*held) : std::nullopt;
    } else if constexpr (detail::is_vector<T>) {
        const auto* held = get_if<List>();
        if (held == nullptr) return std::nullopt;
        T items;
        items.reserve(held->size());
        for (const ConfigValue& item : *held) {
            std::optional<typename T::value_type> read = item.as<typename T::value_type>();
            if (!read) return std::nullopt;
            items.push_back(*std::move(read));
        }
        return items;
    } else {
        static_assert(detail::is_optional<T>, "no value reads as this type");
        if (is_null()) return T();
        std::optional<typename T::value_type> read = as<typename T::value_type>();
        return read ? std::optional<T>(std::move(read)) : std::nullopt;
    }
}

template <class T>
T ConfigValue::get() const {
    std::optional<T> read = as<T>();
    if (!read) detail::refuse(detail::wanted_text<T>(), *this);
    return *std::move(read);
}

}  // namespace velmora::config
