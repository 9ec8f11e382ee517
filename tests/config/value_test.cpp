#include <algorithm>
#include <random>
#include <set>
#include <thread>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

static_assert(!std::is_constructible_v<ConfigValue, const int*>);
static_assert(!std::is_constructible_v<ConfigValue, char>, "neither a text nor a number");
static_assert(!std::is_constructible_v<ConfigValue, long double>, "a double may not hold it");
static_assert(!std::is_convertible_v<int, List> && !std::is_constructible_v<List, int, int*>);
static_assert(std::is_nothrow_move_constructible_v<ConfigValue>);

const char* const missing = nullptr;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(ConfigValue, IsWhatItIsMadeFrom) {
    char text[] = "text";
    const List made(missing, text, std::string_view("a\0b", 3), std::filesystem::path("/etc"), true,
                    static_cast<short>(-7), 0.5F, Number(1), Number(1.0), std::optional<int>(),
                    std::optional<List>(List()), std::vector<bool>{true, false},
                    List(std::vector<List>{List{1, 2}, List{}}), Mapping{{"b", 1}, {2, "a"}, {"b", 3}});
    EXPECT_EQ(display(made), R"([None, 'text', 'a\x00b', '/etc', True, -7, 0.5, 1, 1.0, None, [], )"
                             R"([True, False], [[1, 2], []], {'b': 3, 2: 'a'}])");
}

template <class T>
std::string refusal(const ConfigValue& value) {
    try {
        return display(value.get<T>());
    } catch (const TypeError& error) {
        return error.message();
    }
}

TEST(ConfigValue, ReadsAsCppTypesWithoutConversion) {
    using Texts = std::vector<std::optional<std::string>>;
    EXPECT_EQ(ConfigValue(List{"a", nullptr}).get<Texts>(), (Texts{"a", {}}));
    EXPECT_EQ(ConfigValue("/etc").get<std::filesystem::path>(), "/etc");
    EXPECT_EQ(ConfigValue(1).get<Number>(), 1.0);
    EXPECT_EQ(*ConfigValue(Mapping{{"a", 1}, {missing, 2}}).find(missing), 2);
    EXPECT_EQ(ConfigValue(List(1)).find("a"), nullptr);
    EXPECT_EQ(refusal<double>(7), "expected a float, got an integer");
    EXPECT_EQ(refusal<bool>(nullptr), "expected a flag, got null");
    EXPECT_EQ(refusal<Integer>(true), "expected an integer, got a flag");
    EXPECT_EQ(refusal<Number>("1"), "expected a number, got a text");
    EXPECT_EQ(refusal<std::optional<List>>(0.5), "expected null or a list, got a float");
    EXPECT_EQ(refusal<Mapping>(List()), "expected a mapping, got a list");
    EXPECT_EQ(refusal<std::filesystem::path>(Mapping()), "expected a text, got a mapping");
    EXPECT_EQ(refusal<std::uint8_t>(256), "expected an integer from 0 to 255, got an integer");
    EXPECT_EQ(refusal<Texts>(List{1}), "expected a list, each item null or a text, got a list");
}

TEST(ConfigValue, IsEqualByValue) {
    const List values(missing, false, true, 0, 1, 0.5, "", "1", List(), List(1), List(1, 1), Mapping(), Mapping{{1, 1}},
                      Mapping{{"1", 1}}, Mapping{{List{1}, 1}}, Mapping{{List{2}, 1}}, Mapping{{List{1}, 2}},
                      Mapping{{List{1}, 1}, {List{2}, 2}}, Mapping{{List{1}, 1}, {2, 2}});
    for (const ConfigValue& a : values) {
        for (const ConfigValue& b : values) EXPECT_EQ(a == b, &a == &b) << a << " against " << b;
    }
    const ConfigValue a = List{1, Mapping{{"a", 1}, {"b", 2}, {List{1}, 1}, {2, 2}, {List{3}, 3}}};
    const ConfigValue b = List{1.0, Mapping{{2.0, 2}, {"b", 2}, {List{1.0}, 1}, {"a", 1}, {List{3}, 3}}};
    EXPECT_EQ(a, b);
    EXPECT_EQ(a.hash(), b.hash());
}

