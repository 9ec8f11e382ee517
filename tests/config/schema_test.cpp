#include "velmora/config/schema.hpp"

#include <sstream>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

const RecordType server("Server", {{"host", str_type, setting("127.0.0.1", "")},
                                   {"port", int_type, setting(8080, "", {.restart = Restart::daemon})},
                                   {"tags", list_of(str_type), setting(List{"a", "b"}, "")}});
const RecordType limits("Limits",
                        {{"ratio", float_type, setting(0, "", {.bounds = Bound(test::nan), .restart = Restart::none})},
                         {"strict", bool_type, setting(nullptr, "")}});
const TypeReference limits_reference("Limits", [] { return limits; });
const RecordType config("Config",
                        {{"server", server, section(server, "", {.restart = Restart::worker})},
                         {"limits", limits_reference, section(limits_reference, "", {.restart = Restart::daemon})},
                         {"backup", server, section(server, "", {.restart = Restart::none})}});

TEST(SectionsOf, KeepsTheOrderAndSharesDescriptors) {
    std::ostringstream listing;
    const std::vector<Section> sections = sections_of(config);
    for (const Section& section : sections) {
        listing << section.name() << " " << section.kind() << "\n";
        for (const Key& key : section.keys()) {
            EXPECT_EQ(key.section(), section.name());
            EXPECT_EQ(key.owner(), section.kind());
            listing << "  " << key.label() << " " << key.kind() << " " << key.restart() << " " << key.default_value()
                    << "\n";
        }
    }
    EXPECT_EQ(listing.str(), R"(server RecordType('Server')
  server.host str worker '127.0.0.1'
  server.port int daemon 8080
  server.tags list worker ['a', 'b']
limits RecordType('Limits')
  limits.ratio float none 0
  limits.strict bool daemon None
backup RecordType('Server')
  backup.host str none '127.0.0.1'
  backup.port int daemon 8080
  backup.tags list none ['a', 'b']
)");
    EXPECT_EQ(sections, sections_of(config));
    EXPECT_EQ(&sections[0].keys()[1].setting(), &sections[2].keys()[1].setting());
    EXPECT_EQ(&sections[0].setting(), config.fields()[0].metadata()[_SECTION].get_if<SectionSetting>().get());
    const Key& tags = sections[0].keys()[2];
    tags.default_value().get<List>().push_back("mine");
    EXPECT_EQ(display(tags.default_value()), "['a', 'b']");
}

TEST(SectionsOf, ReportsTheFirstFaultInOrder) {
    const FieldDetails described = setting(1, "");
    const auto config_of = [](const RecordType& kind) {
        return RecordType("Config",
                          {{"server", kind, section(kind, "", {.restart = Restart::none})}, {"cache", int_type}});
    };
    const auto config_of_port = [&](const DeclaredType& type) {
        return config_of(RecordType("Server", {{"port", type, described}, {"later\0", int_type}}));
    };
    const std::string no_section = " is not a section: declare it with section(kind, doc, ...)";
    const std::string no_key = " is not described: declare it with setting(default, doc, ...)";
    const std::string no_kind = "server.port: a configuration key is a bool, an int, a float, a str or a list";
    const TypeReference missing("Missing", [] { return std::nullopt; });
    const DeclaredType other = DeclaredType::other("int or None");
    const std::pair<RecordType, std::string> cases[] = {
        {config_of(server), "cache" + no_section},
        {RecordType("Config", {{"cache", server, described}}), "cache" + no_section},
        {RecordType("Config", {{std::string("nul\0", 4), server}}), std::string("nul\0", 4) + no_section},
        {config_of(RecordType("Server", {{"port", other}})), "server.port" + no_key},
        {config_of(config), "server.server" + no_key},
        {config_of_port(other), no_kind},
        {config_of_port(list_type), no_kind},
        {config_of_port(server), no_kind},
        {config_of_port(list_of(int_type)), "server.later" + no_key},
        {RecordType("Config", {{"cache", int_type}, {"later", missing}}), "the reference 'Missing' names no type"},
        {config_of(RecordType("Server", {{"port", int_type}, {"later", missing}})),
         "the reference 'Missing' names no type"},
        {RecordType("Config", {{"cache", list_of(int_type), section(server, "", {.restart = Restart::none})}}),
         "list[int] is no record type: it has no fields"},
    };
    for (const auto& [faulty, message] : cases) {
        const auto resolve = [&, &type = faulty] { return sections_of(type), "resolved"; };
        EXPECT_EQ(test::outcome(resolve), "TypeError: " + message);
    }
}

TEST(Key, IsEqualInAllFieldsAndHidesItsOwner) {
    const auto d = std::make_shared<const Setting>("d"), e = std::make_shared<const Setting>("e");
    const RecordType twin("Server", {});
    const std::vector<Key> keys = {
        {"s", "k", KeyKind::int_, Restart::none, d, server},   {"t", "k", KeyKind::int_, Restart::none, d, server},
        {"s", "l", KeyKind::int_, Restart::none, d, server},   {"s", "k", KeyKind::str, Restart::none, d, server},
        {"s", "k", KeyKind::int_, Restart::worker, d, server}, {"s", "k", KeyKind::int_, Restart::none, e, server},
        {"s", "k", KeyKind::int_, Restart::none, d, twin},
    };
    test::expect_distinct(keys);
    const Key equal("s", "k", KeyKind::int_, Restart::none, std::make_shared<const Setting>("d"), server);
    EXPECT_EQ(equal, keys[0]);
    EXPECT_EQ(std::hash<Key>{}(equal), std::hash<Key>{}(keys[0]));
    const std::string shown =
        "Key(section='s', name='k', kind=int, restart='none', setting=Setting(doc='d', env=None, bounds=None, "
        "choices=[], restart=None))";
    EXPECT_EQ(display(keys[0]), shown);
    EXPECT_EQ(display(keys[6]), shown);
    EXPECT_THROW(Key("s", "k", KeyKind::int_, Restart::none, nullptr, server), TypeError);

    const auto about = std::make_shared<const SectionSetting>("d", Restart::none);
    const auto other = std::make_shared<const SectionSetting>("d", Restart::worker);
    test::expect_distinct<Section>({
        {"s", server, about, {keys[0], keys[2]}},
        {"s", server, about, {keys[2], keys[0]}},
        {"t", server, about, {keys[0], keys[2]}},
        {"s", limits, about, {keys[0], keys[2]}},
        {"s", server, other, {keys[0], keys[2]}},
        {"s", server, about, {keys[0]}},
    });
    EXPECT_EQ(display(Section("s", twin, about, {keys[0]})),
              "Section(name='s', kind=RecordType('Server'), setting=SectionSetting(doc='d', restart='none'), keys=[" +
                  shown + "])");
}

}  // namespace
}  // namespace velmora::config
