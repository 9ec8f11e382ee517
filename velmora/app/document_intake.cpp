// How documents are taken in.
#include <algorithm>
#include <utility>

#include "velmora/app/intake.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"
#include "velmora/yaml/yaml.hpp"

namespace velmora::app {

using config::ConfigValue;
using config::Mapping;

struct Intake::Document {
    SourceName name;
    std::shared_ptr<const yaml::LocatedValue> places;

    bool is_alias(yaml::Span span) const {
        return places->text().substr(span.offset).starts_with('*');
    }
    yaml::Span key_span(const Mapping& mapping, const Mapping::Entry& entry) const {
        return places != nullptr ? places->key_span(mapping, entry) : yaml::Span();
    }
    yaml::Span value_span(const Mapping& mapping, const Mapping::Entry& entry) const {
        return places != nullptr ? places->value_span(mapping, entry) : yaml::Span();
    }
};

// A name in a document that is no section or, in a section, no key.
struct Intake::Unknown {
    yaml::Span span;
    std::size_t section;
    const ConfigValue* name;
};

namespace {

constexpr std::string_view merge_key = "<<";

// A name from outside as messages show it: bare where it reads as one word.
std::string shown_name(const ConfigValue& name) {
    const auto* text = name.get_if<std::string>();
    if (text == nullptr) return _shown(name);
    std::string quoted = utils::shown_text(*text);
    const bool bare =
        !text->empty() && quoted.size() == text->size() + 2 && text->find(' ') == std::string::npos;
    return bare ? *text : quoted;
}

// The line of this number, from 1, of a text that is no YAML; "\n", "\r\n" and "\r" end lines.
std::string_view line_of(std::string_view text, std::size_t number) {
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    if (text.starts_with(byte_order_mark)) text.remove_prefix(byte_order_mark.size());
    for (;; --number) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        if (number <= 1 || end == text.size()) return text.substr(0, end);
        text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
    }
}

}  // namespace

std::string Intake::named(const Document& in) const {
    return alone_ ? "the config file" : utils::one_line(*in.name);
}

bool Intake::take_document(const ConfigValue& root, const std::string& name,
                           std::shared_ptr<const yaml::LocatedValue> document) {
    const Document in = {source_named(name), std::move(document)};
    const auto* mapping = root.get_if<Mapping>();
    const bool gives = mapping != nullptr && mapping->size() != 0;
    add_giver({Giver::Kind::file, gives ? Giver::State::gives : Giver::State::empty, in.name});
    if (root.is_null()) return false;
    if (mapping == nullptr) {
        Fault& fault = add_fault(FaultKind::unusable_source, "", name,
                                 ignoring() + named(in) + ": it is " +
                                     std::string(root.type_text()) + ", not a mapping of sections");
        place(fault, in.places.get(), in.places != nullptr ? in.places->root() : yaml::Span(),
              declaration().has_secrets());
        return false;
    }
    std::vector<Unknown> unknown;
    const auto& sections = declaration().sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const Mapping::Entry* entry = mapping->find_entry(sections[i].name());
        if (entry != nullptr) take_section(in, i, *mapping, *entry, unknown);
    }
    for (const Mapping::Entry& entry : *mapping) {
        const auto* section = entry.key.get_if<std::string>();
        if (section == nullptr || (!section->starts_with("x-") &&
                                   declaration().find_section(*section) == Declaration::Data::none))
            unknown.push_back({in.key_span(*mapping, entry), Declaration::Data::none, &entry.key});
    }
    std::stable_sort(unknown.begin(), unknown.end(), [](const Unknown& a, const Unknown& b) {
        return a.span.offset < b.span.offset;
    });
    for (const Unknown& each : unknown) add_unknown(in, each);
    return gives;
}

