#include "yaml_outline.hpp"

#include <sstream>
#include <utility>

#include <velmora/utils/errors.hpp>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

namespace {

using Kind = YamlNode::Kind;

class OutlineBuilder : public YAML::EventHandler {
public:
    YamlNode take_root() { return std::move(root_); }

    void OnDocumentStart(const YAML::Mark&) override {}
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t) override { add(node(Kind::null, mark)); }
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t) override { add(node(Kind::alias, mark)); }
    void OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t,
                  const std::string& text) override {
        YamlNode scalar = node(Kind::scalar, mark);
        scalar.text = text;
        add(std::move(scalar));
    }
    void OnSequenceStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t,
                         YAML::EmitterStyle::value style) override {
        open(node(Kind::list, mark), style);
    }
    void OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t,
                    YAML::EmitterStyle::value style) override {
        open(node(Kind::mapping, mark), style);
    }
    void OnSequenceEnd() override { close(); }
    void OnMapEnd() override { close(); }

private:
    static YamlNode node(Kind kind, const YAML::Mark& mark) {
        return {.kind = kind, .start = static_cast<std::size_t>(mark.pos)};
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
            root_ = std::move(node);
        } else {
            open_.back().children.push_back(std::move(node));
        }
    }

    YamlNode root_;
    std::vector<YamlNode> open_;
};

}  // namespace

YamlNode outline_of(const std::string& text) {
    std::istringstream in(text);
    OutlineBuilder builder;
    try {
        YAML::Parser(in).HandleNextDocument(builder);
    } catch (const YAML::Exception& error) {
        throw velmora::ValueError(error.msg);
    }
    return builder.take_root();
}
