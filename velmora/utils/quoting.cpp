#include "velmora/utils/quoting.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode_inline.hpp"

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

// Whether a byte, or what several have in common, is of ASCII.
constexpr bool is_ascii(int bits) noexcept {
    return (bits & 0x80) == 0;
}

// How a character of ASCII is written.
struct Form {
    std::array<char, 4> bytes;
    std::uint32_t size;
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
            form.size = static_cast<std::uint32_t>(write_escaped(start, code) - start);
        }
    }
    return forms;
}

constexpr Forms forms_between_single = forms_between('\'');
constexpr Forms forms_between_double = forms_between('"');

// Other than zero for a character that may be escaped: double quotes are none, they only enclose
// texts without any. Has no branches.
constexpr auto may_be_escaped = [](char c) noexcept {
    // U+007F and what is beyond ASCII become negative or nearly so.
    const auto next = static_cast<signed char>(c + 1);
    return (next <= ' ') | (c == '\\') | (c == '\'');
};

constexpr std::size_t block = 64;
constexpr std::size_t still_in_cache = 128 * block;

// The bytes at the beginning of `text` that are plain, in blocks of which only the last one of all
// may be smaller.
std::size_t plain_size(std::string_view text) noexcept {
    std::size_t size = std::min(text.size(), block);
    if (any_byte(text.substr(0, size), may_be_escaped)) return 0;
    for (const std::size_t step : {16 * block, block}) {
        while (size < text.size()) {
            const std::string_view next = text.substr(size, step);
            if (any_byte(next, may_be_escaped)) break;
            size += next.size();
        }
    }
    return size;
}

// Appends the plain blocks at the beginning of `text` and returns their size.
std::size_t append_plain(std::string& out, std::string_view text) {
    std::size_t done = 0;
    for (std::size_t size = still_in_cache; size == still_in_cache; done += size) {
        size = plain_size(text.substr(done, still_in_cache));
        out.append(text, done, size);
    }
    return done;
}

// Appends the characters that begin in the first `most` bytes of `text`, or a few blocks of them,
// as they stand between these quotes. Returns their size.
std::size_t append_escaped(std::string& out, std::string_view text, std::size_t most, char quote) {
    const Forms& forms = quote == '"' ? forms_between_double : forms_between_single;
    constexpr std::size_t few = 4 * block;
    std::array<char, few * most_bytes> written;
    char* to = written.data();
    const auto write = [&to, &forms](char c) {
        // All four bytes, of which the next ones take the place of those too many.
        const Form& form = forms[static_cast<unsigned char>(c)];
        std::copy(form.bytes.begin(), form.bytes.end(), to);
        to += form.size;
    };
    const char* from = text.data();
    const char* const stop = from + std::min(few, most);
    while (from < stop) {
        for (; stop - from >= 4 && is_ascii(from[0] | from[1] | from[2] | from[3]); from += 4)
            write(from[0]), write(from[1]), write(from[2]), write(from[3]);
        for (; from < stop && is_ascii(*from); ++from) write(*from);
        while (from < stop && !is_ascii(*from)) {
            const auto [code, size] = detail::first_character({from, text.data() + text.size()});
            to = detail::is_printable(code) ? std::copy_n(from, size, to) : write_escaped(to, code);
            from += size;
        }
    }
    out.append(written.data(), to);
    return static_cast<std::size_t>(from - text.data());
}

// The quote for a text without single ones before `from`.
char quote_for(std::string_view text, std::size_t from) noexcept {
    const bool single = text.find('\'', from) != std::string_view::npos;
    return single && text.find('"') == std::string_view::npos ? '"' : '\'';
}

}  // namespace

void append_quoted(std::string& out, std::string_view text, std::size_t enough) {
    const std::size_t start = out.size();
    if (start >= enough) return;
    // No character takes fewer bytes escaped than plain, so no byte behind `end` is needed.
    const std::size_t end = std::min(text.size(), enough - start);
    if (out.empty()) out.reserve(end + 2);
    out += '\'';
    std::size_t at = append_plain(out, text.substr(0, end));
    const char quote = quote_for(text, at);
    out[start] = quote;
    while (at < end) {
        at += append_escaped(out, text.substr(at), end - at, quote);
        if (at < end) at += append_plain(out, text.substr(at, end - at));
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