void Intake::take_section(const Document& in, std::size_t section, const Mapping& top,
                          const Mapping::Entry& entry, std::vector<Unknown>& unknown) {
    const std::string& name = declaration().sections()[section].name();
    const auto* mapping = entry.value.get_if<Mapping>();
    const bool raw = declaration().is_raw(section);
    const bool empty =
        entry.value.is_null() || (!raw && mapping != nullptr && mapping->size() == 0);
    if (raw || empty || mapping != nullptr)
        add_giver({Giver::Kind::section, empty ? Giver::State::empty : Giver::State::gives, in.name,
                   section});
    if (entry.value.is_null()) return;
    if (raw) {
        values_.raws[section] = Raw(entry.value, *in.name, in.places, declaration().has_secrets());
        return;
    }
    if (mapping == nullptr) {
        Fault& fault = add_fault(
            FaultKind::section_no_mapping, name, *in.name,
            ignoring() + "the " + name + " section of " + named(in) + ": it is not a mapping");
        place(fault, in.places.get(), in.value_span(top, entry), declaration().has_secrets());
        return;
    }
    const std::size_t first = declaration().first_key(section);
    const auto& keys = declaration().sections()[section].keys();
    std::size_t known = 0;
    const Mapping::Entry* next = mapping->begin();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto* next_name = next != mapping->end() ? next->key.get_if<std::string>() : nullptr;
        const bool expected = next_name != nullptr && *next_name == keys[i].name();
        const Mapping::Entry* found = expected ? next : mapping->find_entry(keys[i].name());
        if (found != nullptr) {
            next = found + 1;
            ++known;
            take_value(in, first + i, *mapping, *found);
        }
        const JudgedKey& judged = declaration().keys()[first + i];
        for (const std::string& old : judged.traits().formerly) {
            const Mapping::Entry* old_entry = mapping->find_entry(old);
            if (old_entry == nullptr) continue;
            ++known;
            const bool given = found != nullptr;
            Fault& fault =
                add_old_name(first + i, judged.old_label(old), *in.name, named(in), given);
            place(fault, in.places.get(), in.key_span(*mapping, *old_entry));
            if (given) continue;
            found = old_entry;
            take_value(in, first + i, *mapping, *old_entry);
        }
    }
    if (known == mapping->size()) return;
    for (const Mapping::Entry& each : *mapping) {
        const auto* key = each.key.get_if<std::string>();
        if (key == nullptr || !declaration().is_key(section, *key))
            unknown.push_back({in.key_span(*mapping, each), section, &each.key});
    }
}

void Intake::take_value(const Document& in, std::size_t key, const Mapping& section,
                        const Mapping::Entry& entry) {
    const JudgedKey& judged = declaration().keys()[key];
    GivenValue& given = values_.given[key].emplace_back();
    given.source = in.name;
    GivenRaw raw = {entry.value};
    yaml::Span span;
    if (in.places != nullptr) {
        span = in.places->value_span(section, entry);
        const auto [line, column] = in.places->position(span.offset);
        given.line = line;
        given.column = column;
        raw.spelling = in.places->spelling(section, entry);
        raw.document = in.places.get();
    }
    try {
        given.value = judged.judge(raw);
        places_[key] = {in.places, span};
        return;
    } catch (const RefusedItem& error) {
        given.refusal = error.message();
        const auto* list = entry.value.get_if<config::List>();
        if (list != nullptr && in.places != nullptr && !in.is_alias(span))
            span = in.places->item_span(*list, error.item());
    } catch (const config::ConfigKeyError& error) {
        given.refusal = error.message();
    }
    given.value = entry.value;
    Fault& fault =
        add_fault(FaultKind::refused_value, judged.label(), *in.name,
                  ignoring() + judged.label() + " in " + named(in) + ": " + given.refusal);
    place(fault, in.places.get(), span, judged.traits().secret);
    refused_.emplace_back(values_.faults.size() - 1, key);
}

void Intake::add_unknown(const Document& in, const Unknown& unknown) {
    const bool in_section = unknown.section != Declaration::Data::none;
    const std::string name = plain_text(*unknown.name);
    std::string label = shown_name(*unknown.name);
    std::string why = in_section ? "there is no such key" : "there is no such section";
    if (may_hint())
        why += in_section ? declaration().hint_for_key(unknown.section, name)
                          : declaration().hint_for_section(name);
    if (in_section) label = declaration().sections()[unknown.section].name() + "." + label;
    if (name == merge_key) why = "merge keys are not followed; write out what it would merge";
    Fault& fault = add_fault(FaultKind::unknown_name, label, *in.name,
                             ignoring() + label + " in " + named(in) + ": " + why);
    place(fault, in.places.get(), unknown.span);
}

bool Intake::take_yaml(const std::string& text, const std::string& name) {
    std::shared_ptr<const yaml::LocatedValue> located;
    try {
        located = std::make_shared<const yaml::LocatedValue>(yaml::load_located(text, name));
    } catch (const yaml::Error& error) {
        Fault& fault = add_error(FaultKind::unusable_source, "", name, std::string(error.reason()));
        fault.line = error.line();
        fault.column = error.column();
        const std::string_view line = line_of(text, fault.line);
        if (!declaration().has_secrets())
            fault.excerpt.emplace(line, utils::prefix_size(line, fault.column - 1), 0);
        unread_.assign(unread_.size(), true);
        return false;
    }
    return take_document(located->value(), name, located);
}

}  // namespace velmora::app
