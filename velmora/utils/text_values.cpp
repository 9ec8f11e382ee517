#include "velmora/utils/text_values.hpp"

#include <algorithm>
#include <array>

#include "velmora/utils/errors.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::utils {

namespace {

constexpr std::array<std::string_view, 6> true_words = {"true", "yes", "on", "y", "t", "1"};
constexpr std::array<std::string_view, 6> false_words = {"false", "no", "off", "n", "f", "0"};

bool spells(std::string_view text, const std::array<std::string_view, 6>& words) {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return equal_ignoring_case(text, word); });
}

}  // namespace

bool parse_bool(std::string_view text) {
    const std::string_view word = trimmed(text);
    if (spells(word, true_words)) return true;
    if (spells(word, false_words)) return false;
    throw ValueError(shown_text(text) + " is not one of true/false, yes/no, on/off, y/n, t/f, 1/0");
}

}  // namespace velmora::utils
