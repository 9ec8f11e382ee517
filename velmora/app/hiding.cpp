#include "velmora/app/hiding.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "velmora/utils/texts.hpp"
#include "velmora/utils/unicode.hpp"

namespace velmora::app {

using config::ConfigValue;
using config::List;
using config::Mapping;

namespace {

bool is_of_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || utils::is_digit(c) || c == '_' ||
           c == '-' || c == '.';
}

std::string_view trimmed_of_spaces(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    return text;
}

class Hider {
public:
    Hider(const Declaration::Data& declaration, Document& document)
        : declaration_(declaration), document_(document), text_(document.located().text()) {}

    void hide() {
        const ConfigValue& root = document_.located().value();
        const auto* top = root.get_if<Mapping>();
        if (top == nullptr) {
            document_.hide(0, text_.size() + 1);
            return;
        }
        for (const Mapping::Entry& entry : *top)
            top_keys_.push_back(document_.located().key_span(*top, entry).offset);
        for (const Mapping::Entry& entry : *top) hide_in_top(*top, entry);
    }

private:
    void hide_in_top(const Mapping& top, const Mapping::Entry& entry) {
        const auto* name = entry.key.get_if<std::string>();
        const std::size_t found =
            name != nullptr ? declaration_.find_section(*name) : Declaration::Data::none;
        if (found == Declaration::Data::none) {
            hide_unknown(found, top, entry);
            return;
        }
        const DeclaredSection& section = declaration_.sections()[found];
        const auto* mapping = entry.value.get_if<Mapping>();
        if (section.raw ? section.secret : section.has_secrets && mapping == nullptr)
            hide_value(top, entry);
        if (section.raw || mapping == nullptr) return;
        const std::vector<std::string> secrets = secrets_of(section);
        for (const Mapping::Entry& each : *mapping) {
            const auto* key = each.key.get_if<std::string>();
            const std::size_t known =
                key != nullptr ? declaration_.find_key(found, *key) : Declaration::Data::none;
            if (known == Declaration::Data::none) {
                hide_unknown(found, *mapping, each);
            } else if (declaration_.keys()[known].traits().secret) {
                hide_value(*mapping, each);
            } else if (is_suspicious(*mapping, each, secrets)) {
                document_.doubt(document_.located().value_span(*mapping, each).offset);
                hide_value(*mapping, each);
            }
        }
    }

    static std::vector<std::string> secrets_of(const DeclaredSection& section) {
        std::vector<std::string> names;
        for (const JudgedKey& key : section.keys) {
            if (!key.traits().secret) continue;
            names.push_back(key.key().name());
            const auto& formerly = key.traits().formerly;
            names.insert(names.end(), formerly.begin(), formerly.end());
        }
        return names;
    }

    // Whether another key has taken in what was meant for a secret one.
    bool is_suspicious(const Mapping& in, const Mapping::Entry& entry,
                       const std::vector<std::string>& secrets) const {
        if (may_hold_secret(entry.value)) return true;
        if (entry.value.is_null() || secrets.empty()) return false;
        const yaml::Span value = document_.located().value_span(in, entry);
        const std::size_t key = document_.located().key_span(in, entry).offset;
        const std::string_view between =
            key < value.offset ? text_.substr(key, value.offset - key) : std::string_view();
        if (value.size == 0 || between.find('\n') != std::string_view::npos)
            return true;  // It does not stand on the line of its key alone.
        const auto* text = entry.value.get_if<std::string>();
        return text != nullptr &&
               std::any_of(secrets.begin(), secrets.end(), [text](const std::string& name) {
                   return text->find(name) != std::string::npos;
               });
    }

    void hide_unknown(std::size_t section, const Mapping& in, const Mapping::Entry& entry) {
        const yaml::Span name = document_.located().key_span(in, entry);
        const std::size_t open =
            open_part(declaration_, document_.located(), section, name, entry.key);
        hide(name.offset + open, in, entry);
    }

    void hide_value(const Mapping& in, const Mapping::Entry& entry) {
        const yaml::Span name = document_.located().key_span(in, entry);
        const std::size_t end = name.offset + name.size;
        const bool has_colon = text_.substr(end).starts_with(':');
        hide(end + (has_colon ? 1U : 0U), in, entry);
    }

