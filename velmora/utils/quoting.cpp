#include "velmora/utils/quoting.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "velmora/utils/unicode.hpp"

namespace velmora::utils {

namespace {

constexpr std::uint64_t every_byte(unsigned char byte) noexcept {
    return 0x0101010101010101U * byte;
}

// Non-zero when a byte of `word` is zero; the well-known bit trick of Mycroft.
constexpr std::uint64_t has_zero(std::uint64_t word) noexcept {
    return (word - every_byte(0x01)) & ~word & every_byte(0x80);
}

// Whether each of eight bytes is ASCII and is shown as it is between `quote`s.
bool all_plain(const char* bytes, char quote) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t control = (word - every_byte(0x20)) & ~word & every_byte(0x80);
    const std::uint64_t beyond_ascii = word & every_byte(0x80);
    return (control | beyond_ascii | has_zero(word ^ every_byte(0x7f)) |
            has_zero(word ^ every_byte('\\')) |
            has_zero(word ^ every_byte(static_cast<unsigned char>(quote)))) == 0;
}

void append_hex(std::string& out, char letter, char32_t code, unsigned digits) {
    out += '\\';
    out += letter;
    while (digits-- > 0) out += "0123456789abcdef"[code >> 4U * digits & 0xfU];
}

void append_escaped(std::string& out, char32_t code) {
    switch (code) {
        case '\t':
            out += "\\t";
            return;
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\\':
            out += "\\\\";
            return;
        case '\'':
            out += "\\'";
            return;
        default:
            break;
    }
    if (code <= 0xff) {
        append_hex(out, 'x', code, 2);
    } else if (code <= 0xffff) {
        append_hex(out, 'u', code, 4);
    } else {
        append_hex(out, 'U', code, 8);
    }
}

char quote_for(std::string_view text) noexcept {
    const bool single = text.find('\'') != std::string_view::npos;
    return single && text.find('"') == std::string_view::npos ? '"' : '\'';
}

}  // namespace

void append_quoted(std::string& out, std::string_view text, std::size_t enough) {
    if (out.size() >= enough) return;
    const char quote = quote_for(text);
    // No character takes fewer bytes escaped than plain, so no byte behind `end` is needed.
    const std::size_t end = std::min(text.size(), enough - out.size());
    if (out.empty()) out.reserve(end + 2);
    out += quote;
    std::size_t copied = 0;
    std::size_t at = 0;
    while (at < end) {
        if (end - at >= 8 && all_plain(text.data() + at, quote)) {
            at += 8;
            continue;
        }
        for (const std::size_t stop = std::min(at + 8, end); at < stop;) {
            const Character character = first_character(text.substr(at));
            const bool plain = is_printable(character.code) && character.code != U'\\' &&
                               character.code != static_cast<unsigned char>(quote);
            if (!plain) {
                out.append(text, copied, at - copied);
                append_escaped(out, character.code);
                copied = at + character.size;
            }
            at += character.size;
        }
    }
    out.append(text, copied, at - copied);
    out += quote;
}

std::string quoted_text(std::string_view text) {
    std::string out;
    append_quoted(out, text);
    return out;
}

std::string one_line(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const Character character = first_character(text);
        if (is_printable(character.code)) {
            out += text.substr(0, character.size);
        } else {
            append_escaped(out, character.code);
        }
        text.remove_prefix(character.size);
    }
    return out;
}

std::string cut(std::string form, std::size_t most) {
    constexpr std::string_view marker = "...";
    if (prefix_size(form, most) == form.size()) return form;
    form.resize(prefix_size(form, most - marker.size()));
    return form += marker;
}

std::string shown_text(std::string_view text) {
    std::string out;
    append_quoted(out, text, shown_bytes);
    return cut(std::move(out), shown_characters);
}

}  // namespace velmora::utils
