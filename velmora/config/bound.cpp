#include "velmora/config/bound.hpp"

#include <limits>
#include <ostream>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/hash.hpp"

namespace velmora::config {

namespace {

Number number_of(const ConfigValue& value) {
    if (const auto* flag = value.get_if<bool>()) return *flag ? 1 : 0;
    if (const auto number = value.as<Number>()) return *number;
    throw TypeError("a bound cannot be compared with " + _shown(value) + ", which is no number");
}

std::optional<std::int64_t> small_integer(const Number& number) {
    const Integer* integer = number.if_integer();
    return integer != nullptr ? integer->as<std::int64_t>() : std::nullopt;
}

// Nothing when no double is the very number.
std::optional<double> exact_double(const Number& number) {
    if (const double* real = number.if_double()) return *real;
    constexpr std::int64_t largest = std::int64_t{1} << 53U;
    const auto integer = small_integer(number);
    if (!integer || *integer > largest || *integer < -largest) return std::nullopt;
    return static_cast<double>(*integer);
}

}  // namespace

void Bound::settle() {
    constexpr auto greatest = std::numeric_limits<std::int64_t>::max();
    const auto low = small_integer(low_);
    const auto high = high_ ? small_integer(*high_) : greatest;
    if (low && high && *low < greatest) integers_ = {*low + (low_open_ ? 1 : 0), *high};
    const auto lower = exact_double(low_);
    const auto upper = high_ ? exact_double(*high_) : std::numeric_limits<double>::infinity();
    if (lower && upper) doubles_ = {*lower, *upper};
}

bool Bound::admits_any(const ConfigValue& value) const {
    const Number number = number_of(value);
    if (!(low_open_ ? number > low_ : number >= low_)) return false;
    return !high_ || number <= *high_;
}

std::string Bound::text() const {
    std::string text = (low_open_ ? "above " : "at least ") + number_text(low_);
    if (high_) text += " and at most " + number_text(*high_);
    return text;
}

std::string display(const Bound& bound) {
    return display_fields("Bound",
                          {{"low", display(bound.low())},
                           {"high", display(bound.high() ? ConfigValue(*bound.high()) : nullptr)},
                           {"low_open", display(bound.low_open())}});
}

std::ostream& operator<<(std::ostream& out, const Bound& bound) {
    return out << display(bound);
}

}  // namespace velmora::config

std::size_t std::hash<velmora::config::Bound>::operator()(
    const velmora::config::Bound& bound) const {
    return velmora::utils::hash_fields(bound.low(), bound.high(), bound.low_open());
}
