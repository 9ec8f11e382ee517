// Loading a configuration from a file through layers, against reading its YAML alone; and explaining it.
#include <string>
#include <vector>

#include "contender.hpp"
#include "temporary_file.hpp"
#include "velmora/app/declaration.hpp"
#include "velmora/app/explain.hpp"
#include "velmora/yaml/yaml.hpp"

namespace bench {

namespace app = velmora::app;
using namespace velmora::config;

namespace {

constexpr std::size_t keys_in_section = 20;
constexpr std::size_t few_sections = 20;
constexpr std::size_t many_sections = 500;

RecordType config_of(std::size_t sections) {
    std::vector<FieldDecl> fields;
    for (std::size_t i = 0; i < sections; ++i) {
        std::vector<FieldDecl> keys;
        for (std::size_t j = 0; j < keys_in_section; ++j) {
            const std::string name = "some_key_" + std::to_string(j);
            if (j % 5 == 0) keys.emplace_back(name, str_type, setting("a text", "Doc."));
            if (j % 5 == 1) keys.emplace_back(name, float_type, setting(0.5, "Doc."));
            if (j % 5 == 2) keys.emplace_back(name, list_of(str_type), setting(List{"a"}, "Doc."));
            if (j % 5 >= 3)
                keys.emplace_back(name, int_type, setting(1, "Doc.", {.bounds = Bound(1, 99999)}));
        }
        const RecordType kind("Section", std::move(keys));
        fields.emplace_back("section_" + std::to_string(i), kind,
                            section(kind, "Doc.", {.restart = Restart::none}));
    }
    return {"Config", std::move(fields)};
}

// With the lists given once and repeated by aliases, or each by itself.
std::string yaml_of(std::size_t sections, bool aliases) {
    std::string text = "x-list: &list [a, b, c]\n";
    for (std::size_t i = 0; i < sections; ++i) {
        text += "section_" + std::to_string(i) + ":  # What the section is for\n";
        for (std::size_t j = 0; j < keys_in_section; ++j) {
            const std::string digits = std::to_string(i + j + 1);
            text += "  some_key_" + std::to_string(j) + ": ";
            if (j % 5 == 0) text += "a text of some words, " + digits;
            if (j % 5 == 1) text += digits + ".25";
            if (j % 5 == 2) text += aliases ? "*list" : "[a, b, c]";
            if (j % 5 >= 3) text += digits;
            text += "\n";
        }
    }
    return text;
}

// A declaration and a file for it.
class Loaded {
public:
    Loaded(std::size_t sections, bool aliases)
        : declaration_(config_of(sections)), file_("load", yaml_of(sections, aliases)) {}

    const std::string& path() const { return file_.path(); }
    app::Values load() const { return declaration_.load({app::file(path())}); }

private:
    app::Declaration declaration_;
    TemporaryFile file_;
};

const Loaded& few() {
    static const Loaded loaded(few_sections, false);
    return loaded;
}

int last_value(const app::Values& values) {
    return values.faults().empty() ? values.get<int>("section_19.some_key_19") : -1;
}

const Contender ours("load/ours",
                     [](Run& run) { run.once([] { return few().load(); }, 39, last_value); });
const Contender limit("load/limit", [](Run& run) {
    run.once([] { return velmora::yaml::load_file(few().path()); }, 39,
             [](const ConfigValue& file) {
                 return file.find("section_19")->find("some_key_19")->get<int>();
             });
});

// Many keys, against as many in files of few.
void add_many(Run& run, bool aliases) {
    static const Loaded plain(many_sections, false);
    static const Loaded repeated(many_sections, true);
    const Loaded& many = aliases ? repeated : plain;
    run.once([&] { return many.load(); }, 39, last_value);
}
void add_files(Run& run, bool aliases) {
    static const Loaded repeated(few_sections, true);
    const Loaded& one = aliases ? repeated : few();
    const auto load_all = [&] {
        std::vector<app::Values> all;
        for (std::size_t i = 0; i < many_sections / few_sections; ++i) all.push_back(one.load());
        return all;
    };
    run.once(load_all, 39, [](const auto& all) { return last_value(all.back()); });
}

const Contender many_ours("load_many/ours", [](Run& run) { add_many(run, false); });
const Contender many_limit("load_many/limit", [](Run& run) { add_files(run, false); });
// Explaining all keys, against as many of small configurations.
std::size_t explain_all(const app::Values& values) {
    std::size_t size = 0;
    for (const app::Explanation& each : app::explain(values)) size += text_of(each).size();
    return size;
}
void add_explained(Run& run, std::size_t sections) {
    static const Loaded many(many_sections, false);
    static const app::Values all = many.load();
    static const app::Values some = few().load();
    const app::Values& explained = sections == many_sections ? all : some;
    const auto explain = [&] {
        std::size_t size = 0;
        for (std::size_t i = 0; i < many_sections; i += sections) size += explain_all(explained);
        return size / many_sections;
    };
    run.once(explain, true, [](std::size_t size) { return size > 1000; });
}

const Contender explain_ours("explain/ours", [](Run& run) { add_explained(run, many_sections); });
const Contender explain_limit("explain/limit", [](Run& run) { add_explained(run, few_sections); });
const Contender aliases_ours("load_aliases/ours", [](Run& run) { add_many(run, true); });
const Contender aliases_limit("load_aliases/limit", [](Run& run) { add_files(run, true); });

}  // namespace

}  // namespace bench
