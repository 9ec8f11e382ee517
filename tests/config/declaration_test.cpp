#include "velmora/config/declaration.hpp"

#include <filesystem>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

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

TEST(Metadata, HoldsDescriptorsOfAnyType) {
    const auto number = [](int value) { return Descriptor(std::make_shared<int>(value)); };
    const Metadata metadata{{"a", number(1)}, {"b", Descriptor(std::make_shared<char>('b'))}, {"a", number(2)}};
    EXPECT_EQ(*metadata["a"].get_if<int>(), 1);
    EXPECT_EQ(*metadata["b"].get_if<char>(), 'b');
    const Metadata more = metadata.with("a", number(3)).with("b", number(4)).with("b", number(5));
    EXPECT_EQ(*more["a"].get_if<int>() * 10 + *more["b"].get_if<int>(), 35);
    EXPECT_TRUE(metadata["c"].is_null() && metadata[""].is_null() && Metadata()[""].is_null());
}

TEST(Declaration, MakesDefaultsOfRecordsAnew) {
    List declared{"a", List{"shared item"}};
    const RecordType type("T", {{"list", list_of(str_type), setting(declared, "")},
                                {"path", str_type, setting(std::filesystem::path("/p"), "")},
                                {"texts", KeyKind::list, setting(std::vector{1, 2}, "")},
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
    test::expect_distinct<Setting>({
        Setting("d"),
        Setting("D"),
        Setting("d", {.env = ""}),
        Setting("d", {.env = "None"}),
        Setting("d", {.bounds = POSITIVE}),
        Setting("d", {.bounds = NON_NEGATIVE}),
        Setting("d", {.choices = {"a", "b"}}),
        Setting("d", {.choices = {"b", "a"}}),
        Setting("d", {.restart = Restart::none}),
        Setting("d", {.restart = Restart::daemon}),
    });
    EXPECT_EQ(display(Setting("It's", {"E", Bound(1), {"a"}, Restart::worker})),
              "Setting(doc=\"It's\", env='E', bounds=Bound(low=1, high=None, low_open=False), choices=['a'], "
              "restart='worker')");
    test::expect_distinct<SectionSetting>({{"d", Restart::none}, {"d", Restart::daemon}, {"", Restart::none}});
    EXPECT_EQ(display(SectionSetting("d", Restart::none)), "SectionSetting(doc='d', restart='none')");
}

}  // namespace
}  // namespace velmora::config
