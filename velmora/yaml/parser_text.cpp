#include "velmora/yaml/parser_text.hpp"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace velmora::yaml {

namespace {

enum class Role : unsigned char { sign, word, white, line_end };

// Words begin with what can neither be nor begin a sign of YAML.
constexpr std::array<Role, 256> roles = [] {
    std::array<Role, 256> all{};
    const auto set = [&](std::string_view characters, Role role) {
        for (const char c : characters) all[static_cast<unsigned char>(c)] = role;
    };
    set("0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_./=+();$^~<%@`",
        Role::word);
    for (std::size_t i = 0x80; i < all.size(); ++i) all[i] = Role::word;
    set(" \t", Role::white);
    set("\n", Role::line_end);
    return all;
}();

class Abridger {
public:
    explicit Abridger(const Document& document)
        : text_(document.text.substr(0, find_end(document))), pos_(document.directives) {}

    /// Goes on until the result has `size` bytes or the text ends, and returns where that is.
    std::size_t run(std::size_t size = std::string::npos) {
        while (pos_ < text_.size()) {
            if (role_at(pos_) == Role::white) {
                add_white();
                continue;
            }
            if (out_.size() >= size) break;
            if (role_at(pos_) == Role::line_end) {
                add_line_end();
            } else if (begins_word(pos_)) {
                add_words();
            } else {
                add_sign();
            }
        }
        return pos_;
    }

    std::string take_result() {
        out_ += '\n';
        return std::move(out_);
    }

private:
    // The text of a block scalar that is the whole document is left out: it need not be indented,
    // which yaml-cpp does not know.
    static std::size_t find_end(const Document& document) {
        const std::string_view text = document.text;
        const auto find = [text](std::size_t found) { return std::min(found, text.size()); };
        for (std::size_t pos = document.start;;) {
            pos = find(text.find_first_not_of(" \t\n", pos));
            const char c = pos < text.size() ? text[pos] : '\n';
            if (c == '|' || c == '>') return find(text.find('\n', pos));
            if (c != '#' && c != '&' && c != '!') return text.size();
            pos = find(text.find_first_of(c == '#' ? "\n" : " \t\n", pos));
        }
    }

    char at(std::size_t i) const { return i < text_.size() ? text_[i] : '\n'; }
    Role role_at(std::size_t i) const { return roles[static_cast<unsigned char>(at(i))]; }

    // yaml-cpp takes every question mark inside of brackets for the sign of a key.
    bool begins_word(std::size_t i) const {
        if (at(i) == '?') return role_at(i + 1) < Role::white;
        if (at(i) == '\\') return role_at(i + 1) < Role::white && at(i + 1) != '"';
        return role_at(i) == Role::word;
    }

    bool continues_word(std::size_t i) const {
        if (at(i) == ':') return role_at(i + 1) == Role::word;
        return begins_word(i) || is_one_of(at(i), "-?#&*!|");
    }

    void add_white() {
        const std::size_t end = std::min(text_.find_first_not_of(" \t", pos_), text_.size());
        if (blank_) {
            out_ += text_.substr(pos_, end - pos_);
        } else {
            out_.append(end - pos_, ' ');
        }
        pos_ = end;
    }

    void add_line_end() {
        if (blank_) {
            out_.resize(line_);
        } else {
            out_ += '\n';
            line_ = out_.size();
        }
        blank_ = true;
        ++pos_;
    }

    // Adds one letter for all words that are in a row. Behind a tag, whose words do not follow white
    // space, something else may begin.
    void add_words() {
        const bool several = is_one_of(out_.back(), " \n\"'");
        const bool misread = at(pos_) < ' ' || is_one_of(at(pos_), "?\\%@`");
        out_ += misread ? 'x' : at(pos_);
        blank_ = false;
        for (;;) {
            do {
                pos_ += text_.substr(pos_).starts_with("\\\\") ? 2U : 1U;
            } while (continues_word(pos_));
            if (!several || role_at(pos_) != Role::white) return;
            const std::size_t next = std::min(text_.find_first_not_of(" \t", pos_), text_.size());
            if (role_at(next) != Role::word) return;
            pos_ = next;
        }
    }

    // The name of an anchor is added in full. A comment behind a tab is left out: yaml-cpp takes the
    // tab for the beginning of something.
    void add_sign() {
        const char sign = at(pos_);
        std::size_t end = pos_ + 1;
        if (sign == '&' || sign == '*') {
            end = std::min(text_.find_first_of(" \t\n,[]{}\"'", end), text_.size());
        } else if (sign == '#' && blank_ && pos_ > 0 && at(pos_ - 1) == '\t') {
            pos_ = std::min(text_.find('\n', pos_), text_.size());
            return;
        }
        out_ += text_.substr(pos_, end - pos_);
        blank_ = false;
        pos_ = end;
    }

    std::string_view text_;
    std::size_t pos_;
    std::string out_ = "\n";
    std::size_t line_ = 1;  // Where the last line of the result begins.
    bool blank_ = true;     // Whether it has nothing but white space so far.
};

}  // namespace

std::string parser_text(const Document& document) {
    Abridger abridger(document);
    abridger.run();
    return abridger.take_result();
}

std::size_t source_offset(const Document& document, std::size_t parser_offset) {
    return Abridger(document).run(parser_offset);
}

}  // namespace velmora::yaml
