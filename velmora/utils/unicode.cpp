#include "velmora/utils/unicode.hpp"

#include <algorithm>

#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode_inline.hpp"

namespace velmora::utils {

namespace {

constexpr bool is_continuation(unsigned char byte) noexcept {
    return (byte & 0xc0U) == 0x80U;
}

Character last_character(std::string_view text) noexcept {
    std::size_t start = text.size() - 1;
    while (start > 0 && text.size() - start < 4 &&
           is_continuation(static_cast<unsigned char>(text[start]))) {
        --start;
    }
    const Character character = first_character(text.substr(start));
    if (start + character.size == text.size()) return character;
    return first_character(text.substr(text.size() - 1));
}

}  // namespace

Character first_character(std::string_view text) noexcept {
    return detail::first_character(text);
}

std::size_t prefix_size(std::string_view text, std::size_t count) noexcept {
    const auto beyond_ascii = [](char c) { return c & 0x80; };
    const std::string_view start = text.substr(0, count);
    if (!any_byte(start, beyond_ascii)) return start.size();
    std::size_t size = 0;
    for (; count > 0 && size < text.size(); --count)
        size += first_character(text.substr(size)).size;
    return size;
}

bool is_utf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const auto [code, size] = first_character(text);
        if (is_stray_byte(code)) return false;
        text.remove_prefix(size);
    }
    return true;
}

bool is_printable(char32_t code) noexcept {
    return detail::is_printable(code);
}

bool is_white_space(char32_t code) noexcept {
    return (code >= 0x09 && code <= 0x0d) || code == 0x20 || code == 0x85 || code == 0xa0 ||
           code == 0x1680 || (code >= 0x2000 && code <= 0x200a) || code == 0x2028 ||
           code == 0x2029 || code == 0x202f || code == 0x205f || code == 0x3000;
}

std::string_view detail::trimmed_in_any_script(std::string_view text) noexcept {
    while (!text.empty()) {
        const Character first = first_character(text);
        if (!is_white_space(first.code)) break;
        text.remove_prefix(first.size);
    }
    while (!text.empty()) {
        const Character last = last_character(text);
        if (!is_white_space(last.code)) break;
        text.remove_suffix(last.size);
    }
    return text;
}

bool equal_ignoring_case(std::string_view text, std::string_view word) noexcept {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char any, char lower) {
        return any == lower || (any >= 'A' && any <= 'Z' && any - 'A' + 'a' == lower);
    });
}

}  // namespace velmora::utils
