// Writing values as YAML.
#pragma once

#include <string>

#include <velmora/config/value.hpp>

/// How texts are written: with quotes where YAML needs them, or always, as in JSON.
enum class Quotes { where_needed, always };

/// A flag, a number, a text or a list of them on one line, so that it stands for the same value
/// wherever YAML allows one. Throws ValueError for a text that is no UTF-8, and TypeError for null
/// and mappings.
std::string yaml_text(const velmora::config::ConfigValue& value,
                      Quotes quotes = Quotes::where_needed);
