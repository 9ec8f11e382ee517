#include "velmora/app/judged_key.hpp"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "velmora/app/member.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {

namespace {

using config::ConfigValue;
using config::KeyKind;
using config::List;

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

constexpr std::string_view hidden = "(secret)";

// The value that a key takes. A float takes what it holds, which then must be in range as well.
ConfigValue coerced(const config::Key& key, bool single, const ConfigValue& raw) {
    ConfigValue value = key.coerce(raw);
    if (!single) return value;
    return key.coerce(detail::shortest(static_cast<float>(value.get<double>())));
}

// Whether the text of a bound does not say an integer in full.
bool is_rounded(const config::Number& end) {
    const auto* integer = end.if_integer();
    return integer != nullptr && integer->text() != number_text(end);
}

}  // namespace

JudgedKey::JudgedKey(const config::Key& key, const KeyTraits* traits, ConfigValue default_value)
    : key_(&key),
      traits_(traits != nullptr ? *traits : KeyTraits()),
      default_value_(std::move(default_value)),
      label_(key.label()) {
    if (traits_.items != nullptr) item_ = item_key(key.name());
}

config::Key JudgedKey::item_key(const std::string& name) const {
    return {key_->section(),
            name,
            traits_.items->kind,
            key_->restart(),
            {traits_.items, &traits_.items->setting},
            key_->owner()};
}

ConfigValue JudgedKey::judge(const GivenRaw& raw, bool secret) const {
    if (!traits_.secret && !secret) return judge_openly(raw);
    try {
        return judge_openly(raw);
    } catch (const config::ConfigKeyError&) {
    }
    throw config::ConfigKeyError("Invalid value for " + label_ +
                                 ", a secret that is not shown. It must be " + accepted_text());
}

std::string JudgedKey::accepted_text() const {
    const bool list = key_->kind() == KeyKind::list;
    const KeyKind kind = item_ ? item_->kind() : list ? KeyKind::str : key_->kind();
    const config::Setting& setting = item_ ? item_->setting() : key_->setting();
    std::string text(name_of(kind));
    if (list) {
        text = "a list of " + (kind == KeyKind::str ? "text" : text) + "s";
    } else {
        text.insert(0, kind == KeyKind::int_ ? "an " : "a ");
    }
    std::vector<std::string> choices = setting.choices();
    std::sort(choices.begin(), choices.end());
    if (!choices.empty()) text += ", one of: " + utils::joined(choices);
    if (setting.bounds()) text += ", " + setting.bounds()->text();
    return text;
}

std::string JudgedKey::note() const {
    const config::Setting& setting = item_ ? item_->setting() : key_->setting();
    const auto& bounds = setting.bounds();
    const std::string counts = traits_.unit.empty() ? "" : " of " + traits_.unit;
    const bool integers = bounds && bounds->high() && bounds->low().if_integer() != nullptr &&
                          bounds->high()->if_integer() != nullptr;
    if (integers && (is_rounded(bounds->low()) || is_rounded(*bounds->high())))
        return label_ + " is an integer" + counts + (bounds->low_open() ? " above " : " from ") +
               bounds->low().if_integer()->text() + (bounds->low_open() ? ", up to " : " to ") +
               bounds->high()->if_integer()->text();
    return traits_.unit.empty() ? "" : label_ + " counts " + traits_.unit;
}

std::string JudgedKey::shown(const ConfigValue& value) const {
    return is_hidden(value) ? std::string(hidden) : _shown(value);
}

std::string JudgedKey::shown_in_full(const ConfigValue& value) const {
    return is_hidden(value) ? std::string(hidden) : display(value);
}

ConfigValue JudgedKey::judge_openly(const GivenRaw& raw) const {
    if (raw.value.is_null() && traits_.optional) return {};
    if (key_->kind() == KeyKind::list) return judge_list(raw);
    if (key_->kind() == KeyKind::str && !raw.spelling.empty()) return key_->coerce(raw.spelling);
    return coerced(*key_, traits_.single, raw.value);
}

ConfigValue JudgedKey::judge_list(const GivenRaw& raw) const {
    const auto* given = raw.value.get_if<List>();
    if (given == nullptr) {
        ConfigValue split = key_->coerce(raw.value);
        return item_ ? judge_items(split.get<List>()) : split;
    }
    const bool texts = !item_ || item_->kind() == KeyKind::str;
    const List list = texts ? spelt(*given, raw.document) : *given;
    return item_ ? judge_items(list) : key_->coerce(list);
}

ConfigValue JudgedKey::judge_items(const List& items) const {
    std::vector<ConfigValue> judged(items.begin(), items.end());
    for (std::size_t i = 0; i < judged.size(); ++i) {
        try {
            judged[i] = coerced(*item_, traits_.items->single, judged[i]);
        } catch (const config::ConfigKeyError&) {
            try {
                coerced(item_key(key_->name() + " item " + std::to_string(i + 1)),
                        traits_.items->single, judged[i]);
            } catch (const config::ConfigKeyError& error) {
                throw RefusedItem(error, i);
            }
        }
    }
    return List(std::move(judged));
}

}  // namespace velmora::app
