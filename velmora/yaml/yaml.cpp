#include "velmora/yaml/yaml.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/mark.h>
#include <yaml-cpp/parser.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"
#include "velmora/yaml/core_schema.hpp"

namespace velmora::yaml {

namespace {

using config::ConfigValue;
using config::List;
using config::Mapping;

constexpr std::size_t most_bytes = std::numeric_limits<int>::max();  // yaml-cpp counts in int.

// A YAML text under its name. Lines end in "\n".
struct Source {
    std::string_view name;
    std::string text;

    [[noreturn]] void refuse(std::size_t offset, std::string_view what) const {
        const std::string_view before = std::string_view(text).substr(0, offset);
        const std::size_t line_start = before.rfind('\n') + 1;
        std::size_t column = 1;
        for (std::string_view rest = before.substr(line_start); !rest.empty(); ++column)
            rest.remove_prefix(utils::first_character(rest).size);
        const auto line = 1 + std::count(before.begin(), before.end(), '\n');
        throw Error(std::string(name)
                        .append(":" + std::to_string(line) + ":" + std::to_string(column) + ": ")
                        .append(what));
    }

    [[noreturn]] void refuse(const YAML::Mark& mark, std::string_view what) const {
        refuse(static_cast<std::size_t>(mark.pos), what);
    }
};

// yaml-cpp takes bytes for what they are not: NUL for a sign of UTF-16, a lone carriage return for
// a part of the line.
Source source_of(std::string_view text, std::string_view name) {
    Source source{name, {}};
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
    if (text.size() > most_bytes) source.refuse(0, "the text is larger than 2 GiB");
    source.text.reserve(text.size());
    while (!text.empty()) {
        const auto [code, size] = utils::first_character(text);
        if (code >= 0xd800 && code <= 0xdfff) source.refuse(source.text.size(), "no UTF-8");
        if (code < ' ' && code != '\t' && code != '\n' && code != '\r') {
            source.refuse(source.text.size(),
                          "the control character " + utils::quoted_text(text.substr(0, 1)));
        }
        if (code != '\r') {
            source.text += text.substr(0, size);
        } else if (!text.starts_with("\r\n")) {
            source.text += '\n';
        }
        text.remove_prefix(size);
    }
    return source;
}

constexpr std::size_t most_levels = 400;  // They take some 200 KiB of stack.

// What the costs below may add up to: about a second.
constexpr std::size_t most_steps = 4'000'000;

// Makes the value of the one document that a source may hold, from the inside out.
class Builder : public YAML::EventHandler {
public:
    explicit Builder(const Source& source) : source_(source) {}

    // yaml-cpp passes over directives that belong to no document.
    void refuse_directive_before(std::size_t offset) const {
        const std::string_view before = std::string_view(source_.text).substr(0, offset);
        const std::size_t line_end = before.rfind("\n%");
        if (line_end == std::string_view::npos && !before.starts_with('%')) return;
        source_.refuse(line_end + 1, "a directive without a document that begins with '---'");
    }

    ConfigValue take_value() { return std::move(value_); }

    void OnDocumentStart(const YAML::Mark& mark) override {
        const auto offset = static_cast<std::size_t>(mark.pos);
        const bool marked = source_.text.compare(offset, 3, "---") == 0;
        if (std::exchange(started_, true))
            source_.refuse(mark, marked ? "a second document" : "text behind the document");
        if (!marked) refuse_directive_before(offset);
    }
    void OnDocumentEnd() override {}

    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override { add(mark, anchor, {}); }

    void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                  const std::string& text) override {
        ConfigValue value;
        try {
            value = read_scalar(tag, text);
        } catch (const ValueError& error) {
            source_.refuse(mark, error.what());
        }
        add(mark, anchor, {std::move(value)});
    }

    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override {
        if (const auto found = anchored_.find(anchor); found != anchored_.end()) {
            add(mark, YAML::NullAnchor, found->second);
            return;
        }
        const auto around = std::find_if(frames_.begin(), frames_.end(), [&](const Frame& frame) {
            return frame.anchor == anchor;
        });
        std::for_each(around, frames_.end(), [](Frame& frame) { frame.cyclic = true; });
        add(mark, YAML::NullAnchor, {around->value(), 1, true});
    }

    void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value) override {
        open({mark, anchor, List()}, tag, "!!seq");
    }
    void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value) override {
        open({mark, anchor, Mapping()}, tag, "!!map");
    }
    void OnSequenceEnd() override { close(); }
    void OnMapEnd() override { close(); }

