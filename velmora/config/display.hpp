// How values and records are written in messages.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/value.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::config {

/// The value so that no two kinds look alike: None, True, 42, 1.0, 'text', ['a', 1], {'key': None}.
/// Texts are quoted as `utils::quoted_text` does; a list or mapping that occurs again inside itself
/// is "[...]" or "{...}" there. Always finite, valid UTF-8.
VELMORA_EXPORT std::string display(const ConfigValue& value);

/// What a value becomes as a text: a text itself, everything else its display form.
VELMORA_EXPORT std::string plain_text(const ConfigValue& value);

/// The display form, cut to 80 characters of which the last three are then "...". Costs what 80
/// characters cost, however large the value is.
VELMORA_EXPORT std::string _shown(const ConfigValue& value);

/// Whether copies of `value` share what they hold: log arguments are made of it at once.
VELMORA_EXPORT bool shares_state(const ConfigValue& value);

/// The display form of an object with fields: its name and, in parentheses, each field's name and
/// display form.
VELMORA_EXPORT std::string display_fields(
    std::string_view name, const std::vector<std::pair<std::string_view, std::string>>& fields);

/// Writes the display form.
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const ConfigValue& value);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const List& list);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Mapping& mapping);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Integer& integer);
VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, const Number& number);

}  // namespace velmora::config
