#include "yaml_edit.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include <velmora/yaml/yaml.hpp>

#include "yaml_outline.hpp"
#include "yaml_value.hpp"

using namespace velmora::config;

namespace {

using Kind = YamlNode::Kind;

// Bytes of the text, from the first to before the second.
using Range = std::pair<std::size_t, std::size_t>;

[[noreturn]] void refuse(const std::string& why) {
    throw velmora::ValueError(why);
}

class Editor {
public:
    explicit Editor(const std::string& text) : text_(text), root_(outline_of(text)) {
        const std::size_t line_end = text.find('\n');
        if (line_end != std::string::npos && line_end > 0 && text[line_end - 1] == '\r')
            newline_ = "\r\n";
    }

    std::string with_value(const Key& key, const ConfigValue& value) const {
        const std::string entry = yaml_text(key.name()) + ": " + yaml_text(value);
        const std::string section_name = yaml_text(key.section());
        if (root_.kind == Kind::null) return with_section("", section_name, entry);
        if (root_.kind != Kind::mapping) refuse("the file is not a mapping");
        const std::size_t at = position_of(root_, key.section());
        if (at == root_.children.size()) {
            if (root_.flow) return with_flow_entry(root_, section_name + ": {" + entry + "}");
            return with_section(indentation_of(root_.children[0]), section_name, entry);
        }
        const YamlNode& section = root_.children[at + 1];
        if (section.kind == Kind::null) return with_filled_section(root_.children[at], entry);
        if (section.kind == Kind::alias) refuse("its section is an alias");
        if (section.kind != Kind::mapping) refuse("its section is not a mapping");
        const std::size_t place = position_of(section, key.name());
        if (place < section.children.size())
            return with_new_value(section.children[place], section.children[place + 1], value);
        if (section.flow) return with_flow_entry(section, entry);
        const std::size_t next = at + 2;
        const std::size_t end =
            next < root_.children.size() ? line_start(root_.children[next].start) : text_.size();
        return with_lines(end_of_content(end), indentation_of(section.children[0]) + entry);
    }

private:
    // The position of the key `name` among the children of `mapping`; their number when there is
    // none.
    static std::size_t position_of(const YamlNode& mapping, std::string_view name) {
        std::size_t at = 0;
        for (; at < mapping.children.size(); at += 2) {
            const YamlNode& key = mapping.children[at];
            if (key.kind == Kind::scalar && key.text == name) break;
        }
        return at;
    }

    std::string with(const Range& range, std::string_view replacement) const {
        return std::string(text_).replace(range.first, range.second - range.first, replacement);
    }

    std::string with_value_in(const Range& null, const std::string& value) const {
        return with(null, (text_[null.first - 1] == ':' ? " " : "") + value);
    }

    // `at` is the start of a line or the end of the text.
    std::string with_lines(std::size_t at, std::string_view lines) const {
        const bool in_line = at > 0 && text_[at - 1] != '\n';
        return with({at, at}, std::string(in_line ? newline_ : "").append(lines).append(newline_));
    }

    std::string with_section(const std::string& indentation, const std::string& name,
                             const std::string& entry) const {
        std::string lines = indentation + name + ":";
        lines.append(newline_).append(indentation).append("  ").append(entry);
        return with_lines(text_.size(), lines);
    }

    // With an entry in a section that is null so far.
    std::string with_filled_section(const YamlNode& name, const std::string& entry) const {
        const Range null = null_behind(name);
        if (root_.flow) return with_value_in(null, "{" + entry + "}");
        const std::string emptied = with(null, "");
        const Editor editor(emptied);
        const std::size_t line_end = std::min(emptied.find('\n', null.first), emptied.size() - 1);
        return editor.with_lines(line_end + 1, indentation_of(name) + "  " + entry);
    }

    // At the front, since the end may be hard to tell.
    std::string with_flow_entry(const YamlNode& mapping, const std::string& entry) const {
        if (text_[mapping.start] != '{') refuse("its section has an anchor or a tag");
        const std::size_t inside = mapping.start + 1;
        return with({inside, inside}, entry + (mapping.children.empty() ? "" : ", "));
    }

    std::string with_new_value(const YamlNode& key, const YamlNode& old,
                               const ConfigValue& value) const {
        if (old.kind == Kind::null) return with_value_in(null_behind(key), yaml_text(value));
        const Range range(old.start, end_of(old));
        if (old.kind != Kind::list || old.flow) return with(range, yaml_text(value));
        const std::string indentation = indentation_of(old);
        const auto* const list = value.get_if<List>();
        if (list == nullptr || list->empty()) {
            // What is no list item must be indented further than the key.
            const bool level = indentation == indentation_of(key);
            return with(range, (level ? "  " : "") + yaml_text(value));
        }
        std::string items;
        for (const ConfigValue& item : *list) {
            if (!items.empty()) items.append(newline_).append(indentation);
            items.append("- ").append(yaml_text(item));
        }
        return with(range, items);
    }

