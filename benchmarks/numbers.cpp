// Checking, reading and showing one number, or one of a few names.
#include "numbers.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string_view>

#include "contender.hpp"
#include "keys.hpp"

namespace bench {

using namespace velmora::config;

namespace {

constexpr std::size_t count = 20;

template <class Make>
auto made(Make make) {
    std::mt19937_64 random(1);
    std::vector<decltype(make(random, count))> items;
    for (std::size_t i = 0; i < count; ++i) items.push_back(make(random, i));
    return items;
}

std::string with_underscores(std::string_view digits) {
    std::string text;
    for (std::size_t left = digits.size(); left > 0; --left) {
        const bool between_digits = !text.empty() && text.back() != '-';
        if (between_digits && left % 3 == 0) text += '_';
        text += digits[digits.size() - left];
    }
    return text;
}

template <class Expected>
void coerce(Run& run, KeyFacts facts, const std::vector<ConfigValue>& values,
            const Expected& expected) {
    const Key key = resolved_section({std::move(facts)}).keys()[0];
    run.each(values, expected, [&](const ConfigValue& value) { return key.coerce(value); });
}

template <class Expected>
void show(Run& run, const std::vector<ConfigValue>& values, const Expected& expected) {
    run.each(values, expected, [](const ConfigValue& value) { return display(value); });
}

std::string integer_text(std::int64_t integer) {
    std::array<char, 24> buffer;
    return {buffer.data(),
            std::to_chars(buffer.data(), buffer.data() + buffer.size(), integer).ptr};
}

std::int64_t checked_port(const Value& value) {
    const auto* port = std::get_if<std::int64_t>(&value);
    if (port == nullptr || *port < 1 || *port > 65535) throw std::out_of_range("no port");
    return *port;
}

std::string checked_level(const Value& value) {
    const auto* level = std::get_if<std::string>(&value);
    if (level == nullptr ||
        (*level != "debug" && *level != "info" && *level != "warning" && *level != "error")) {
        throw std::out_of_range("no level");
    }
    return *level;
}

const Contender int_ours("check_int/ours", [](Run& run) {
    coerce(run, {"port", KeyKind::int_, std::int64_t{8080}, "Port.", "PORT", {{1, 65535}}},
           config_values(ports()), ports());
});
const Contender int_limit("check_int/limit", [](Run& run) {
    run.each(Values(ports().begin(), ports().end()), ports(), checked_port);
});

const Contender choice_ours("check_choice/ours", [](Run& run) {
    coerce(run,
           {"level",
            KeyKind::str,
            "info",
            "Level.",
            "LEVEL",
            {},
            {"debug", "info", "warning", "error"}},
           config_values(level_names()), level_names());
});
const Contender choice_limit("check_choice/limit", [](Run& run) {
    run.each(Values(level_names().begin(), level_names().end()), level_names(), checked_level);
});

const Contender to_int_ours("text_to_int/ours", [](Run& run) {
    coerce(run, {"size", KeyKind::int_, std::int64_t{0}, "Bytes.", "SIZE"},
           config_values(integer_texts()), integers());
});
const Contender to_int_limit("text_to_int/limit", [](Run& run) {
    run.each(bare_integer_texts(), integers(), parse_integer);
});
const Contender to_int_stoll("text_to_int/std::stoll", [](Run& run) {
    const auto parse = [](const std::string& text, std::int64_t& integer) {
        std::size_t read = 0;
        integer = std::stoll(text, &read);
        return read == text.size();
    };
    run.each(bare_integer_texts(), integers(),
             [&](const std::string& text) { return parse_with<std::int64_t>(parse, text); });
});

const Contender to_float_ours("text_to_float/ours", [](Run& run) {
    coerce(run, {"ratio", KeyKind::float_, 0.0, "Ratio.", "RATIO"}, config_values(real_texts()),
           reals());
});
const Contender to_float_limit("text_to_float/limit",
                               [](Run& run) { run.each(real_texts(), reals(), parse_real); });
const Contender to_float_strtod("text_to_float/strtod", [](Run& run) {
    const auto parse = [](const std::string& text, double& real) {
        char* end = nullptr;
        real = std::strtod(text.c_str(), &end);
        return end == text.c_str() + text.size();
    };
    run.each(real_texts(), reals(),
             [&](const std::string& text) { return parse_with<double>(parse, text); });
});

const Contender show_int_ours("show_int/ours", [](Run& run) {
    show(run, config_values(integers()), bare_integer_texts());
});
const Contender show_int_limit("show_int/limit", [](Run& run) {
    run.each(integers(), bare_integer_texts(), integer_text);
});

const Contender show_double_ours("show_double/ours",
                                 [](Run& run) { show(run, config_values(reals()), real_texts()); });
const Contender show_double_limit("show_double/limit",
                                  [](Run& run) { run.each(reals(), real_texts(), real_text); });

const std::string& million_digits() {
    static const std::string digits = [] {
        std::string text;
        while (text.size() < 1'000'000) text += std::to_string(1 + text.size());
        text.resize(1'000'000);
        return text;
    }();
    return digits;
}

const Contender digits_ours("million_digits/ours", [](Run& run) {
    run.once([] { return display(ConfigValue(*Integer::parse(million_digits()))); },
             million_digits());
});
const Contender digits_limit("million_digits/limit", [](Run& run) {
    run.once(
        [] {
            std::string read = million_digits();
            benchmark::DoNotOptimize(read.data());
            return std::string(read);
        },
        million_digits());
});

}  // namespace

const Integers& integers() {
    static const Integers all = made([](auto& random, std::size_t i) {
        std::uint64_t least = 1;
        for (std::size_t more = i % 18; more > 0; --more) least *= 10;
        const auto integer = static_cast<std::int64_t>(least + random() % (9 * least));
        return i % 4 == 0 ? -integer : integer;
    });
    return all;
}

const Texts& bare_integer_texts() {
    static const Texts all =
        made([](auto&, std::size_t i) { return std::to_string(integers()[i]); });
    return all;
}

const Texts& integer_texts() {
    static const Texts all = made([](auto&, std::size_t i) {
        const std::string& text = bare_integer_texts()[i];
        return i == 6 ? " " + text + "\n" : i == 16 ? with_underscores(text) : text;
    });
    return all;
}

const Reals& reals() {
    static const Reals all = made([](auto& random, std::size_t i) {
        constexpr std::array<double, 5> grains = {10, 100, 100, 1000, 1e15};
        const double grain = grains[i % grains.size()];
        const double fraction = std::uniform_real_distribution(0.1, 0.9)(random);
        const std::uint64_t whole = random() % (i % 4 == 0 ? 100'000 : 100);
        return static_cast<double>(whole) + std::round(fraction * grain) / grain;
    });
    return all;
}

const Texts& real_texts() {
    static const Texts all = made([](auto&, std::size_t i) { return real_text(reals()[i]); });
    return all;
}

const Integers& ports() {
    static const Integers all = made(
        [](auto& random, std::size_t) { return static_cast<std::int64_t>(1 + random() % 65535); });
    return all;
}

const Texts& level_names() {
    static const Texts all = made([](auto& random, std::size_t) {
        const Texts names = {"debug", "info", "warning", "error"};
        return names[random() % names.size()];
    });
    return all;
}

}  // namespace bench
