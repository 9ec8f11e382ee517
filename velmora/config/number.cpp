#include "velmora/config/number.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

#include "velmora/utils/hash.hpp"
#include "velmora/utils/texts.hpp"

#if defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__
#error "velmora needs infinities and NaN: leave out -ffast-math, or add -fno-finite-math-only"
#endif
#if !defined(__cpp_lib_to_chars) && !(defined(_LIBCPP_VERSION) && _LIBCPP_VERSION >= 200000)
#error "velmora needs std::from_chars for doubles: libstdc++ 11 or libc++ 20, or later"
#endif

namespace velmora::config {

namespace {

std::partial_ordering compare(const Integer& integer, double real) {
    if (std::isnan(real)) return std::partial_ordering::unordered;
    if (std::isinf(real)) return 0.0 <=> real;
    const std::strong_ordering whole = integer <=> Integer::truncated(real);
    return whole != 0 ? std::partial_ordering(whole) : 0.0 <=> real - std::trunc(real);
}

// Whether an unsigned decimal number that no double is near to is too large for one, and not too
// small.
bool is_too_large(std::string_view text) {
    const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
    std::int64_t exponent = 0;
    if (mark < text.size()) {
        std::string_view written = text.substr(mark + 1);
        if (written.starts_with('+')) written.remove_prefix(1);
        const auto read =
            std::from_chars(written.data(), written.data() + written.size(), exponent);
        // No text is so long that its digits could make up for more.
        constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 2;
        if (read.ec != std::errc()) exponent = written.starts_with('-') ? -most : most;
        exponent = std::clamp(exponent, -most, most);
    }
    const auto point = static_cast<std::int64_t>(std::min(text.find('.'), mark));
    const auto first_digit = static_cast<std::int64_t>(text.find_first_of("123456789"));
    return exponent + point - first_digit > 0;
}

// The number that a few digits spell, with a point or without: an integer and a power of ten that
// are both doubles, so that only their quotient is rounded. NaN for every other text.
double short_decimal(std::string_view text) noexcept {
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    constexpr std::array<double, 15> powers = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                               1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    if (FLT_EVAL_METHOD != 0 || text.size() > powers.size()) return nothing;
    std::int64_t digits = 0;
    std::size_t read = 0;
    std::size_t before_point = text.size();
    for (const char c : text) {
        if (utils::is_digit(c)) {
            digits = 10 * digits + (c - '0');
            ++read;
        } else if (c == '.' && before_point == text.size()) {
            before_point = read;
        } else {
            return nothing;
        }
    }
    if (read == 0) return nothing;
    const std::size_t behind_point = read - std::min(read, before_point);
    return static_cast<double>(digits) / powers[behind_point];
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
    return whole ? Integer::truncated(real).hash()
                 : utils::hash_integer(std::bit_cast<std::int64_t>(real));
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

double _decimal_or_nan(std::string_view text) {
    constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    const bool negative = utils::take_sign(text);
    if (const double value = short_decimal(text); !std::isnan(value))
        return negative ? -value : value;
    // std::from_chars takes another sign, and words, as well.
    if (text.empty() || (text.front() != '.' && !utils::is_digit(text.front()))) return nothing;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return nothing;
    if (error == std::errc::result_out_of_range) {
        value = is_too_large(text) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return negative ? -value : value;
}

std::optional<double> parse_decimal(std::string_view text) {
    const double value = _decimal_or_nan(text);
    return std::isnan(value) ? std::nullopt : std::optional(value);
}

}  // namespace velmora::config
