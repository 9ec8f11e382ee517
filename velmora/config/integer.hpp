// An integer of any size: read, shown, compared and converted, never calculated with.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "velmora/utils/export.hpp"

namespace velmora::config {

/// The built-in types that stand for integers: all standard signed and unsigned ones, but neither
/// `bool` nor the character types, which would silently turn a flag or a letter into a number.
template <class T>
concept BuiltinInteger = std::integral<T> && sizeof(T) <= sizeof(std::int64_t) &&
                         !(std::same_as<T, bool> || std::same_as<T, char> ||
                           std::same_as<T, wchar_t> || std::same_as<T, char8_t> ||
                           std::same_as<T, char16_t> || std::same_as<T, char32_t>);

class VELMORA_EXPORT Integer {
public:
    Integer() noexcept = default;

    template <BuiltinInteger I>
    Integer(I value) {
        if (std::in_range<std::int64_t>(value)) {
            small_ = static_cast<std::int64_t>(value);
        } else {
            large_ = std::make_shared<const std::string>(std::to_string(value));
        }
    }

    /// The integer that `text` spells: an optional sign and ASCII digits, nothing else. Takes time
    /// linear in the length of the text.
    static std::optional<Integer> parse(std::string_view text);

    /// The integer part of `value`, cut toward zero. Throws ValueError when `value` is not finite.
    static Integer truncated(double value);

    /// This integer as an `I`, when it fits.
    template <BuiltinInteger I>
    std::optional<I> as() const noexcept {
        if (!large_ && std::in_range<I>(small_)) return static_cast<I>(small_);
        if constexpr (std::same_as<std::make_unsigned_t<I>, I> && sizeof(I) == 8) {
            if (const std::optional<std::uint64_t> value = as_uint64())
                return static_cast<I>(*value);
        }
        return std::nullopt;
    }

    /// The nearest double, ties to even. Throws OverflowError when the magnitude is 2^1024 - 2^970
    /// or more, from which on no finite double is the nearest.
    double to_double() const;

    /// Its decimal digits, all of them, with a "-" before a negative value.
    std::string text() const;

    /// Appends the beginning of `text()`, at most `most` characters, to `out`.
    void append_text(std::string& out, std::size_t most) const;

    bool negative() const noexcept { return large_ ? large_->front() == '-' : small_ < 0; }

    std::size_t hash() const noexcept;

    friend bool operator==(const Integer& a, const Integer& b) noexcept { return (a <=> b) == 0; }
    VELMORA_EXPORT friend std::strong_ordering operator<=>(const Integer& a,
                                                           const Integer& b) noexcept;

private:
    /// The integer of `digits`, which are not empty, and too many to be sure that it is small.
    static std::optional<Integer> parse_long(std::string_view digits, bool negative);

    std::optional<std::uint64_t> as_uint64() const noexcept;

    std::int64_t small_ = 0;
    /// The text of an integer beyond the range of `small_`, else null.
    std::shared_ptr<const std::string> large_;
};

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::Integer> {
    std::size_t operator()(const velmora::config::Integer& value) const noexcept {
        return value.hash();
    }
};
