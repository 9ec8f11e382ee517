// Changing one value in a YAML text that its user wrote.
#pragma once

#include <string>

#include <velmora/config/spec.hpp>

/// `text` with `value` for `key`, whose entry or section is added where there is none; every other
/// byte is kept. A list in lines of its own stays one.
///
/// Throws velmora::yaml::Error when `text` is no YAML, and ValueError, which says why, where the
/// change would lose something or show elsewhere: the root or the section is no mapping of its own;
/// the old value is a mapping or a block scalar, has an anchor or a tag, or comments between its
/// items; an alias repeats the section.
std::string with_value(const std::string& text, const velmora::config::Key& key,
                       const velmora::config::ConfigValue& value);
