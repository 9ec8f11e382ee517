#include "velmora/utils/unicode.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace velmora::utils {

namespace {

#include "velmora/utils/unicode_table.inc"

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
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const char32_t lead = byte(0);
    if (lead < 0x80) return {lead, 1};

    const Character stray{0xdc00 + lead, 1};
    std::size_t size = 0;
    char32_t least = 0;
    char32_t code = 0;
    if ((lead & 0xe0U) == 0xc0U) {
        size = 2, least = 0x80, code = lead & 0x1fU;
    } else if ((lead & 0xf0U) == 0xe0U) {
        size = 3, least = 0x800, code = lead & 0x0fU;
    } else if ((lead & 0xf8U) == 0xf0U) {
        size = 4, least = 0x10000, code = lead & 0x07U;
    } else {
        return stray;
    }
    if (text.size() < size) return stray;
    for (std::size_t i = 1; i < size; ++i) {
        if (!is_continuation(byte(i))) return stray;
        code = code << 6U | (byte(i) & 0x3fU);
    }
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    if (code < least || code > 0x10ffff || surrogate) return stray;
    return {code, size};
}

std::size_t prefix_size(std::string_view text, std::size_t count) noexcept {
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
    if (code < 0x80) return code >= 0x20 && code != 0x7f;
    if (code > 0x10ffff) return false;
    const std::size_t bit = std::size_t{block_of[code >> 8U]} * 256 + (code & 0xffU);
    return (printable_bits[bit / 64] >> bit % 64 & 1U) != 0;
}

bool is_white_space(char32_t code) noexcept {
    return (code >= 0x09 && code <= 0x0d) || code == 0x20 || code == 0x85 || code == 0xa0 ||
           code == 0x1680 || (code >= 0x2000 && code <= 0x200a) || code == 0x2028 ||
           code == 0x2029 || code == 0x202f || code == 0x205f || code == 0x3000;
}

std::string_view trimmed(std::string_view text) noexcept {
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
