#include "velmora/config/schema.hpp"

#include <algorithm>
#include <array>
#include <ostream>
#include <stdexcept>

#include "velmora/config/coercers.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/logging.hpp"
#include "velmora/utils/quoting.hpp"

namespace velmora::config {

namespace {

utils::Logger& log() {
    static utils::Logger& logger = utils::logger("velmora.config.spec");
    return logger;
}

Coercer coercer_of(KeyKind kind) {
    const auto* const found =
        std::find_if(_COERCERS.begin(), _COERCERS.end(),
                     [kind](const auto& entry) { return entry.first == kind; });
    if (found == _COERCERS.end()) throw std::out_of_range("a key of a kind that has no coercer");
    return found->second;
}

bool is_one_of(const ConfigValue& value, const std::vector<std::string>& choices) {
    const auto* text = value.get_if<std::string>();
    return text != nullptr && std::find(choices.begin(), choices.end(), *text) != choices.end();
}

[[noreturn]] void refuse(const Key& key, const ConfigValue& value, const std::exception& error) {
    throw ConfigKeyError("Cannot set " + key.label() + "=" + _shown(value) + ": expected " +
                             std::string(name_of(key.kind())) + " (" + error.what() + ")",
                         std::current_exception());
}

ConfigValue coerce_to_kind(const Key& key, const ConfigValue& value) {
    try {
        return coercer_of(key.kind())(value);
    } catch (const ValueError& error) {
        refuse(key, value, error);
    } catch (const TypeError& error) {
        refuse(key, value, error);
    } catch (const OverflowError& error) {
        refuse(key, value, error);
    }
}

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    std::string_view separator;
    for (const std::string& text : texts) {
        out.append(separator).append(text);
        separator = ", ";
    }
    return out;
}

std::string joined_in_order(std::vector<std::string> texts) {
    std::sort(texts.begin(), texts.end());
    return joined(texts);
}

// One setting equals itself, even with bounds that are not numbers.
template <class T>
bool same_or_equal(const std::shared_ptr<const T>& a, const std::shared_ptr<const T>& b) {
    return a == b || *a == *b;
}

std::string display_keys(const std::vector<Key>& keys) {
    std::vector<std::string> forms;
    forms.reserve(keys.size());
    for (const Key& key : keys) forms.push_back(display(key));
    return "[" + joined(forms) + "]";
}

}  // namespace

ConfigValue Key::default_value() const {
    return owner_.make().get<ConfigValue>(name_);
}

ConfigValue Key::coerce(const ConfigValue& value) const {
    ConfigValue coerced = coerce_to_kind(*this, value);
    const auto refuse_for = [&](const std::string& why) {
        throw ConfigKeyError("Invalid value for " + label() + ": " + display(coerced) + why);
    };
    const std::vector<std::string>& choices = setting_->choices();
    if (!choices.empty() && !is_one_of(coerced, choices))
        refuse_for(". Must be one of: " + joined_in_order(choices));
    const std::optional<Bound>& bounds = setting_->bounds();
    if (bounds && !bounds->admits(coerced)) refuse_for(". It must be " + bounds->text());
    return coerced;
}

Record Section::read(const ConfigValue& data) const {
    RecordDraft draft(kind_);
    const auto* mapping = data.get_if<Mapping>();
    if (mapping == nullptr) {
        if (!data.is_null())
            log().warning("Ignoring the %s section of the config file: it is not a mapping", name_);
        return std::move(draft).finish();
    }
    std::size_t expected_entry = 0;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        const Key& key = keys_[i];
        const Mapping::Entry* entry = mapping->find_entry(key.name(), expected_entry);
        if (entry == nullptr) continue;
        expected_entry = static_cast<std::size_t>(entry - mapping->begin()) + 1;
        try {
            ConfigValue value = key.coerce(entry->value);
            draft.give(kind_.position_of(key.name(), i), std::move(value));
        } catch (const ConfigKeyError& error) {
            log().warning("Ignoring %s in the config file: %s; keeping the default %r", key.label(),
                          error, key.default_value());
        }
    }
    return std::move(draft).finish();
}

