// Whole files as texts.
#pragma once

#include <cstddef>
#include <string>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// The content of a file, or its first `most` bytes when it has more. Throws std::system_error with
/// the code of `errno` and the generic category, so that a file which is missing can be told from
/// one that cannot be read.
VELMORA_EXPORT std::string read_file(const std::string& path, std::size_t most = std::string::npos);

}  // namespace velmora::utils
