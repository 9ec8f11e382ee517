// A number: an integer of any size or a double, in one exact order.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "velmora/config/integer.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// The built-in floating-point types that a double holds exactly.
template <class T>
concept BuiltinFloat = std::same_as<T, double> || std::same_as<T, float>;

class VELMORA_EXPORT Number {
public:
    template <BuiltinInteger I>
    Number(I value) : value_(Integer(value)) {}
    template <BuiltinFloat F>
    Number(F value) noexcept : value_(double{value}) {}
    Number(Integer value) noexcept : value_(std::move(value)) {}

    /// The integer or the double that this number is; null when it is the other.
    const Integer* if_integer() const noexcept { return std::get_if<Integer>(&value_); }
    const double* if_double() const noexcept { return std::get_if<double>(&value_); }

    /// The number as a double, an integer as the nearest one. Throws OverflowError as
    /// `Integer::to_double` does.
    double to_double() const;

    /// Agrees with `==`: an integer and a double of the same value hash alike.
    std::size_t hash() const;

    /// By numeric value and exact: no integer is rounded to be compared with a double. NaN is
    /// unordered and equals nothing, itself included; zeros of both signs are equal.
    friend bool operator==(const Number& a, const Number& b) { return (a <=> b) == 0; }
    VELMORA_EXPORT friend std::partial_ordering operator<=>(const Number& a, const Number& b);

private:
    std::variant<Integer, double> value_;
};

/// The number in the general format "g" with 6 significant digits ("0.5", "65535", "1e+06"), an
/// integer as the nearest double. Throws OverflowError when there is none.
VELMORA_EXPORT std::string number_text(const Number& number);

/// The double nearest to the number that `text` spells: an optional sign and ASCII digits with an
/// optional point and exponent, nothing else; an infinity when it is too large for a double, zero
/// when it is too small. Takes time linear in the length of the text.
VELMORA_EXPORT std::optional<double> parse_decimal(std::string_view text);

/// The same, NaN for nothing: in a register, where an optional goes through memory.
VELMORA_EXPORT double _decimal_or_nan(std::string_view text);

}  // namespace velmora::config

template <>
struct std::hash<velmora::config::Number> {
    std::size_t operator()(const velmora::config::Number& value) const { return value.hash(); }
};
