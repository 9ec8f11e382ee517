#include <nlohmann/json.hpp>

#include "../contender.hpp"
#include "../numbers.hpp"
#include "../section.hpp"
#include "../texts.hpp"

namespace bench {

using nlohmann::json;

namespace {

json json_of(const Value& value);

struct Converter {
    json operator()(std::monostate) const { return nullptr; }
    json operator()(const Values& list) const {
        json items = json::array();
        for (const Value& item : list) items.push_back(json_of(item));
        return items;
    }
    json operator()(const auto& scalar) const { return scalar; }
};

json json_of(const Value& value) {
    return std::visit(Converter(), value);
}

json json_of(const Tree& tree) {
    json object = json::object();
    for (const auto& [name, value] : tree) object[name] = json_of(value);
    return object;
}

struct Source {
    const json& object;

    const json* find(std::string_view name) const {
        const auto found = object.find(name);
        return found != object.end() ? &*found : nullptr;
    }
    static std::optional<std::int64_t> integer(const json& value) {
        return value.is_number_integer() ? std::optional(value.get<std::int64_t>()) : std::nullopt;
    }
    static std::optional<double> real(const json& value) {
        return value.is_number_float() ? std::optional(value.get<double>()) : std::nullopt;
    }
    static std::optional<bool> flag(const json& value) {
        return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
    }
    static std::optional<std::string_view> text(const json& value) {
        return value.is_string() ? std::optional(value.get<std::string_view>()) : std::nullopt;
    }
    static std::optional<Texts> list(const json& value) {
        if (!value.is_array()) return std::nullopt;
        Texts texts;
        texts.reserve(value.size());
        for (const json& item : value) {
            if (!item.is_string()) return std::nullopt;
            texts.push_back(item.get_ref<const std::string&>());
        }
        return texts;
    }
};

void read_section(Run& run, const Tree& tree) {
    const json object = json_of(tree);
    run.once([&] { return read_service(Source{object}); }, given_service());
}

void dump_text(Run& run, const Quoted& quoted) {
    const json text = quoted.text;
    run.once([&] { return text.dump(); }, quoted.form, respelled);
}

std::string dump(const json& value) {
    return value.dump();
}

json reread(const std::string& form) {
    return json::parse(form);
}

const Contender typed("section_typed/nlohmann",
                      [](Run& run) { read_section(run, service_tree()); });
const Contender shuffled("section_shuffled/nlohmann",
                         [](Run& run) { read_section(run, shuffled_tree()); });

const Contender show_int("show_int/nlohmann", [](Run& run) {
    const std::vector<json> values(integers().begin(), integers().end());
    run.each(values, values, dump, reread);
});
const Contender show_double("show_double/nlohmann", [](Run& run) {
    const std::vector<json> values(reals().begin(), reals().end());
    run.each(values, values, dump, reread);
});

const Contender text_64("show_text_64/nlohmann", [](Run& run) { dump_text(run, short_text()); });
const Contender plain("show_text_plain/nlohmann", [](Run& run) { dump_text(run, plain_text()); });
const Contender escapes("show_text_escapes/nlohmann",
                        [](Run& run) { dump_text(run, escaped_text()); });
const Contender mixed("show_text_mixed/nlohmann", [](Run& run) { dump_text(run, mixed_text()); });

const Contender show_list("show_list/nlohmann", [](Run& run) {
    const json list = json_of(mixed_values());
    run.once([&] { return list.dump(); }, list, reread);
});

}  // namespace

}  // namespace bench
