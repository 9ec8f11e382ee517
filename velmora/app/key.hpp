// The keys and sections of a declaration, as programs may ask them before any value is given.
//
//     const Key port = declaration.key("server.port");
//     port.accepted()          // "an int, at least 1 and at most 65535"
//     port.coerce("70000")     // throws ConfigKeyError, which says so
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velmora/config/bound.hpp"
#include "velmora/config/declaration.hpp"
#include "velmora/config/kind.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"
#include "velmora/utils/not_null.hpp"

namespace velmora::app {

class JudgedKey;
struct DeclaredSection;

/// A key of a declaration, and the one judge of its values. A handle, which keeps the declaration.
class VELMORA_EXPORT Key {
public:
    /// "server.port".
    const std::string& label() const noexcept;
    const std::string& section() const noexcept;
    const std::string& name() const noexcept;
    const std::string& doc() const noexcept;
    config::KeyKind kind() const noexcept;
    config::Restart restart() const noexcept;
    /// The variable that the declaration names for it; empty for that which a prefix makes.
    const std::optional<std::string>& env() const noexcept;
    const std::optional<config::Bound>& bounds() const noexcept;
    const std::vector<std::string>& choices() const noexcept;
    /// Names that it had in its section before.
    const std::vector<std::string>& formerly() const noexcept;
    /// What a number of the key counts, "seconds"; empty for nothing in particular.
    const std::string& unit() const noexcept;
    bool is_required() const noexcept;
    bool is_optional() const noexcept;
    bool is_secret() const noexcept;

    /// Null for a required key. A list must not be changed.
    const config::ConfigValue& default_value() const noexcept;

    /// The value that the key takes for a text or another value, as loads judge it. Throws
    /// ConfigKeyError; about a secret key its message and its cause do not show the value.
    config::ConfigValue coerce(const config::ConfigValue& value) const;

    /// What it takes: "an int, at least 1", numbers in full. Ends that only the type of a member has
    /// are left out.
    std::string accepted() const;

    /// The display form of one of its values, "(secret)" when it is a secret one.
    std::string shown(const config::ConfigValue& value) const;

private:
    friend class Declaration;
    friend class Section;

    explicit Key(std::shared_ptr<const JudgedKey> key) : key_(std::move(key)) {}

    utils::NotNull<JudgedKey> key_;
};

/// A section of a declaration. A handle, which keeps the declaration.
class VELMORA_EXPORT Section {
public:
    const std::string& name() const noexcept;
    const std::string& doc() const noexcept;
    /// What a change to a key takes that says nothing else of itself.
    config::Restart restart() const noexcept;
    /// Whether the application reads it itself; and whether what it then holds is shown nowhere.
    bool is_raw() const noexcept;
    bool is_secret() const noexcept;
    /// In the order of declaration; none in a raw section.
    std::vector<Key> keys() const;

private:
    friend class Declaration;

    explicit Section(std::shared_ptr<const DeclaredSection> section)
        : section_(std::move(section)) {}

    utils::NotNull<DeclaredSection> section_;
};

}  // namespace velmora::app
