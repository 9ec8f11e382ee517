// Showing at most 80 characters of a value, however large it is, against a list of 20 values.
#include <cstring>
#include <string>
#include <vector>

#include "by_hand.hpp"
#include "contender.hpp"
#include "texts.hpp"
#include "value.hpp"
#include "velmora/config/display.hpp"

namespace bench {

using namespace velmora::config;

namespace {

std::string cut(const std::string& form) {
    return form.substr(0, 77) + "...";
}

Values twenty_values() {
    return {mixed_values().begin() + 500, mixed_values().begin() + 520};
}

// A list of the same twenty values again and again.
const ConfigValue& ten_million_items() {
    static const ConfigValue value = [] {
        constexpr std::size_t size = 10'000'000;
        const List few = *config_value(twenty_values()).get_if<List>();
        std::vector<ConfigValue> items;
        items.reserve(size);
        while (items.size() < size) items.insert(items.end(), few.begin(), few.end());
        return List(std::move(items));
    }();
    return value;
}

constexpr std::size_t doublings = 40;

// A list of twice one list, that of twice another and so on; the innermost one holds the outermost.
const ConfigValue& shared_list() {
    static const ConfigValue value = [] {
        const List innermost;
        List outermost = innermost;
        for (std::size_t i = 0; i < doublings; ++i) outermost = List{outermost, outermost};
        List(innermost).push_back(outermost);
        return outermost;
    }();
    return value;
}

std::string form_of_shared_list() {
    std::string form = "[[...]]";
    std::size_t level = 0;
    for (; form.size() < 80; ++level) form = "[" + form + ", " + form + "]";
    return std::string(doublings - level, '[') + form;
}

const ConfigValue& million_levels() {
    static const ConfigValue value = [] {
        List outermost;
        for (int i = 0; i < 1'000'000; ++i) outermost = List{ConfigValue(outermost)};
        return outermost;
    }();
    return value;
}

const ConfigValue& long_text() {
    static const ConfigValue value = [] {
        std::string text;
        while (text.size() < 100'000'000) text += plain_text().text;
        text.resize(100'000'000);
        return text;
    }();
    return value;
}

// One job: a large value, and the list of twenty values in the same run.
class Shown {
public:
    Shown(const std::string& job, const ConfigValue& (*value)(), std::string (*form)())
        : ours_(job + "/ours", [value, form](Run& run) { show(run, value(), form()); }),
          limit_(job + "/limit", [](Run& run) {
              show(run, config_value(twenty_values()), form_by_hand(twenty_values()));
          }) {}

private:
    static void show(Run& run, const ConfigValue& value, const std::string& form) {
        run.once([&] { return _shown(value); }, cut(form));
    }

    Contender ours_;
    Contender limit_;
};

const Shown items("shown_items", ten_million_items, [] { return form_by_hand(twenty_values()); });
const Shown shared("shown_shared", shared_list, form_of_shared_list);
const Shown levels("shown_levels", million_levels, [] { return std::string(80, '['); });

const Contender text_ours("shown_text/ours", [](Run& run) {
    run.once([] { return _shown(long_text()); }, cut("'" + plain_text().text));
});
const Contender text_limit("shown_text/limit", [](Run& run) {
    const auto& text = *long_text().get_if<std::string>();
    run.once([&] { return std::memchr(text.data(), '\'', text.size()); }, nullptr);
});

}  // namespace

}  // namespace bench
