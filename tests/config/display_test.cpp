#include "velmora/config/display.hpp"

#include <bit>
#include <clocale>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

using test::inf, test::repeated;

TEST(Display, WritesDoublesShortestAndLikeNothingElse) {
    const List doubles(-test::nan, -inf, -0.0, 100.0, 9999999999999998.0, 1e16, -0.0001, 0.00001, 1.0 / 3);
    EXPECT_EQ(display(doubles),
              "[nan, -inf, -0.0, 100.0, 9999999999999998.0, 1e+16, -0.0001, 1e-05, 0.3333333333333333]");
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
        ASSERT_NE(form.find_first_of(".en"), std::string::npos) << "as an integer: " << form;
    }
    EXPECT_EQ(number_text(0.5), "0.5");
    std::setlocale(LC_ALL, "C");
    if (comma == nullptr) GTEST_SKIP() << "no locale with a decimal comma is installed: only the C locale was tried";
}

TEST(Display, WritesWhatOccursAgainOnlyWithinItselfShort) {
    List loop(1, nullptr, false);
    loop.push_back(loop);
    Mapping mapping{{loop, loop}, {{}, "it's"}};
    mapping.set(mapping, List(mapping, Mapping()));
    const std::string shown = "[1, None, False, [...]]";
    EXPECT_EQ(testing::PrintToString(mapping), "{" + shown + ": " + shown + ", None: \"it's\", {...}: [{...}, {}]}");
    const List innermost;
    List deep = innermost;
    for (int i = 0; i < 300; ++i) deep = List{ConfigValue(deep)};
    List(innermost).push_back(deep);
    const std::string levels = repeated("[", 301) + "[...]" + repeated("]", 301);
    EXPECT_EQ(display(List(deep, deep)), "[" + levels + ", " + levels + "]");
    EXPECT_EQ(plain_text(List("a")), "['a']");
    EXPECT_EQ(plain_text("it's"), "it's");
}

TEST(Shown, CutsAtEightyCharacters) {
    List wide, doubling(1, 2);
    ConfigValue deep = 1;
    for (int i = 0; i < 100'000; ++i) {
        wide.push_back(1);
        deep = List{std::move(deep)};
    }
    for (int i = 0; i < 200; ++i) doubling = List(doubling, doubling);
    const std::pair<ConfigValue, std::string> cases[] = {
        {repeated("é", 78), "'" + repeated("é", 78) + "'"},
        {repeated("\U0001f600", 79), "'" + repeated("\U0001f600", 76) + "..."},
        {repeated("\U000e0001", 1000), "'" + repeated("\\U000e0001", 7) + "\\U000e..."},
        {test::huge, "1" + repeated("0", 76) + "..."},
        {deep, repeated("[", 77) + "..."},
        {doubling, repeated("[", 77) + "..."},
        {Mapping{{wide, wide}}, "{[1" + repeated(", 1", 24) + ", ..."},
    };
    for (const auto& [value, shown] : cases) EXPECT_EQ(_shown(value), shown);
}

}  // namespace
}  // namespace velmora::config
