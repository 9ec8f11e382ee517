#include <algorithm>

#include "velmora/yaml/advice.hpp"
#include "velmora/yaml/scalars.hpp"

namespace velmora::yaml {

namespace {

struct BlockHeader {
    char chomping = ' ';
    int indent = 0;
};

BlockHeader read_block_header(Cursor& at) {
    BlockHeader header;
    for (++at.pos;; ++at.pos) {
        const char c = at.peek();
        if ((c == '+' || c == '-') && header.chomping == ' ') {
            header.chomping = c;
        } else if (c >= '1' && c <= '9' && header.indent == 0) {
            header.indent = c - '0';
        } else {
            break;
        }
    }
    const std::size_t end = at.pos;
    at.skip_white();
    if (at.peek() == '#' && at.pos > end) at.skip_to_line_end();
    if (!at.at_line_end()) at.refuse(advice::block_header);
    return header;
}

// The spaces before the first line that is not blank, or else before the longest one.
int find_block_indent(Cursor at, int parent) {
    int longest = 0;
    while (!at.at_end()) {
        const int spaces = at.spaces;
        at.pos = at.line + std::size_t(spaces);
        if (at.at_line_end()) {
            longest = std::max(longest, spaces);
            at.next_line();
            continue;
        }
        if (spaces > parent && longest > spaces)
            at.refuse("a blank line above has more spaces than the text: take them away");
        if (spaces > parent) return spaces;
        break;
    }
    return std::max(longest, parent + 1);
}

}  // namespace

std::string read_block(Cursor& at, const Place& place) {
    const bool folded = at.peek() == '>';
    const std::size_t start = at.pos;
    const BlockHeader header = read_block_header(at);
    if (header.indent > 0 && place.indent < 0)
        at.source->refuse(start,
                          "a digit behind '|' or '>' needs a key or a '-' before it: remove it");
    if (at.at_end()) return {};
    at.next_line();
    const int indent =
        header.indent > 0 ? place.indent + header.indent : find_block_indent(at, place.indent);
    std::string out;
    std::size_t line_ends = 0;  // Since the last line of text.
    bool any = false;
    bool last_spaced = false;
    while (!at.at_end()) {
        const int spaces = std::min(at.spaces, indent);
        at.pos += std::size_t(spaces);
        if (at.at_line_end()) {
            ++line_ends;
            if (at.at_end()) break;
            at.next_line();
            continue;
        }
        if (spaces < indent) {
            if (at.peek() == '\t') at.refuse(advice::tab);
            break;
        }
        const bool spaced = is_white(at.peek());
        if (folded && any && !spaced && !last_spaced) {
            append_fold(out, line_ends);
        } else {
            out.append(line_ends, '\n');
        }
        const std::size_t end = std::min(at.text.find('\n', at.pos), at.text.size());
        out += at.text.substr(at.pos, end - at.pos);
        at.pos = end;
        any = true;
        last_spaced = spaced;
        line_ends = 0;
        if (!at.at_end()) {
            line_ends = 1;
            at.next_line();
        }
    }
    if (header.chomping == '+') {
        out.append(line_ends, '\n');
    } else if (header.chomping == ' ' && any && line_ends > 0) {
        out += '\n';
    }
    return out;
}

}  // namespace velmora::yaml
