#include "velmora/config/number.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

namespace velmora::config {

namespace {

std::partial_ordering compare(const Integer& integer, double real) {
    if (std::isnan(real)) return std::partial_ordering::unordered;
    if (std::isinf(real)) return 0.0 <=> real;
    const std::strong_ordering whole = integer <=> Integer::truncated(real);
    return whole != 0 ? std::partial_ordering(whole) : 0.0 <=> real - std::trunc(real);
}

// The decimal exponent of the first digit of an unsigned decimal number other than zero: 2 for
// 123.4, -1 for 0.5. An exponent too large to be held counts as the largest.
std::int64_t leading_exponent(std::string_view text) {
    const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
    const std::string_view digits = text.substr(0, mark);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t leading = digits.find_first_not_of("0.");
    const auto position = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);
    std::int64_t exponent = 0;
    if (mark < text.size()) {
        std::string_view written = text.substr(mark + 1);
        if (written.starts_with('+')) written.remove_prefix(1);
        if (std::from_chars(written.data(), written.data() + written.size(), exponent).ec !=
            std::errc()) {
            constexpr std::int64_t beyond_any_text = std::numeric_limits<std::int64_t>::max() / 2;
            exponent = written.starts_with('-') ? -beyond_any_text : beyond_any_text;
        }
    }
    return exponent + (leading < point ? position - 1 : position);
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

std::optional<double> parse_decimal(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    // std::from_chars takes another sign, and words, as well.
    if (text.find_first_of(".0123456789") != 0) return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        value = leading_exponent(text) < 0 ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return negative ? -value : value;
}

}  // namespace velmora::config
