// Writing values as YAML.
#pragma once

#include <string>

#include <velmora/config/value.hpp>

/// A flag, a number, a text or a list of them on one line, so that it stands for the same value
/// wherever YAML allows one. Throws ValueError for a text that is no UTF-8, and TypeError for null
/// and mappings.
std::string yaml_text(const velmora::config::ConfigValue& value);
