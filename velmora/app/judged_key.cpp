#include "velmora/app/judged_key.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "velmora/app/member.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app {

namespace {

using config::ConfigKeyError;
using config::ConfigValue;
using config::KeyKind;
using config::List;
using config::Number;

// Raised for an item of a list.
class RefusedItem : public ConfigKeyError {
public:
    RefusedItem(const ConfigKeyError& error, std::size_t item)
        : ConfigKeyError(error.message(), error.cause()), item_(item) {}

    std::size_t item() const noexcept { return item_; }

private:
    std::size_t item_;
};

// The list as its items are written: itself where no spelling differs.
List spelt(const List& list, const yaml::LocatedValue* document) {
    List written = list;
    for (std::size_t i = 0; document != nullptr && i < list.size(); ++i) {
        const std::string_view spelling = document->spelling(list, i);
        if (spelling.empty()) continue;
        if (written.same_as(list)) written = list.copy();
        written.set(i, spelling);
    }
    return written;
}

bool is_collection(const ConfigValue& value) {
    return value.get_if<List>() != nullptr || value.get_if<config::Mapping>() != nullptr;
}

[[noreturn]] void refuse_to_set(const config::Key& key, KeyKind kind, const ConfigValue& value,
                                const std::string& expected) {
    const std::string shown = _shown(value);
    throw ConfigKeyError("Cannot set " + key.label() + "=" + shown + ": expected " +
                         std::string(name_of(kind)) + " (expected " + expected + ", got " + shown +
                         ")");
}

// Beyond the component, whose texts take every value: a list or a mapping is no text.
void check_is_text(const config::Key& key, const ConfigValue& value) {
    if (is_collection(value)) refuse_to_set(key, KeyKind::str, value, "a text");
}

// The value that a key takes. A float takes what it holds, which then must be in range as well.
ConfigValue coerced(const config::Key& key, bool single, const ConfigValue& raw) {
    if (key.kind() == KeyKind::str) check_is_text(key, raw);
    ConfigValue value = key.coerce(raw);
    if (!single) return value;
    return key.coerce(detail::shortest(static_cast<float>(value.get<double>())));
}

// A number, or a flag that a number was taken as.
std::optional<Number> number_of(const ConfigValue& value) {
    if (const auto* integer = value.get_if<config::Integer>()) return *integer;
    if (const auto* real = value.get_if<double>()) return *real;
    if (const auto* flag = value.get_if<bool>()) return *flag ? 1 : 0;
    return std::nullopt;
}

// Says that a number has been taken as another one.
std::string change_of(const ConfigValue& given, const ConfigValue& taken) {
    const auto number = number_of(given);
    if (!number || given.get_if<bool>() != nullptr) return "";
    const auto made = number_of(taken);
    if (!made || *made == *number) return "";
    return _shown(given) + " is taken as " + _shown(taken);
}

// The number in full, where `number_text` rounds it.
std::string exact_text(const Number& number) {
    std::string text = number_text(number);
    if (const auto* integer = number.if_integer()) return integer->text();
    double read = 0;
    std::from_chars(text.data(), text.data() + text.size(), read);
    return read == *number.if_double() ? text : config::display(ConfigValue(number));
}

bool is_rounded(const Number& number) {
    return exact_text(number) != number_text(number);
}

bool is_open(const std::optional<Number>& end) {
    return !end || (end->if_double() != nullptr && std::isinf(*end->if_double()));
}

std::string exact_text(const config::Bound& bound) {
    std::string text;
    if (!is_open(bound.low()))
        text = (bound.low_open() ? "above " : "at least ") + exact_text(bound.low());
    if (!is_open(bound.high()))
        text += (text.empty() ? "at most " : " and at most ") + exact_text(*bound.high());
    return text;
}

// The unit that a doc says its numbers count.
std::string unit_in(const std::string& doc) {
    constexpr std::array<std::string_view, 8> units = {"bytes",   "nanoseconds",  "microseconds",
                                                       "seconds", "milliseconds", "minutes",
                                                       "hours",   "days"};
    const auto is_letter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    for (std::size_t at = 0; at < doc.size();) {
        const auto start =
            std::find_if(doc.begin() + static_cast<std::ptrdiff_t>(at), doc.end(), is_letter);
        const auto end = std::find_if_not(start, doc.end(), is_letter);
        for (const std::string_view unit : units) {
            if (utils::equal_ignoring_case(std::string_view(start, end), unit))
                return std::string(unit);
        }
        at = static_cast<std::size_t>(end - doc.begin());
    }
    return "";
}

}  // namespace

JudgedKey::JudgedKey(const config::Key& key, const KeyTraits* traits, ConfigValue default_value)
    : key_(&key),
      traits_(traits != nullptr ? *traits : KeyTraits()),
      default_value_(std::move(default_value)),
      label_(key.label()),
      whole_(!traits_.unit.empty() && key.kind() == KeyKind::int_) {
    if (traits_.items != nullptr)
        item_.emplace(
            key.section(), key.name(), traits_.items->kind, key.restart(),
            std::shared_ptr<const config::Setting>(traits_.items, &traits_.items->setting),
            key.owner());
    const KeyKind counts = item_ ? item_->kind() : key.kind();
    if (traits_.unit.empty() && (counts == KeyKind::int_ || counts == KeyKind::float_))
        traits_.unit = unit_in(key.setting().doc());
}

