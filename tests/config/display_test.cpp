#include "velmora/config/display.hpp"

#include <bit>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "velmora/config/coercers.hpp"

namespace velmora::config {
namespace {

std::string repeated(std::string_view text, int count) {
    std::string result;
    while (count-- > 0) result += text;
    return result;
}

TEST(Display, WritesDoublesShortestAndLikeNothingElse) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> cases[] = {
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
        {-std::numeric_limits<double>::quiet_NaN(), "nan"},
        {infinity, "inf"},
        {-infinity, "-inf"},
        {0, "0.0"},
        {-0.0, "-0.0"},
        {1, "1.0"},
        {-100, "-100.0"},
        {12345.678, "12345.678"},
        {1e15, "1000000000000000.0"},
        {9999999999999998, "9999999999999998.0"},
        {1e16, "1e+16"},
        {1.5e16, "1.5e+16"},
        {0.1, "0.1"},
        {0.0001, "0.0001"},
        {0.00012, "0.00012"},
        {0.00001, "1e-05"},
        {2.5e-7, "2.5e-07"},
        {1e300, "1e+300"},
        {5e-324, "5e-324"},
        {std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
        {1.0 / 3, "0.3333333333333333"},
    };
    for (const auto& [value, form] : cases) EXPECT_EQ(display(value), form);
}

TEST(Display, WritesDoublesThatReadBackWhateverTheLocale) {
    const char* comma = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"}) {
        if (comma == nullptr) comma = std::setlocale(LC_ALL, name);
    }
    std::mt19937_64 random(20261122);
    for (int i = 0; i < 100'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        const std::string form = display(value);
        if (std::isfinite(value)) {
            ASSERT_EQ(_coerce_number(form, KeyKind::float_), ConfigValue(value)) << form;
        }
        ASSERT_EQ(form.find(','), std::string::npos);
        ASSERT_NE(form.find_first_of(".en"), std::string::npos)
            << "looks like an integer: " << form;
    }
    EXPECT_EQ(number_text(0.5), "0.5");
    std::setlocale(LC_ALL, "C");
    if (comma == nullptr)
        GTEST_SKIP() << "no locale with a decimal comma is installed: only the C locale was tried";
}

TEST(Display, WritesNestedValues) {
    const Integer huge = Integer::parse("-123456789012345678901234567890").value();
    const std::pair<ConfigValue, const char*> cases[] = {
        {{}, "None"},
        {false, "False"},
        {huge, "-123456789012345678901234567890"},
        {List{}, "[]"},
        {Mapping{}, "{}"},
        {List{"a", "b", List{1, nullptr, true}, Mapping{}}, "['a', 'b', [1, None, True], {}]"},
        {Mapping{{"a", 1}, {"b", List{1, 2}}}, "{'a': 1, 'b': [1, 2]}"},
        {Mapping{{1, "a"}, {{}, 0.5}, {List{"k"}, Mapping{{"x", List{}}}}},
         "{1: 'a', None: 0.5, ['k']: {'x': []}}"},
    };
    for (const auto& [value, form] : cases) {
        EXPECT_EQ(display(value), form);
        EXPECT_EQ(plain_text(value), form);
    }
    EXPECT_EQ(plain_text("it's"), "it's");
    const List shared{1};
    EXPECT_EQ(display(List{shared, shared}), "[[1], [1]]");
    List loop{1};
    loop.push_back(loop);
    EXPECT_EQ(display(List{shared, Mapping{{loop, loop}}}), "[[1], {[1, [...]]: [1, [...]]}]");
}

TEST(Shown, CutsAtEightyCharacters) {
    List wide;
    List doubling{"x"};
    ConfigValue deep = 1;
    for (int i = 0; i < 1'000'000; ++i) {
        wide.push_back(1);
        deep = List{std::move(deep)};
    }
    for (int i = 0; i < 200; ++i) doubling = List{doubling, doubling};
    const std::pair<ConfigValue, std::string> cases[] = {
        {repeated("a", 78), "'" + repeated("a", 78) + "'"},
        {repeated("a", 79), "'" + repeated("a", 76) + "..."},
        {repeated("é", 78), "'" + repeated("é", 78) + "'"},
        {repeated("é", 79), "'" + repeated("é", 76) + "..."},
        {repeated("\U0001f600", 10'000'000), "'" + repeated("\U0001f600", 76) + "..."},
        {repeated("\n", 40), "'" + repeated("\\n", 38) + "..."},
        {repeated("\1", 40), "'" + repeated("\\x01", 19) + "..."},
        {repeated("\U000e0001", 40), "'" + repeated("\\U000e0001", 7) + "\\U000e..."},
        {"'" + repeated("a", 10'000'000), "\"'" + repeated("a", 75) + "..."},
        {repeated("a", 10'000'000) + "'\"", "'" + repeated("a", 76) + "..."},
        {Integer::parse(repeated("7", 10'000'000)).value(), repeated("7", 77) + "..."},
        {wide, "[1" + repeated(", 1", 25) + "..."},
        {deep, repeated("[", 77) + "..."},
        {doubling, repeated("[", 77) + "..."},
        {Mapping{{wide, wide}}, "{[1" + repeated(", 1", 24) + ", ..."},
    };
    for (const auto& [value, shown] : cases) EXPECT_EQ(_shown(value), shown);
    const std::string full = display(deep);
    EXPECT_EQ(full, repeated("[", 1'000'000) + "1" + repeated("]", 1'000'000));
}

}  // namespace
}  // namespace velmora::config
