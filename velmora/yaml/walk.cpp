#include "velmora/yaml/walk.hpp"

#include <algorithm>
#include <utility>

#include "velmora/utils/unicode.hpp"
#include "velmora/yaml/advice.hpp"

namespace velmora::yaml {

Walk::Walk(const Source& source, const Document& document)
    : at_(source, document.text, document.start), document_(document) {}

bool Walk::begins_line_at(int column) const {
    return at_.is_fresh() && at_.column() == column && at_.spaces == column;
}

bool Walk::at_sign(char sign) const {
    return at_.peek() == sign && !is_plain(at_.peek(1), false);
}

bool Walk::at_flow_value() const {
    return at_.peek() == ':' && !is_plain(at_.peek(1), true);
}

void Walk::skip_space() {
    for (;;) {
        at_.skip_white();
        if (at_.peek() == '#' && (at_.pos == at_.line || is_white(at_.text[at_.pos - 1])))
            at_.skip_to_line_end();
        if (at_.at_end() || !at_.at_line_end()) return;
        at_.next_line();
    }
}

void Walk::skip_flow_space(int column) {
    skip_space();
    if (at_.at_end() || !at_.is_fresh() || at_.spaces > column) return;
    const bool closing = at_.peek() == ']' || at_.peek() == '}';
    if (!closing || !begins_line_at(column))
        at_.refuse("indent the lines inside of brackets with spaces, by more than the key before");
}

void Walk::refuse_here() const {
    const char c = at_.peek();
    if (at_.at_end()) at_.refuse("something is missing before the end");
    if (at_.is_fresh() && at_.spaces < at_.column()) at_.refuse(advice::tab);
    if (at_.is_fresh()) at_.refuse("this line belongs to nothing above: check its indentation");
    if (c == '#') at_.refuse("a comment needs a space before its '#'");
    if (c == ':') at_.refuse(advice::value);
    at_.refuse(advice::unclear);
}

Walk::Slot Walk::enter(std::size_t mark) {
    if (levels_.empty()) return {};
    Level& level = levels_.back();
    if (std::exchange(level.undecided, false) && mark != level.mark) {
        level.kind = Kind::flow_mapping;
        ++at_.pos;
    }
    const bool block = level.kind <= Kind::block_mapping;
    Slot slot;
    slot.indent = level.column;
    slot.flow = !block;
    if (level.at_value) {
        block ? enter_block_value(level, slot) : enter_flow_value(level, slot);
    } else {
        block ? enter_block_entry(level, slot) : enter_flow_entry(level, slot);
    }
    level.first = false;
    const bool list = level.kind == Kind::block_list || level.kind == Kind::flow_list;
    level.at_value = !list && !level.at_value;
    return slot;
}

void Walk::enter_block_entry(Level& level, Slot& slot) {
    if (!level.first) {
        skip_space();
        if (!begins_line_at(level.column)) refuse_here();
    }
    const bool list = level.kind == Kind::block_list;
    level.explicit_key = at_sign('?');
    if (list ? at_sign('-') : level.explicit_key) {
        ++at_.pos;
        slot.compact = true;
        slot.list_outdented = !list;
        return;
    }
    if (list) refuse_here();
    level.key = at_.pos;
    slot.one_line = true;
}

void Walk::enter_block_value(Level& level, Slot& slot) {
    slot.list_outdented = true;
    if (level.explicit_key) {
        skip_space();
        slot.compact = true;
        slot.absent = !begins_line_at(level.column) || !at_sign(':');
        if (slot.absent) return;
    } else {
        at_.skip_white();
        if (at_.at_line_end())
            at_.source->refuse(level.key,
                               "a text among the keys of a mapping: put a ':' behind it, or indent "
                               "it to continue the value above");
        if (!at_sign(':')) refuse_here();
        check_key(level);
    }
    ++at_.pos;
}

void Walk::enter_flow_entry(Level& level, Slot& slot) {
    const bool pair = level.kind == Kind::pair;
    if (!pair) {
        skip_flow_space(level.column);
        if (!level.first) {
            if (at_.peek() != ',') refuse_in_flow();
            ++at_.pos;
            skip_flow_space(level.column);
        }
    }
    level.explicit_key = level.kind != Kind::flow_list && at_sign('?');
    if (level.explicit_key) {
        ++at_.pos;
        return;
    }
    level.key = at_.pos;
    slot.one_line = pair;
    slot.filled = level.kind == Kind::flow_list || !at_flow_value();
}

void Walk::enter_flow_value(Level& level, Slot& slot) {
    const bool implicit_pair = level.kind == Kind::pair && !level.explicit_key;
    if (implicit_pair) {
        at_.skip_white();
    } else {
        skip_flow_space(level.column);
    }
    slot.absent = at_.peek() != ':' || !(quoted_ || at_flow_value());
    if (implicit_pair) {
        if (slot.absent) refuse_in_flow();
        check_key(level);
    }
    if (!slot.absent) ++at_.pos;
}

void Walk::refuse_in_flow() const {
    if (at_.peek() == '#') refuse_here();
    at_.refuse(advice::flow_end);
}

void Walk::check_key(const Level& level) const {
    constexpr std::size_t most = 1024;
    const std::string_view key = at_.text.substr(level.key, at_.pos - level.key);
    if (level.key < at_.line)
        at_.source->refuse(level.key, "a key must be on one line with its ':'");
    if (key.size() > most && utils::prefix_size(key, most) < key.size())
        at_.source->refuse(level.key,
                           "a key has at most 1024 characters, unless '? ' is before it");
}

}  // namespace velmora::yaml
