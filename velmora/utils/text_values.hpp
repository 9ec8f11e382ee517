// Values that people write as texts: flags and comma-separated lists.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "velmora/utils/export.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::utils {

/// The flag that `text` spells: true, yes, on, y, t or 1, or false, no, off, n, f or 0, in any mix
/// of upper and lower case, with white space around. Throws ValueError for every other text.
VELMORA_EXPORT bool parse_bool(std::string_view text);

/// The texts between the commas, without the white space around them; empty ones are left out.
/// An `Item` is made of a std::string_view.
template <class Item = std::string>
std::vector<Item> split_csv(std::string_view text) {
    // Commas alone make no items: many of them are no reason to take much memory.
    constexpr std::size_t most_at_once = 64;
    const auto commas = static_cast<std::size_t>(std::count(text.begin(), text.end(), ','));
    std::vector<Item> items;
    items.reserve(std::min(commas + 1, most_at_once));
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string_view item = trimmed(text.substr(start, end - start));
        if (!item.empty()) items.emplace_back(item);
        start = end + 1;
    }
    return items;
}

}  // namespace velmora::utils
