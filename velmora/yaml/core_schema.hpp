// How scalars become values: the core schema of YAML 1.2.
#pragma once

#include <string>
#include <string_view>

#include "velmora/config/value.hpp"

namespace velmora::yaml {

/// What a parser reports in place of a tag: for a plain scalar or a collection without one, and for
/// a quoted scalar or anything with the tag "!".
inline constexpr std::string_view untagged = "?";
inline constexpr std::string_view non_specific = "!";

/// The tag with "!!" for the prefix of the core tags: "!!int".
std::string short_tag(std::string_view tag);

/// Says that a value of this kind, "a list" say, cannot have this tag.
std::string unfit_tag_text(std::string_view kind_text, std::string_view tag);

/// The value of a scalar. Throws ValueError when the text does not fit the tag, or the tag is none
/// of a scalar.
config::ConfigValue read_scalar(std::string_view tag, const std::string& text);

}  // namespace velmora::yaml
