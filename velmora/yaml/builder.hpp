// The value of a document, made from the inside out.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/mark.h>

#include "velmora/config/value.hpp"
#include "velmora/yaml/places.hpp"
#include "velmora/yaml/walk.hpp"

namespace velmora::yaml {

class Builder : public YAML::EventHandler {
public:
    /// All must outlive the builder. Where parts stand goes to `places`, if it is not null.
    Builder(const Source& source, Walk& walk, Places* places)
        : source_(source), walk_(walk), places_(places) {}

    config::ConfigValue take_value() { return std::move(value_); }

    void OnDocumentStart(const YAML::Mark& /*mark*/) override {}
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t /*anchor*/) override { add_leaf(mark); }
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t /*anchor*/) override { add_leaf(mark); }
    void OnScalar(const YAML::Mark& mark, const std::string& /*tag*/, YAML::anchor_t /*anchor*/,
                  const std::string& /*text*/) override {
        add_leaf(mark);
    }
    void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value style) override;
    void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value style) override;
    void OnSequenceEnd() override { close(); }
    void OnMapEnd() override { close(); }

private:
    struct Node {
        config::ConfigValue value = {};
        std::size_t size = 1;  // Values in it, those of aliases included; long texts count more.
        bool cyclic = false;   // Whether it contains a value that contains itself.
        Span spelling = {};    // As Part's.
    };

    // A list or a mapping that is being filled, which is cheap as long as this is its only handle.
    struct Frame {
        Properties properties;
        std::variant<config::List, config::Mapping> collection;
        std::optional<config::ConfigValue> key = {};
        std::unordered_map<std::size_t, std::size_t> collection_keys = {};  // Number by hash.
        std::size_t size = 1;
        bool cyclic = false;
        bool contains_itself = false;

        config::ConfigValue value() const {
            return std::visit([](const auto& held) { return config::ConfigValue(held); },
                              collection);
        }
    };

    // What an anchor stands for: a node, or the frame at this height as long as it is open.
    struct Anchored {
        Node node = {};
        std::optional<std::size_t> frame = {};
    };

    void add_leaf(const YAML::Mark& mark);
    void add_alias(const Leaf& leaf);
    void open(Frame frame, std::string_view core_tag);
    void close();
    void close_cycle(const Frame& frame);
    void add(const Properties& properties, Node node);
    void check_key(std::size_t offset, Frame& frame, const Node& key);
    void spend(std::size_t offset, std::size_t steps);
    void expand(std::size_t offset, std::size_t values);

    const Source& source_;
    Walk& walk_;
    Places* places_;
    config::ConfigValue value_;
    std::vector<Frame> frames_;
    std::unordered_map<std::string_view, Anchored> anchored_;
    std::size_t nodes_ = 0;
    std::size_t steps_ = 0;
    std::size_t expanded_ = 0;  // What the aliases so far stand for.

    // Of the lists and mappings that contain themselves: those open now and those within them that
    // have been closed since, the aliases that lead to them, and what one can be shown as at most.
    std::size_t open_cycles_ = 0;
    std::size_t cycles_ = 0;
    std::size_t ways_back_ = 0;
    std::size_t largest_cycle_ = 0;
};

}  // namespace velmora::yaml
