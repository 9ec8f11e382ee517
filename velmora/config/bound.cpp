#include "velmora/config/bound.hpp"

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

}  // namespace

bool Bound::admits(const ConfigValue& value) const {
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
