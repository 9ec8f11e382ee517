#include "yaml_outline.hpp"

#include <sstream>
#include <utility>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

#include "refuse.hpp"

namespace {

using Kind = YamlNode::Kind;

class OutlineBuilder : public YAML::EventHandler {
public:
    YamlOutline take() { return std::move(outline_); }

    void OnDocumentStart(const YAML::Mark&) override {}
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        add(node(Kind::null, mark, anchor));
    }
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        outline_.repeated.insert(anchor);
        add(node(Kind::alias, mark, anchor));
    }
    void OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                  const std::string& text) override {
        YamlNode scalar = node(Kind::scalar, mark, anchor);
        scalar.text = text;
        if (anchor != YAML::NullAnchor) outline_.anchored.emplace(anchor, text);
        add(std::move(scalar));
    }
    void OnSequenceStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value style) override {
        open(node(Kind::list, mark, anchor), style);
    }
    void OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value style) override {
        open(node(Kind::mapping, mark, anchor), style);
    }
    void OnSequenceEnd() override { close(); }
    void OnMapEnd() override { close(); }

private:
    static YamlNode node(Kind kind, const YAML::Mark& mark, YAML::anchor_t anchor) {
        return {.kind = kind, .start = static_cast<std::size_t>(mark.pos), .anchor = anchor};
    }

    void open(YamlNode collection, YAML::EmitterStyle::value style) {
        collection.flow = style == YAML::EmitterStyle::Flow;
        open_.push_back(std::move(collection));
    }

    void close() {
        YamlNode collection = std::move(open_.back());
        open_.pop_back();
        add(std::move(collection));
    }

    void add(YamlNode node) {
        if (open_.empty()) {
            outline_.root = std::move(node);
        } else {
            open_.back().children.push_back(std::move(node));
        }
    }

    YamlOutline outline_;
    std::vector<YamlNode> open_;
};

}  // namespace

YamlOutline outline_of(const std::string& text) {
    for (std::size_t at = 0; (at = text.find('\r', at)) != std::string::npos; ++at) {
        if (text[at + 1] != '\n')
            refuse("Cannot change the file: a carriage return alone ends a line in it");
    }
    std::istringstream in(text);
    OutlineBuilder builder;
    try {
        YAML::Parser(in).HandleNextDocument(builder);
    } catch (const YAML::Exception& error) {
        refuse("Cannot change the file: " + error.msg);
    }
    return builder.take();
}
