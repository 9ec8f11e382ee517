#include "velmora/config/integer.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::config {

namespace {

// The digits of 2^63, and those of which any number fits.
constexpr std::size_t most_small_digits = 19;
constexpr std::size_t always_small_digits = most_small_digits - 1;

// The digits of 2^1024 - 2^970, of which no magnitude with a nearest finite double has more.
constexpr std::size_t most_double_digits = 309;

std::string_view magnitude(std::string_view text) noexcept {
    utils::take_sign(text);
    return text;
}

template <class N>
std::errc read_whole(std::string_view text, N& value) noexcept {
    return std::from_chars(text.data(), text.data() + text.size(), value).ec;
}

}  // namespace

std::optional<Integer> Integer::parse(std::string_view text) {
    const bool negative = utils::take_sign(text);
    if (text.empty()) return std::nullopt;
    if (text.size() > always_small_digits) return parse_long(text, negative);
    std::int64_t value = 0;
    for (const char c : text) {
        const unsigned digit = static_cast<unsigned char>(c) - unsigned{'0'};
        if (digit > 9) return std::nullopt;
        value = 10 * value + digit;
    }
    return negative ? -value : value;
}

std::optional<Integer> Integer::parse_long(std::string_view digits, bool negative) {
    if (utils::any_byte(digits, [](char c) { return !utils::is_digit(c); })) return std::nullopt;
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size() - 1));
    std::string spelled;
    spelled.reserve(digits.size() + 1);
    if (negative) spelled += '-';
    spelled += digits;
    Integer result;
    const bool may_be_small = digits.size() <= most_small_digits;
    if (may_be_small && read_whole(spelled, result.small_) == std::errc()) return result;
    result.large_ = std::make_shared<const std::string>(std::move(spelled));
    return result;
}

Integer Integer::truncated(double value) {
    if (!std::isfinite(value))
        throw ValueError("cannot cut a number that is not finite to an integer");
    if (value >= -0x1p63 && value < 0x1p63) return static_cast<std::int64_t>(value);
    std::array<char, most_double_digits + 1> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 0);
    return *parse({text.data(), end.ptr});
}

std::optional<std::uint64_t> Integer::as_uint64() const noexcept {
    std::uint64_t value = 0;
    if (!large_ || negative() || read_whole(*large_, value) != std::errc()) return std::nullopt;
    return value;
}

double Integer::to_double() const {
    if (!large_) return static_cast<double>(small_);
    double value = 0;
    if (magnitude(*large_).size() > most_double_digits ||
        read_whole(*large_, value) != std::errc() || !std::isfinite(value)) {
        throw OverflowError("integer too large for a floating-point number");
    }
    return value;
}

std::string Integer::text() const {
    return large_ ? *large_ : std::to_string(small_);
}

void Integer::append_text(std::string& out, std::size_t most) const {
    if (large_) {
        out.append(*large_, 0, most);
        return;
    }
    std::array<char, 20> text;  // A sign and the 19 digits of 2^63.
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), small_);
    out.append(text.data(), std::min(static_cast<std::size_t>(end - text.data()), most));
}

std::size_t Integer::hash() const noexcept {
    return large_ ? utils::hash_text(*large_) : utils::hash_integer(small_);
}

std::strong_ordering operator<=>(const Integer& a, const Integer& b) noexcept {
    if (!a.large_ && !b.large_) return a.small_ <=> b.small_;
    if (a.negative() != b.negative()) return b.negative() <=> a.negative();
    // Of one sign, and a large magnitude exceeds every small one.
    const auto by_magnitude = [&] {
        if (!a.large_ || !b.large_) return bool{a.large_} <=> bool{b.large_};
        const std::string_view left = magnitude(*a.large_);
        const std::string_view right = magnitude(*b.large_);
        return left.size() != right.size() ? left.size() <=> right.size() : left <=> right;
    }();
    return a.negative() ? 0 <=> by_magnitude : by_magnitude;
}

}  // namespace velmora::config
