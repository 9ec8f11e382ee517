// Small things that are done to texts in many places.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "velmora/utils/export.hpp"

namespace velmora::utils {

/// Whether the first `Block` of bytes of both texts, which have one size, are the same, and the
/// last one, which may overlap with the first.
template <class Block>
bool same_ends(std::string_view a, std::string_view b) noexcept {
    const auto block = [](std::string_view text, std::size_t at) {
        Block read;
        std::memcpy(&read, text.data() + at, sizeof read);
        return read;
    };
    const std::size_t last = a.size() - sizeof(Block);
    return block(a, 0) == block(b, 0) && block(a, last) == block(b, last);
}

/// `a == b`, for texts as short as names are: these take no call of a function.
inline bool same_name(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    if (a.size() > 16) return a == b;
    if (a.size() >= 8) return same_ends<std::uint64_t>(a, b);
    if (a.size() >= 4) return same_ends<std::uint32_t>(a, b);
    return a.empty() || (same_ends<char>(a, b) && a[a.size() / 2] == b[b.size() / 2]);
}

/// Whether `text` is among `words`, any range of texts.
template <class Words>
bool is_one_of(std::string_view text, const Words& words) {
    // NOLINTNEXTLINE(readability-use-anyofallof): GCC leaves that a call for each word.
    for (const std::string_view word : words) {
        if (same_name(text, word)) return true;
    }
    return false;
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

/// A text without the one line end, "\r\n" or "\n", that is at its end.
inline std::string without_line_end(std::string text) {
    if (text.ends_with('\n')) text.resize(text.size() - (text.ends_with("\r\n") ? 2 : 1));
    return text;
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

/// Whether `test` is other than zero for any byte of `text`. Compilers test many bytes at once when
/// it is a function object without branches.
template <class Test>
bool any_byte(std::string_view text, Test test) {
    const auto in_blocks = [&]<std::size_t size>(std::integral_constant<std::size_t, size>) {
        const auto any = [&](const char* block) {
            unsigned char found = 0;
            for (std::size_t i = 0; i < size; ++i)
                found |= static_cast<unsigned char>(test(block[i]));
            return found != 0;
        };
        for (std::size_t at = 0; at + size < text.size(); at += size) {
            if (any(text.data() + at)) return true;
        }
        return any(text.data() + text.size() - size);  // As a rule with bytes seen before.
    };
    if (text.size() >= 256) return in_blocks(std::integral_constant<std::size_t, 256>());
    if (text.size() >= 64) return in_blocks(std::integral_constant<std::size_t, 64>());
    if (text.size() >= 16) return in_blocks(std::integral_constant<std::size_t, 16>());
    return std::any_of(text.begin(), text.end(), test);
}

}  // namespace velmora::utils
