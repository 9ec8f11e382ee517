// What errors say that both yaml-cpp and the walk behind it may find.
#pragma once

#include <string_view>

namespace velmora::yaml::advice {

using Text = std::string_view;

inline constexpr Text tab = "a tab cannot indent: use spaces";
inline constexpr Text quote = "this quote is never closed";
inline constexpr Text key = "a '? ' cannot be here: begin a new line with it, or quote the text";
inline constexpr Text value = "a ': ' cannot be here: quote the text, or begin a new line";
inline constexpr Text item = "a '- ' cannot be here: begin a new line with it, or quote the text";
inline constexpr Text block_header =
    "only a digit from 1 to 9, '+' or '-', and a comment may be behind '|' or '>': begin the text "
    "on the next line, or quote it";
inline constexpr Text flow_end =
    "a ',' or the closing bracket is missing before this, or a ':' is not on the line of its key: "
    "quote texts that hold one of ,[]{}:";
inline constexpr Text two_properties = "a second anchor or tag for one value: remove it";
inline constexpr Text name = "a name must be behind '&', '*' and '!', and a space behind the name";
inline constexpr Text unknown_anchor =
    "no anchor of this name is before it: quote a text that begins with '*'";
inline constexpr Text unclear =
    "this cannot be here: quote the text, or write it on a line of its own";

}  // namespace velmora::yaml::advice
