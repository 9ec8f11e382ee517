#include "value.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace bench {

using namespace velmora::config;

namespace {

template <class Number>
std::optional<Number> parse(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\n\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

struct Converter {
    ConfigValue operator()(std::monostate) const { return nullptr; }
    ConfigValue operator()(const Values& list) const {
        std::vector<ConfigValue> items;
        items.reserve(list.size());
        for (const Value& item : list) items.push_back(config_value(item));
        return List(std::move(items));
    }
    ConfigValue operator()(const auto& scalar) const { return scalar; }
};

}  // namespace

ConfigValue config_value(const Value& value) {
    return std::visit(Converter(), value);
}

ConfigValue config_value(const Tree& tree) {
    Mapping mapping;
    for (const auto& [name, value] : tree) mapping.set(name, config_value(value));
    return mapping;
}

std::optional<Texts> texts_of(const Values& list) {
    Texts texts;
    texts.reserve(list.size());
    for (const Value& item : list) {
        const auto* text = std::get_if<std::string>(&item);
        if (text == nullptr) return std::nullopt;
        texts.push_back(*text);
    }
    return texts;
}

std::optional<std::int64_t> parse_integer(std::string_view text) {
    return parse<std::int64_t>(text);
}

std::optional<double> parse_real(std::string_view text) {
    return parse<double>(text);
}

std::optional<bool> parse_flag(std::string_view text) {
    constexpr std::array<std::string_view, 6> yes = {"true", "yes", "on", "1", "y", "t"};
    constexpr std::array<std::string_view, 6> no = {"false", "no", "off", "0", "n", "f"};
    if (std::find(yes.begin(), yes.end(), text) != yes.end()) return true;
    if (std::find(no.begin(), no.end(), text) != no.end()) return false;
    return std::nullopt;
}

Texts split(std::string_view text) {
    Texts texts;
    texts.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), ',')) + 1);
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(','));
        text.remove_prefix(std::min(item.size() + 1, text.size()));
        if (const std::string_view bare = trimmed(item); !bare.empty()) texts.emplace_back(bare);
    }
    return texts;
}

std::string real_text(double real) {
    std::array<char, 32> buffer;
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), real).ptr};
}

}  // namespace bench
