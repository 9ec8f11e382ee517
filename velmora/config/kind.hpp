// The kinds of configuration keys.
#pragma once

#include <iosfwd>
#include <string_view>

#include "velmora/utils/export.hpp"

namespace velmora::config {

/// What values a key takes; `list` is a list of texts.
enum class KeyKind { bool_, int_, float_, str, list };

/// The kind's name, as messages use it: "bool", "int", "float", "str" or "list".
VELMORA_EXPORT std::string_view name_of(KeyKind kind) noexcept;

VELMORA_EXPORT std::ostream& operator<<(std::ostream& out, KeyKind kind);

}  // namespace velmora::config
