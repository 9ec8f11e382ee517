#include "velmora/config/coercers.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
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

// `text` without its underscores, `storage` where it has any; nothing when one does not stand
// between two digits.
std::optional<std::string_view> without_underscores(std::string_view text, std::string& storage) {
    std::size_t mark = text.find('_');
    if (mark == std::string_view::npos) return text;
    storage.reserve(text.size());
    std::size_t copied = 0;
    for (; mark != std::string_view::npos; mark = text.find('_', copied)) {
        const bool between_digits = mark > 0 && utils::is_digit(text[mark - 1]) &&
                                    mark + 1 < text.size() && utils::is_digit(text[mark + 1]);
        if (!between_digits) return std::nullopt;
        storage.append(text, copied, mark - copied);
        copied = mark + 1;
    }
    return storage.append(text, copied);
}

std::optional<Integer> read_integer(std::string_view text) {
    if (auto plain = Integer::parse(text)) return plain;
    std::string storage;
    const auto digits = without_underscores(utils::trimmed(text), storage);
    return digits ? Integer::parse(*digits) : std::nullopt;
}

std::optional<double> read_float(std::string_view text) {
    if (const auto plain = parse_decimal(text)) return plain;
    std::string storage;
    const auto plain = without_underscores(utils::trimmed(text), storage);
    if (!plain) return std::nullopt;
    if (const auto decimal = parse_decimal(*plain)) return decimal;
    std::string_view word = *plain;
    utils::take_sign(word);
    if (utils::equal_ignoring_case(word, "nan")) return std::numeric_limits<double>::quiet_NaN();
    if (utils::equal_ignoring_case(word, "inf") || utils::equal_ignoring_case(word, "infinity")) {
        return std::numeric_limits<double>::infinity();
    }
    return std::nullopt;
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
    if (const auto* integer = value.get_if<Integer>()) return *integer;
    if (const auto* real = value.get_if<double>()) return Integer::truncated(*real);
    const auto* text = value.get_if<std::string>();
    if (text == nullptr) refuse<TypeError>("an integer", value);
    if (auto integer = read_integer(*text)) return *std::move(integer);
    refuse<ValueError>("a decimal integer", value);
}

double to_double(const ConfigValue& value) {
    if (const auto* integer = value.get_if<Integer>()) return finite_double(*integer, value);
    if (const auto* real = value.get_if<double>()) return *real;
    const auto* text = value.get_if<std::string>();
    if (text == nullptr) refuse<TypeError>("a number", value);
    if (const auto real = read_float(*text)) return *real;
    refuse<ValueError>("a decimal number", value);
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
        if (!integer.as<std::int64_t>()) (void)finite_double(integer, value);
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
    if (const auto* text = value.get_if<std::string>()) return List(utils::split_csv(*text));
    const auto* list = value.get_if<List>();
    if (list == nullptr) refuse_interpreting(value, "list");
    std::vector<ConfigValue> items;
    items.reserve(list->size());
    for (const ConfigValue& item : *list) items.emplace_back(plain_text(item));
    return List(std::move(items));
}

Coercer coercer_of(KeyKind kind) {
    for (const auto& [own_kind, coerce] : _COERCERS) {
        if (own_kind == kind) return coerce;
    }
    throw std::out_of_range("a key of a kind that has no coercer");
}

}  // namespace velmora::config
