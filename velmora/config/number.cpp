#include "velmora/config/number.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace velmora::config {

namespace {

std::partial_ordering compare(const Integer& integer, double real) {
    if (std::isnan(real)) return std::partial_ordering::unordered;
    if (std::isinf(real)) return 0.0 <=> real;
    const std::strong_ordering whole = integer <=> Integer::truncated(real);
    return whole != 0 ? std::partial_ordering(whole) : 0.0 <=> real - std::trunc(real);
}

}  // namespace

double Number::to_double() const {
    const Integer* integer = if_integer();
    return integer ? integer->to_double() : *if_double();
}

std::size_t Number::hash() const {
    if (const Integer* integer = if_integer()) return integer->hash();
    const double real = *if_double();
    const bool whole = std::isfinite(real) && real == std::trunc(real);
    return whole ? Integer::truncated(real).hash() : std::hash<double>{}(real);
}

std::partial_ordering operator<=>(const Number& a, const Number& b) {
    if (a.if_integer() && b.if_integer()) return *a.if_integer() <=> *b.if_integer();
    if (a.if_integer()) return compare(*a.if_integer(), *b.if_double());
    if (b.if_integer()) return 0 <=> compare(*b.if_integer(), *a.if_double());
    return *a.if_double() <=> *b.if_double();
}

std::string number_text(const Number& number) {
    const double value = number.to_double();
    if (std::isnan(value)) return "nan";
    std::array<char, 32> text;
    constexpr int significant_digits = 6;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, significant_digits);
    return {text.data(), end.ptr};
}

}  // namespace velmora::config
