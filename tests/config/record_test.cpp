#include "velmora/config/record.hpp"

#include <gtest/gtest.h>

#include "velmora/config/spec.hpp"

namespace velmora::config {
namespace {

using Basic = DeclaredType::Basic;

template <class Error, class Action>
std::string message_of(Action action) {
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return "no such error";
}

const RecordType& later();

const RecordType node("Node", {{"next", TypeReference("Node", [] { return node; })},
                               {"later", list_of(TypeReference("Later", later))},
                               {"port", int_type, {.default_value = ConfigValue(1)}}});

const RecordType& later() {
    static const RecordType type("Later", {});
    return type;
}

TEST(RecordType, ResolvesReferencesWhenAsked) {
    const auto types = node.resolve_types();
    EXPECT_EQ(types.at("next").record_type(), node);
    EXPECT_TRUE(types.at("later").is_list_with_element());
    EXPECT_EQ(types.at("later").name(), "list[Later]");
    EXPECT_TRUE(types.at("port").is(Basic::int_));
    EXPECT_NE(RecordType("Later", {}), later());

    const DeclaredType alias =
        TypeReference("Alias", [] { return TypeReference("Node", [] { return node; }); });
    EXPECT_EQ(alias.resolved().record_type(), node);
    static const TypeReference endless("Endless", [] { return endless; });
    static const TypeReference recursive("Recursive", [] { return list_of(recursive); });
    for (const TypeReference& reference :
         {endless, recursive, TypeReference("Missing", [] { return std::nullopt; }),
          TypeReference("Null", nullptr)}) {
        EXPECT_EQ(message_of<TypeError>([&] {
                      RecordType("T", {{"f", list_of(reference)}}).resolve_types();
                  }),
                  "the reference '" + reference.name() + "' names no type");
    }
    EXPECT_EQ(message_of<TypeError>([] { (void)list_of(int_type).record_type(); }),
              "list[int] is no record type: it has no fields");
}

TEST(RecordType, RefusesTwoFieldsOfOneName) {
    EXPECT_EQ(message_of<TypeError>([] {
                  RecordType("T", {{"a", int_type}, {"b", int_type}, {"a", str_type}});
              }),
              "two fields of T have one name: 'a' (field 1) and 'a' (field 3)");
}

TEST(RecordType, MakesRecordsOfWhatIsGivenAndDefaults) {
    int made = 0;
    const RecordType type(
        "T", {{"given", int_type},
              {"value", str_type, {.default_value = ConfigValue("v")}},
              {"fresh", int_type, {.default_value = DefaultFactory([&] { return ++made; })}}});
    EXPECT_EQ(testing::PrintToString(type.make({{"given", List{"unchecked"}}})),
              "T(given=['unchecked'], value='v', fresh=1)");
    EXPECT_EQ(display(type.make({{"value", 2}, {"given", 1}})), "T(given=1, value=2, fresh=2)");
    EXPECT_EQ(display(type.make({{"fresh", 0}, {"given", 1}})), "T(given=1, value='v', fresh=0)");
    EXPECT_EQ(made, 2) << "a factory runs once for each record that needs it";
    EXPECT_EQ(message_of<TypeError>([&] {
                  (void)type.make({{"value", 1}});
              }),
              "T needs a value for its field 'given'");
    EXPECT_EQ(message_of<TypeError>([&] {
                  (void)type.make({{"given", 1}, {"vaule", 1}});
              }),
              "T has no field 'vaule'");

    const RecordType failing("F",
                             {{"f", int_type, {.default_value = DefaultFactory([]() -> FieldValue {
                                                   throw std::domain_error("from the factory");
                                               })}}});
    EXPECT_EQ(message_of<std::domain_error>([&] { (void)failing.make(); }), "from the factory");
}

TEST(Record, ReadsFieldsAsCppTypes) {
    const RecordType inner("Inner", {{"port", int_type, setting(70000, "")}});
    const RecordType outer(
        "Outer",
        {{"inner", inner, section(inner, "", {.restart = Restart::none})},
         {"ratio", TypeReference("float", [] { return float_type; }), setting(0, "")},
         {"huge", float_type, setting(Integer::parse("1" + std::string(400, '0')).value(), "")},
         {"count", int_type, setting(3, "")},
         {"tags", list_of(str_type), setting(List{"a", "b"}, "")},
         {"user", str_type, setting(nullptr, "")}});
    Record record = outer.make();
    EXPECT_EQ(record.get<Record>("inner").get<std::int64_t>("port"), 70000);
    EXPECT_EQ(record.get<std::vector<std::string>>("tags"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(record.get<std::optional<std::string>>("user"), std::nullopt);
    EXPECT_EQ(record.get<double>("ratio"), 0.0) << "an integer default of a float";
    EXPECT_EQ(record.get<std::optional<double>>("ratio"), 0.0);

    const std::pair<std::function<void()>, std::string> failures[] = {
        {[&] { (void)record.get<int>("cuont"); }, "Outer has no field 'cuont'"},
        {[&] { (void)record.get<std::string>("count"); }, "Outer.count holds 3, not a text"},
        {[&] { (void)record.get<double>("count"); }, "Outer.count holds 3, not a float"},
        {[&] { (void)record.get<double>("huge"); },
         "Outer.huge holds 1" + std::string(76, '0') + "..., not a float"},
        {[&] { (void)record.get<Record>("count"); }, "Outer.count holds 3, not a record"},
        {[&] { (void)record.get<int>("inner"); },
         "Outer.inner holds a record of Inner, not an integer from -2147483648 to 2147483647"},
        {[&] { (void)record.get<Record>("inner").get<std::int16_t>("port"); },
         "Inner.port holds 70000, not an integer from -32768 to 32767"},
        {[&] { record.set("cuont", 1); }, "Outer has no field 'cuont'"},
    };
    for (const auto& [action, message] : failures)
        EXPECT_EQ(message_of<TypeError>(action), message);

    record.set("inner", inner.make({{"port", 1}}));
    Record within = record;
    within = *within["inner"].if_record();
    EXPECT_EQ(display(within), "Inner(port=1)");
    const Record before = record;
    record.set("count", 4);
    EXPECT_EQ(before.get<int>("count"), 3);
    EXPECT_NE(record, before);
    record.set("count", 3.0);
    EXPECT_EQ(record, before);
    EXPECT_NE(inner.make(), RecordType("Inner", {{"port", int_type, setting(70000, "")}}).make());
}

}  // namespace
}  // namespace velmora::config
