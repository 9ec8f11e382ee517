// Declaring a configuration and resolving it into its sections and keys.
#include "declare.hpp"

#include "contender.hpp"

namespace bench {

using namespace velmora::config;

namespace {

// What a program that keeps the facts of its keys writes for itself.
struct OwnKey {
    std::string section;
    std::string name;
    KeyKind kind;
    Restart restart;
    std::string doc;
    std::string env;
    std::optional<std::pair<double, double>> range;
    Texts choices;
    Value fallback;
};

struct OwnSection {
    std::string name;
    std::string doc;
    Restart restart;
    std::vector<OwnKey> keys;
};

std::vector<OwnSection> declare_by_hand(const std::vector<SectionFacts>& facts) {
    std::vector<OwnSection> sections;
    sections.reserve(facts.size());
    for (const SectionFacts& section : facts) {
        OwnSection& own = sections.emplace_back();
        own.name = section.name;
        own.doc = section.doc;
        own.restart = Restart::worker;
        own.keys.reserve(section.keys.size());
        for (const KeyFacts& key : section.keys) {
            own.keys.push_back({section.name, key.name, key.kind, own.restart, key.doc, key.env,
                                key.range, key.choices, key.fallback});
        }
    }
    return sections;
}

std::vector<Section> declare(const std::vector<SectionFacts>& facts) {
    std::vector<FieldDecl> fields;
    fields.reserve(facts.size());
    for (const SectionFacts& each : facts) {
        const RecordType type = record_type(each.name, each.keys);
        fields.emplace_back(each.name, type, section(type, each.doc, {.restart = Restart::worker}));
    }
    return sections_of(RecordType("Config", std::move(fields)));
}

const Contender ours("declare/ours", [](Run& run) {
    run.once([] { return declare(service_sections()); }, all_labels(),
             [](const auto& sections) {
                 Texts labels;
                 for (const Section& section : sections) {
                     for (const Key& key : section.keys()) labels.push_back(key.label());
                 }
                 return labels;
             });
});

const Contender limit("declare/limit", [](Run& run) {
    run.once([] { return declare_by_hand(service_sections()); }, all_labels(),
             [](const auto& sections) {
                 Texts labels;
                 for (const OwnSection& section : sections) {
                     for (const OwnKey& key : section.keys)
                         labels.push_back(key.section + "." + key.name);
                 }
                 return labels;
             });
});

}  // namespace

const std::vector<SectionFacts>& service_sections() {
    static const std::vector<SectionFacts> sections = [] {
        std::vector<SectionFacts> made;
        for (char letter = 'a'; made.size() < 20; ++letter) {
            const std::string name = std::string("service_") + letter;
            made.push_back({name, "One of the services, " + name + ".", service_keys()});
        }
        return made;
    }();
    return sections;
}

Texts all_labels() {
    Texts labels;
    for (const SectionFacts& section : service_sections()) {
        for (const KeyFacts& key : section.keys) labels.push_back(section.name + "." + key.name);
    }
    return labels;
}

}  // namespace bench
