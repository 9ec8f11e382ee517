#include "yaml_value.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include <velmora/config/display.hpp>
#include <velmora/utils/errors.hpp>
#include <velmora/utils/quoting.hpp>
#include <velmora/utils/texts.hpp>
#include <velmora/utils/unicode.hpp>

using namespace velmora::config;
namespace utils = velmora::utils;

namespace {

// Whether every reader of YAML, an old one too, takes `text` for a text when it is not quoted.
bool needs_no_quotes(std::string_view text) {
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr std::string_view others = "0123456789_-./";
    constexpr std::array<std::string_view, 9> words = {"true", "false", "yes", "no",  "on",
                                                       "off",  "y",     "n",   "null"};
    const auto is_letter = [&](char c) { return letters.find(c) != std::string_view::npos; };
    const auto is_plain = [&](char c) {
        return is_letter(c) || others.find(c) != std::string_view::npos;
    };
    return !text.empty() && (is_letter(text[0]) || text[0] == '/') &&
           std::all_of(text.begin(), text.end(), is_plain) &&
           std::none_of(words.begin(), words.end(), [&](std::string_view word) {
               return utils::equal_ignoring_case(text, word);
           });
}

std::string text_of(const std::string& text, Quotes quotes) {
    if (!utils::is_utf8(text)) throw velmora::ValueError(utils::shown_text(text) + " is no UTF-8");
    if (quotes == Quotes::where_needed && needs_no_quotes(text)) return text;
    std::string out = "\"";
    for (const char c : text) {
        constexpr std::string_view digits = "0123456789abcdef";
        const auto code = static_cast<unsigned char>(c);
        const bool control = code < ' ' || code == 0x7f;
        if (control && c != '\t' && c != '\n' && c != '\r') {
            out.append("\\u00").append({digits[code / 16U], digits[code % 16U]});
        } else {
            if (c == '"' || c == '\\') out += '\\';
            out += c;
        }
    }
    return utils::one_line(out) + '"';
}

std::string list_text(const List& list, Quotes quotes) {
    std::vector<std::string> items;
    for (const ConfigValue& item : list) items.push_back(yaml_text(item, quotes));
    return '[' + utils::joined(items) + ']';
}

}  // namespace

std::string yaml_text(const ConfigValue& value, Quotes quotes) {
    if (const auto* flag = value.get_if<bool>()) return *flag ? "true" : "false";
    if (const auto* list = value.get_if<List>()) return list_text(*list, quotes);
    if (value.as<Number>()) return display(value);
    return text_of(value.get<std::string>(), quotes);
}
