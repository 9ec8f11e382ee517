// Showing texts and lists by hand, as a program would that has no other values to show.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "value.hpp"

namespace bench {

/// The bytes of the character of UTF-8 that begins with `lead`.
std::size_t character_size(char lead);

/// The quoted form of a text without anything to escape.
std::string quoted_by_copy(const std::string& text);
/// That of an ASCII text.
std::string quoted_by_byte(const std::string& text);
/// That of a valid UTF-8 text.
std::string quoted_by_character(const std::string& text);

/// The form of a list of anything but lists, its texts in ASCII.
std::string form_by_hand(const Values& list);

}  // namespace bench