bool operator==(const Key& a, const Key& b) {
    return a.section_ == b.section_ && a.name_ == b.name_ && a.kind_ == b.kind_ &&
           a.restart_ == b.restart_ && same_or_equal(a.setting_, b.setting_) &&
           a.owner_ == b.owner_;
}

bool operator==(const Section& a, const Section& b) {
    return a.name_ == b.name_ && a.kind_ == b.kind_ && same_or_equal(a.setting_, b.setting_) &&
           a.keys_ == b.keys_;
}

std::vector<Section> sections_of(const RecordType& config_type) {
    const auto types = config_type.resolve_types();
    std::vector<Section> sections;
    for (const FieldDecl& field : config_type.fields()) {
        auto about = field.metadata()[_SECTION].as<SectionSetting>();
        if (about == nullptr) {
            throw TypeError(field.name() +
                            " is not a section: declare it with section(kind, doc, ...)");
        }
        const RecordType& kind = types.at(field.name()).record_type();
        std::vector<Key> keys = _keys_of(field.name(), kind, *about);
        sections.emplace_back(field.name(), kind, std::move(about), std::move(keys));
    }
    return sections;
}

std::vector<Key> _keys_of(const std::string& name, const RecordType& kind,
                          const SectionSetting& about) {
    const auto types = kind.resolve_types();
    std::vector<Key> keys;
    for (const FieldDecl& field : kind.fields()) {
        const std::string label = name + "." + field.name();
        auto setting = field.metadata()[_SETTING].as<Setting>();
        if (setting == nullptr) {
            throw TypeError(label +
                            " is not described: declare it with setting(default, doc, ...)");
        }
        const KeyKind key_kind = _kind_of(types.at(field.name()), label);
        const Restart restart = setting->restart().value_or(about.restart());
        keys.emplace_back(name, field.name(), key_kind, restart, std::move(setting), kind);
    }
    return keys;
}

KeyKind _kind_of(const DeclaredType& annotation, const std::string& label) {
    using Basic = DeclaredType::Basic;
    constexpr std::array<std::pair<Basic, KeyKind>, 4> kinds = {{{Basic::bool_, KeyKind::bool_},
                                                                 {Basic::int_, KeyKind::int_},
                                                                 {Basic::float_, KeyKind::float_},
                                                                 {Basic::str, KeyKind::str}}};
    if (annotation.is_list_with_element()) return KeyKind::list;
    for (const auto& [type, kind] : kinds) {
        if (annotation.is(type)) return kind;
    }
    throw TypeError(label + ": a configuration key is a bool, an int, a float, a str or a list");
}

std::string display(const Key& key) {
    return display_record("Key", {{"section", utils::quoted_text(key.section())},
                                  {"name", utils::quoted_text(key.name())},
                                  {"kind", std::string(name_of(key.kind()))},
                                  {"restart", utils::quoted_text(name_of(key.restart()))},
                                  {"setting", display(key.setting())}});
}

std::string display(const Section& section) {
    return display_record("Section", {{"name", utils::quoted_text(section.name())},
                                      {"kind", display(section.kind())},
                                      {"setting", display(section.setting())},
                                      {"keys", display_keys(section.keys())}});
}

std::ostream& operator<<(std::ostream& out, const Key& key) {
    return out << display(key);
}
std::ostream& operator<<(std::ostream& out, const Section& section) {
    return out << display(section);
}

}  // namespace velmora::config

using velmora::config::Key;
using velmora::config::Section;
using velmora::utils::hash_fields;

std::size_t std::hash<Key>::operator()(const Key& key) const {
    return hash_fields(key.section(), key.name(), key.kind(), key.restart(), key.setting(),
                       key.owner());
}

std::size_t std::hash<Section>::operator()(const Section& section) const {
    return hash_fields(section.name(), section.kind(), section.setting(), section.keys());
}
