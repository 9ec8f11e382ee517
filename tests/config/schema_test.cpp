#include "velmora/config/schema.hpp"

#include <cmath>
#include <unordered_set>

#include <gtest/gtest.h>

#include "velmora/config/spec.hpp"

namespace velmora::config {

namespace {

const RecordType& limits();

const RecordType server(
    "Server",
    {
        {"host", str_type, setting("127.0.0.1", "Address that the server listens on.")},
        {"port", int_type,
         setting(8080, "Port that the server listens on.",
                 {.env = "APP_PORT", .bounds = Bound(1, 65535), .restart = Restart::daemon})},
        {"tags", list_of(str_type), setting(List{"a", "b"}, "Tags that every response carries.")},
    });
const TypeReference limits_reference("Limits", limits);
const RecordType config(
    "Config",
    {
        {"server", server, section(server, "The HTTP server.", {.restart = Restart::worker})},
        {"limits", limits_reference,
         section(limits_reference, "Limits.", {.restart = Restart::daemon})},
        {"backup", server, section(server, "Another server.", {.restart = Restart::none})},
    });
const std::vector<Section> sections_at_start = sections_of(config);

const RecordType& limits() {
    static const RecordType type(
        "Limits",
        {
            {"ratio", float_type,
             setting(0, "Share.", {.bounds = Bound(std::nan("")), .restart = Restart::none})},
            {"strict", bool_type, setting(nullptr, "Whether to be strict.")},
        });
    return type;
}

TEST(SectionsOf, KeepsTheOrderOfDeclaration) {
    std::string listing;
    for (const Section& section : sections_of(config)) {
        listing += section.name() + " " + section.kind().name() + "\n";
        for (const Key& key : section.keys()) {
            EXPECT_EQ(key.section(), section.name());
            EXPECT_EQ(key.owner(), section.kind());
            listing += "  " + key.label() + " " + std::string(name_of(key.kind())) + " " +
                       std::string(name_of(key.restart())) + " " + display(key.default_value()) +
                       "\n";
        }
    }
    EXPECT_EQ(listing, R"(server Server
  server.host str worker '127.0.0.1'
  server.port int daemon 8080
  server.tags list worker ['a', 'b']
limits Limits
  limits.ratio float none 0
  limits.strict bool daemon None
backup Server
  backup.host str none '127.0.0.1'
  backup.port int daemon 8080
  backup.tags list none ['a', 'b']
)");
    EXPECT_TRUE(sections_of(RecordType("Empty", {})).empty());
    EXPECT_EQ(sections_at_start, sections_of(config)) << "resolved before main";
}

TEST(SectionsOf, SharesDescriptorsAndNothingElse) {
    const auto first = sections_of(config);
    const auto second = sections_of(config);
    EXPECT_EQ(&first[0].keys()[1].setting(), &second[0].keys()[1].setting());
    EXPECT_EQ(&first[0].setting(), &second[0].setting());
    EXPECT_EQ(&first[0].keys()[1].setting(),
              server.fields()[1].metadata()[_SETTING].as<Setting>().get());

    const Key& tags = first[0].keys()[2];
    tags.default_value().get<List>().push_back("mine");
    EXPECT_EQ(display(tags.default_value()), "['a', 'b']");
}

TEST(SectionsOf, ReportsTheFirstFaultInOrder) {
    const FieldDetails described = setting(1, "");
    const auto config_of = [](const RecordType& kind) {
        return RecordType(
            "Config",
            {{"server", kind, section(kind, "", {.restart = Restart::none})}, {"cache", int_type}});
    };
    const auto config_of_port = [&](const DeclaredType& type) {
        return config_of(RecordType("Server", {{"port", type, described}, {"later", int_type}}));
    };
    const std::string not_a_section = " is not a section: declare it with section(kind, doc, ...)";
    const std::string not_described =
        " is not described: declare it with setting(default, doc, ...)";
    const std::string no_kind =
        "server.port: a configuration key is a bool, an int, a float, a str or a list";
    const TypeReference missing("Missing", [] { return std::nullopt; });
    const std::pair<RecordType, std::string> cases[] = {
        {config_of(server), "cache" + not_a_section},
        {RecordType("Config", {{"cache", server, described}}), "cache" + not_a_section},
        {config_of(RecordType("Server", {{"port", DeclaredType::other("int or None")}})),
         "server.port" + not_described},
        {config_of(config), "server.server" + not_described},
        {config_of_port(DeclaredType::other("int or None")), no_kind},
        {config_of_port(list_type), no_kind},
        {config_of_port(server), no_kind},
        {config_of_port(list_of(int_type)), "server.later" + not_described},
        {RecordType("Config", {{"cache", int_type}, {"later", missing}}),
         "the reference 'Missing' names no type"},
        {config_of(RecordType("Server", {{"port", int_type}, {"later", missing}})),
         "the reference 'Missing' names no type"},
        {RecordType("Config",
                    {{"cache", int_type, section(server, "", {.restart = Restart::none})}}),
         "int is no record type: it has no fields"},
    };
    for (const auto& [faulty, message] : cases) {
        for (int call = 0; call < 2; ++call) {
            try {
                sections_of(faulty);
                ADD_FAILURE() << "not refused: " << message;
            } catch (const ValueError&) {
                ADD_FAILURE() << "no type error: " << message;
            } catch (const TypeError& error) {
                EXPECT_EQ(error.what(), message);
            }
        }
    }
}

TEST(Key, IsEqualInAllFieldsAndHidesItsOwner) {
    const auto about = std::make_shared<const Setting>("d");
    const RecordType twin("Server", {});
    const Key keys[] = {
        {"s", "k", KeyKind::int_, Restart::none, about, server},
        {"t", "k", KeyKind::int_, Restart::none, about, server},
        {"s", "l", KeyKind::int_, Restart::none, about, server},
        {"s", "k", KeyKind::str, Restart::none, about, server},
        {"s", "k", KeyKind::int_, Restart::worker, about, server},
        {"s", "k", KeyKind::int_, Restart::none, std::make_shared<const Setting>("e"), server},
        {"s", "k", KeyKind::int_, Restart::none, about, twin},
    };
    for (const Key& a : keys) {
        for (const Key& b : keys) EXPECT_EQ(a == b, &a == &b) << a << b;
    }
    const Key equal("s", "k", KeyKind::int_, Restart::none, std::make_shared<const Setting>("d"),
                    server);
    EXPECT_EQ(std::unordered_set<Key>({keys[0], equal}).size(), 1U);
    EXPECT_EQ(testing::PrintToString(keys[0]), testing::PrintToString(keys[6]));
    EXPECT_EQ(
        testing::PrintToString(keys[0]),
        "Key(section='s', name='k', kind=int, restart='none', setting=Setting(doc='d', env=None, "
        "bounds=None, choices=[], restart=None))");

    const auto section = std::make_shared<const SectionSetting>("d", Restart::none);
    const Section forth("s", server, section, {keys[0], keys[2]});
    const Section back("s", server, section, {keys[2], keys[0]});
    EXPECT_NE(forth, back);
    EXPECT_EQ(std::unordered_set<Section>({forth, Section(forth), back}).size(), 2U);
    EXPECT_EQ(testing::PrintToString(Section("s", twin, section, {keys[0]})),
              "Section(name='s', kind=RecordType('Server'), setting=SectionSetting(doc='d', "
              "restart='none'), keys=[" +
                  testing::PrintToString(keys[0]) + "])");
    static_assert(!std::is_assignable_v<decltype(std::declval<Key&>().name()), std::string>);
    static_assert(!std::totally_ordered<Key> && !std::totally_ordered<Section>);
}

}  // namespace
}  // namespace velmora::config
