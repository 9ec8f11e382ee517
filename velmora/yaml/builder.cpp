#include "velmora/yaml/builder.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/yaml/advice.hpp"
#include "velmora/yaml/core_schema.hpp"

namespace velmora::yaml {

namespace {

using config::ConfigValue;
using config::List;
using config::Mapping;

constexpr std::size_t most_levels = 400;  // They take some 200 KiB of stack.

// What the costs below may add up to: about a second.
constexpr std::size_t most_steps = 4'000'000;

constexpr std::size_t most_expanded = 1'000'000;
constexpr std::size_t bytes_per_value = 64;

Opening opening_of(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                   YAML::EmitterStyle::value style) {
    return {.mark = static_cast<std::size_t>(mark.pos),
            .block = style != YAML::EmitterStyle::Flow,
            .bare = tag == "?" && anchor == YAML::NullAnchor};
}

}  // namespace

void Builder::OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                              YAML::EmitterStyle::value style) {
    open({walk_.open_list(opening_of(mark, tag, anchor, style)), List()}, "!!seq");
}

void Builder::OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value style) {
    open({walk_.open_mapping(opening_of(mark, tag, anchor, style)), Mapping()}, "!!map");
}

void Builder::add_leaf(const YAML::Mark& mark) {
    Leaf leaf = walk_.leaf(static_cast<std::size_t>(mark.pos));
    if (!leaf.alias.empty()) return add_alias(leaf);
    const std::size_t size = 1 + leaf.text.size() / bytes_per_value;
    if (!leaf.plain && leaf.tag.empty()) leaf.tag.append(non_specific);
    ConfigValue value;
    try {
        value = read_scalar(leaf.tag, std::move(leaf.text));
    } catch (const ValueError& error) {
        source_.refuse(leaf.offset, error.message());
    }
    const bool spelled =
        leaf.tag.empty() && !value.is_null() && value.get_if<std::string>() == nullptr;
    add(leaf, {std::move(value), size, false, spelled ? leaf.content : Span()});
}

void Builder::add_alias(const Leaf& leaf) {
    const auto found = anchored_.find(leaf.alias);
    if (found == anchored_.end()) source_.refuse(leaf.offset, advice::unknown_anchor);
    const Anchored& anchored = found->second;
    if (!anchored.frame) {
        const Node& node = anchored.node;
        if (open_cycles_ > 0 && node.cyclic) ways_back_ += node.size;
        expand(leaf.offset, node.cyclic ? std::max(node.size, largest_cycle_) : node.size);
        return add(leaf, node);
    }
    Frame& around = frames_[*anchored.frame];
    if (!std::exchange(around.contains_itself, true)) {
        ++cycles_;
        ++open_cycles_;
    }
    ++ways_back_;
    add(leaf, {around.value(), 1, true});
}

void Builder::open(Frame frame, std::string_view core_tag) {
    const Properties& properties = frame.properties;
    if (frames_.size() == most_levels)
        source_.refuse(properties.offset, "nested more than 400 levels deep");
    if (!properties.tag.empty() && properties.tag != non_specific &&
        short_tag(properties.tag) != core_tag) {
        source_.refuse(properties.offset, unfit_tag_text(frame.value().type_text()));
    }
    if (!properties.anchor.empty()) anchored_[properties.anchor] = {{}, frames_.size()};
    frames_.push_back(std::move(frame));
}

void Builder::close() {
    const std::size_t content_size = walk_.close();
    Frame frame = std::move(frames_.back());
    frames_.pop_back();
    frame.properties.content.size = content_size;
    if (places_ != nullptr)
        std::visit([this](const auto& held) { places_->close(held); }, frame.collection);
    if (frame.contains_itself) close_cycle(frame);
    ConfigValue value =
        std::visit([](auto& held) { return ConfigValue(std::move(held)); }, frame.collection);
    // Its anchor may have been given to a value within it.
    const auto anchored = anchored_.find(frame.properties.anchor);
    if (anchored != anchored_.end() && anchored->second.frame != frames_.size())
        frame.properties.anchor = {};
    add(frame.properties, {std::move(value), frame.size, frame.cyclic});
}

// From a value within, each of the ways back leads around the whole once more, and from there
// through the others: what is shown of it may grow that much.
void Builder::close_cycle(const Frame& frame) {
    if (--open_cycles_ > 0) return;
    std::size_t shown = frame.size;
    for (const std::size_t ways = cycles_ + ways_back_; cycles_ > 0; --cycles_) {
        if (shown > most_expanded / ways) expand(frame.properties.offset, most_expanded + 1);
        shown *= ways;
    }
    largest_cycle_ = std::max(largest_cycle_, shown);
    ways_back_ = 0;
}

void Builder::add(const Properties& properties, Node node) {
    ++nodes_;
    if (places_ != nullptr) places_->add({properties.content, node.spelling});
    if (!properties.anchor.empty()) anchored_[properties.anchor] = {node};
    if (frames_.empty()) {
        value_ = std::move(node.value);
        return;
    }
    Frame& frame = frames_.back();
    frame.cyclic = frame.cyclic || node.cyclic;
    frame.size += node.size;
    // Adding to what contains itself, and letting go of it, may cost a walk.
    if (frame.cyclic) spend(properties.offset, node.cyclic ? nodes_ : node.size);
    if (auto* list = std::get_if<List>(&frame.collection)) {
        list->push_back(std::move(node.value));
    } else if (frame.key) {
        std::get<Mapping>(frame.collection)
            .set(*std::exchange(frame.key, {}), std::move(node.value));
    } else {
        check_key(properties.offset, frame, node);
        frame.key = std::move(node.value);
    }
}

void Builder::check_key(std::size_t offset, Frame& frame, const Node& key) {
    // It may yet change, which a key must not.
    if (key.cyclic) source_.refuse(offset, "a key with a value in it that contains itself");
    // A collection is compared with each one of the same hash.
    if (key.size > 1) spend(offset, key.size * ++frame.collection_keys[key.value.hash()]);
    if (std::get<Mapping>(frame.collection).find(key.value) != nullptr)
        source_.refuse(offset, "this key is there twice");
}

void Builder::spend(std::size_t offset, std::size_t steps) {
    if (steps > most_steps - steps_)
        source_.refuse(offset, "too many lists or mappings that are keys or contain themselves");
    steps_ += steps;
}

void Builder::expand(std::size_t offset, std::size_t values) {
    if (values > most_expanded - expanded_)
        source_.refuse(offset, "aliases that stand for more than a million values in all");
    expanded_ += values;
}

}  // namespace velmora::yaml
