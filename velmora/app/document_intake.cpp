// How documents are taken in.
#include <algorithm>
#include <utility>

#include "velmora/app/hiding.hpp"
#include "velmora/app/intake.hpp"
#include "velmora/config/display.hpp"
#include "velmora/utils/quoting.hpp"
#include "velmora/utils/unicode.hpp"
#include "velmora/yaml/yaml.hpp"

namespace velmora::app {

using config::ConfigValue;
using config::Mapping;

struct Intake::Source {
    SourceName name;
    std::shared_ptr<const Document> document;

    const yaml::LocatedValue* places() const {
        return document != nullptr ? &document->located() : nullptr;
    }
    yaml::Span key_span(const Mapping& mapping, const Mapping::Entry& entry) const {
        return places() != nullptr ? places()->key_span(mapping, entry) : yaml::Span();
    }
    yaml::Span value_span(const Mapping& mapping, const Mapping::Entry& entry) const {
        return places() != nullptr ? places()->value_span(mapping, entry) : yaml::Span();
    }
    void place(yaml::Span span, Fault& fault) const {
        if (document != nullptr) document->place(span, fault);
    }
    // What follows on the line behind a place.
    std::string_view rest_of_line(yaml::Span span) const {
        return utils::trimmed(places()->text().substr(
            span.offset, places()->text().find('\n', span.offset) - span.offset));
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

// What a name that goes on with a sign was meant to be.
std::string hint_for_sign(std::string_view name) {
    const std::string_view rest = name.substr(name_in(name).size());
    if (rest.starts_with(':')) return R"(; there must be a space behind the ":")";
    return rest.starts_with('=') ? R"(; write ": " in place of the "=")" : "";
}

// The line of this number, from 1, of a text that is no YAML; "\n", "\r\n" and "\r" end lines.
std::string_view line_of(std::string_view text, std::size_t number) {
    for (;; --number) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        if (number <= 1 || end == text.size()) return text.substr(0, end);
        text.remove_prefix(end + (text.substr(end).starts_with("\r\n") ? 2 : 1));
    }
}

}  // namespace

std::string Intake::named(const Source& in) const {
    return alone_ ? "the config file" : utils::one_line(*in.name);
}

bool Intake::take_document(const ConfigValue& root, const std::string& name,
                           std::shared_ptr<const Document> document) {
    const Source in = {source_named(name), std::move(document)};
    const auto* mapping = root.get_if<Mapping>();
    const bool gives = mapping != nullptr && mapping->size() != 0;
    add_giver({Giver::Kind::file, gives ? Giver::State::gives : Giver::State::empty, in.name});
    if (root.is_null()) return false;
    if (mapping == nullptr) {
        Fault& fault = add_fault(FaultKind::unusable_source, "", name,
                                 ignoring() + named(in) + ": it is " +
                                     std::string(root.type_text()) + ", not a mapping of sections");
        in.place(in.document != nullptr ? in.places()->root() : yaml::Span(), fault);
        return false;
    }
    std::vector<Unknown> unknown;
    const auto& sections = declaration().sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const Mapping::Entry* entry = mapping->find_entry(declaration().section_name(i));
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

void Intake::take_section(const Source& in, std::size_t section, const Mapping& top,
                          const Mapping::Entry& entry, std::vector<Unknown>& unknown) {
    const DeclaredSection& declared = declaration().sections()[section];
    const std::string& name = declared.section->name();
    const auto* mapping = entry.value.get_if<Mapping>();
    const bool empty =
        entry.value.is_null() || (!declared.raw && mapping != nullptr && mapping->size() == 0);
    if (declared.raw || empty || mapping != nullptr)
        add_giver({Giver::Kind::section, empty ? Giver::State::empty : Giver::State::gives, in.name,
                   section});
    if (entry.value.is_null()) return;
    if (declared.raw) {
        values_.raws[section] = Raw(entry.value, *in.name, in.document, declared.secret);
        return;
    }
    if (mapping == nullptr) {
        Fault& fault = add_fault(
            FaultKind::section_no_mapping, name, *in.name,
            ignoring() + "the " + name + " section of " + named(in) + ": it is not a mapping");
        in.place(in.value_span(top, entry), fault);
        return;
    }
    std::size_t known = 0;
    const Mapping::Entry* next = mapping->begin();
    for (std::size_t i = 0; i < declared.keys.size(); ++i) {
        const JudgedKey& judged = declared.keys[i];
        const std::size_t key = declared.first_key + i;
        const auto* next_name = next != mapping->end() ? next->key.get_if<std::string>() : nullptr;
        const bool expected = next_name != nullptr && *next_name == judged.key().name();
        const Mapping::Entry* found = expected ? next : mapping->find_entry(judged.key().name());
        if (found != nullptr) {
            next = found + 1;
            ++known;
            take_value(in, key, *mapping, *found);
        }
        for (const std::string& old : judged.traits().formerly) {
            const Mapping::Entry* old_entry = mapping->find_entry(old);
            if (old_entry == nullptr) continue;
            ++known;
            const bool given = found != nullptr;
            Fault& fault = add_old_name(key, judged.old_label(old), *in.name, named(in), given);
            in.place(in.key_span(*mapping, *old_entry), fault);
            if (given) continue;
            found = old_entry;
            take_value(in, key, *mapping, *old_entry);
        }
    }
    if (known == mapping->size()) return;
    for (const Mapping::Entry& each : *mapping) {
        const auto* key = each.key.get_if<std::string>();
        if (key == nullptr || declaration().find_key(section, *key) == Declaration::Data::none)
            unknown.push_back({in.key_span(*mapping, each), section, &each.key});
    }
}

void Intake::take_value(const Source& in, std::size_t key, const Mapping& section,
                        const Mapping::Entry& entry) {
    const JudgedKey& judged = declaration().keys()[key];
    GivenRaw raw = {.value = entry.value};
    yaml::Span span;
    yaml::Position position;
    if (in.document != nullptr) {
        span = in.value_span(section, entry);
        position = in.places()->position(span.offset);
        raw.spelling = in.places()->spelling(section, entry);
        raw.document = in.places();
        if (in.document->is_doubted(span.offset)) raw.privacy = Privacy::doubt;
    } else if (declaration().has_secrets() && may_hold_secret(entry.value)) {
        raw.privacy = Privacy::doubt;
    }
    Verdict verdict = judged.judge(raw);
    const bool secret = judged.traits().secret;
    if (verdict.accepted()) {
        values_.given[key].emplace_back(in.name, position, std::move(verdict.value), "", secret);
        places_[key] = {in.document, span};
        if (verdict.advice.empty()) return;
        in.place(span, add_advice(FaultKind::altered_value, judged.label(), *in.name,
                                  judged.label() + " in " + named(in) + ": " + verdict.advice));
        return;
    }
    const auto* list = entry.value.get_if<config::List>();
    if (verdict.item && list != nullptr && in.document != nullptr && !in.document->is_alias(span))
        span = in.places()->item_span(*list, *verdict.item);
    Fault& fault =
        add_fault(FaultKind::refused_value, judged.label(), *in.name,
                  ignoring() + judged.label() + " in " + named(in) + ": " + verdict.refusal);
    in.place(span, fault);
    if (entry.value.is_null() && span.size == 0 && in.document != nullptr)
        fault.note = in.rest_of_line(span).starts_with('#')
                         ? "nothing stands there but a comment: a value that has a # needs quotes"
                         : "nothing stands there: write a value, or take the key out";
    values_.given[key].emplace_back(in.name, position, entry.value, std::move(verdict.refusal),
                                    secret || raw.privacy != Privacy::open);
    refused_.emplace_back(values_.faults.size() - 1, key);
}

void Intake::add_unknown(const Source& in, const Unknown& unknown) {
    const bool in_section = unknown.section != Declaration::Data::none;
    const auto* text = unknown.name->get_if<std::string>();
    std::string name = plain_text(*unknown.name);
    std::string label = shown_name(*unknown.name);
    yaml::Span span = unknown.span;
    std::string why = in_section ? "there is no such key" : "there is no such section";
    if (text != nullptr) why += hint_for_sign(*text);
    if (declaration().has_secrets()) {
        if (in.document != nullptr)
            span.size =
                open_part(declaration(), *in.places(), unknown.section, span, *unknown.name);
        const bool hidden = text == nullptr || (in.document != nullptr && span.size == 0);
        name.resize(hidden ? 0 : name_in(name).size());
        if (hidden || name.size() < text->size())
            label = hidden ? std::string(hidden_text) : name + "...";
    }
    if (!name.empty() && may_hint())
        why += in_section ? declaration().hint_for_key(unknown.section, name)
                          : declaration().hint_for_section(name);
    if (in_section) label = declaration().section_name(unknown.section) + "." + label;
    if (text != nullptr && *text == merge_key)
        why = "merge keys are not followed; write out what it would merge";
    Fault& fault = add_fault(FaultKind::unknown_name, label, *in.name,
                             ignoring() + label + " in " + named(in) + ": " + why);
    in.place(span, fault);
}

bool Intake::take_yaml(const std::string& text, const std::string& name) {
    std::shared_ptr<Document> document;
    try {
        document = std::make_shared<Document>(yaml::load_located(text, name));
    } catch (const yaml::Error& error) {
        add_unreadable(text, name, error);
        return false;
    }
    hide_secrets(declaration(), *document);
    return take_document(document->located().value(), name, document);
}

void Intake::add_unreadable(const std::string& text, const std::string& name,
                            const yaml::Error& error) {
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    std::string_view read = text;
    if (read.starts_with(byte_order_mark)) read.remove_prefix(byte_order_mark.size());
    Fault& fault = add_error(FaultKind::unusable_source, "", name, std::string(error.reason()));
    fault.line = error.line();
    fault.column = error.column();
    const std::string_view line = line_of(read, fault.line);
    if (may_show_line(declaration(), read, fault.line))
        fault.excerpt.emplace(line, utils::prefix_size(line, fault.column - 1), 0);
    unread_.assign(unread_.size(), true);
}

}  // namespace velmora::app