    void hide(std::size_t from, const Mapping& in, const Mapping::Entry& entry) {
        const std::size_t end = end_of(in, entry);
        if (from >= last_.first && end < last_.second) return;  // As on a line with many.
        last_ = {from, std::min(text_.find('\n', end), text_.size() + 1)};
        document_.hide(last_.first, last_.second);
    }

    // Where the value of an entry ends. Where that is not known, the next entry begins behind it.
    std::size_t end_of(const Mapping& in, const Mapping::Entry& entry) const {
        const yaml::Span value = document_.located().value_span(in, entry);
        std::size_t end = value.offset + value.size;
        if (value.size == 0 && !entry.value.is_null()) {
            const auto top = std::upper_bound(top_keys_.begin(), top_keys_.end(), value.offset);
            std::size_t next = top != top_keys_.end() ? *top : text_.size();
            if (&entry + 1 != in.end())
                next = std::min(next, document_.located().key_span(in, *(&entry + 1)).offset);
            end = std::max(end, text_.find_last_not_of(" \t\n", next - 1));
        }
        return std::min(end, text_.size());
    }

    const Declaration::Data& declaration_;
    Document& document_;
    std::string_view text_;
    std::vector<std::size_t> top_keys_;
    std::pair<std::size_t, std::size_t> last_;
};

}  // namespace

std::string_view name_in(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), is_of_name);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

void hide_secrets(const Declaration::Data& declaration, Document& document) {
    if (declaration.has_secrets()) Hider(declaration, document).hide();
    document.settle();
}

std::size_t open_part(const Declaration::Data& declaration, const yaml::LocatedValue& document,
                      std::size_t section, yaml::Span name, const ConfigValue& value) {
    const auto* key = value.get_if<std::string>();
    if (name.size == 0 || key == nullptr) return 0;
    const std::string_view rest = document.text().substr(name.offset + name.size);
    const std::string part(name_in(*key));
    const std::size_t known = section != Declaration::Data::none
                                  ? declaration.find_key(section, part)
                                  : declaration.find_section(part);
    if (!trimmed_of_spaces(rest).starts_with(':') && known == Declaration::Data::none) return 0;
    const std::string_view text = document.text().substr(name.offset, name.size);
    const std::size_t quote = text.starts_with('"') || text.starts_with('\'') ? 1 : 0;
    const std::size_t open = quote + name_in(text.substr(quote)).size();
    return open + quote >= text.size() ? text.size() : open;
}

bool may_hold_secret(const ConfigValue& value) {
    if (value.get_if<Mapping>() != nullptr) return true;
    const auto* list = value.get_if<List>();
    return list != nullptr && std::any_of(list->begin(), list->end(), [](const ConfigValue& item) {
               return item.get_if<Mapping>() != nullptr || item.get_if<List>() != nullptr;
           });
}

bool may_show_line(const Declaration::Data& declaration, std::string_view text,
                   std::size_t number) {
    if (!declaration.has_secrets()) return true;
    // The section is that of the last line before that is not indented.
    std::size_t head = 0;
    std::size_t at = 0;
    for (; number > 0 && at < text.size(); --number) {
        if (std::string_view(" \t\r\n#").find(text[at]) == std::string_view::npos) head = at;
        at = std::min(text.find_first_of("\r\n", at), text.size());
        at += text.substr(at).starts_with("\r\n") ? 2U : 1U;
    }
    const std::string_view lines = text.substr(head, at - head);
    const std::string_view name = name_in(lines);
    const std::size_t section = declaration.find_section(name);
    if (!trimmed_of_spaces(lines.substr(name.size())).starts_with(':') ||
        section == Declaration::Data::none || declaration.sections()[section].has_secrets)
        return false;
    const auto has = [lines](const std::string& word) {
        return lines.find(word) != std::string_view::npos;
    };
    const auto& sections = declaration.sections();
    const auto& keys = declaration.keys();
    return std::none_of(sections.begin(), sections.end(),
                        [&has](const DeclaredSection& each) {
                            return each.has_secrets && has(each.section->name() + ":");
                        }) &&
           std::none_of(keys.begin(), keys.end(), [&has](const JudgedKey& key) {
               const auto& formerly = key.traits().formerly;
               return key.traits().secret &&
                      (has(key.key().name()) || std::any_of(formerly.begin(), formerly.end(), has));
           });
}

}  // namespace velmora::app