    // The null that is the value of `key`, empty where nothing stands for it.
    Range null_behind(const YamlNode& key) const {
        const std::size_t colon = text_.find_first_not_of(" \t", end_of(key));
        if (colon == std::string::npos || text_[colon] != ':') refuse("no colon follows its name");
        const std::size_t behind = colon + 1;
        const std::size_t start = std::min(text_.find_first_not_of(" \t", behind), text_.size());
        const std::size_t end = std::min(text_.find_first_of(" \t\r\n,}#", start), text_.size());
        if (start == end) return {behind, behind};
        if (text_[start] == '&' || text_[start] == '!') refuse("it has an anchor or a tag");
        return {start, end};
    }

    std::size_t end_of(const YamlNode& node) const {
        switch (node.kind) {
            case Kind::scalar:
                return end_of_scalar(node);
            case Kind::alias:
                return std::min(text_.find_first_of(" \t\r\n,]}", node.start), text_.size());
            case Kind::list:
                return end_of_list(node);
            default:
                refuse("a null or a mapping is in its value");
        }
    }

    std::size_t end_of_scalar(const YamlNode& scalar) const {
        const char first = text_[scalar.start];
        if (first == '&' || first == '!') refuse("it has an anchor or a tag");
        if (first == '"' || first == '\'') {
            std::size_t at = scalar.start + 1;
            for (; at < text_.size(); ++at) {
                const bool doubled = first == '\'' && text_.compare(at, 2, "''") == 0;
                if (doubled || (first == '"' && text_[at] == '\\')) {
                    ++at;
                } else if (text_[at] == first) {
                    break;
                }
            }
            return at + 1;
        }
        const bool is_block = first == '|' || first == '>';
        if (is_block || text_.compare(scalar.start, scalar.text.size(), scalar.text) != 0)
            refuse("its value is in several lines");
        return scalar.start + scalar.text.size();
    }

    std::size_t end_of_list(const YamlNode& list) const {
        if (text_[list.start] != (list.flow ? '[' : '-')) refuse("it has an anchor or a tag");
        const char* const between = list.flow ? " \t\r\n," : " \t\r\n-";
        std::size_t end = list.start + 1;
        for (const YamlNode& item : list.children) {
            if (item.kind != Kind::null && text_.find_first_not_of(between, end) < item.start)
                refuse("there are comments in its value");
            end = end_of(item);
        }
        if (!list.flow) return end;
        end = std::min(text_.find_first_not_of(between, end), text_.size());
        if (text_[end] != ']') refuse("there are comments in its value");
        return end + 1;
    }

    std::size_t line_start(std::size_t at) const {
        return std::string_view(text_).substr(0, at).rfind('\n') + 1;
    }

    std::string indentation_of(const YamlNode& node) const {
        return std::string().append(node.start - line_start(node.start), ' ');
    }

    // Where the last line before the line start `at` ends that is neither empty nor a comment.
    std::size_t end_of_content(std::size_t at) const {
        while (at > 0) {
            const std::size_t start = line_start(at - 1);
            const std::size_t content = text_.find_first_not_of(" \t\r\n", start);
            if (content < at && text_[content] != '#') break;
            at = start;
        }
        return at;
    }

    const std::string& text_;
    YamlNode root_;
    std::string_view newline_ = "\n";
};

// Shares with `root` nothing on the way to the key: an alias of what is changed is not.
ConfigValue changed(const ConfigValue& root, const Key& key, const ConfigValue& value) {
    Mapping sections = root.is_null() ? Mapping() : root.get<Mapping>().copy();
    const ConfigValue* const old = sections.find(key.section());
    Mapping section = old == nullptr || old->is_null() ? Mapping() : old->get<Mapping>().copy();
    section.set(key.name(), value);
    sections.set(key.section(), section);
    return sections;
}

bool reads_as(const std::string& text, const ConfigValue& value) {
    try {
        return velmora::yaml::load(text) == value;
    } catch (const velmora::yaml::Error&) {
        return false;
    }
}

}  // namespace

std::string with_value(const std::string& text, const Key& key, const ConfigValue& value) {
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    const std::size_t mark = text.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
    const ConfigValue root = velmora::yaml::load(text);
    const std::string body = text.substr(mark);
    std::string edited = text.substr(0, mark) + Editor(body).with_value(key, value);
    if (!reads_as(edited, changed(root, key, value)))
        refuse("the file would not differ in it alone");
    return edited;
}
