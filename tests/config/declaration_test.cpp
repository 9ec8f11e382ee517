#include "velmora/config/declaration.hpp"

#include <gtest/gtest.h>

namespace velmora::config {
namespace {

template <class... Args>
concept declares_key = requires(Args... args) {
    setting(args...);
};
template <class... Args>
concept declares_section = requires(Args... args) {
    section(args...);
};

static_assert(declares_key<int, const char*> && declares_key<int, const char*, SettingOptions>);
static_assert(!declares_key<int> && !declares_key<> && !declares_key<int, std::nullptr_t>);
static_assert(!declares_key<int, const char*, const char*>, "options are given by name");
static_assert(declares_section<RecordType, const char*, SectionOptions>);
static_assert(!declares_section<RecordType, const char*>, "what restarts must be given");
static_assert(!declares_section<RecordType, SectionOptions> &&
              !declares_section<DeclaredType, const char*, SectionOptions>);
static_assert(!std::is_default_constructible_v<SectionOptions>);
static_assert(!std::is_default_constructible_v<Setting>);
static_assert(!std::is_constructible_v<SectionSetting, const char*>);
static_assert(!std::is_assignable_v<decltype(std::declval<Setting&>().doc()), std::string>);
static_assert(!std::is_assignable_v<decltype(std::declval<Setting&>().restart()), Restart>);
static_assert(!std::is_assignable_v<decltype(std::declval<SectionSetting&>().restart()), Restart>);

TEST(Declaration, CarriesOneSharedDescriptor) {
    const FieldDecl key("port", int_type, setting(8080, "Port."));
    const FieldDecl copy = key;
    const auto descriptor = key.metadata()[_SETTING].as<Setting>();
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(descriptor, copy.metadata()["velmora:setting"].as<Setting>()) << "shared, not copied";
    EXPECT_EQ(*descriptor, Setting("Port."));
    EXPECT_EQ(key.metadata().size(), 1U);
    EXPECT_TRUE(key.metadata()[_SECTION].is_null());
    EXPECT_EQ(key.metadata()[_SETTING].as<SectionSetting>(), nullptr);
    EXPECT_NE(key.default_value(), nullptr);
    EXPECT_EQ(key.default_factory(), nullptr);

    const RecordType server("Server", {key});
    const FieldDecl field("server", server, section(server, "Doc.", {.restart = Restart::daemon}));
    EXPECT_EQ(*field.metadata()["velmora:section"].as<SectionSetting>(),
              SectionSetting("Doc.", Restart::daemon));
    EXPECT_TRUE(field.metadata()[_SETTING].is_null());
    EXPECT_EQ(field.default_value(), nullptr);
    EXPECT_NE(field.default_factory(), nullptr);
}

TEST(Declaration, MakesListDefaultsAnewForEveryRecord) {
    List declared{"a", List{"shared item"}};
    const RecordType type("T", {{"list", list_of(str_type), setting(declared, "")},
                                {"empty", list_of(str_type), setting(List{}, "")}});
    declared.push_back("later");
    const Record first = type.make();
    first.get<List>("list").push_back("mine");
    first.get<List>("empty").push_back("mine");
    const Record second = type.make();
    EXPECT_EQ(testing::PrintToString(first),
              "T(list=['a', ['shared item'], 'mine'], empty=['mine'])");
    EXPECT_EQ(testing::PrintToString(second), "T(list=['a', ['shared item']], empty=[])");
    EXPECT_TRUE(
        first.get<List>("list")[1].get<List>().same_as(second.get<List>("list")[1].get<List>()));

    const RecordType config(
        "C",
        {{"t", type, section(type, "", {.restart = Restart::none})},
         {"u", TypeReference("U", [] { return RecordType("U", {}); }),
          section(TypeReference("T", [type] { return type; }), "", {.restart = Restart::none})}});
    config.make().get<Record>("t").get<List>("list").push_back("mine");
    EXPECT_EQ(config.make().get<Record>("t"), second);
    EXPECT_EQ(config.make().get<Record>("u"), second)
        << "the default is made of the kind, not of the declared type";
}

TEST(Setting, DiffersWhenAnyFieldDoes) {
    const Setting settings[] = {
        Setting("d"),
        Setting("D"),
        Setting("d", {.env = ""}),
        Setting("d", {.env = "None"}),
        Setting("d", {.bounds = POSITIVE}),
        Setting("d", {.bounds = NON_NEGATIVE}),
        Setting("d", {.choices = {"a", "b"}}),
        Setting("d", {.choices = {"b", "a"}}),
        Setting("d", {.choices = {"a', 'b"}}),
        Setting("d", {.restart = Restart::none}),
        Setting("d", {.restart = Restart::daemon}),
    };
    for (const Setting& a : settings) {
        for (const Setting& b : settings) {
            EXPECT_EQ(a == b, &a == &b) << a << b;
            EXPECT_EQ(testing::PrintToString(a) == testing::PrintToString(b), &a == &b) << a;
        }
        const Setting copy(a.doc(), {a.env(), a.bounds(), a.choices(), a.restart()});
        EXPECT_EQ(copy, a);
        EXPECT_EQ(std::hash<Setting>{}(copy), std::hash<Setting>{}(a));
    }
    EXPECT_EQ(testing::PrintToString(Setting("It's \n", {"E", Bound(1), {"a"}, Restart::worker})),
              R"(Setting(doc="It's \n", env='E', bounds=Bound(low=1, high=None, low_open=False), )"
              R"(choices=['a'], restart='worker'))");
    EXPECT_EQ(testing::PrintToString(SectionSetting("d", Restart::none)),
              "SectionSetting(doc='d', restart='none')");
}

}  // namespace
}  // namespace velmora::config
