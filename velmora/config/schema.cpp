#include "velmora/config/schema.hpp"

#include <optional>
#include <ostream>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/hash.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::config {

namespace {

// Of the fields, in their order.
std::vector<DeclaredType> resolved_types(const RecordType& type) {
    std::vector<DeclaredType> types;
    types.reserve(type.fields().size());
    for (const FieldDecl& field : type.fields()) types.push_back(field.type().resolved());
    return types;
}

std::string display_keys(const std::vector<Key>& keys) {
    std::vector<std::string> forms;
    forms.reserve(keys.size());
    for (const Key& key : keys) forms.push_back(display(key));
    return "[" + utils::joined(forms) + "]";
}

}  // namespace

Section::Section(std::string name, RecordType kind, std::shared_ptr<const SectionSetting> setting,
                 std::vector<Key> keys)
    : name_(std::make_shared<const std::string>(std::move(name))),
      kind_(std::move(kind)),
      setting_(std::move(setting)),
      keys_(std::move(keys)) {
    const std::vector<FieldDecl>& fields = kind_.fields();
    positions_.reserve(keys_.size());
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        // As a rule the keys are those of all fields.
        const bool in_order = i < fields.size() && fields[i].name() == keys_[i].name();
        const FieldDecl* field = in_order ? &fields[i] : kind_.find_field(keys_[i].name());
        positions_.push_back(field != nullptr ? static_cast<std::size_t>(field - fields.data())
                                              : no_position);
    }
}

bool operator==(const Key& a, const Key& b) {
    return a.section_ == b.section_ && a.name_ == b.name_ && a.kind_ == b.kind_ &&
           a.restart_ == b.restart_ && a.setting_ == b.setting_ && a.owner_ == b.owner_;
}

bool operator==(const Section& a, const Section& b) {
    return a.name_ == b.name_ && a.kind_ == b.kind_ && a.setting_ == b.setting_ &&
           a.keys_ == b.keys_;
}

std::vector<Section> sections_of(const RecordType& config_type) {
    const std::vector<DeclaredType> types = resolved_types(config_type);
    std::vector<Section> sections;
    sections.reserve(types.size());
    for (const FieldDecl& field : config_type.fields()) {
        auto about = field.metadata()[_SECTION].get_if<SectionSetting>();
        if (about == nullptr) {
            throw TypeError(field.name() +
                            " is not a section: declare it with section(kind, doc, ...)");
        }
        const RecordType& kind = types[sections.size()].record_type();
        std::vector<Key> keys = _keys_of(field.name(), kind, *about);
        sections.emplace_back(field.name(), kind, std::move(about), std::move(keys));
    }
    return sections;
}

std::vector<Key> _keys_of(const std::string& name, const RecordType& kind,
                          const SectionSetting& about) {
    const std::vector<DeclaredType> types = resolved_types(kind);
    std::vector<Key> keys;
    keys.reserve(types.size());
    std::string label = name + ".";
    for (const FieldDecl& field : kind.fields()) {
        label.replace(name.size() + 1, std::string::npos, field.name());
        auto setting = field.metadata()[_SETTING].get_if<Setting>();
        if (setting == nullptr) {
            throw TypeError(label +
                            " is not described: declare it with setting(default, doc, ...)");
        }
        const KeyKind key_kind = _kind_of(types[keys.size()], label);
        const Restart restart = setting->restart().value_or(about.restart());
        keys.emplace_back(name, field.name(), key_kind, restart, std::move(setting), kind);
    }
    return keys;
}

KeyKind _kind_of(const DeclaredType& annotation, const std::string& label) {
    if (const std::optional<KeyKind> kind = annotation.key_kind()) return *kind;
    throw TypeError(label + ": a configuration key is a bool, an int, a float, a str or a list");
}

std::string display(const Key& key) {
    return display_fields("Key", {{"section", utils::quoted_text(key.section())},
                                  {"name", utils::quoted_text(key.name())},
                                  {"kind", std::string(name_of(key.kind()))},
                                  {"restart", utils::quoted_text(name_of(key.restart()))},
                                  {"setting", display(key.setting())}});
}

std::string display(const Section& section) {
    return display_fields("Section", {{"name", utils::quoted_text(section.name())},
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
