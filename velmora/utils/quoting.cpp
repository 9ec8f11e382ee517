#include "velmora/utils/quoting.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "velmora/utils/unicode.hpp"

namespace velmora::utils {

namespace {

// No character takes more bytes than this, escaped or not.
constexpr std::size_t most_bytes = 10;

constexpr char* write_hex(char* to, char letter, char32_t code, unsigned digits) noexcept {
    *to++ = '\\';
    *to++ = letter;
    while (digits-- > 0) *to++ = "0123456789abcdef"[code >> 4U * digits & 0xfU];
    return to;
}

// Writes the escape of a character and returns the end of it.
constexpr char* write_escaped(char* to, char32_t code) noexcept {
    constexpr std::string_view named = "\t\n\r\\'";
    const std::size_t name =
        code < 0x80 ? named.find(static_cast<char>(code)) : std::string_view::npos;
    if (name != std::string_view::npos) {
        *to++ = '\\';
        *to++ = "tnr\\'"[name];
        return to;
    }
    if (code <= 0xff) return write_hex(to, 'x', code, 2);
    if (code <= 0xffff) return write_hex(to, 'u', code, 4);
    return write_hex(to, 'U', code, 8);
}

// How a character of ASCII is written.
struct Form {
    std::array<char, 4> bytes;
    std::uint8_t size;
};
using Forms = std::array<Form, 0x80>;

constexpr Forms forms_between(char quote) {
    Forms forms{};
    for (char32_t code = 0; code < forms.size(); ++code) {
        const auto c = static_cast<char>(code);
        Form& form = forms[code];
        const bool plain = c >= ' ' && c < 0x7f && c != '\\' && c != quote;
        form.bytes[0] = c;
        form.size = 1;
        if (!plain) {
            char* const start = form.bytes.data();
            form.size = static_cast<std::uint8_t>(write_escaped(start, code) - start);
        }
    }
    return forms;
}

constexpr Forms forms_between_single = forms_between('\'');
constexpr Forms forms_between_double = forms_between('"');

constexpr std::size_t block = 64;
constexpr std::size_t still_in_cache = 128 * block;

// Whether a block is ASCII and shown as it is: simple enough for compilers to test many bytes at
// once.
bool is_plain_block(const char* bytes, char quote) noexcept {
    unsigned char other = 0;
    for (std::size_t i = 0; i < block; ++i) {
        // U+007F and what is beyond ASCII become negative or nearly so.
        const auto next = static_cast<signed char>(bytes[i] + 1);
        other |=
            static_cast<unsigned char>((next <= ' ') | (bytes[i] == '\\') | (bytes[i] == quote));
    }
    return other == 0;
}

// Writes the character at `at`, which is beyond ASCII, and moves behind it.
char* write_beyond_ascii(char* to, std::string_view text, std::size_t& at) noexcept {
    const Character character = first_character(text.substr(at));
    const std::string_view bytes = text.substr(at, character.size);
    at += character.size;
    if (!is_printable(character.code)) return write_escaped(to, character.code);
    return std::copy(bytes.begin(), bytes.end(), to);
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
    const Forms& forms = quote == '"' ? forms_between_double : forms_between_single;
    std::array<char, 4 * block * most_bytes> written;
    for (std::size_t at = 0; at < end;) {
        std::size_t plain = at;
        const std::size_t last = std::min(end, at + still_in_cache);
        while (last - plain >= block && is_plain_block(text.data() + plain, quote)) plain += block;
        if (plain > at) {
            out.append(text, at, plain - at);
            at = plain;
            continue;
        }
        char* to = written.data();
        for (const std::size_t stop = std::min(at + 4 * block, end); at < stop;) {
            const auto code = static_cast<unsigned char>(text[at]);
            if (code >= forms.size()) {
                to = write_beyond_ascii(to, text, at);
                continue;
            }
            // All four bytes, of which the next ones take the place of those too many.
            to = std::copy(forms[code].bytes.begin(), forms[code].bytes.end(), to);
            to -= forms[code].bytes.size() - forms[code].size;
            ++at;
        }
        out.append(written.data(), to);
    }
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
            std::array<char, most_bytes> escaped;
            out.append(escaped.data(), write_escaped(escaped.data(), character.code));
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
