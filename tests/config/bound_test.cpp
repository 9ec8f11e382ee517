#include "velmora/config/bound.hpp"

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

using test::inf, test::nan, test::outcome;

static_assert(!std::is_constructible_v<Bound, bool>, "a flag is no number");
static_assert(!std::is_constructible_v<Bound, int, bool>, "the second argument is the upper end");

TEST(Bound, AdmitsExactlyWhatItsTextSays) {
    const Integer e20 = Integer::truncated(1e20);
    const Integer more = Integer::parse("100000000000000000001").value();
    using Values = std::vector<ConfigValue>;
    const std::tuple<Bound, std::string, Values, Values> cases[] = {
        {POSITIVE, "above 0", {5e-324, 1, inf, true}, {0, -0.0, -1, false, -inf, nan}},
        {NON_NEGATIVE, "at least 0", {0, -0.0, inf, false, more}, {-1e-300, nan}},
        {PROBABILITY, "at least 0 and at most 1", {0, 0.5, 1, true}, {1.0000001, -0.1, 2}},
        {Bound(0, 1, true), "above 0 and at most 1", {1, 5e-324}, {0}},
        {Bound(5, 1), "at least 5 and at most 1", {}, {3, 5, 6, 1}},
        {Bound(0, 1e20), "at least 0 and at most 1e+20", {e20, 1e20}, {more}},
        {Bound(more), "at least 1e+20", {more, 2e20}, {1e20, e20}},
        {Bound(1000000.5), "at least 1e+06", {1000001}, {1000000}},
        {Bound(0, nan), "at least 0 and at most nan", {}, {0, inf}},
    };
    for (const auto& [bound, text, admitted, refused] : cases) {
        EXPECT_EQ(bound.text(), text);
        for (const auto& value : admitted) EXPECT_TRUE(bound.admits(value)) << text << value;
        for (const auto& value : refused) EXPECT_FALSE(bound.admits(value)) << text << value;
    }
    for (const ConfigValue& value : List("1", nullptr, List(std::string(99, 'x')))) {
        EXPECT_EQ(outcome([&] { return POSITIVE.admits(value); }),
                  "TypeError: a bound cannot be compared with " + _shown(value) + ", which is no number");
    }
    EXPECT_EQ(outcome([] { return Bound(0, test::huge).text(); }),
              "OverflowError: integer too large for a floating-point number");
}

TEST(Bound, ComparesExactlyWhateverItsEndsAre) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const auto all = [](auto... numbers) { return std::vector<Number>{numbers...}; };
    const auto numbers =
        all(-inf, -0x1p63, -most - 1, -0x1p53 - 2, -0x1p53, -(1LL << 53) - 1, -1, -0.5, 0, -0.0, 1, 1.5, 0x1p53,
            (1LL << 53) + 1, most - 1, most, 0x1p63, Integer::truncated(1e20), 1e20, inf, nan);
    for (const Number& low : numbers) {
        for (const Number& high : numbers) {
            for (const Number& value : numbers) {
                EXPECT_EQ(Bound(low, high).admits(value), value >= low && value <= high) << low << high << value;
                EXPECT_EQ(Bound(low, {.low_open = true}).admits(value), value > low) << low << value;
            }
        }
    }
}

TEST(Bound, IsEqualByValueAndShowsItsFields) {
    EXPECT_EQ(Bound(0, 1), Bound(0.0, {.high = 1.0}));
    EXPECT_EQ(std::hash<Bound>{}(Bound(0, 1)), std::hash<Bound>{}(Bound(0.0, 1.0)));
    test::expect_distinct<Bound>({Bound(0), Bound(1), Bound(0, 1), Bound(0, {.low_open = true})});
    EXPECT_EQ(display(Bound(0.5, {.low_open = true})), "Bound(low=0.5, high=None, low_open=True)");
    EXPECT_EQ(display(PROBABILITY), "Bound(low=0, high=1, low_open=False)");
}

}  // namespace
}  // namespace velmora::config
