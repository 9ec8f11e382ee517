// Reading a section of 20 keys: 8 integers and 4 reals with bounds, 4 texts of which 2 with choices,
// 2 flags, 2 lists of 3 texts.
#include "section.hpp"

#include <functional>
#include <random>
#include <unordered_map>

#include "contender.hpp"
#include "keys.hpp"

namespace bench {

using namespace velmora::config;

namespace {

std::string text_of(const Value& value) {
    struct Text {
        std::string operator()(std::monostate) const { return ""; }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(std::int64_t integer) const { return std::to_string(integer); }
        std::string operator()(double real) const { return real_text(real); }
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const Values& list) const {
            std::string text;
            for (const Value& item : list) text += (text.empty() ? "" : ", ") + text_of(item);
            return text;
        }
    };
    return std::visit(Text(), value);
}

template <class T>
std::optional<T> held(const Value& value) {
    const auto* alternative = std::get_if<T>(&value);
    return alternative != nullptr ? std::optional(*alternative) : std::nullopt;
}

// Values of the right types.
struct Typed {
    static std::optional<std::int64_t> integer(const Value& value) {
        return held<std::int64_t>(value);
    }
    static std::optional<double> real(const Value& value) { return held<double>(value); }
    static std::optional<bool> flag(const Value& value) { return held<bool>(value); }
    static std::optional<std::string_view> text(const Value& value) {
        const auto* text = std::get_if<std::string>(&value);
        return text != nullptr ? std::optional<std::string_view>(*text) : std::nullopt;
    }
    static std::optional<Texts> list(const Value& value) {
        const auto* list = std::get_if<Values>(&value);
        return list != nullptr ? texts_of(*list) : std::nullopt;
    }
};

// Texts, to be parsed.
struct Spelled {
    // Of what is no text, std::get throws.
    static std::optional<std::int64_t> integer(const Value& value) {
        return parse_integer(std::get<std::string>(value));
    }
    static std::optional<double> real(const Value& value) {
        return parse_real(std::get<std::string>(value));
    }
    static std::optional<bool> flag(const Value& value) {
        return parse_flag(std::get<std::string>(value));
    }
    static std::optional<std::string_view> text(const Value& value) {
        return std::get<std::string>(value);
    }
    static std::optional<Texts> list(const Value& value) {
        return split(std::get<std::string>(value));
    }
};

// Looks at the entry behind the one found last before it searches.
template <class Reading>
struct InOrder : Reading {
    const Tree& tree;
    std::size_t next = 0;

    const Value* find(std::string_view name) {
        if (next < tree.size() && tree[next].first == name) return &tree[next++].second;
        for (std::size_t i = 0; i < tree.size(); ++i) {
            if (tree[i].first != name) continue;
            next = i + 1;
            return &tree[i].second;
        }
        return nullptr;
    }
};

struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
};
using HashTable = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

struct Hashed : Typed {
    const HashTable& table;

    const Value* find(std::string_view name) const {
        const auto found = table.find(name);
        return found != table.end() ? &found->second : nullptr;
    }
};

Service service_of(const Record& record) {
    const auto texts = [&](std::string_view name) { return record.get<Texts>(name); };
    const auto text = [&](std::string_view name) { return record.get<std::string>(name); };
    const auto integer = [&](std::string_view name) { return record.get<std::int64_t>(name); };
    const auto real = [&](std::string_view name) { return record.get<double>(name); };
    const auto flag = [&](std::string_view name) { return record.get<bool>(name); };
    return {text("host"),
            integer("port"),
            integer("workers"),
            integer("backlog"),
            integer("max_connections"),
            integer("max_body_bytes"),
            integer("max_header_bytes"),
            integer("retries"),
            integer("queue_length"),
            real("keep_alive"),
            real("read_timeout"),
            real("write_timeout"),
            real("sample_rate"),
            text("certificate"),
            text("policy"),
            text("log_level"),
            flag("http2"),
            flag("maintenance"),
            texts("tags"),
            texts("trusted_proxies")};
}

void read_ours(Run& run, const ConfigValue& data, const Service& expected) {
    const Section section = resolved_section(service_keys());
    run.once([&] { return section.read(data); }, expected, service_of);
}

const Contender typed_ours("section_typed/ours", [](Run& run) {
    read_ours(run, config_value(service_tree()), given_service());
});
const Contender typed_limit("section_typed/limit", [](Run& run) {
    const Tree tree = service_tree();
    run.once([&] { return read_service(InOrder<Typed>{{}, tree}); }, given_service());
});

const Contender texts_ours("section_texts/ours", [](Run& run) {
    read_ours(run, config_value(text_tree()), given_service());
});
const Contender texts_limit("section_texts/limit", [](Run& run) {
    const Tree tree = text_tree();
    run.once([&] { return read_service(InOrder<Spelled>{{}, tree}); }, given_service());
});

const Contender shuffled_ours("section_shuffled/ours", [](Run& run) {
    read_ours(run, config_value(shuffled_tree()), given_service());
});
const Contender shuffled_limit("section_shuffled/limit", [](Run& run) {
    const Tree tree = shuffled_tree();
    const HashTable table(tree.begin(), tree.end());
    run.once([&] { return read_service(Hashed{{}, table}); }, given_service());
});

const Contender defaults_ours("section_defaults/ours",
                              [](Run& run) { read_ours(run, nullptr, Service()); });
const Contender defaults_limit("section_defaults/limit",
                               [](Run& run) { run.once([] { return Service(); }, Service()); });

}  // namespace

Tree service_tree() {
    return {
        {"host", "frontend-17.eu-central.example.org"},
        {"port", std::int64_t{8443}},
        {"workers", std::int64_t{16}},
        {"backlog", std::int64_t{1024}},
        {"max_connections", std::int64_t{65536}},
        {"max_body_bytes", std::int64_t{1} << 33U},
        {"max_header_bytes", std::int64_t{16384}},
        {"retries", std::int64_t{5}},
        {"queue_length", std::int64_t{4096}},
        {"keep_alive", 12.5},
        {"read_timeout", 7.25},
        {"write_timeout", 8.125},
        {"sample_rate", 0.01},
        {"certificate", "/etc/ssl/live/example.org/fullchain.pem"},
        {"policy", "lfu"},
        {"log_level", "info"},
        {"http2", false},
        {"maintenance", true},
        {"tags", Values{"staging", "frankfurt", "canary"}},
        {"trusted_proxies", Values{"192.168.17.0/24", "172.16.0.0/12", "fd12:3456:789a::/48"}},
    };
}

const Service& given_service() {
    static const Service service = {"frontend-17.eu-central.example.org",
                                    8443,
                                    16,
                                    1024,
                                    65536,
                                    std::int64_t{1} << 33U,
                                    16384,
                                    5,
                                    4096,
                                    12.5,
                                    7.25,
                                    8.125,
                                    0.01,
                                    "/etc/ssl/live/example.org/fullchain.pem",
                                    "lfu",
                                    "info",
                                    false,
                                    true,
                                    {"staging", "frankfurt", "canary"},
                                    {"192.168.17.0/24", "172.16.0.0/12", "fd12:3456:789a::/48"}};
    return service;
}

Tree shuffled_tree() {
    Tree tree = service_tree();
    for (std::int64_t i = 0; i < 40; ++i)
        tree.emplace_back("plugin_" + std::to_string(i) + "_limit", i);
    std::shuffle(tree.begin(), tree.end(), std::mt19937(1));
    return tree;
}

Tree text_tree() {
    Tree tree = service_tree();
    for (auto& [name, value] : tree) value = text_of(value);
    return tree;
}

}  // namespace bench
