// UTF-8 texts as sequences of characters (code points).
//
// Bytes that are no UTF-8 may come in from anywhere: each such byte counts as one character, the
// lone surrogate U+DC80..U+DCFF that ends in that byte, so no text is ever refused and none loses a
// byte.
#pragma once

#include <cstddef>
#include <string_view>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

struct Character {
    char32_t code;
    std::size_t size;  ///< in bytes
};

/// The character that `text`, which must not be empty, begins with.
VELMORA_EXPORT Character first_character(std::string_view text) noexcept;

/// The bytes that the first `count` characters of `text` take; all of them when it has no more.
VELMORA_EXPORT std::size_t prefix_size(std::string_view text, std::size_t count) noexcept;

/// Whether `code` stands for a byte that is no UTF-8.
constexpr bool is_stray_byte(char32_t code) noexcept {
    return code >= 0xdc80 && code <= 0xdcff;
}

/// Whether `text` is well-formed UTF-8.
VELMORA_EXPORT bool is_utf8(std::string_view text) noexcept;

/// Whether a character can be shown as it is: its general category is none of Cc, Cf, Cs, Co, Cn,
/// Zl, Zp and Zs. The space is the one exception.
VELMORA_EXPORT bool is_printable(char32_t code) noexcept;

/// Whether a character has the Unicode property White_Space.
VELMORA_EXPORT bool is_white_space(char32_t code) noexcept;

namespace detail {
VELMORA_EXPORT std::string_view trimmed_in_any_script(std::string_view text) noexcept;
}  // namespace detail

/// `text` without the white space at its two ends.
inline std::string_view trimmed(std::string_view text) noexcept {
    const auto is_blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    if (text.empty() || (is_ascii(text.front()) && is_ascii(text.back()))) return text;
    return detail::trimmed_in_any_script(text);
}

/// Whether `text` is `word`, which is lower-case ASCII, in any mix of upper and lower case.
VELMORA_EXPORT bool equal_ignoring_case(std::string_view text, std::string_view word) noexcept;

}  // namespace velmora::utils
