#include "velmora/config/coercers.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/config/display.hpp"
#include "velmora/config/number.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/text_values.hpp"
#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::config {

namespace {

// A text without its underscores, which must each stand between two digits.
class WithoutUnderscores {
public:
    explicit WithoutUnderscores(std::string_view text) {
        if (text.size() > few_.size()) many_.resize(text.size());
        char* const start = many_.empty() ? few_.data() : many_.data();
        char* end = start;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '_') {
                *end++ = text[i];
                continue;
            }
            const bool between_digits = i > 0 && utils::is_digit(text[i - 1]) &&
                                        i + 1 < text.size() && utils::is_digit(text[i + 1]);
            if (!between_digits) return;
        }
        text_ = {start, end};
    }

    WithoutUnderscores(const WithoutUnderscores&) = delete;
    WithoutUnderscores& operator=(const WithoutUnderscores&) = delete;
    ~WithoutUnderscores() = default;

    // Empty when an underscore is out of place.
    std::string_view text() const { return text_; }

private:
    std::array<char, 64> few_;
    std::string many_;
    std::string_view text_;
};

// Whether `text` spells a number that is none: nan or an infinity.
bool spells_no_number(std::string_view text) {
    utils::take_sign(text);
    return utils::equal_ignoring_case(text, "nan") || utils::equal_ignoring_case(text, "inf") ||
           utils::equal_ignoring_case(text, "infinity");
}

template <class Error>
[[noreturn]] void refuse(std::string_view wanted, const ConfigValue& got) {
    throw Error("expected " + std::string(wanted) + ", got " + _shown(got));
}

[[noreturn]] void refuse_interpreting(const ConfigValue& value, std::string_view kind) {
    throw ValueError("cannot interpret " + display(value) + " as a " + std::string(kind));
}

// The nearest double of `integer`, which `value` stands for.
double finite_double(const Integer& integer, const ConfigValue& value) {
    try {
        return integer.to_double();
    } catch (const OverflowError&) {
        refuse<OverflowError>("an integer below 2^1024 - 2^970 in magnitude", value);
    }
}

Integer to_integer(const ConfigValue& value) {
    if (const auto* text = value.get_if<std::string>()) {
        const std::string_view spelled = utils::trimmed(*text);
        if (auto integer = Integer::parse(spelled)) return *std::move(integer);
        if (auto integer = Integer::parse(WithoutUnderscores(spelled).text()))
            return *std::move(integer);
        refuse<ValueError>("a decimal integer", value);
    }
    if (const auto* integer = value.get_if<Integer>()) return *integer;
    if (const auto* real = value.get_if<double>()) return Integer::truncated(*real);
    refuse<TypeError>("an integer", value);
}

double to_double(const ConfigValue& value) {
    if (const auto* text = value.get_if<std::string>()) {
        const std::string_view spelled = utils::trimmed(*text);
        if (const double real = _decimal_or_nan(spelled); !std::isnan(real)) return real;
        if (const auto real = parse_decimal(WithoutUnderscores(spelled).text())) return *real;
        if (spells_no_number(spelled)) return std::numeric_limits<double>::quiet_NaN();
        refuse<ValueError>("a decimal number", value);
    }
    if (const auto* integer = value.get_if<Integer>()) return finite_double(*integer, value);
    if (const auto* real = value.get_if<double>()) return *real;
    refuse<TypeError>("a number", value);
}

}  // namespace

ConfigValue _coerce_bool(const ConfigValue& value) {
    if (value.get_if<bool>() != nullptr) return value;
    if (const auto number = value.as<Number>()) return *number != 0;
    if (const auto* text = value.get_if<std::string>()) return utils::parse_bool(*text);
    refuse_interpreting(value, "boolean");
}

ConfigValue _coerce_number(const ConfigValue& value, KeyKind kind) {
    const bool whole = kind == KeyKind::int_;
    if (value.get_if<bool>() != nullptr) {
        throw ValueError(whole ? "expected an integer, got a boolean"
                               : "expected a number, got a boolean");
    }
    const auto* given = value.get_if<double>();
    if (given != nullptr && !std::isfinite(*given))
        throw ValueError(display(value) + " is not a finite number");
    if (whole) {
        Integer integer = to_integer(value);
        if (const auto small = integer.as<std::int64_t>()) return *small;
        (void)finite_double(integer, value);
        return integer;
    }
    const double real = to_double(value);
    if (!std::isfinite(real)) throw ValueError(_shown(value) + " is not a finite number");
    return real;
}

ConfigValue _coerce_text(const ConfigValue& value) {
    if (value.is_null()) throw ValueError("no value");
    return plain_text(value);
}

ConfigValue _coerce_list(const ConfigValue& value) {
    if (const auto* text = value.get_if<std::string>())
        return List(utils::split_csv<ConfigValue>(*text));
    const auto* list = value.get_if<List>();
    if (list == nullptr) refuse_interpreting(value, "list");
    const auto is_text = [](const ConfigValue& item) { return item.get_if<std::string>(); };
    if (std::all_of(list->begin(), list->end(), is_text)) return list->copy();
    std::vector<ConfigValue> items;
    items.reserve(list->size());
    for (const ConfigValue& item : *list) items.emplace_back(plain_text(item));
    return List(std::move(items));
}

}  // namespace velmora::config
