// What a configuration file gives.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velmora/app/key.hpp>
#include <velmora/config/spec.hpp>

struct Change {
    velmora::app::Key key;
    velmora::config::ConfigValue value;
};

/// What stands in the file under the section's name; null when nothing does.
velmora::config::ConfigValue section_in(const velmora::config::ConfigValue& file,
                                        const std::string& section);

/// The value that the key takes from what stands in the file under its section's name; nothing when
/// it takes none from there.
std::optional<velmora::config::ConfigValue> value_in(const velmora::config::ConfigValue& section,
                                                     const velmora::app::Key& key);

/// Whether these changes, and nothing else, make the one file the other.
bool differ_by(const std::vector<Change>& changes, const velmora::config::ConfigValue& before,
               const velmora::config::ConfigValue& after);
