#include "velmora/config/bound.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

static_assert(!std::is_assignable_v<decltype(std::declval<Bound&>().low()), Number>);
static_assert(!std::is_assignable_v<decltype(std::declval<Bound&>().high()), Number>);
static_assert(!std::is_constructible_v<Bound, int, int, int>);
static_assert(!std::is_default_constructible_v<Bound>);
static_assert(!std::is_constructible_v<Bound, bool>, "a flag is no number");
static_assert(!std::is_constructible_v<Bound, int, bool>, "the second argument is the upper end");

TEST(Bound, AdmitsExactlyWhatLiesBetweenItsEnds) {
    const Integer beyond = Integer::parse("100000000000000000001").value();
    const struct {
        Bound bound;
        std::vector<ConfigValue> admitted;
        std::vector<ConfigValue> refused;
    } cases[] = {
        {POSITIVE, {0.000001, 1, infinity, true}, {0, -0.0, -1, false, -infinity, std::nan("")}},
        {NON_NEGATIVE, {0, -0.0, infinity, beyond}, {-1e-300, std::nan("")}},
        {PROBABILITY, {0, 0.5, 1, true, false}, {1.0000001, -0.1, 2}},
        {Bound(5, 1), {}, {3, 5, 6, 1}},
        {Bound(0, {.high = 1, .low_open = true}), {1, 5e-324}, {0}},
        {Bound(0, 1e20), {Integer::truncated(1e20), 1e20}, {beyond}},
        {Bound(beyond), {beyond, 2e20}, {1e20, Integer::truncated(1e20)}},
        {Bound(std::nan("")), {}, {0, infinity}},
    };
    for (const auto& [bound, admitted, refused] : cases) {
        for (const ConfigValue& value : admitted)
            EXPECT_TRUE(bound.admits(value)) << bound << value;
        for (const ConfigValue& value : refused)
            EXPECT_FALSE(bound.admits(value)) << bound << value;
    }
    for (const ConfigValue& value : {ConfigValue("1"), ConfigValue(), ConfigValue(List{1})}) {
        EXPECT_THROW((void)POSITIVE.admits(value), TypeError) << value;
    }
}

TEST(Bound, ReadsAsTheEndOfASentence) {
    const std::tuple<Bound, std::string, std::string> cases[] = {
        {POSITIVE, "above 0", "Bound(low=0, high=None, low_open=True)"},
        {NON_NEGATIVE, "at least 0", "Bound(low=0, high=None, low_open=False)"},
        {PROBABILITY, "at least 0 and at most 1", "Bound(low=0, high=1, low_open=False)"},
        {Bound(0, 1, true), "above 0 and at most 1", "Bound(low=0, high=1, low_open=True)"},
        {Bound(0.5, 2.5), "at least 0.5 and at most 2.5",
         "Bound(low=0.5, high=2.5, low_open=False)"},
        {Bound(1000000.0), "at least 1e+06", "Bound(low=1000000.0, high=None, low_open=False)"},
    };
    for (const auto& [bound, text, shown] : cases) {
        EXPECT_EQ(bound.text(), text);
        EXPECT_EQ(testing::PrintToString(bound), shown);
    }
    const Integer huge = Integer::parse("1" + std::string(400, '0')).value();
    EXPECT_THROW((void)Bound(0, huge).text(), OverflowError);
}

TEST(Bound, IsEqualByValue) {
    EXPECT_EQ(Bound(0), Bound(0.0));
    EXPECT_EQ(std::hash<Bound>{}(Bound(0, 1)), std::hash<Bound>{}(Bound(0.0, 1.0)));
    for (const Bound& other : {Bound(1), Bound(0, 1), Bound(0, {.low_open = true})})
        EXPECT_NE(Bound(0), other);
}

}  // namespace
}  // namespace velmora::config
