#include "yaml_layout.hpp"

#include <algorithm>
#include <string_view>

#include "refuse.hpp"

namespace {

using Kind = YamlNode::Kind;

constexpr const char* blanks = " \t\r\n";

// Of where a search ended in `text`.
std::size_t found_or_end(std::size_t at, const std::string& text) {
    return std::min(at, text.size());
}

}  // namespace

std::size_t YamlLayout::line_start(std::size_t at) const {
    return std::string_view(text_).substr(0, at).rfind('\n') + 1;
}

std::size_t YamlLayout::next_line(std::size_t at) const {
    const std::size_t end = text_.find('\n', at);
    return end == std::string::npos ? text_.size() : end + 1;
}

std::string YamlLayout::newline() const {
    const std::size_t end = text_.find('\n');
    const bool with_return = end != std::string::npos && end > 0 && text_[end - 1] == '\r';
    return with_return ? "\r\n" : "\n";
}

std::string YamlLayout::indentation_of(const YamlNode& node) const {
    const std::size_t start = line_start(node.start);
    std::string indentation(text_, start, node.start - start);
    std::replace_if(
        indentation.begin(), indentation.end(), [](char c) { return c != '\t'; }, ' ');
    return indentation;
}

std::string YamlLayout::gap_behind_colon(std::size_t at) const {
    return text_[at - 1] == ':' ? " " : "";
}

bool YamlLayout::begins_line(const YamlNode& node) const {
    return text_.find_first_not_of(" \t", line_start(node.start)) == node.start;
}

std::size_t YamlLayout::end_of(const YamlNode& node) const {
    switch (node.kind) {
        case Kind::scalar:
            return end_of_scalar(node);
        case Kind::alias:
            return found_or_end(text_.find_first_of(" \t\r\n,]}", node.start), text_);
        case Kind::list:
            return end_of_list(node);
        default:
            refuse("a null or a mapping is in its value");
    }
}

std::size_t YamlLayout::end_of_scalar(const YamlNode& scalar) const {
    const char first = text_[scalar.start];
    if (first == '&' || first == '!') refuse("it has an anchor or a tag");
    if (first == '"' || first == '\'') return end_of_quoted(scalar.start);
    const bool is_block = first == '|' || first == '>';
    if (is_block || text_.compare(scalar.start, scalar.text.size(), scalar.text) != 0)
        refuse("its value is in several lines");
    return scalar.start + scalar.text.size();
}

std::size_t YamlLayout::end_of_quoted(std::size_t start) const {
    const char quote = text_[start];
    std::size_t at = start + 1;
    for (; at < text_.size(); ++at) {
        if (quote == '"' ? text_[at] == '\\' : text_.compare(at, 2, "''") == 0) {
            ++at;
        } else if (text_[at] == quote) {
            break;
        }
    }
    return at + 1;
}

std::size_t YamlLayout::end_of_list(const YamlNode& list) const {
    if (text_[list.start] != (list.flow ? '[' : '-')) refuse("it has an anchor or a tag");
    const char* const between = list.flow ? " \t\r\n," : " \t\r\n-";
    std::size_t end = list.start + 1;
    for (const YamlNode& item : list.children) {
        if (item.kind != Kind::null && text_.find_first_not_of(between, end) < item.start)
            refuse("there are comments in its value");
        end = end_of(item);
    }
    if (!list.flow) return end;
    end = found_or_end(text_.find_first_not_of(between, end), text_);
    if (text_[end] != ']') refuse("there are comments in its value");
    return end + 1;
}

