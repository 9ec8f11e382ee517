// A text as messages show it: quoted, escaped, and cut where it would be too long.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// Messages show at most this many characters of a value.
inline constexpr std::size_t shown_characters = 80;

/// As many bytes of UTF-8 as always hold more than `shown_characters` characters: what a form that
/// is to be cut need not go beyond.
inline constexpr std::size_t shown_bytes = 4 * (shown_characters + 1);

/// Appends `text` to `out` between quotes: double ones when it holds a single quote and no double
/// one, else single ones. The backslash, the enclosing quote and every character that is not
/// printable are escaped (\t \n \r \xhh \uhhhh \Uhhhhhhhh), so what is appended is valid UTF-8
/// whatever `text` is.
///
/// Appending stops early, without notice, once `out` holds `enough` bytes.
VELMORA_EXPORT void append_quoted(std::string& out, std::string_view text,
                                  std::size_t enough = std::string::npos);

/// The quoted form of `text`, in full.
VELMORA_EXPORT std::string quoted_text(std::string_view text);

/// `form` when it has at most `most` characters, else as many of them as leave room for "..."
/// behind them.
VELMORA_EXPORT std::string cut(std::string form, std::size_t most);

/// `text` with every character that is not printable escaped, and nothing else changed: fit for a
/// terminal or a line of a log.
VELMORA_EXPORT std::string one_line(std::string_view text);

/// The quoted form of `text`, cut to `shown_characters`.
VELMORA_EXPORT std::string shown_text(std::string_view text);

}  // namespace velmora::utils
