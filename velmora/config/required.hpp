// The types of arguments that say what they take: something that must be given, a text or none.
#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace velmora::config::detail {

/// An argument that cannot be left out: neither by giving nothing nor by empty braces, which would
/// make many a type.
template <class T>
class Required {
public:
    template <std::convertible_to<T> U>
    requires(!std::is_null_pointer_v<std::remove_cvref_t<U>>) constexpr Required(U&& value)
        : value_(std::forward<U>(value)) {}

    constexpr const T& operator*() const& noexcept { return value_; }
    constexpr T&& operator*() && noexcept { return std::move(value_); }

private:
    T value_;
};

/// A line or a paragraph that says what something is for.
using Doc = Required<std::string>;

/// A text or none. A null pointer, as std::getenv may return it, is none.
class OptionalText : public std::optional<std::string> {
public:
    using std::optional<std::string>::optional;
    OptionalText(const char* text) {
        if (text != nullptr) emplace(text);
    }
    OptionalText(std::nullptr_t) {}
    OptionalText(std::optional<std::string> text) : std::optional<std::string>(std::move(text)) {}
};

}  // namespace velmora::config::detail
