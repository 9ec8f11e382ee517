#include "velmora/yaml/source.hpp"

#include <algorithm>

#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"
#include "velmora/yaml/yaml.hpp"

namespace velmora::yaml {

namespace {

constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";

// Beyond the controls of ASCII, these are the characters that YAML calls not printable.
constexpr bool is_quoted_only(char32_t code) noexcept {
    return code == 0x7f || (code >= 0x80 && code <= 0x9f && code != 0x85) || code == 0xfeff ||
           code == 0xfffe || code == 0xffff;
}

// Appends the character that `text` begins with, and returns its size.
std::size_t append_character(Source& source, std::string_view text) {
    const auto [code, size] = utils::first_character(text);
    const std::size_t offset = source.text.size();
    if (utils::is_stray_byte(code))
        source.refuse(offset, "a byte that is no UTF-8: save the file as UTF-8");
    if (code == '\r') {
        if (!text.starts_with("\r\n")) source.text += '\n';
        return size;
    }
    if (code < ' ') {
        source.refuse(offset, "the control character " + utils::quoted_text(text.substr(0, size)) +
                                  ": write it in double quotes, as an escape");
    }
    if (is_quoted_only(code)) source.quoted_only.push_back(offset);
    source.text += text.substr(0, size);
    return size;
}

constexpr bool is_common(char c) noexcept {
    return (c >= ' ' && c < '\x7f') || c == '\n' || c == '\t';
}

}  // namespace

void Source::refuse(std::size_t offset, std::string_view what) const {
    const std::string_view before = std::string_view(text).substr(0, offset);
    std::size_t column = 1;
    for (std::string_view rest = before.substr(before.rfind('\n') + 1); !rest.empty(); ++column)
        rest.remove_prefix(utils::first_character(rest).size);
    const auto line_ends = std::count(before.begin(), before.end(), '\n');
    throw Error(name, static_cast<std::size_t>(line_ends) + 1, column, what);
}

Source source_of(std::string_view text, std::string_view name) {
    Source source{name, {}};
    if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
    if (text.size() > most_bytes) source.refuse(0, "the text is larger than 2 GiB");
    source.text.reserve(text.size());
    while (!text.empty()) {
        const auto end = std::find_if_not(text.begin(), text.end(), is_common);
        const auto common = static_cast<std::size_t>(end - text.begin());
        source.text += text.substr(0, common);
        text.remove_prefix(common);
        if (!text.empty()) text.remove_prefix(append_character(source, text));
    }
    return source;
}

}  // namespace velmora::yaml