Verdict JudgedKey::judge(const GivenRaw& raw) const {
    Verdict verdict;
    const bool open = !traits_.secret && raw.privacy == Privacy::open;
    try {
        verdict.value = taken(raw);
        verdict.advice = open ? advice_on(raw, verdict.value) : "";
        return verdict;
    } catch (const RefusedItem& error) {
        verdict.item = error.item();
        verdict.refusal = error.message();
        verdict.cause = error.cause();
    } catch (const ConfigKeyError& error) {
        verdict.refusal = error.message();
        verdict.cause = error.cause();
    }
    if (open) return verdict;
    verdict.cause = nullptr;
    const auto* text = raw.value.get_if<std::string>();
    const bool empty = raw.value.is_null() || (text != nullptr && text->empty());
    const bool doubt = !traits_.secret && raw.privacy == Privacy::doubt;
    verdict.refusal = "Invalid value for " + label_ +
                      (empty   ? ", a secret: it is empty"
                       : doubt ? ", which is not shown, since there may be a secret in it"
                               : ", a secret that is not shown") +
                      ". It must be " + accepted_text(true);
    return verdict;
}

std::string JudgedKey::accepted_text(bool all_ends) const {
    const bool list = key_->kind() == KeyKind::list;
    const KeyKind kind = item_ ? item_->kind() : list ? KeyKind::str : key_->kind();
    std::string text(name_of(kind));
    if (list) {
        text = "a list of " + (kind == KeyKind::str ? "text" : text) + "s";
    } else {
        text.insert(0, kind == KeyKind::int_ ? "an " : "a ");
    }
    std::vector<std::string> choices = counted().choices();
    std::sort(choices.begin(), choices.end());
    if (!choices.empty()) text += ", one of: " + utils::joined(choices);
    const auto* bounds = &counted().bounds();
    const auto* said = traits_.items ? &traits_.items->said_bounds : &traits_.said_bounds;
    if (*said && !all_ends) bounds = said;
    const std::string range = *bounds ? exact_text(**bounds) : "";
    return text + (range.empty() ? "" : ", " + range);
}

std::string JudgedKey::note() const {
    const auto& bounds = counted().bounds();
    const bool rounded =
        bounds && (is_rounded(bounds->low()) || (bounds->high() && is_rounded(*bounds->high())));
    std::string text = rounded ? label_ + " takes " + accepted_text(true) : "";
    if (!traits_.unit.empty())
        text += (text.empty() ? label_ : ", and") + " counts " + traits_.unit;
    return text;
}

std::string JudgedKey::shown(const ConfigValue& value) const {
    return is_hidden(value) ? std::string(hidden_text) : _shown(value);
}

std::string JudgedKey::shown_in_full(const ConfigValue& value) const {
    return is_hidden(value) ? std::string(hidden_text) : display(value);
}

ConfigValue JudgedKey::taken(const GivenRaw& raw) const {
    if (raw.value.is_null() && traits_.optional) return {};
    switch (key_->kind()) {
        case KeyKind::list:
            return taken_list(raw);
        case KeyKind::str:
            return raw.spelling.empty() ? coerced(*key_, false, raw.value)
                                        : coerced(*key_, false, raw.spelling);
        case KeyKind::int_:
            // What only counts whole units has no use for a part of one.
            if (const auto* real = raw.value.get_if<double>();
                whole_ && real != nullptr && *real != std::trunc(*real))
                refuse_to_set(*key_, KeyKind::int_, raw.value, "whole " + traits_.unit);
            break;
        default:
            break;
    }
    return coerced(*key_, traits_.single, raw.value);
}

ConfigValue JudgedKey::taken_list(const GivenRaw& raw) const {
    const auto* given = raw.value.get_if<List>();
    if (given == nullptr) {
        // A plain scalar is a list of one, as it is written.
        const bool alone = !raw.spelling.empty();
        ConfigValue split = key_->coerce(alone ? ConfigValue(raw.spelling) : raw.value);
        return item_ ? taken_items(split.get<List>()) : split;
    }
    const bool texts = !item_ || item_->kind() == KeyKind::str;
    const List list = texts ? spelt(*given, raw.document) : *given;
    if (item_) return taken_items(list);
    check_texts(list);
    return key_->coerce(list);
}

void JudgedKey::check_texts(const List& items) const {
    for (std::size_t i = 0; i < items.size(); ++i) {
        try {
            if (is_collection(items[i])) check_is_text(item_key(i), items[i]);
        } catch (const ConfigKeyError& error) {
            throw RefusedItem(error, i);
        }
    }
}

ConfigValue JudgedKey::taken_items(const List& items) const {
    std::vector<ConfigValue> taken(items.begin(), items.end());
    for (std::size_t i = 0; i < taken.size(); ++i) {
        try {
            taken[i] = coerced(*item_, traits_.items->single, taken[i]);
        } catch (const ConfigKeyError&) {
            try {
                coerced(item_key(i), traits_.items->single, taken[i]);
            } catch (const ConfigKeyError& error) {
                throw RefusedItem(error, i);
            }
        }
    }
    return List(std::move(taken));
}

config::Key JudgedKey::item_key(std::size_t item) const {
    const config::Key& like = item_ ? *item_ : *key_;
    const std::string name = key_->name() + " item " + std::to_string(item + 1);
    return {key_->section(),
            name,
            item_ ? item_->kind() : KeyKind::str,
            key_->restart(),
            {traits_.items, &like.setting()},
            key_->owner()};
}

std::string JudgedKey::advice_on(const GivenRaw& raw, const ConfigValue& value) const {
    const auto* given = raw.value.get_if<List>();
    const auto* taken = value.get_if<List>();
    if (given == nullptr || taken == nullptr)
        return raw.spelling.empty() || key_->kind() != KeyKind::str ? change_of(raw.value, value)
                                                                    : "";
    for (std::size_t i = 0; i < std::min(given->size(), taken->size()); ++i) {
        const std::string change = change_of((*given)[i], (*taken)[i]);
        if (!change.empty()) return "item " + std::to_string(i + 1) + ": " + change;
    }
    return "";
}

}  // namespace velmora::app
