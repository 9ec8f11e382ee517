// A YAML text and the places in it.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::yaml {

/// yaml-cpp counts in int.
inline constexpr std::size_t most_bytes = std::numeric_limits<int>::max();

/// A YAML text under its name, without a byte order mark. Lines end in "\n".
struct Source {
    std::string_view name;
    std::string text;
    /// Where characters are that only a quoted text may hold, in order.
    std::vector<std::size_t> quoted_only = {};

    [[noreturn]] void refuse(std::size_t offset, std::string_view what) const;
};

/// Throws Error for what no YAML text may hold.
Source source_of(std::string_view text, std::string_view name);

constexpr bool is_one_of(char c, std::string_view characters) noexcept {
    return characters.find(c) != std::string_view::npos;
}

constexpr bool is_white(char c) noexcept {
    return c == ' ' || c == '\t';
}

}  // namespace velmora::yaml
