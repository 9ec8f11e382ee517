// What a declared configuration resolves into: its sections and their keys.
//
//     for (const Section& section : sections_of(config)) {
//         for (const Key& key : section.keys()) print(key.label(), key.setting().doc());
//     }
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/declaration.hpp"
#include "velmora/config/kind.hpp"
#include "velmora/config/record.hpp"
#include "velmora/config/required.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::config {

/// One key of the configuration, resolved from its field.
class VELMORA_EXPORT Key {
public:
    /// `setting` is shared with the field that declares the key. Throws TypeError when it is null.
    Key(std::string section, std::string name, detail::Required<KeyKind> kind,
        detail::Required<Restart> restart, std::shared_ptr<const Setting> setting, RecordType owner)
        : section_(std::move(section)),
          name_(std::move(name)),
          kind_(*kind),
          restart_(*restart),
          setting_(std::move(setting)),
          owner_(std::move(owner)) {}

    /// The name of the section's field in the configuration.
    const std::string& section() const noexcept { return section_; }
    /// The name of the key's field in the section.
    const std::string& name() const noexcept { return name_; }
    KeyKind kind() const noexcept { return kind_; }
    /// What must restart for a change to apply: the key's own scope, else its section's.
    Restart restart() const noexcept { return restart_; }
    const Setting& setting() const noexcept { return *setting_; }
    /// The section's record type.
    const RecordType& owner() const noexcept { return owner_; }

    /// The key's full name, which names it in every message: "server.port".
    std::string label() const { return section_ + "." + name_; }

    /// The key's default as it is declared; a new list every time, so that no two configurations
    /// share one. Makes a record of `owner`, so the default factories of the whole section run;
    /// throws what `RecordType::make` does.
    ConfigValue default_value() const;

    /// The value that the key takes for a raw value, whatever its source: turned into the key's
    /// kind, then tested against its choices and its bounds. Throws ConfigKeyError, which names the
    /// key and shows the value; where the value has no reading as the kind, its cause is the error
    /// that says why.
    ConfigValue coerce(const ConfigValue& value) const;

    /// Equal in all six fields.
    VELMORA_EXPORT friend bool operator==(const Key& a, const Key& b);

private:
    friend class Section;

    /// Whether `coerce` gives `value` back as it is, as it may also do when this is false.
    bool keeps(const ConfigValue& value) const;
    /// What `coerce` makes of `value`, without asking first whether the key keeps it.
    ConfigValue converted(const ConfigValue& value) const;

    std::string section_;
    std::string name_;
    KeyKind kind_;
    Restart restart_;
    utils::NotNull<Setting> setting_;
    RecordType owner_;
};

/// One section of the configuration, resolved from its field.
class VELMORA_EXPORT Section {
public:
    /// `setting` is shared with the field that declares the section. Throws TypeError when it is
    /// null.
    Section(std::string name, RecordType kind, std::shared_ptr<const SectionSetting> setting,
            std::vector<Key> keys);

    const std::string& name() const noexcept { return *name_; }
    const RecordType& kind() const noexcept { return kind_; }
    const SectionSetting& setting() const noexcept { return *setting_; }
    /// In the order of the fields of `kind`.
    const std::vector<Key>& keys() const noexcept { return keys_; }

    /// A new record of what a configuration file holds under the section's name. A key that the
    /// file does not give, or gives a value that is refused, takes its default, the latter with a
    /// warning to the logger velmora.config.spec; so do all keys when `data` is null or, with a
    /// warning, no mapping. Names that are no keys are ignored.
    ///
    /// Whatever `Key::coerce` throws but ConfigKeyError passes, and so does all that
    /// `RecordType::make` throws; warnings given by then stay given.
    Record read(const ConfigValue& data) const;

    /// Equal in all four fields.
    VELMORA_EXPORT friend bool operator==(const Section& a, const Section& b);

private:
    utils::NotNull<std::string> name_;
    RecordType kind_;
    utils::NotNull<SectionSetting> setting_;
    std::vector<Key> keys_;
    static constexpr std::size_t no_position = std::numeric_limits<std::size_t>::max();

    /// Of the fields of the keys in `kind_`; `no_position` for a key that is no field of it, which
    /// only a caller's own key may be.
    std::vector<std::size_t> positions_;
};

/// The sections of a configuration type, with their keys, in the order of its fields. Throws
/// TypeError for the first field, in the order of declaration, that is no section, no described key
/// or of no supported type; when a reference names no type, before any field is looked at.
VELMORA_EXPORT std::vector<Section> sections_of(const RecordType& config_type);

/// The keys of the section `name` of record type `kind`.
VELMORA_EXPORT std::vector<Key> _keys_of(const std::string& name, const RecordType& kind,
                                         const SectionSetting& about);

/// The kind of a key from its field's resolved type. Throws TypeError, which names the key by
/// `label`, when there is none.
VELMORA_EXPORT KeyKind _kind_of(const DeclaredType& annotation, const std::string& label);

/// The display form of a key leaves `owner` out.
VELMORA_EXPORT std::string display(const Key& key);
VELMORA_EXPORT std::string display(const Section& section);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Key& key);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Section& section);

}  // namespace velmora::config

template <>
struct VELMORA_EXPORT std::hash<velmora::config::Key> {
    std::size_t operator()(const velmora::config::Key& key) const;
};

template <>
struct VELMORA_EXPORT std::hash<velmora::config::Section> {
    std::size_t operator()(const velmora::config::Section& section) const;
};
