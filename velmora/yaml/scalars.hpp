// The texts of scalars, read from the source.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "velmora/yaml/source.hpp"

namespace velmora::yaml {

/// A position in a document, which ends where `text` does.
struct Cursor {
    Cursor(const Source& its_source, std::string_view its_text, std::size_t offset)
        : source(&its_source), text(its_text), pos(offset) {
        begin_line(text.substr(0, pos).rfind('\n') + 1);
    }

    /// The character at `pos` or behind it, as if a line end stood behind the document.
    char peek(std::size_t ahead = 0) const noexcept {
        return pos + ahead < text.size() ? text[pos + ahead] : '\n';
    }
    bool at_end() const noexcept { return pos >= text.size(); }
    bool at_line_end() const noexcept { return peek() == '\n'; }
    /// Whether nothing but white space is before it on its line.
    bool is_fresh() const noexcept { return pos <= first; }
    int column() const noexcept { return static_cast<int>(pos - line); }

    void skip_white() noexcept {
        while (is_white(peek())) ++pos;
    }
    void skip_to_line_end() noexcept { pos = std::min(text.find('\n', pos), text.size()); }
    /// Goes behind the line end that it is at.
    void next_line() noexcept { begin_line(++pos); }

    [[noreturn]] void refuse(std::string_view what) const { source->refuse(pos, what); }

    const Source* source;
    std::string_view text;
    std::size_t pos;
    std::size_t line = 0;   ///< Where the line begins that `pos` is on.
    std::size_t first = 0;  ///< Where the first character on it is that is not white.
    int spaces = 0;         ///< How many spaces it begins with.

private:
    void begin_line(std::size_t offset) noexcept {
        line = offset;
        std::size_t end = offset;
        while (end < text.size() && text[end] == ' ') ++end;
        spaces = static_cast<int>(end - line);
        while (end < text.size() && is_white(text[end])) ++end;
        first = end;
    }
};

/// What surrounds a node, as far as it decides where the node ends.
struct Place {
    int indent = -1;        ///< Further lines of the node have more spaces before them.
    bool flow = false;      ///< Whether it is inside brackets or braces.
    bool one_line = false;  ///< Whether it must end on its line, as a key.
};

/// Whether a plain scalar may go on with `c`, leaving ":" and "#" aside.
bool is_plain(char c, bool flow) noexcept;

/// Appends what a line end between two lines of text stands for, with the blank lines behind it.
void append_fold(std::string& out, std::size_t line_ends);

/// Each reads the scalar that the cursor is at, and leaves the cursor behind it. The block scalar,
/// which begins with "|" or ">", ends where the next line begins.
std::string read_quoted(Cursor& at, const Place& place);
std::string read_plain(Cursor& at, const Place& place);
std::string read_block(Cursor& at, const Place& place);

}  // namespace velmora::yaml