TEST(ConfigValue, HashesOfSimilarKeysDifferInTheirLowBits) {
    List all;  // So that no two of its lists have one address.
    std::set<std::size_t> low_bits[9];
    for (int i = 0; i < 1000; ++i) {
        const List keys(std::int64_t{i} << 40, i + 0.5, "a text " + std::to_string(i) + " and more", List(i, "a"),
                        List(0, 0, 0, 0, 0, i), Mapping{{"a", i}}, List(nan), Mapping{{"a", nan}}, Mapping{{nan, 1}});
        all.push_back(keys);
        for (std::size_t k = 0; k < keys.size(); ++k) low_bits[k].insert(keys[k].hash() % 1024);
    }
    for (const auto& found : low_bits) EXPECT_GT(found.size(), 500) << "of 1024, by chance 640";
}

TEST(ConfigValue, IsNullOnceMovedFromAndMayBeAssignedFromWithinItself) {
    for (const ConfigValue& inside : List("a text of some length", List(1, 2), Mapping{{"a", 1}})) {
        ConfigValue value = Mapping{{"key", List{ConfigValue(inside)}}};
        value = (*value.find("key")->get_if<List>())[0];
        ConfigValue moved = std::move(value);
        EXPECT_EQ(value, missing);
        value = std::move(moved);
        EXPECT_EQ(moved, missing);
        EXPECT_EQ(value, inside);
    }
}

TEST(List, IsSharedByCopiesOfItsHandle) {
    List list{1};
    const List alias{list};
    const List copy = list.copy();
    list.push_back(2);
    list.set(0, "a");
    EXPECT_EQ(display(List(alias, copy)), "[['a', 2], [1]]");
    EXPECT_TRUE(alias.same_as(list) && !copy.same_as(list));
}

TEST(Mapping, HoldsWhatASearchOneByOneFinds) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 200; ++round) {
        Mapping mapping;
        std::vector<Mapping::Entry> entries;
        for (int i = 0; i < round; ++i) {
            const int n = static_cast<int>(random() % 20);
            const List keys(n, n / 2.0, std::to_string(n), List(n), List(n / 2.0), List(0, 0, 0, 0, n, 0, 0, 0, 0),
                            n > 9, infinity, round % 2 == 0 ? nan : n);
            const ConfigValue& key = keys[random() % keys.size()];
            const auto* text = key.get_if<std::string>();
            const auto* found = text != nullptr ? mapping.find(*text) : mapping.find(key);
            const auto entry = std::ranges::find(entries, key, &Mapping::Entry::key);
            ASSERT_EQ(found == nullptr, entry == entries.end());
            ASSERT_TRUE(found == nullptr || *found == std::exchange(entry->value, i)) << key;
            if (found == nullptr) entries.emplace_back(key, i);
            if (i % 10 == 9) {
                ASSERT_FALSE(std::exchange(mapping, mapping.copy()).same_as(mapping));
            }
            mapping.set(key, i);
        }
        const auto shown = [](const auto& entry) { return display(entry.key); };
        ASSERT_TRUE(std::ranges::equal(mapping, entries, {}, shown, shown));
    }
}

TEST(Nesting, MayBeAsDeepAsMemoryAllows) {
    ConfigValue a = "inside";
    ConfigValue b = "inside";
    for (int i = 0; i < 40'000; ++i) {
        a = Mapping{{"k", List{Mapping{{std::exchange(a, {}), 1}}}}};
        b = Mapping{{"k", List{Mapping{{std::exchange(b, {}), 1}}}}};
    }
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a == Mapping({{"k", List{b}}}));
    EXPECT_EQ(a.get<Mapping>(), b.get<Mapping>());
    EXPECT_EQ(display(a), display(b));
}

TEST(Nesting, ComparesWhatContainsItself) {
    List loop{1};
    loop.push_back(Mapping{{"k", loop}});
    List twice{1};
    twice.push_back(Mapping{{"k", List(1, Mapping{{"k", twice}})}});
    EXPECT_EQ(loop, twice) << "both unfold to [1, {'k': [1, {'k': [1, ...";
    EXPECT_EQ(ConfigValue(loop).hash(), ConfigValue(twice).hash());
    twice[1].find("k")->get<List>().set(0, 2);
    EXPECT_NE(loop, twice);
}

// Races show under ThreadSanitizer.
TEST(HandleThreads, CopyAndDropWhatTheyShare) {
    List ring;
    ring.push_back(List(List(), ring));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([ring] {
            for (std::size_t n = 0; n < 10'000; ++n) (void)ring[0].get<List>()[n % 2].get<List>();
        });
    }
    ring = List();
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace velmora::config
