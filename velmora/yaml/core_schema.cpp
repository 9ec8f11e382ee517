#include "velmora/yaml/core_schema.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"
#include "velmora/yaml/source.hpp"

namespace velmora::yaml {

namespace {

using config::ConfigValue;
using config::Integer;
using Reading = std::optional<ConfigValue>;

using Words = std::initializer_list<std::string_view>;

Reading read_null(std::string_view text) {
    if (utils::is_one_of(text, Words{"", "~", "null", "Null", "NULL"})) return ConfigValue();
    return std::nullopt;
}

Reading read_flag(std::string_view text) {
    if (utils::is_one_of(text, Words{"true", "True", "TRUE"})) return true;
    if (utils::is_one_of(text, Words{"false", "False", "FALSE"})) return false;
    return std::nullopt;
}

// Takes time quadratic in the number of digits.
Reading read_power_of_two_base(std::string_view digits, int bits) {
    const std::string_view all_digits = "0123456789abcdefABCDEF";
    const std::string_view allowed = bits == 3 ? all_digits.substr(0, 8) : all_digits;
    if (digits.empty() || digits.find_first_not_of(allowed) != std::string_view::npos)
        return std::nullopt;
    constexpr std::size_t most_digits = 4096;
    if (digits.size() > most_digits) {
        throw ValueError("an integer in base 8 or 16 has at most 4096 digits");
    }
    std::string decimal;  // The lowest digit first.
    constexpr std::size_t at_once = 12;
    for (; !digits.empty(); digits.remove_prefix(std::min(at_once, digits.size()))) {
        const std::string_view part = digits.substr(0, at_once);
        std::uint64_t carry = 0;
        std::from_chars(part.data(), part.data() + part.size(), carry, 1 << bits);
        for (char& digit : decimal) {
            carry += static_cast<std::uint64_t>(digit - '0') << (part.size() * std::size_t(bits));
            digit = static_cast<char>('0' + carry % 10);
            carry /= 10;
        }
        for (; carry > 0; carry /= 10) decimal += static_cast<char>('0' + carry % 10);
    }
    std::reverse(decimal.begin(), decimal.end());
    return *Integer::parse(decimal.empty() ? "0" : decimal);
}

Reading read_integer(std::string_view text) {
    if (text.starts_with("0o")) return read_power_of_two_base(text.substr(2), 3);
    if (text.starts_with("0x")) return read_power_of_two_base(text.substr(2), 4);
    if (const std::optional<Integer> integer = Integer::parse(text)) return *integer;
    return std::nullopt;
}

Reading read_float(std::string_view text) {
    if (utils::is_one_of(text, Words{".nan", ".NaN", ".NAN"}))
        return std::numeric_limits<double>::quiet_NaN();
    if (const auto decimal = config::parse_decimal(text)) return *decimal;
    const bool negative = utils::take_sign(text);
    if (!utils::is_one_of(text, Words{".inf", ".Inf", ".INF"})) return std::nullopt;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return negative ? -infinity : infinity;
}

struct CoreTag {
    std::string_view tag;
    Reading (*read)(std::string_view);
};

// In the order in which plain scalars try them.
constexpr std::array<CoreTag, 4> core_tags = {{
    {"!!null", read_null},
    {"!!bool", read_flag},
    {"!!int", read_integer},
    {"!!float", read_float},
}};

}  // namespace

std::string short_tag(std::string_view tag) {
    if (!tag.starts_with(core_prefix)) return std::string(tag);
    return "!!" + std::string(tag.substr(core_prefix.size()));
}

std::string unfit_tag_text(std::string_view kind_text) {
    return std::string(kind_text) + " cannot be tagged so: remove the tag";
}

ConfigValue read_scalar(std::string_view tag, std::string text) {
    const std::string wanted = short_tag(tag);
    if (tag == non_specific || wanted == "!!str") return text;
    // What no value but a text begins with needs no further look.
    constexpr std::string_view beginnings = "~nNtTfF.+-0123456789";
    if (tag.empty() && !text.empty() && !is_one_of(text[0], beginnings)) return text;
    for (const auto& [name, read] : core_tags) {
        if (!tag.empty() && wanted != name) continue;
        if (Reading value = read(text)) return *std::move(value);
        if (!tag.empty()) {
            throw ValueError("this is no " + wanted + ": mend it, or remove the tag");
        }
    }
    if (tag.empty()) return text;
    throw ValueError(unfit_tag_text("a scalar"));
}

}  // namespace velmora::yaml
