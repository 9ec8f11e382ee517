// From a source to its value.
#pragma once

#include "velmora/config/value.hpp"
#include "velmora/yaml/places.hpp"
#include "velmora/yaml/source.hpp"

namespace velmora::yaml {

/// Throws Error. Adds to `places`, if it is not null, where all parts of the value stand.
config::ConfigValue parse(const Source& source, Places* places);

}  // namespace velmora::yaml
