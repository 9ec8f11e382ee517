// Changing values in a YAML text that its user wrote.
#pragma once

#include <string>
#include <vector>

#include <velmora/config/spec.hpp>

#include "file_values.hpp"

/// `text`, which holds `values`, with the changes, which are of different keys. Entries and sections
/// are added where there are none; every other byte is kept. A list in lines of its own stays one,
/// and JSON stays JSON.
///
/// Throws Refused, with a line for every key that cannot be written, where the change would lose
/// something or show elsewhere: the root or the section is no mapping of its own; the old value is a
/// mapping or a block scalar, has an anchor or a tag, or comments between its items; an alias
/// repeats the section.
std::string with_changes(const std::string& text, const velmora::config::ConfigValue& values,
                         const std::vector<Change>& changes);
