// What this layer wants to know of a key or a section besides what the component does, attached to
// its field:
//
//     {"token", str_type, app::required(setting(nullptr, "Token that clients must send."))},
//     {"limit", int_type, app::optional(setting(nullptr, "Most connections; null for no limit."))},
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/config/declaration.hpp"
#include "velmora/config/kind.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app {

/// By what the items of a list are judged: as the values of a key of this kind and setting.
struct ItemRules {
    config::KeyKind kind;
    config::Setting setting;
    bool single = false;
    /// As `KeyTraits::said_bounds`.
    std::optional<config::Bound> said_bounds = std::nullopt;
};

struct KeyTraits {
    /// Whether some source must give the key a value.
    bool required = false;
    /// Whether null is a value of the key, "none", in files.
    bool optional = false;
    /// Whether the value is to be shown nowhere: not in messages, excerpts, explanations and plans.
    /// It can be given as a file that a variable names, $VARIABLE_FILE, but not on a command line,
    /// which everyone can see. What stands for another key, by an alias say, is that key's value.
    bool secret = false;
    /// Names that the key had in its section before; still read, with a fault that says the new one.
    std::vector<std::string> formerly = {};
    /// Whether the key is a float: its values are those that a float holds.
    bool single = false;
    /// What a number of the key counts, "seconds"; empty for nothing in particular.
    std::string unit = {};
    /// The bounds that were asked for, infinite at ends that only the type of a member has, where
    /// these differ from those of the setting.
    std::optional<config::Bound> said_bounds = std::nullopt;
    /// Null for a list of texts.
    std::shared_ptr<const ItemRules> items = nullptr;
    /// What is wrong with how the key is declared, as far as only its declaration can tell.
    std::vector<std::string> mistakes = {};
};

struct SectionTraits {
    /// Whether the application reads the section itself.
    bool raw = false;
    /// Whether what a raw section holds is to be shown nowhere, as `KeyTraits::secret` has it.
    bool secret = false;
};

/// The keys of a field's metadata under which its traits stand.
inline constexpr std::string_view _KEY_TRAITS = "velmora.app:key";
inline constexpr std::string_view _SECTION_TRAITS = "velmora.app:section";

/// The details of a key with these traits, in place of those that it had.
VELMORA_EXPORT config::FieldDetails with_traits(config::FieldDetails key, KeyTraits traits);

/// A key without a default: loading fails as long as no source gives it a value. The default of
/// `key` is null.
VELMORA_EXPORT config::FieldDetails required(config::FieldDetails key);

/// A key that may have no value. In a file null says so, and hides what weaker sources give; the
/// default of `key` is null, or the value that it has when nothing is said.
VELMORA_EXPORT config::FieldDetails optional(config::FieldDetails key);

/// What may be said of a section that the application reads itself.
struct RawOptions {
    /// What must restart for a change to it to apply.
    config::detail::Required<config::Restart> restart;
    /// As `SectionTraits`.
    bool secret = false;
};

/// A section that the application reads itself. Nothing in it is checked or reported, and the
/// strongest source that gives it gives all of it.
VELMORA_EXPORT config::FieldDecl raw(const std::string& name, config::detail::Doc doc,
                                     RawOptions options);

}  // namespace velmora::app
