// What is wrong with a declaration before any value is.
#pragma once

#include <string>
#include <vector>

#include "velmora/config/record_type.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app {

/// A line for each mistake, in the order of declaration; every `Declaration` is made by a look at
/// them. Mistakes are
///
/// - a default that its own key refuses or changes (null for an optional key is none);
/// - bounds on what is no number, that admit nothing, or go beyond the type of a member; two keys for
///   one member; an enum without names;
///   choices on what is no text, the same one twice;
/// - a variable for two keys, $VARIABLE_FILE of a secret one included, or one that no shell can set;
/// - an old name that is a key's, or that of two;
/// - a doc that is empty or no single line of text;
/// - names that YAML, a variable and "section.key" cannot all carry: letters, digits, "_" and "-"
///   can be in them, not at the beginning digits and "-", and they are none of YAML's words for
///   flags and null, nor may a section's begin with "x-";
/// - a section that is declared under another type than its default is of.
///
/// Throws TypeError as `config::sections_of` does.
VELMORA_EXPORT std::vector<std::string> lint(const config::RecordType& config_type);

}  // namespace velmora::app
