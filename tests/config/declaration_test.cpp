#include "velmora/config/declaration.hpp"

#include <filesystem>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

static_assert(!std::is_default_constructible_v<SectionOptions>);
static_assert(!std::is_default_constructible_v<Setting>);
static_assert(!std::is_constructible_v<SectionSetting, const char*>);
static_assert(!std::is_constructible_v<Setting, std::nullptr_t>);

const char* const no_text = nullptr;

TEST(Declaration, AttachesOneDescriptorAndOneDefault) {
    const FieldDecl key("port", int_type, setting(8080, "Port.", {.env = no_text}));
    const FieldDecl copy = key;
    const auto descriptor = key.metadata()[_SETTING].get_if<Setting>();
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(descriptor, copy.metadata()["velmora:setting"].get_if<Setting>()) << "shared";
    EXPECT_EQ(*descriptor, Setting("Port."));
    EXPECT_TRUE(key.metadata()[_SECTION].is_null());
    EXPECT_EQ(key.metadata()[_SETTING].get_if<SectionSetting>(), nullptr);
    EXPECT_EQ(*key.default_value(), ConfigValue(8080));
    EXPECT_EQ(key.default_factory(), nullptr);

    const RecordType server("Server", {key});
    const FieldDecl field("server", server, section(server, "Doc.", {.restart = Restart::daemon}));
    EXPECT_EQ(*field.metadata()["velmora:section"].get_if<SectionSetting>(), SectionSetting("Doc.", Restart::daemon));
    EXPECT_TRUE(field.metadata()[_SETTING].is_null());
    EXPECT_EQ(field.default_value(), nullptr);
    EXPECT_NE(field.default_factory(), nullptr);
}

TEST(Declaration, MakesDefaultsOfRecordsAnew) {
    List declared{"a", List{"shared item"}};
    const RecordType type("T", {{"list", list_of(str_type), setting(declared, "")},
                                {"path", str_type, setting("/p", "")},
                                {"texts", KeyKind::list, setting(List{1, 2}, "")},
                                {"none", str_type, setting(no_text, "")}});
    declared.push_back("later");
    const Record first = type.make();
    first.get<List>("list").push_back("mine");
    const Record second = type.make();
    EXPECT_EQ(display(first), "T(list=['a', ['shared item'], 'mine'], path='/p', texts=[1, 2], none=None)");
    EXPECT_EQ(display(second), "T(list=['a', ['shared item']], path='/p', texts=[1, 2], none=None)");
    EXPECT_TRUE(first.get<List>("list")[1].get<List>().same_as(second.get<List>("list")[1].get<List>()));

    const RecordType config("C",
                            {{"t", type, section(type, "", {.restart = Restart::none})},
                             {"u", TypeReference("U", [] { return RecordType("U", {}); }),
                              section(TypeReference("T", [type] { return type; }), "", {.restart = Restart::none})}});
    config.make().get<Record>("t").get<List>("list").push_back("mine");
    EXPECT_EQ(config.make().get<Record>("t"), second);
    EXPECT_EQ(config.make().get<Record>("u"), second) << "the default is made of the kind, not of the declared type";
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
    for (const Setting& x : settings) {
        for (const Setting& y : settings) {
            EXPECT_EQ(x == y, &x == &y) << x << y;
            EXPECT_EQ(std::hash<Setting>{}(x) == std::hash<Setting>{}(y), &x == &y) << x << y;
            EXPECT_EQ(display(x) == display(y), &x == &y) << x;
        }
        EXPECT_EQ(Setting(x.doc(), {x.env(), x.bounds(), x.choices(), x.restart()}), x);
    }
    EXPECT_EQ(testing::PrintToString(Setting("It's \n", {"E", Bound(1), {"a"}, Restart::worker})),
              R"(Setting(doc="It's \n", env='E', bounds=Bound(low=1, high=None, low_open=False), )"
              R"(choices=['a'], restart='worker'))");
    const SectionSetting section("d", Restart::none);
    EXPECT_EQ(testing::PrintToString(section), "SectionSetting(doc='d', restart='none')");
    for (const auto& other : {SectionSetting("d", Restart::daemon), SectionSetting("", Restart::none)}) {
        EXPECT_NE(section, other);
        EXPECT_NE(std::hash<SectionSetting>{}(section), std::hash<SectionSetting>{}(other));
    }
}

}  // namespace
}  // namespace velmora::config
