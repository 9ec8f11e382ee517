// Texts and lists to be shown.
#pragma once

#include <string>
#include <string_view>

#include "value.hpp"

namespace bench {

/// A text and its quoted form.
struct Quoted {
    std::string text;
    std::string form;
};

/// 64 bytes of ASCII without anything to escape.
const Quoted& short_text();
/// 1 MiB each: ASCII without anything to escape, ASCII of which every twentieth character is to be
/// escaped, and the same for words of many scripts in UTF-8.
const Quoted& plain_text();
const Quoted& escaped_text();
const Quoted& mixed_text();

/// 10,000 integers, reals, short and long texts, and flags in turn.
const Values& mixed_values();

/// Five texts, and the same between commas.
const Texts& five_items();
const std::string& five_items_text();

/// `form` with single quotes in place of the double ones that peers write.
std::string respelled(std::string form);

}  // namespace bench
