#include "velmora/config/record.hpp"

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

using test::outcome;

const RecordType& later();

const RecordType node("Node", {{"next", TypeReference("Node", [] { return node; })},
                               {"later", list_of(TypeReference("Later", later))},
                               {"port", int_type, {ConfigValue(1)}}});

const RecordType& later() {
    static const RecordType type("Later", {});
    return type;
}

TEST(RecordType, ResolvesReferencesWhenAsked) {
    const auto types = node.resolve_types();
    EXPECT_EQ(types.at("next").record_type(), node);
    EXPECT_EQ(types.at("later").name() + types.at("port").name(), "list[Later]int");
    EXPECT_NE(RecordType("Later", {}), later());

    const DeclaredType alias = TypeReference("Alias", [] { return TypeReference("Node", [] { return node; }); });
    EXPECT_EQ(alias.resolved().record_type(), node);
    static const TypeReference endless("Endless", [] { return endless; });
    static const TypeReference recursive("Recursive", [] { return list_of(recursive); });
    for (const TypeReference& reference :
         {endless, recursive, TypeReference("Missing", [] { return std::nullopt; }), TypeReference("Null", nullptr)}) {
        const RecordType faulty("T", {{"f", list_of(reference)}});
        EXPECT_EQ(outcome([&] { return faulty.resolve_types().at("f").name(); }),
                  "TypeError: the reference '" + reference.name() + "' names no type");
    }
}

TEST(RecordType, MakesRecordsOfWhatIsGivenAndDefaults) {
    using Make = DefaultFactory;
    int made = 0;
    const FieldDetails counted{Make([&] { return ++made; })};
    const FieldDetails refused{Make([]() -> FieldValue { throw ValueError("from the factory"); })};
    const RecordType type("T", {{"given", int_type},
                                {"value", str_type, {ConfigValue("v")}},
                                {"a", int_type, counted},
                                {"b", int_type, counted}});
    const RecordType endless("E", {{"e", int_type, {Make([&] { return endless.make(); })}}});
    const RecordType ends("F", {{"f", int_type, {Make([&] { return ends.make({{"f", 1}}); })}}});
    const RecordType fails("G", {{"g", int_type, refused}});
    const std::tuple<RecordType, std::vector<RecordType::Given>, std::string> cases[] = {
        {type, {{"given", List{"unchecked"}}}, "T(given=['unchecked'], value='v', a=1, b=2)"},
        {type, {{"value", 2}, {"b", 0}, {"given", 1}}, "T(given=1, value=2, a=3, b=0)"},
        {type, {{"value", 1}}, "TypeError: T needs a value for its field 'given'"},
        {type, {{"given", 1}, {"vaule", 1}}, "TypeError: T has no field 'vaule'; did you mean 'value'?"},
        {endless, {}, "TypeError: a record of E has no end: its defaults hold records of each other"},
        {ends, {}, "F(f=F(f=1))"},
        {fails, {}, "ValueError: from the factory"},
    };
    for (const auto& [kind, given, expected] : cases)
        EXPECT_EQ(outcome([&, &k = kind, &g = given] { return k.make(g); }), expected);
    EXPECT_EQ(made, 3) << "a factory runs once for each record that needs it";
    EXPECT_EQ(outcome([] {
                  return display(RecordType("T", {{"a", int_type}, {"b", int_type}, {"a", int_type}}));
              }),
              "TypeError: two fields of T have one name: 'a' (field 1) and 'a' (field 3)");
}

TEST(Record, ReadsFieldsAsCppTypes) {
    const RecordType inner("Inner", {{"port", int_type, setting(70000, "")}});
    const RecordType outer("Outer", {{"inner", inner, section(inner, "", {.restart = Restart::none})},
                                     {"ratio", TypeReference("float", [] { return float_type; }), setting(0, "")},
                                     {"huge", float_type, setting(test::huge, "")},
                                     {"count", int_type, setting(3, "")}});
    const Record record = outer.make();
    EXPECT_EQ(record.get<Record>("inner").get<std::int64_t>("port"), 70000);
    EXPECT_EQ(record.get<double>("ratio"), 0.0) << "an integer default of a float";
    EXPECT_EQ(record.get<std::optional<double>>("ratio"), 0.0);

    const auto get = [&]<class T>(T, const char* field) {
        return outcome([&] { return record.get<T>(field), "read"; });
    };
    EXPECT_EQ(get(0, "cuont"), "TypeError: Outer has no field 'cuont'; did you mean 'count'?");
    EXPECT_EQ(get(0.5, "count"), "TypeError: Outer.count holds 3, not a float");
    EXPECT_EQ(get(0.5, "huge"), "TypeError: Outer.huge holds 1" + std::string(76, '0') + "..., not a float");
    EXPECT_EQ(get(record, "count"), "TypeError: Outer.count holds 3, not a record");
    EXPECT_EQ(get(std::int16_t(), "inner"),
              "TypeError: Outer.inner holds a record of Inner, not an integer from -32768 to 32767");
}

TEST(Record, IsAValue) {
    const RecordType inner("Inner", {{"port", int_type, setting(1, "")}});
    Record record = RecordType("R", {{"inner", inner, section(inner, "", {.restart = Restart::none})},
                                     {"count", int_type, setting(3, "")}})
                        .make();
    const Record before = record;
    record.set("count", 4);
    EXPECT_EQ(before.get<int>("count"), 3);
    EXPECT_NE(record, before);
    record.set("count", 3.0);
    EXPECT_EQ(record, before);
    EXPECT_EQ(outcome([&] { return record.set("x", 1), "set"; }), "TypeError: R has no field 'x'");
    EXPECT_NE(RecordType("A", {}).make(), RecordType("A", {}).make());

    Record within = record;
    within = *within["inner"].if_record();
    EXPECT_EQ(testing::PrintToString(within), "Inner(port=1)");
    const Record moved = std::move(within);
    EXPECT_EQ(display(moved) + display(within), "Inner(port=1)Inner()");
    EXPECT_EQ(outcome([&] { return within.get<int>("port"), "read"; }),
              "TypeError: a record of Inner that was moved from has no fields");
}

}  // namespace
}  // namespace velmora::config