Range YamlLayout::null_behind(const YamlNode& key, bool flow) const {
    const std::size_t colon = text_.find_first_not_of(" \t", end_of(key));
    if (colon == std::string::npos || text_[colon] != ':') refuse("no colon follows its name");
    const std::size_t behind = colon + 1;
    std::size_t start = found_or_end(text_.find_first_not_of(blanks, behind), text_);
    while (text_[start] == '#')
        start = found_or_end(text_.find_first_not_of(blanks, next_line(start)), text_);
    // In lines of its own what is no part of the mapping is not indented further than the key.
    const bool is_value = flow ? text_[start] != ',' && text_[start] != '}'
                               : start - line_start(start) > key.start - line_start(key.start);
    if (!is_value) return {behind, behind};
    if (text_[start] == '&' || text_[start] == '!') refuse("it has an anchor or a tag");
    return {start, found_or_end(text_.find_first_of(" \t\r\n,}", start), text_)};
}

std::size_t YamlLayout::end_of_content(const YamlNode& mapping, std::size_t limit) const {
    return end_of_content(limit, end_of_last_value(mapping));
}

// `content` is what is known to come before the end.
std::size_t YamlLayout::end_of_content(std::size_t limit, std::size_t content) const {
    while (limit > content) {
        const std::size_t start = line_start(limit - 1);
        const std::string_view line = std::string_view(text_).substr(start, limit - start);
        const std::size_t first = line.find_first_not_of(blanks);
        if (start < content || (first != std::string_view::npos && line[first] != '#')) break;
        limit = start;
    }
    return limit;
}

std::size_t YamlLayout::start_of_last_value(const YamlNode& mapping) const {
    const YamlNode* last = &mapping;
    while (!last->children.empty()) last = &last->children.back();
    std::size_t start = last->kind == Kind::scalar ? last->start : text_.size();
    while (text_[start] == '&' || text_[start] == '!') {
        start = text_.find_first_of(blanks, start);
        start = found_or_end(text_.find_first_not_of(blanks, start), text_);
    }
    return start;
}

bool YamlLayout::ends_in_block_scalar(const YamlNode& mapping) const {
    const char first = text_[start_of_last_value(mapping)];
    return first == '|' || first == '>';
}

// What looks like a comment may be a part of it.
std::size_t YamlLayout::end_of_last_value(const YamlNode& mapping) const {
    const std::size_t start = start_of_last_value(mapping);
    if (text_[start] == '"' || text_[start] == '\'') return end_of_quoted(start);
    if (!ends_in_block_scalar(mapping)) return 0;
    return end_of_block_scalar(start, indentation_of(mapping.children[0]).size());
}

// Every line in it is empty or indented further than the mapping's keys.
std::size_t YamlLayout::end_of_block_scalar(std::size_t start, std::size_t indentation) const {
    std::size_t end = next_line(start);
    const bool keeps_empty_lines = text_.find('+', start) < end;
    for (std::size_t at = end; at < text_.size(); at = next_line(at)) {
        const std::size_t first = found_or_end(text_.find_first_not_of(' ', at), text_);
        const bool empty = text_[first] == '\r' || text_[first] == '\n' || first == text_.size();
        if (!empty && first - at <= indentation) break;
        if (!empty || keeps_empty_lines) end = next_line(at);
    }
    return end;
}

std::size_t YamlLayout::end_of_document(const YamlNode& root) const {
    std::size_t at = root.kind == Kind::null ? 0 : root.start;
    for (; (at = text_.find("...", at)) != std::string::npos; at += 3) {
        const std::size_t behind = at + 3;
        const bool ends = behind == text_.size() ||
                          std::string_view(blanks).find(text_[behind]) != std::string_view::npos;
        if ((at == 0 || text_[at - 1] == '\n') && ends) return at;
    }
    return text_.size();
}

bool YamlLayout::is_empty_until(std::size_t end) const {
    const std::size_t content = end_of_content(end, 0);
    if (content == 0) return true;
    const std::size_t start = line_start(content - 1);
    const std::size_t behind = found_or_end(text_.find_first_not_of(" \t\r", start + 3), text_);
    return text_.compare(start, 3, "---") == 0 &&
           (text_[behind] == '\n' || text_[behind] == '#' || behind == text_.size());
}
