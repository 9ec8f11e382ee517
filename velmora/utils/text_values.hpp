// Values that people write as texts: flags and comma-separated lists.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// The flag that `text` spells: true, yes, on, y, t or 1, or false, no, off, n, f or 0, in any mix
/// of upper and lower case, with white space around. Throws ValueError for every other text.
VELMORA_EXPORT bool parse_bool(std::string_view text);

/// The texts between the commas, without the white space around them; empty ones are left out.
VELMORA_EXPORT std::vector<std::string> split_csv(std::string_view text);

}  // namespace velmora::utils
