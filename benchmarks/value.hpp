// Values as a program without the library would hold them: the inputs of all contenders are made of
// these.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "velmora/config/value.hpp"

namespace bench {

struct Value
    : std::variant<std::monostate, bool, std::int64_t, double, std::string, std::vector<Value>> {
    using variant::variant;
};
using Values = std::vector<Value>;
using Texts = std::vector<std::string>;

/// A mapping, its entries in their order.
using Tree = std::vector<std::pair<std::string, Value>>;

velmora::config::ConfigValue config_value(const Value& value);
velmora::config::ConfigValue config_value(const Tree& tree);

/// The same, all of them.
template <class Plain>
std::vector<velmora::config::ConfigValue> config_values(const std::vector<Plain>& values) {
    return {values.begin(), values.end()};
}

/// The texts of a list, nothing when one of its items is none.
std::optional<Texts> texts_of(const Values& list);

// --- Reading texts by hand, numbers with std::from_chars ---

std::optional<std::int64_t> parse_integer(std::string_view text);
std::optional<double> parse_real(std::string_view text);
std::optional<bool> parse_flag(std::string_view text);
/// What stands between commas, without the blanks around it.
Texts split(std::string_view text);

/// The shortest text that reads as `real`.
std::string real_text(double real);

}  // namespace bench
