// The one check of a key's value, and the reading of a section.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/coercers.hpp"
#include "velmora/config/display.hpp"
#include "velmora/config/record_draft.hpp"
#include "velmora/config/schema.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/logging.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::config {

namespace {

utils::Logger& log() {
    static utils::Logger& logger = utils::logger("velmora.config.spec");
    return logger;
}

// To be called where `error` is caught.
[[noreturn]] void refuse_to_set(const Key& key, const ConfigValue& value,
                                const std::exception& error) {
    throw ConfigKeyError("Cannot set " + key.label() + "=" + _shown(value) + ": expected " +
                             std::string(name_of(key.kind())) + " (" + message_of(error) + ")",
                         std::current_exception());
}

[[noreturn]] void refuse(const Key& key, const ConfigValue& coerced, const std::string& why) {
    throw ConfigKeyError("Invalid value for " + key.label() + ": " + display(coerced) + why);
}

ConfigValue coerce_to_kind(const Key& key, const ConfigValue& value) {
    try {
        return coercer_of(key.kind())(value);
    } catch (const ValueError& error) {
        refuse_to_set(key, value, error);
    } catch (const TypeError& error) {
        refuse_to_set(key, value, error);
    } catch (const OverflowError& error) {
        refuse_to_set(key, value, error);
    }
}

// Whether the coercer of `kind` gives `value` back as it is; maybe also when this is false.
bool is_of_kind(const ConfigValue& value, KeyKind kind) {
    switch (kind) {
        case KeyKind::bool_:
            return value.get_if<bool>() != nullptr;
        case KeyKind::int_: {
            const auto* integer = value.get_if<Integer>();
            return integer != nullptr && integer->as<std::int64_t>();
        }
        case KeyKind::float_: {
            const auto* real = value.get_if<double>();
            return real != nullptr && std::isfinite(*real);
        }
        case KeyKind::str:
            return value.get_if<std::string>() != nullptr;
        case KeyKind::list:
            break;
    }
    return false;
}

bool is_one_of(const ConfigValue& value, const std::vector<std::string>& choices) {
    const auto* text = value.get_if<std::string>();
    return text != nullptr && utils::is_one_of(*text, choices);
}

std::string joined_in_order(std::vector<std::string> texts) {
    std::sort(texts.begin(), texts.end());
    return utils::joined(texts);
}

// Finds the values under the names of keys. A file as a rule gives them in the order of the
// declaration, so the entry behind the one found last is looked at before any search.
class KeyedValues {
public:
    explicit KeyedValues(const Mapping& data)
        : data_(data), next_(data.begin()), end_(data.end()) {}

    const ConfigValue* find(std::string_view name) {
        const Mapping::Entry* entry = next_;
        if (entry == end_ || !is_under(name, *entry)) {
            entry = (kept_ ? *kept_ : data_).find_entry(name);
            if (entry == nullptr) return nullptr;
        }
        next_ = entry + 1;
        return &entry->value;
    }

    // Calls `warn`, whose sink may let go of what is being read, or add to it.
    template <class Warn>
    void outlive(Warn warn) {
        if (!kept_) kept_ = data_;
        const std::ptrdiff_t position = next_ - kept_->begin();
        warn();
        next_ = kept_->begin() + position;
        end_ = kept_->end();
    }

private:
    static bool is_under(std::string_view name, const Mapping::Entry& entry) {
        const auto* text = entry.key.get_if<std::string>();
        return text != nullptr && utils::same_name(*text, name);
    }

    const Mapping& data_;
    std::optional<Mapping> kept_;  // A handle of its own, once it may be the last one.
    const Mapping::Entry* next_;
    const Mapping::Entry* end_;
};

}  // namespace

ConfigValue Key::default_value() const {
    return owner_.make().get<ConfigValue>(name_);
}

bool Key::keeps(const ConfigValue& value) const {
    if (!is_of_kind(value, kind_)) return false;
    const std::vector<std::string>& choices = setting_->choices();
    const std::optional<Bound>& bounds = setting_->bounds();
    return (choices.empty() || is_one_of(value, choices)) && (!bounds || bounds->admits(value));
}

ConfigValue Key::coerce(const ConfigValue& value) const {
    return keeps(value) ? value : converted(value);
}

ConfigValue Key::converted(const ConfigValue& value) const {
    ConfigValue coerced = coerce_to_kind(*this, value);
    const std::vector<std::string>& choices = setting_->choices();
    if (!choices.empty() && !is_one_of(coerced, choices))
        refuse(*this, coerced, ". Must be one of: " + joined_in_order(choices));
    const std::optional<Bound>& bounds = setting_->bounds();
    if (bounds && !bounds->admits(coerced))
        refuse(*this, coerced, ". It must be " + bounds->text());
    return coerced;
}

Record Section::read(const ConfigValue& data) const {
    detail::RecordDraft draft(kind_, name_.share());
    const auto* mapping = data.get_if<Mapping>();
    if (mapping == nullptr) {
        if (!data.is_null()) {
            log().warning("Ignoring the %s section of the config file: it is not a mapping",
                          name());
        }
        return std::move(draft).finish();
    }
    KeyedValues given(*mapping);
    const std::size_t* next_position = positions_.data();
    for (const Key& key : keys_) {
        const std::size_t position = *next_position++;
        const ConfigValue* raw = given.find(key.name());
        if (raw == nullptr) continue;
        const bool known = position != no_position;
        if (known && key.keeps(*raw)) {
            draft.give(position, *raw);
            continue;
        }
        try {
            ConfigValue value = key.converted(*raw);
            draft.give(known ? position : kind_.position_of(key.name()), std::move(value));
        } catch (const ConfigKeyError& error) {
            given.outlive([&] {
                log().warning("Ignoring %s in the config file: %s; keeping the default %r",
                              key.label(), error, key.default_value());
            });
        }
    }
    return std::move(draft).finish();
}

}  // namespace velmora::config
