#include "velmora/config/value.hpp"

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

static_assert(!std::is_constructible_v<ConfigValue, const int*>);
static_assert(!std::is_constructible_v<ConfigValue, const void*>);
static_assert(!std::is_constructible_v<ConfigValue, void (*)()>);
static_assert(!std::is_constructible_v<ConfigValue, char>,
              "a letter is neither a text nor a number");
static_assert(!std::is_constructible_v<ConfigValue, long double>, "a double may not hold it");
static_assert(!std::is_constructible_v<List, std::initializer_list<int>> &&
              !std::is_convertible_v<int, List>);
static_assert(!std::is_constructible_v<List, int, int*>);
static_assert(!std::is_constructible_v<Mapping::Entry, const char*>, "a key needs a value");
static_assert(std::is_nothrow_move_constructible_v<ConfigValue>);

TEST(ConfigValue, IsWhatItIsMadeFrom) {
    char text[] = "text";
    const char* missing = nullptr;
    const std::tuple<ConfigValue, std::string, std::string> cases[] = {
        {{}, "null", "None"},
        {missing, "null", "None"},
        {true, "a flag", "True"},
        {text, "a text", "'text'"},
        {"True", "a text", "'True'"},
        {std::string_view("a\0b", 3), "a text", R"('a\x00b')"},
        {static_cast<short>(-7), "an integer", "-7"},
        {std::numeric_limits<std::uint64_t>::max(), "an integer", "18446744073709551615"},
        {std::numeric_limits<long long>::min(), "an integer", "-9223372036854775808"},
        {0.5F, "a float", "0.5"},
        {Number(1), "an integer", "1"},
        {Number(1.0), "a float", "1.0"},
        {List{1, "a", List{}}, "a list", "[1, 'a', []]"},
        {Mapping{{"b", 1}, {2, "a"}, {"b", 3}}, "a mapping", "{'b': 3, 2: 'a'}"},
    };
    for (const auto& [value, kind, shown] : cases) {
        EXPECT_EQ(value.kind_text(), kind);
        EXPECT_EQ(display(value), shown);
    }
}

