#include "velmora/yaml/scalars.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "velmora/yaml/advice.hpp"

namespace velmora::yaml {

namespace {

// Goes from the end of a line to the first character that is not blank, and returns how many line
// ends lie between. It stops early at a tab that stands where spaces must.
std::size_t skip_line_ends(Cursor& at, int indent) {
    std::size_t line_ends = 0;
    while (at.at_line_end() && !at.at_end()) {
        at.next_line();
        ++line_ends;
        while (at.peek() == ' ') ++at.pos;
        if (at.column() > indent) at.skip_white();
    }
    return line_ends;
}

void append_utf8(std::string& out, char32_t code) {
    const auto continuation = [&](int shift) {
        out += static_cast<char>(0x80U | (code >> shift & 0x3fU));
    };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xc0U | code >> 6U);
        continuation(0);
    } else if (code < 0x10000) {
        out += static_cast<char>(0xe0U | code >> 12U);
        continuation(6), continuation(0);
    } else {
        out += static_cast<char>(0xf0U | code >> 18U);
        continuation(12), continuation(6), continuation(0);
    }
}

void append_hex_escape(Cursor& at, std::size_t digits, std::string& out) {
    const std::string_view all = at.text.substr(at.pos, digits);
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(all.data(), all.data() + all.size(), code, 16);
    if (all.size() < digits || end != all.data() + digits || error != std::errc())
        at.refuse(
            "two hexadecimal digits follow \\x, four \\u and eight \\U: mend them, or double the "
            "\\");
    if ((code >= 0xd800 && code <= 0xdfff) || code > 0x10ffff)
        at.refuse("no character has this number: write one beyond U+FFFF as \\U and eight digits");
    append_utf8(out, code);
    at.pos += digits;
}

// Reads what stands behind a backslash.
void append_escape(Cursor& at, std::string& out) {
    constexpr std::string_view letters = "0abtnvfre \"/\\N_LP\t";
    constexpr std::array<char32_t, letters.size()> codes = {0,    '\a', '\b', '\t',   '\n',   '\v',
                                                            '\f', '\r', 0x1b, ' ',    '"',    '/',
                                                            '\\', 0x85, 0xa0, 0x2028, 0x2029, '\t'};
    const char letter = at.peek();
    ++at.pos;
    if (const std::size_t i = letters.find(letter); i != std::string_view::npos) {
        append_utf8(out, codes[i]);
    } else if (letter == 'x') {
        append_hex_escape(at, 2, out);
    } else if (letter == 'u') {
        append_hex_escape(at, 4, out);
    } else if (letter == 'U') {
        append_hex_escape(at, 8, out);
    } else {
        at.pos -= 2;
        at.refuse("a backslash that begins no escape: double it, or use single quotes");
    }
}

// Reads a line end inside of quotes.
void append_quoted_fold(Cursor& at, const Place& place, bool escaped, std::string& out) {
    if (place.one_line) at.refuse("a key must be on one line with its ':': close its quote there");
    const std::size_t line_ends = skip_line_ends(at, place.indent);
    if (!at.at_end() && at.spaces <= place.indent)
        at.refuse(
            "a quote above is not closed: close it, or indent this line by more than its key");
    if (escaped) {
        out.append(line_ends - 1, '\n');
    } else {
        append_fold(out, line_ends);
    }
}

}  // namespace

void append_fold(std::string& out, std::size_t line_ends) {
    if (line_ends == 1) {
        out += ' ';
    } else {
        out.append(line_ends - 1, '\n');
    }
}

bool is_plain(char c, bool flow) noexcept {
    return !is_white(c) && c != '\n' && !(flow && is_one_of(c, ",[]{}"));
}

std::string read_quoted(Cursor& at, const Place& place) {
    const std::size_t start = at.pos;
    const char quote = at.peek();
    const std::string_view special = quote == '"' ? "\"\\\n" : "'\n";
    std::string out;
    std::size_t kept = 0;  // What lies before is not blank, or escaped.
    for (++at.pos;;) {
        const std::size_t end = std::min(at.text.find_first_of(special, at.pos), at.text.size());
        out += at.text.substr(at.pos, end - at.pos);
        at.pos = end;
        if (at.at_end()) at.source->refuse(start, advice::quote);
        if (at.peek() == '\n') {
            const std::size_t last = out.find_last_not_of(" \t");
            out.resize(std::max(kept, last + 1));
            append_quoted_fold(at, place, false, out);
            kept = out.size();
        } else if (at.peek() == '\\') {
            ++at.pos;
            if (at.at_line_end() && !at.at_end()) {
                append_quoted_fold(at, place, true, out);
            } else if (!at.at_end()) {
                append_escape(at, out);
            }
            kept = out.size();
        } else if (quote == '\'' && at.peek(1) == '\'') {
            out += '\'';
            at.pos += 2;
        } else {
            ++at.pos;
            break;
        }
    }
    return out;
}

std::string read_plain(Cursor& at, const Place& place) {
    const auto ends_at = [&](std::size_t i) {
        const char c = i < at.text.size() ? at.text[i] : '\n';
        if (c == ':') return !is_plain(i + 1 < at.text.size() ? at.text[i + 1] : '\n', place.flow);
        if (c == '#') return i == at.line || !is_plain(at.text[i - 1], false);
        return c == '\n' || !(is_white(c) || is_plain(c, place.flow));
    };
    std::string out;
    for (;;) {
        std::size_t end = at.pos;
        for (std::size_t i = at.pos; !ends_at(i); ++i) {
            if (!is_white(at.text[i])) end = i + 1;
        }
        out += at.text.substr(at.pos, end - at.pos);
        at.pos = end;
        if (place.one_line) return out;

        Cursor next = at;
        next.skip_white();
        const std::size_t line_ends = skip_line_ends(next, place.indent);
        if (next.at_end() || next.spaces <= place.indent || ends_at(next.pos)) return out;
        append_fold(out, line_ends);
        at = next;
    }
}

}  // namespace velmora::yaml
