#include "by_hand.hpp"

#include <array>
#include <charconv>
#include <cstdint>
#include <stdexcept>
#include <variant>

namespace bench {

namespace {

char quote_for(std::string_view text) {
    const bool single = text.find('\'') != std::string_view::npos;
    return single && text.find('"') == std::string_view::npos ? '"' : '\'';
}

void append_escape(std::string& out, unsigned char c) {
    constexpr std::string_view hex = "0123456789abcdef";
    out += '\\';
    if (c == '\n') {
        out += 'n';
    } else if (c == '\t') {
        out += 't';
    } else if (c == '\r') {
        out += 'r';
    } else if (c >= 0x20 && c != 0x7f) {
        out += static_cast<char>(c);
    } else {
        out += 'x';
        out += hex[c >> 4U];
        out += hex[c & 0xfU];
    }
}

void append_ascii(std::string& out, char c, char quote) {
    if (c >= 0x20 && c < 0x7f && c != '\\' && c != quote) {
        out += c;
    } else {
        append_escape(out, static_cast<unsigned char>(c));
    }
}

struct Decoded {
    char32_t code;
    std::size_t size;
};

// The character at the beginning of a valid text.
Decoded decoded(std::string_view text) {
    const std::size_t size = character_size(text.front());
    char32_t code = static_cast<unsigned char>(text.front());
    if (size > 1) code &= 0x7fU >> size;
    for (std::size_t i = 1; i < size; ++i) {
        code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3fU);
    }
    return {code, size};
}

// Of the characters beyond ASCII, those that are known to leave no mark; none of most scripts.
bool leaves_no_mark(char32_t code) {
    if ((code > 0xad && code < 0x600) || (code > 0x3000 && code < 0xd800)) return false;
    return code <= 0xa0 || code == 0xad || (code >= 0x600 && code <= 0x605) ||
           (code >= 0x2000 && code <= 0x200f) || (code >= 0x2028 && code <= 0x202f) ||
           (code >= 0x205f && code <= 0x206f) || code == 0x3000 ||
           (code >= 0xd800 && code <= 0xf8ff) || code == 0xfeff ||
           (code >= 0xfff0 && code <= 0xfffb) || code >= 0xe0000;
}

void append_by_byte(std::string& out, std::string_view text) {
    const char quote = quote_for(text);
    out += quote;
    for (const char c : text) append_ascii(out, c, quote);
    out += quote;
}

struct Leaf {
    std::string& out;

    void operator()(std::monostate) const { out += "None"; }
    void operator()(bool flag) const { out += flag ? "True" : "False"; }
    void operator()(const std::string& text) const { append_by_byte(out, text); }
    void operator()(const Values&) const { throw std::invalid_argument("a list in a list"); }
    void operator()(auto number) const {
        std::array<char, 32> buffer;
        out.append(buffer.data(),
                   std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr);
    }
};

}  // namespace

std::size_t character_size(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0x80 ? 1 : byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : 4;
}

std::string quoted_by_copy(const std::string& text) {
    std::string out;
    out.reserve(text.size() + 2);
    out += '\'';
    out += text;
    out += '\'';
    return out;
}

std::string quoted_by_byte(const std::string& text) {
    std::string out;
    out.reserve(text.size() + 2);
    append_by_byte(out, text);
    return out;
}

std::string quoted_by_character(const std::string& text) {
    std::string out;
    out.reserve(text.size() + 2);
    const char quote = quote_for(text);
    out += quote;
    for (std::string_view rest = text; !rest.empty();) {
        const auto [code, size] = decoded(rest);
        if (code < 0x80) {
            append_ascii(out, static_cast<char>(code), quote);
        } else if (leaves_no_mark(code)) {
            std::array<char, 8> digits;
            const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                           static_cast<std::uint32_t>(code), 16);
            const auto length = static_cast<std::size_t>(end.ptr - digits.data());
            const std::size_t wanted = code < 0x100 ? 2 : code < 0x10000 ? 4 : 8;
            out += code < 0x100 ? "\\x" : code < 0x10000 ? "\\u" : "\\U";
            out.append(wanted - length, '0').append(digits.data(), length);
        } else {
            out += rest.substr(0, size);
        }
        rest.remove_prefix(size);
    }
    return out += quote;
}

std::string form_by_hand(const Values& list) {
    std::string out = "[";
    for (const Value& value : list) {
        if (out.size() > 1) out += ", ";
        std::visit(Leaf{out}, value);
    }
    return out += ']';
}

}  // namespace bench
