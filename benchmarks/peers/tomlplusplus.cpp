#include <toml++/toml.h>

#include "../contender.hpp"
#include "../section.hpp"

namespace bench {

namespace {

struct Converter {
    toml::table& table;
    const std::string& name;

    void operator()(std::monostate) const {}
    void operator()(const Values& list) const {
        toml::array items;
        for (const Value& item : list) items.push_back(std::get<std::string>(item));
        table.insert(name, std::move(items));
    }
    void operator()(const auto& scalar) const { table.insert(name, scalar); }
};

toml::table table_of(const Tree& tree) {
    toml::table table;
    for (const auto& [name, value] : tree) std::visit(Converter{table, name}, value);
    return table;
}

struct Source {
    const toml::table& table;

    const toml::node* find(std::string_view name) const { return table.get(name); }
    static std::optional<std::int64_t> integer(const toml::node& node) {
        return node.value_exact<std::int64_t>();
    }
    static std::optional<double> real(const toml::node& node) { return node.value_exact<double>(); }
    static std::optional<bool> flag(const toml::node& node) { return node.value_exact<bool>(); }
    static std::optional<std::string_view> text(const toml::node& node) {
        return node.value_exact<std::string_view>();
    }
    static std::optional<Texts> list(const toml::node& node) {
        const toml::array* items = node.as_array();
        if (items == nullptr) return std::nullopt;
        Texts texts;
        texts.reserve(items->size());
        for (const toml::node& item : *items) {
            const auto* text = item.as_string();
            if (text == nullptr) return std::nullopt;
            texts.push_back(text->get());
        }
        return texts;
    }
};

void read_section(Run& run, const Tree& tree) {
    const toml::table table = table_of(tree);
    run.once([&] { return read_service(Source{table}); }, given_service());
}

const Contender typed("section_typed/toml++", [](Run& run) { read_section(run, service_tree()); });
const Contender shuffled("section_shuffled/toml++",
                         [](Run& run) { read_section(run, shuffled_tree()); });

}  // namespace

}  // namespace bench
