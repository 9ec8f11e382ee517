// How values and records are written in messages.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/config/value.hpp"

namespace velmora::config {

/// The value so that no two kinds look alike: None, True, 42, 1.0, 'text', ['a', 1], {'key': None}.
/// Texts are quoted as `utils::quoted_text` does; a list or mapping that occurs again inside itself
/// is "[...]" or "{...}" there. Always finite, valid UTF-8.
std::string display(const ConfigValue& value);

/// What a value becomes as a text: a text itself, everything else its display form.
std::string plain_text(const ConfigValue& value);

/// The display form, cut to 80 characters of which the last three are then "...". Costs what 80
/// characters cost, however large the value is.
std::string _shown(const ConfigValue& value);

/// Whether copies of `value` share what they hold: log arguments are made of it at once.
bool shares_state(const ConfigValue& value);

/// The display form of a record: its name and, in parentheses, each field's name and display form.
std::string display_record(std::string_view name,
                           const std::vector<std::pair<std::string_view, std::string>>& fields);

/// Writes the display form.
std::ostream& operator<<(std::ostream& out, const ConfigValue& value);
std::ostream& operator<<(std::ostream& out, const List& list);
std::ostream& operator<<(std::ostream& out, const Mapping& mapping);
std::ostream& operator<<(std::ostream& out, const Integer& integer);
std::ostream& operator<<(std::ostream& out, const Number& number);

}  // namespace velmora::config
