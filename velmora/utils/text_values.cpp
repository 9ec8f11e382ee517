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

std::vector<std::string> split_csv(std::string_view text) {
    std::vector<std::string> items;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string_view item = trimmed(text.substr(start, end - start));
        if (!item.empty()) items.emplace_back(item);
        start = end + 1;
    }
    return items;
}

}  // namespace velmora::utils
