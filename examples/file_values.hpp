// What a configuration file gives.
#pragma once

#include <optional>
#include <string>

#include <velmora/config/spec.hpp>

/// What stands in the file under the section's name; null when nothing does.
velmora::config::ConfigValue section_in(const velmora::config::ConfigValue& file,
                                        const std::string& section);

/// The value that the key takes from what stands in the file under its section's name; nothing when
/// it takes none from there.
std::optional<velmora::config::ConfigValue> value_in(const velmora::config::ConfigValue& section,
                                                     const velmora::config::Key& key);
