// The nodes themselves, once the walk has come to where they may be.
#include "velmora/utils/quoting.hpp"
#include "velmora/yaml/advice.hpp"
#include "velmora/yaml/walk.hpp"

namespace velmora::yaml {

bool Walk::is_empty(const Slot& slot) const {
    if (at_.at_end()) return true;
    if (slot.flow) return at_flow_value() || is_one_of(at_.peek(), ",]}");
    if (slot.one_line) return at_.at_line_end() || at_sign(':');
    return at_.is_fresh() && at_.spaces <= slot.indent;
}

// What lies between `begin` and here, if that is on one line.
std::size_t Walk::size_from(std::size_t begin) const {
    return at_.line > begin ? 0 : at_.pos - begin;
}

void Walk::approach(const Slot& slot) {
    if (slot.one_line) {
        at_.skip_white();
    } else if (slot.flow) {
        skip_flow_space(slot.indent);
    } else {
        skip_space();
    }
}

void Walk::read_properties(Properties& properties, const Slot& slot) {
    properties.content.offset = at_.pos;
    approach(slot);
    properties.offset = at_.pos;
    while (!is_empty(slot) && at_property()) {
        read_property(properties, slot.flow);
        properties.content.offset = at_.pos;
        approach(slot);
    }
}

Leaf Walk::leaf(std::size_t mark) {
    const std::size_t before = at_.pos;
    const Slot slot = enter(mark);
    Leaf leaf;
    leaf.offset = at_.pos;
    leaf.content.offset = before;
    quoted_ = false;
    if (slot.absent) return leaf;
    read_properties(leaf, slot);
    const bool bare = leaf.anchor.empty() && leaf.tag.empty();
    if (is_empty(slot)) {
        if (slot.filled && bare)
            at_.refuse("nothing is before this: remove it, or write null or ''");
        return leaf;
    }
    leaf.content.offset = at_.pos;
    const char c = at_.peek();
    if (c == '*') {
        if (!bare) at_.refuse("an alias takes no anchor and no tag");
        ++at_.pos;
        leaf.alias = read_name();
        leaf.content.size = size_from(leaf.content.offset);
        return leaf;
    }
    leaf.plain = false;
    if (c == '"' || c == '\'') {
        const std::size_t start = at_.pos;
        leaf.text = read_quoted(at_, slot);
        pass_quoted(start);
        quoted_ = true;
    } else if ((c == '|' || c == '>') && !slot.flow && !slot.one_line) {
        leaf.text = read_block(at_, slot);
        return leaf;
    } else {
        constexpr std::string_view indicators = "-?:,[]{}#&*!|>'\"%@`";
        const bool may_begin = is_one_of(c, "-?:") && is_plain(at_.peek(1), slot.flow);
        if (!may_begin && is_one_of(c, indicators))
            at_.refuse("a text cannot begin with " + utils::quoted_text({&c, 1}) +
                       " here: quote it");
        leaf.text = read_plain(at_, slot);
        leaf.plain = true;
    }
    leaf.content.size = size_from(leaf.content.offset);
    return leaf;
}

Properties Walk::open_list(const Opening& opening) {
    const Slot slot = enter(opening.mark);
    return opening.block ? open_block(Kind::block_list, slot) : open_flow(Kind::flow_list, slot);
}

Properties Walk::open_mapping(const Opening& opening) {
    const bool in_list = !levels_.empty() && levels_.back().kind == Kind::flow_list;
    const Slot slot = enter(opening.mark);
    if (!in_list)
        return opening.block ? open_block(Kind::block_mapping, slot)
                             : open_flow(Kind::flow_mapping, slot);
    const bool brace = at_.peek() == '{';
    if (at_property() && !opening.bare) return open_flow(Kind::flow_mapping, slot);
    levels_.push_back({.kind = Kind::pair,
                       .column = slot.indent,
                       .begin = at_.pos,
                       .mark = opening.mark,
                       .undecided = brace});
    return {.offset = at_.pos, .content = {at_.pos}};
}

Properties Walk::open_flow(Kind kind, const Slot& slot) {
    Properties properties;
    if (slot.absent) refuse_here();
    read_properties(properties, slot);
    if (is_empty(slot) || at_.peek() != (kind == Kind::flow_list ? '[' : '{')) refuse_here();
    properties.content.offset = at_.pos;
    levels_.push_back({.kind = kind, .column = slot.indent, .begin = at_.pos});
    ++at_.pos;
    return properties;
}

Properties Walk::open_block(Kind kind, const Slot& slot) {
    if (slot.absent || slot.flow || slot.one_line) refuse_here();
    const std::size_t sign_end = at_.pos;
    skip_space();
    Properties properties{.offset = at_.pos};
    read_properties_above(properties, slot);
    const auto column = at_.column();
    if (at_.is_fresh()) {
        const bool outdented = kind == Kind::block_list && slot.list_outdented;
        if (at_.spaces != column || column + (outdented ? 1 : 0) <= slot.indent) refuse_here();
    } else {
        const std::string_view between = at_.text.substr(sign_end, at_.pos - sign_end);
        if (!slot.compact) refuse_here();
        if (between.find('\t') != std::string_view::npos) at_.refuse(advice::tab);
    }
    properties.content.offset = at_.pos;
    levels_.push_back({.kind = kind, .column = column});
    return properties;
}

std::size_t Walk::close() {
    Level level = levels_.back();
    levels_.pop_back();
    quoted_ = false;
    if (level.undecided) {
        level.kind = Kind::flow_mapping;
        ++at_.pos;
    }
    if (level.at_value) refuse_here();
    if (level.kind != Kind::flow_list && level.kind != Kind::flow_mapping) return 0;
    const char bracket = level.kind == Kind::flow_list ? ']' : '}';
    skip_flow_space(level.column);
    if (at_.peek() == ',' && !level.first) {
        ++at_.pos;
        skip_flow_space(level.column);
    }
    if (at_.peek() != bracket) refuse_in_flow();
    ++at_.pos;
    quoted_ = true;
    return size_from(level.begin);
}

void Walk::finish() {
    skip_space();
    if (!at_.at_end()) refuse_here();
    check_unquoted(at_.source->text.size());
}

// Goes past the characters that may only be in quotes, which lie between `start` and here.
void Walk::pass_quoted(std::size_t start) {
    check_unquoted(start);
    const auto& all = at_.source->quoted_only;
    while (quoted_only_ < all.size() && all[quoted_only_] < at_.pos) ++quoted_only_;
}

void Walk::check_unquoted(std::size_t end) const {
    const auto& all = at_.source->quoted_only;
    if (quoted_only_ < all.size() && all[quoted_only_] < end)
        at_.source->refuse(
            all[quoted_only_],
            "this character may only be in quotes: best write it as an escape in double ones");
}

}  // namespace velmora::yaml
