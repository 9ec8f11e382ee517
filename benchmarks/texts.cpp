// Showing texts and lists in full, and splitting a text into a list.
#include "texts.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

#include "by_hand.hpp"
#include "contender.hpp"
#include "keys.hpp"

namespace bench {

using namespace velmora::config;

namespace {

constexpr std::size_t mebibyte = 1U << 20U;

constexpr std::string_view english =
    "GET /api/v2/orders/4711?expand=lines HTTP/1.1 answered 200 within 12 ms by worker 3; ";
constexpr std::string_view many_scripts =
    "Größe der Lösung: 12 µm, déjà vu à Genève, Привет из Москвы, 配置文件已更新, 日本語の設定, "
    "καλημέρα κόσμε, 👍 done 🎉, plain words in between; ";

// The characters of `sample` over and over; the share of those to be escaped is a percentage.
Quoted quoted(std::string_view sample, std::size_t bytes, unsigned escapes) {
    constexpr std::array<std::string_view, 4> escaped = {"\n", "\t", "\\", "\r"};
    constexpr std::array<std::string_view, 4> forms = {"\\n", "\\t", "\\\\", "\\r"};
    std::mt19937 random(1);
    Quoted made{"", "'"};
    for (std::size_t at = 0; made.text.size() < bytes;) {
        if (random() % 100 < escapes) {
            const std::size_t which = random() % escaped.size();
            made.text += escaped[which];
            made.form += forms[which];
            continue;
        }
        std::string_view character = sample.substr(at, character_size(sample[at]));
        at = (at + character.size()) % sample.size();
        if (made.text.size() + character.size() > bytes) character = "~";
        made.text += character;
        made.form += character;
    }
    made.form += '\'';
    return made;
}

std::string copied(const std::string& text) {
    return text;
}

// One job: a text, shown by the library and by hand. The latter may be to make its copy only.
class Showing {
public:
    Showing(const std::string& job, const Quoted& (*input)(),
            std::string (*by_hand)(const std::string&), std::string Quoted::*made = &Quoted::form)
        : ours_(job + "/ours",
                [input](Run& run) {
                    const ConfigValue value = input().text;
                    run.once([&] { return display(value); }, input().form);
                }),
          limit_(job + "/limit", [input, by_hand, made](Run& run) {
              const Quoted& quoted = input();
              run.once([&] { return by_hand(quoted.text); }, quoted.*made);
          }) {}

private:
    Contender ours_;
    Contender limit_;
};

const Showing show_short("show_text_64", short_text, copied, &Quoted::text);
const Showing show_plain("show_text_plain", plain_text, quoted_by_copy);
const Showing show_escaped("show_text_escapes", escaped_text, quoted_by_byte);
const Showing show_mixed("show_text_mixed", mixed_text, quoted_by_character);

const Contender list_ours("show_list/ours", [](Run& run) {
    const ConfigValue list = config_value(mixed_values());
    run.once([&] { return display(list); }, form_by_hand(mixed_values()));
});
const Contender list_limit("show_list/limit", [](Run& run) {
    run.once([] { return form_by_hand(mixed_values()); }, form_by_hand(mixed_values()));
});

const Contender split_ours("text_to_list/ours", [](Run& run) {
    const Section section = resolved_section({{"tags", KeyKind::list, Values(), "Tags.", "TAGS"}});
    const ConfigValue text = five_items_text();
    run.once([&] { return section.keys()[0].coerce(text); }, five_items(),
             [](const ConfigValue& list) { return list.get<Texts>(); });
});
const Contender split_limit("text_to_list/limit", [](Run& run) {
    run.once([] { return split(five_items_text()); }, five_items());
});

}  // namespace

const Quoted& short_text() {
    static const Quoted made = quoted(english, 64, 0);
    return made;
}
const Quoted& plain_text() {
    static const Quoted made = quoted(english, mebibyte, 0);
    return made;
}
const Quoted& escaped_text() {
    static const Quoted made = quoted(english, mebibyte, 5);
    return made;
}
const Quoted& mixed_text() {
    static const Quoted made = quoted(many_scripts, mebibyte, 5);
    return made;
}

const Values& mixed_values() {
    static const Values made = [] {
        Values values;
        while (values.size() < 10'000) {
            const auto i = static_cast<std::int64_t>(values.size());
            const std::string name = "service-" + std::to_string(i);
            values.emplace_back(i * i);
            values.emplace_back(0.25 * static_cast<double>(i) + 0.125);
            values.emplace_back(name + ".example.org");
            values.emplace_back("Requests to " + name + " that took more than a second, by worker");
            values.emplace_back(i % 3 == 0);
        }
        return values;
    }();
    return made;
}

const Texts& five_items() {
    static const Texts items = {"production", "frankfurt", "eu-central-1", "blue", "canary"};
    return items;
}
const std::string& five_items_text() {
    static const std::string text = "production, frankfurt, eu-central-1, blue, canary";
    return text;
}

std::string respelled(std::string form) {
    std::replace(form.begin(), form.end(), '"', '\'');
    return form;
}

}  // namespace bench
