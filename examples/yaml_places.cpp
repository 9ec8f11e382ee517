#include "yaml_places.hpp"

#include "refuse.hpp"

using Kind = YamlNode::Kind;

// A mapping in brackets whose first key has double quotes is JSON; so is an empty one in JSON.
Quotes YamlPlaces::quotes_in(const YamlNode& mapping) const {
    const YamlNode& likely = mapping.children.empty() ? root_ : mapping;
    const bool json =
        likely.flow && !likely.children.empty() && text_[likely.children[0].start] == '"';
    return json ? Quotes::always : Quotes::where_needed;
}

Addition YamlPlaces::in_root() const {
    if (root_.flow) return in_brackets(root_);
    const std::size_t end = layout_.end_of_document(root_);
    return root_.kind == Kind::null ? lines_at(end, "") : lines_of(root_, end);
}

Addition YamlPlaces::in_section(std::size_t name) const {
    const YamlNode& section = root_.children[name + 1];
    if (section.kind == Kind::null) return in_null(root_.children[name]);
    if (section.flow) return in_brackets(section);
    const std::size_t next = name + 2;
    const std::size_t limit = next < root_.children.size()
                                  ? layout_.line_start(root_.children[next].start)
                                  : layout_.end_of_document(root_);
    return lines_of(section, layout_.end_of_content(section, limit));
}

Addition YamlPlaces::in_new_section(const std::string& name) const {
    const Addition root = in_root();
    const std::string start = yaml_text(name, root.quotes) + ":";
    if (root_.flow)
        return {.before = start + " {", .between = ", ", .after = "}", .quotes = root.quotes};
    const std::string between = root.between + "  ";
    return {.before = start + between, .between = between};
}

Addition YamlPlaces::in_null(const YamlNode& name) const {
    const Range null = layout_.null_behind(name, root_.flow);
    if (root_.flow) {
        return {.range = null,
                .before = layout_.gap_behind_colon(null.first) + "{",
                .between = ", ",
                .after = "}",
                .quotes = quotes_in(root_)};
    }
    // Below the line, whose rest stays.
    const std::size_t next = layout_.next_line(null.second);
    Addition lines = lines_at(next, layout_.indentation_of(name) + "  ");
    lines.range.first = null.first;
    lines.before.insert(0, text_, null.second, next - null.second);
    return lines;
}

// At the front, since the end may be hard to tell.
Addition YamlPlaces::in_brackets(const YamlNode& mapping) const {
    const Quotes quotes = quotes_in(mapping);
    if (mapping.children.empty()) {
        if (text_[mapping.start] != '{') refuse("its section has an anchor or a tag");
        const std::size_t inside = mapping.start + 1;
        return {.range = {inside, inside}, .between = ", ", .quotes = quotes};
    }
    const YamlNode& first = mapping.children[0];
    const bool in_lines = layout_.begins_line(first);
    const std::string between =
        in_lines ? "," + layout_.newline() + layout_.indentation_of(first) : ", ";
    return {.range = {first.start, first.start},
            .between = between,
            .after = between,
            .quotes = quotes};
}

// Behind those of the mapping, the last of which ends before `at`.
Addition YamlPlaces::lines_of(const YamlNode& mapping, std::size_t at) const {
    const YamlNode& first = mapping.children[0];
    if (!layout_.begins_line(first)) refuse("the keys beside it do not begin their lines");
    return lines_at(at, layout_.indentation_of(first));
}

// `at` is the start of a line or the end of the text.
Addition YamlPlaces::lines_at(std::size_t at, const std::string& indentation) const {
    const std::string newline = layout_.newline();
    const bool in_line = at > 0 && text_[at - 1] != '\n';
    if (in_line && layout_.ends_in_block_scalar(root_))
        refuse("the block scalar before it has no line end");
    return {.range = {at, at},
            .before = (in_line ? newline : "") + indentation,
            .between = newline + indentation,
            .after = in_line ? "" : newline};
}
