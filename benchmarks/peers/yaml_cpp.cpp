#include <yaml-cpp/yaml.h>

#include "../contender.hpp"
#include "../section.hpp"

namespace bench {

namespace {

// Scalars are texts in a node, whatever they were made of.
YAML::Node node_of(const Value& value);

struct Converter {
    YAML::Node operator()(std::monostate) const { return {}; }
    YAML::Node operator()(const Values& list) const {
        YAML::Node items(YAML::NodeType::Sequence);
        for (const Value& item : list) items.push_back(node_of(item));
        return items;
    }
    YAML::Node operator()(const auto& scalar) const { return YAML::Node(scalar); }
};

YAML::Node node_of(const Value& value) {
    return std::visit(Converter(), value);
}

struct Source {
    const YAML::Node& mapping;

    std::optional<YAML::Node> find(std::string_view name) const {
        YAML::Node found = mapping[std::string(name)];
        return found ? std::optional(std::move(found)) : std::nullopt;
    }
    template <class T>
    static std::optional<T> decoded(const YAML::Node& node) {
        T value;
        return YAML::convert<T>::decode(node, value) ? std::optional(std::move(value))
                                                     : std::nullopt;
    }
    static std::optional<std::int64_t> integer(const YAML::Node& node) {
        return decoded<std::int64_t>(node);
    }
    static std::optional<double> real(const YAML::Node& node) { return decoded<double>(node); }
    static std::optional<bool> flag(const YAML::Node& node) { return decoded<bool>(node); }
    static std::optional<std::string_view> text(const YAML::Node& node) {
        return node.IsScalar() ? std::optional<std::string_view>(node.Scalar()) : std::nullopt;
    }
    static std::optional<Texts> list(const YAML::Node& node) {
        return node.IsScalar() ? split(node.Scalar()) : decoded<Texts>(node);
    }
};

void read_section(Run& run, const Tree& tree) {
    YAML::Node mapping;
    for (const auto& [name, value] : tree) mapping[name] = node_of(value);
    const YAML::Node& read_only = mapping;
    run.once([&] { return read_service(Source{read_only}); }, given_service());
}

const Contender typed("section_typed/yaml-cpp",
                      [](Run& run) { read_section(run, service_tree()); });
const Contender texts("section_texts/yaml-cpp", [](Run& run) { read_section(run, text_tree()); });
const Contender shuffled("section_shuffled/yaml-cpp",
                         [](Run& run) { read_section(run, shuffled_tree()); });

}  // namespace

}  // namespace bench