private:
    struct Node {
        ConfigValue value = {};
        std::size_t size = 1;  // Values in it, those of aliases included; at most all there are.
        bool cyclic = false;   // Whether it contains a value that contains itself.
    };

    // A list or a mapping that is being filled, which is cheap as long as this is its only handle.
    struct Frame {
        YAML::Mark mark;
        YAML::anchor_t anchor;
        std::variant<List, Mapping> collection;
        std::optional<ConfigValue> key = {};
        std::unordered_map<std::size_t, std::size_t> collection_keys = {};  // Number by hash.
        std::size_t size = 1;
        bool cyclic = false;

        ConfigValue value() const {
            return std::visit([](const auto& held) { return ConfigValue(held); }, collection);
        }
    };

    void open(Frame frame, const std::string& tag, std::string_view core_tag) {
        if (frames_.size() == most_levels) source_.refuse(frame.mark, "nested too deeply");
        if (tag != untagged && tag != non_specific && short_tag(tag) != core_tag)
            source_.refuse(frame.mark, unfit_tag_text(frame.value().type_text(), tag));
        frames_.push_back(std::move(frame));
    }

    void close() {
        Frame frame = std::move(frames_.back());
        frames_.pop_back();
        ConfigValue value =
            std::visit([](auto& held) { return ConfigValue(std::move(held)); }, frame.collection);
        add(frame.mark, frame.anchor, {std::move(value), frame.size, frame.cyclic});
    }

    void add(const YAML::Mark& mark, YAML::anchor_t anchor, Node node) {
        ++nodes_;
        if (anchor != YAML::NullAnchor) anchored_.emplace(anchor, node);
        if (frames_.empty()) {
            value_ = std::move(node.value);
            return;
        }
        Frame& frame = frames_.back();
        frame.cyclic = frame.cyclic || node.cyclic;
        frame.size = std::min(frame.size + node.size, nodes_);
        // Adding to what contains itself, and letting go of it, may cost a walk.
        if (frame.cyclic) spend(mark, node.cyclic ? nodes_ : node.size);
        if (auto* list = std::get_if<List>(&frame.collection)) {
            list->push_back(std::move(node.value));
        } else if (frame.key) {
            std::get<Mapping>(frame.collection)
                .set(*std::exchange(frame.key, {}), std::move(node.value));
        } else {
            check_key(mark, frame, node);
            frame.key = std::move(node.value);
        }
    }

    void check_key(const YAML::Mark& mark, Frame& frame, const Node& key) {
        // It may yet change, which a key must not.
        if (key.cyclic) source_.refuse(mark, "a key with a value in it that contains itself");
        // A collection is compared with each one of the same hash.
        if (key.size > 1) spend(mark, key.size * ++frame.collection_keys[key.value.hash()]);
        if (std::get<Mapping>(frame.collection).find(key.value) != nullptr)
            source_.refuse(mark, "the key " + config::_shown(key.value) + " is there twice");
    }

    void spend(const YAML::Mark& mark, std::size_t steps) {
        if (steps > most_steps - steps_)
            source_.refuse(mark, "too many lists or mappings that are keys or contain themselves");
        steps_ += steps;
    }

    const Source& source_;
    bool started_ = false;
    ConfigValue value_;
    std::vector<Frame> frames_;
    std::unordered_map<YAML::anchor_t, Node> anchored_;
    std::size_t nodes_ = 0;
    std::size_t steps_ = 0;
};

ConfigValue parse(const Source& source) {
    Builder builder(source);
    try {
        std::istringstream in(source.text);
        YAML::Parser parser(in);
        const bool read_all = parser.HandleNextDocument(builder) && !parser;
        if (!read_all) {
            parser.HandleNextDocument(builder);  // A second document is refused at its start.
            builder.refuse_directive_before(source.text.size());
        }
    } catch (const YAML::Exception& error) {
        source.refuse(error.mark, error.msg);
    }
    return builder.take_value();
}

[[noreturn]] void refuse_file(const std::string& name) {
    throw Error(name + ": cannot be read: " + std::generic_category().message(errno));
}

}  // namespace

ConfigValue load(std::string_view text, std::string_view name) {
    Source source = source_of(text, name);
    ConfigValue value = parse(source);
    if (!value.is_null()) return value;
    // At the very end of a text yaml-cpp overlooks a tag: "!!str" is then null.
    source.text += "\n...\n";
    return parse(source);
}

ConfigValue load_file(const std::filesystem::path& path) {
    const std::string name = path.string();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
    if (!file) refuse_file(name);
    std::string text;
    std::array<char, 1U << 14U> part;
    while (const std::size_t size = std::fread(part.data(), 1, part.size(), file.get())) {
        text.append(part.data(), size);
        if (text.size() > most_bytes) break;
    }
    if (std::ferror(file.get()) != 0) refuse_file(name);
    return load(text, name);
}

}  // namespace velmora::yaml
