#include "yaml_edit.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include <velmora/utils/errors.hpp>
#include <velmora/utils/texts.hpp>
#include <velmora/yaml/yaml.hpp>

#include "refuse.hpp"
#include "yaml_layout.hpp"
#include "yaml_outline.hpp"
#include "yaml_places.hpp"
#include "yaml_value.hpp"

using namespace velmora::config;

namespace {

using Kind = YamlNode::Kind;

struct Replacement {
    Range range;
    std::string text;
};

// Collects changes to a text.
class Editor {
public:
    explicit Editor(const std::string& text)
        : text_(text),
          outline_(outline_of(text)),
          root_(outline_.root),
          layout_(text),
          places_(text, root_) {}

    // Throws ValueError, and then has not collected it.
    void set(const velmora::app::Key& key, const ConfigValue& value) {
        const bool empty =
            root_.kind == Kind::null && layout_.is_empty_until(layout_.end_of_document(root_));
        if (!empty) refuse_unless_own_mapping(root_, "the file");
        const std::size_t at = position_of(root_, key.section());
        if (at == root_.children.size())
            return add(new_sections_, places_.in_new_section(key.section()), key, value);
        const YamlNode& section = root_.children[at + 1];
        if (section.kind == Kind::null) return add(additions_, places_.in_section(at), key, value);
        refuse_unless_own_mapping(section, "its section");
        const std::size_t place = position_of(section, key.name());
        if (place == section.children.size())
            return add(additions_, places_.in_section(at), key, value);
        replace(section, place, value);
    }

    std::string text() const {
        std::vector<Replacement> all = replacements_;
        for (const auto& [name, addition] : additions_)
            all.push_back({addition.range, addition.text()});
        if (!new_sections_.empty()) {
            Addition sections = places_.in_root();
            for (const auto& [name, section] : new_sections_)
                sections.entries.push_back(section.text());
            all.push_back({sections.range, sections.text()});
        }
        // At one place values come first, then entries of the last section, then sections.
        std::stable_sort(all.begin(), all.end(), [](const Replacement& a, const Replacement& b) {
            return a.range.first < b.range.first;
        });
        std::string out;
        std::size_t done = 0;
        for (const auto& [range, replacement] : all) {
            out.append(text_, done, range.first - done).append(replacement);
            done = range.second;
        }
        return out.append(text_, done);
    }

private:
    using Additions = std::vector<std::pair<std::string, Addition>>;  // By the names of sections.

    void refuse_unless_own_mapping(const YamlNode& node, const std::string& name) const {
        if (node.kind == Kind::alias) refuse(name + " is an alias");
        if (node.kind != Kind::mapping) refuse(name + " is not a mapping");
        if (outline_.repeated.contains(node.anchor)) refuse("an alias repeats " + name);
    }

    bool is_named(const YamlNode& key, std::string_view name) const {
        if (key.kind != Kind::alias) return key.text == name;
        const auto repeated = outline_.anchored.find(key.anchor);
        return repeated != outline_.anchored.end() && repeated->second == name;
    }

    // The position of the key `name` among the children of `mapping`; their number when there is
    // none.
    std::size_t position_of(const YamlNode& mapping, std::string_view name) const {
        std::size_t at = 0;
        while (at < mapping.children.size() && !is_named(mapping.children[at], name)) at += 2;
        return at;
    }

    static void add(Additions& additions, Addition addition, const velmora::app::Key& key,
                    const ConfigValue& value) {
        const Quotes quotes = addition.quotes;
        std::string entry = yaml_text(key.name(), quotes) + ": " + yaml_text(value, quotes);
        auto found = std::find_if(additions.begin(), additions.end(),
                                  [&](const auto& each) { return each.first == key.section(); });
        if (found == additions.end())
            found = additions.emplace(found, key.section(), std::move(addition));
        found->second.entries.push_back(std::move(entry));
    }

    void replace(const YamlNode& section, std::size_t at, const ConfigValue& value) {
        const YamlNode& key = section.children[at];
        const YamlNode& old = section.children[at + 1];
        const std::string text = yaml_text(value, places_.quotes_in(section));
        if (old.kind == Kind::null) {
            const Range null = layout_.null_behind(key, section.flow);
            replacements_.push_back({null, layout_.gap_behind_colon(null.first) + text});
        } else {
            const Range range(old.start, layout_.end_of(old));
            const bool in_lines = old.kind == Kind::list && !old.flow;
            replacements_.push_back({range, in_lines ? lines_for(key, old, value) : text});
        }
    }

    // The value in place of a list in lines.
    std::string lines_for(const YamlNode& key, const YamlNode& old,
                          const ConfigValue& value) const {
        const std::string indentation = layout_.indentation_of(old);
        const auto* const list = value.get_if<List>();
        if (list == nullptr || list->empty()) {
            // What is no list item must be indented further than the key.
            const bool level = indentation == layout_.indentation_of(key);
            return (level ? "  " : "") + yaml_text(value);
        }
        std::vector<std::string> items;
        for (const ConfigValue& item : *list) items.push_back("- " + yaml_text(item));
        return velmora::utils::joined(items, layout_.newline() + indentation);
    }

    const std::string& text_;
    YamlOutline outline_;
    const YamlNode& root_;
    YamlLayout layout_;
    YamlPlaces places_;
    std::vector<Replacement> replacements_;
    Additions additions_;
    Additions new_sections_;
};

}  // namespace

std::string with_changes(const std::string& text, const ConfigValue& values,
                         const std::vector<Change>& changes) {
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    const std::size_t mark = text.starts_with(byte_order_mark) ? byte_order_mark.size() : 0;
    const std::string body = text.substr(mark);
    Editor editor(body);
    refuse_together(changes, [&](const Change& change) {
        try {
            editor.set(change.key, change.value);
        } catch (const velmora::ValueError& error) {
            refuse("Cannot write " + change.key.label() + ": " + error.message());
        }
    });
    std::string edited = text.substr(0, mark) + editor.text();
    try {
        if (differ_by(changes, values, velmora::yaml::load(edited))) return edited;
    } catch (const velmora::yaml::Error&) {
    }
    refuse("Cannot change the file: it would differ in more than these keys");
}
