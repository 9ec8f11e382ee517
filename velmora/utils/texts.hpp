// Small things that are done to texts in many places.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// Whether `text` is among `words`, any range of texts.
template <class Words>
bool is_one_of(std::string_view text, const Words& words) {
    return std::find(std::begin(words), std::end(words), text) != std::end(words);
}

/// The texts of a range, with `separator` between each two.
template <class Texts>
std::string joined(const Texts& texts, std::string_view separator = ", ") {
    std::string out;
    for (auto each = std::begin(texts); each != std::end(texts); ++each) {
        if (each != std::begin(texts)) out += separator;
        out += *each;
    }
    return out;
}

/// Takes the sign off the beginning of `text`, if there is one; true when it is a minus.
inline bool take_sign(std::string_view& text) noexcept {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    return negative;
}

/// The decimal digits of ASCII, those of no other script and of no locale.
constexpr bool is_digit(char c) noexcept {
    return c >= '0' && c <= '9';
}

}  // namespace velmora::utils
