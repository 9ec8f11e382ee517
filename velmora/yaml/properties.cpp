// Anchors and tags.
#include "velmora/yaml/advice.hpp"
#include "velmora/yaml/core_schema.hpp"
#include "velmora/yaml/walk.hpp"

namespace velmora::yaml {

bool Walk::at_property() const {
    return at_.peek() == '&' || at_.peek() == '!';
}

// Above the first line of a block stand the properties of the block; those on it are of its first
// key.
void Walk::read_properties_above(Properties& properties, const Slot& slot) {
    const auto read_line = [this](Properties& into) {
        while (at_property()) {
            read_property(into, false);
            at_.skip_white();
        }
        skip_space();
    };
    while (!is_empty(slot) && at_property()) {
        const Cursor start = at_;
        Properties on_line;
        read_line(on_line);
        const bool above = at_.line != start.line;
        at_ = start;
        if (!above) return;
        read_line(properties);
    }
}

void Walk::read_property(Properties& properties, bool flow) {
    if (at_.peek() == '&') {
        if (!properties.anchor.empty()) at_.refuse(advice::two_properties);
        ++at_.pos;
        properties.anchor = read_name();
    } else {
        if (!properties.tag.empty()) at_.refuse(advice::two_properties);
        properties.tag = read_tag();
    }
    if (is_plain(at_.peek(), flow)) at_.refuse(advice::name);
}

std::string_view Walk::read_name() {
    const std::size_t start = at_.pos;
    while (is_plain(at_.peek(), true)) ++at_.pos;
    if (at_.pos == start) at_.refuse(advice::name);
    return at_.text.substr(start, at_.pos - start);
}

std::string Walk::read_tag() {
    const std::size_t start = at_.pos;
    if (at_.peek(1) == '<') {
        while (is_plain(at_.peek(), false) && at_.peek() != '>') ++at_.pos;
        const std::string_view tag = at_.text.substr(start + 2, at_.pos - start - 2);
        if (at_.peek() != '>' || tag.empty() || tag == non_specific)
            at_.source->refuse(start,
                               "a tag must be between '!<' and '>': write it, or remove them");
        ++at_.pos;
        return std::string(tag);
    }
    while (is_plain(at_.peek(), true)) ++at_.pos;
    const std::string_view tag = at_.text.substr(start, at_.pos - start);
    if (tag == non_specific) return std::string(tag);
    const std::size_t handle_size = tag.rfind('!') + 1;
    const std::string_view handle = tag.substr(0, handle_size);
    const std::string_view suffix = tag.substr(handle_size);
    if (suffix.empty()) at_.source->refuse(start, advice::name);
    const auto declared = document_.tag_prefixes.find(handle);
    if (declared != document_.tag_prefixes.end())
        return std::string(declared->second).append(suffix);
    if (handle == "!") return std::string(tag);
    if (handle != "!!")
        at_.source->refuse(
            start, "no '%TAG' line says what this tag begins with: add one, or remove the tag");
    return std::string(core_prefix).append(suffix);
}

}  // namespace velmora::yaml