TEST(ConfigValue, ReadsAsCppTypesWithoutConversion) {
    const ConfigValue list = List{"a", "b"};
    EXPECT_EQ(list.get<std::vector<std::string>>(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(ConfigValue().get<std::optional<std::string>>(), std::nullopt);
    EXPECT_EQ(ConfigValue("a").get<std::optional<std::string>>(), "a");
    EXPECT_EQ(ConfigValue(7).as<double>(), std::nullopt);
    EXPECT_EQ(ConfigValue(1).as<bool>(), std::nullopt);
    EXPECT_EQ(ConfigValue(true).as<int>(), std::nullopt);
    EXPECT_EQ(ConfigValue(List{"a", 1}).as<std::vector<std::string>>(), std::nullopt);
    try {
        (void)ConfigValue(300).get<std::uint8_t>();
        FAIL();
    } catch (const TypeError& error) {
        EXPECT_STREQ(error.what(), "expected an integer from 0 to 255, got an integer");
    }
}

TEST(ConfigValue, IsEqualByValue) {
    const ConfigValue values[] = {
        {},
        false,
        true,
        0,
        1,
        0.5,
        "",
        "1",
        List{},
        List{1},
        List{1, 1},
        Mapping{},
        Mapping{{1, 1}},
        Mapping{{"1", 1}},
    };
    for (const ConfigValue& a : values) {
        for (const ConfigValue& b : values) EXPECT_EQ(a == b, &a == &b) << a << " against " << b;
    }
    const std::pair<ConfigValue, ConfigValue> equal[] = {
        {1, 1.0},
        {List{1, Mapping{{"a", 2}}}, List{1.0, Mapping{{"a", 2}}}},
        {Mapping{{"a", 1}, {"b", 2}}, Mapping{{"b", 2}, {"a", 1}}},
        {Mapping{{List{1}, 1}, {2, 2}}, Mapping{{2.0, 2}, {List{1.0}, 1}}},
    };
    for (const auto& [a, b] : equal) {
        EXPECT_EQ(a, b);
        EXPECT_EQ(a.hash(), b.hash()) << a;
    }
    EXPECT_NE(ConfigValue(Mapping{{List{1}, 1}}), ConfigValue(Mapping{{List{2}, 1}}));
}

TEST(ConfigValue, MayBeAssignedFromWithinItself) {
    for (const ConfigValue& inside : {ConfigValue(), ConfigValue(true), ConfigValue(7),
                                      ConfigValue(0.5), ConfigValue("a text of some length"),
                                      ConfigValue(List{1, 2}), ConfigValue(Mapping{{"a", 1}})}) {
        ConfigValue in_list = List{ConfigValue(inside)};
        in_list = (*in_list.get_if<List>())[0];
        EXPECT_EQ(in_list, inside);
        ConfigValue in_mapping = Mapping{{"key", inside}};
        in_mapping = *in_mapping.get_if<Mapping>()->find("key");
        EXPECT_EQ(in_mapping, inside);
    }
}

TEST(List, IsSharedByCopiesOfItsHandle) {
    List list{1};
    const ConfigValue alias = list;
    const List copy = list.copy();
    list.push_back(2);
    list.set(0, "a");
    EXPECT_EQ(display(alias), "['a', 2]");
    EXPECT_EQ(display(copy), "[1]");
    EXPECT_EQ(display(List{ConfigValue(copy)}), "[[1]]");
    EXPECT_TRUE(List{copy}.same_as(copy));
    EXPECT_TRUE(alias.get_if<List>()->same_as(list));
    EXPECT_FALSE(copy.same_as(list));
}

// Above and below the size from which on keys are hashed.
TEST(Mapping, KeepsOrderAndReplacesValues) {
    for (const int size : {3, 8, 9, 1000}) {
        Mapping mapping;
        for (int i = 0; i < size; ++i) mapping.set("key" + std::to_string(i), i);
        for (int i = 0; i < size; ++i) mapping.set("key" + std::to_string(i), 2 * i);
        const Mapping copy = mapping.copy();
        mapping.set(List{1}, "list");
        mapping.set(true, "flag");
        mapping.set(1, "number");
        mapping.set(1.0, "same number");
        ASSERT_EQ(mapping.size(), static_cast<std::size_t>(size) + 3);
        int i = 0;
        for (const auto& [key, value] : copy) {
            ASSERT_EQ(key, ConfigValue("key" + std::to_string(i)));
            ASSERT_EQ(*mapping.find(key), ConfigValue(2 * i));
            ASSERT_EQ(copy.find(*key.get_if<std::string>()), &value);
            ASSERT_EQ(&copy.find_entry(*key.get_if<std::string>(), 5)->value, &value);
            ++i;
        }
        EXPECT_EQ(*mapping.find(List{1.0}), ConfigValue("list"));
        EXPECT_EQ(*mapping.find(true), ConfigValue("flag"));
        EXPECT_EQ(*mapping.find(1), ConfigValue("same number"));
        EXPECT_EQ(mapping.find(0), nullptr);
        EXPECT_EQ(mapping.find(nullptr), nullptr);
        EXPECT_EQ(*ConfigValue(mapping).deep_copy().get<Mapping>().find(List{1}),
                  ConfigValue("list"));
        EXPECT_EQ(mapping.find("1"), nullptr);
        EXPECT_EQ(copy.find("key"), nullptr);
    }
}

constexpr int deep = 1'000'000;

ConfigValue nested(ConfigValue (*wrap)(ConfigValue)) {
    ConfigValue value = "inside";
    for (int i = 0; i < deep; ++i) value = wrap(std::move(value));
    return value;
}

TEST(Nesting, MayBeAMillionLevelsDeep) {
    const auto in_list = [](ConfigValue value) { return ConfigValue(List{std::move(value)}); };
    const auto in_value = [](ConfigValue value) {
        return ConfigValue(Mapping{{"k", std::move(value)}});
    };
    const auto in_key = [](ConfigValue value) {
        return ConfigValue(Mapping{{std::move(value), 1}});
    };
    for (ConfigValue (*wrap)(ConfigValue) : {+in_list, +in_value, +in_key}) {
        const ConfigValue value = nested(wrap);
        const ConfigValue copy = value.deep_copy();
        EXPECT_TRUE(value == nested(wrap));
        EXPECT_TRUE(value == copy);
        EXPECT_FALSE(value == wrap(value));
        EXPECT_EQ(display(copy), display(value));
    }
}

// Leaks show under the sanitizers.
TEST(Nesting, MayContainItself) {
    List ring;
    for (int i = 0; i < 3; ++i) {
        List next{i, ring};
        ring.push_back(next);
        ring = next;
    }
    List loop{1};
    loop.push_back(loop);
    List set_item{1};
    set_item.set(0, set_item);
    Mapping as_value;
    as_value.set("v", as_value);
    Mapping as_key;
    as_key.set(as_key, 1);
    Mapping mapping{{"loop", loop}};
    mapping.set(mapping, mapping);
    List other{1, List{1}};
    other[1].get<List>().push_back(other);
    EXPECT_EQ(loop, other) << "both unfold to [1, [1, [1, ...";
    other[1].get<List>().set(0, 2);
    EXPECT_NE(loop, other);
    EXPECT_EQ(display(loop), "[1, [...]]");
    EXPECT_EQ(display(mapping), "{'loop': [1, [...]], {...}: {...}}");
    const ConfigValue copy = ConfigValue(mapping).deep_copy();
    EXPECT_EQ(display(copy), display(mapping));
    EXPECT_FALSE(copy.get<Mapping>().same_as(mapping));
    EXPECT_TRUE(copy.get<Mapping>().same_as((*copy.get<Mapping>().find(copy)).get<Mapping>()));
}

TEST(Nesting, KeepsWhatIsStillReachableFromOutside) {
    ConfigValue kept;
    {
        List outer{"outer"};
        List inner{"inner", outer};
        outer.push_back(inner);
        List below{"below", List{ConfigValue(inner)}};
        outer.push_back(below);
        kept = below;
    }
    EXPECT_EQ(display(kept), "['below', [['inner', ['outer', [...], [...]]]]]");
}

}  // namespace
}  // namespace velmora::config
