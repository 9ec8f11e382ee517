#include <deque>
#include <memory>

#include <CLI/CLI.hpp>

#include "../contender.hpp"
#include "../declare.hpp"
#include "../numbers.hpp"
#include "../texts.hpp"

namespace bench {

using velmora::config::KeyKind;

namespace {

// What the options of one key may be bound to.
struct Target {
    bool flag = false;
    std::int64_t integer = 0;
    double real = 0;
    std::string text;
    Texts list;
};

struct Declared {
    CLI::App app;
    std::deque<Target> targets;
};

CLI::Option* add_option(CLI::App& app, Target& target, const std::string& name,
                        const KeyFacts& key) {
    switch (key.kind) {
        case KeyKind::bool_:
            target.flag = std::get<bool>(key.fallback);
            return app.add_option(name, target.flag, key.doc);
        case KeyKind::int_:
            target.integer = std::get<std::int64_t>(key.fallback);
            return app.add_option(name, target.integer, key.doc);
        case KeyKind::float_:
            target.real = std::get<double>(key.fallback);
            return app.add_option(name, target.real, key.doc);
        case KeyKind::str:
            target.text = std::get<std::string>(key.fallback);
            return app.add_option(name, target.text, key.doc);
        case KeyKind::list:
            break;
    }
    target.list = *texts_of(std::get<Values>(key.fallback));
    return app.add_option(name, target.list, key.doc)->delimiter(',');
}

std::unique_ptr<Declared> declared() {
    auto made = std::make_unique<Declared>();
    for (const SectionFacts& section : service_sections()) {
        for (const KeyFacts& key : section.keys) {
            CLI::Option* option = add_option(made->app, made->targets.emplace_back(),
                                             "--" + section.name + "." + key.name, key);
            option->envname(key.env);
            if (key.range) option->check(CLI::Range(key.range->first, key.range->second));
            if (!key.choices.empty()) option->check(CLI::IsMember(key.choices));
        }
    }
    return made;
}

const Contender declare("declare/CLI11", [](Run& run) {
    run.once(declared, all_labels(), [](const std::unique_ptr<Declared>& made) {
        Texts labels;
        for (const CLI::Option* option : made->app.get_options()) {
            if (option->get_lnames()[0] != "help") labels.push_back(option->get_lnames()[0]);
        }
        return labels;
    });
});

// Validators see the text, and give the empty text where they have nothing against it.
void validate(Run& run, const CLI::Validator& validator, Texts values) {
    run.each(values, Texts(values.size()),
             [&](const std::string& value) { return validator(value); });
}

const Contender check_int("check_int/CLI11", [](Run& run) {
    Texts texts;
    for (const std::int64_t port : ports()) texts.push_back(std::to_string(port));
    validate(run, CLI::Range(1, 65535), texts);
});
const Contender check_choice("check_choice/CLI11", [](Run& run) {
    validate(run, CLI::IsMember(Texts{"debug", "info", "warning", "error"}), level_names());
});

template <class Number>
Number cast(const std::string& text) {
    return parse_with<Number>(
        [](const std::string& plain, Number& number) {
            return CLI::detail::lexical_cast(plain, number);
        },
        text);
}

const Contender to_int("text_to_int/CLI11", [](Run& run) {
    run.each(bare_integer_texts(), integers(), cast<std::int64_t>);
});
const Contender to_float("text_to_float/CLI11",
                         [](Run& run) { run.each(real_texts(), reals(), cast<double>); });

const Contender to_list("text_to_list/CLI11", [](Run& run) {
    run.once(
        [] {
            Texts items = CLI::detail::split(five_items_text(), ',');
            for (std::string& item : items) CLI::detail::trim(item);
            return items;
        },
        five_items());
});

}  // namespace

}  // namespace bench
