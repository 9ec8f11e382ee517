// How scalars become values: the core schema of YAML 1.2.
#pragma once

#include <string>
#include <string_view>

#include "velmora/config/value.hpp"

namespace velmora::yaml {

/// The tag that says "by its kind": a scalar is then a text.
inline constexpr std::string_view non_specific = "!";

/// What "!!" stands for in a tag.
inline constexpr std::string_view core_prefix = "tag:yaml.org,2002:";

/// The tag with "!!" for the prefix of the core tags: "!!int".
std::string short_tag(std::string_view tag);

/// Says that a value of this kind, "a list" say, cannot have this tag.
std::string unfit_tag_text(std::string_view kind_text);

/// The value of a scalar with a tag, which is empty for a plain scalar without one. Throws
/// ValueError when the text does not fit the tag, or the tag is none of a scalar.
config::ConfigValue read_scalar(std::string_view tag, std::string text);

}  // namespace velmora::yaml
