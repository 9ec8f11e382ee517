#include "velmora/config/number.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();

Integer integer(const std::string& text) {
    return Integer::parse(text).value();
}

// The digits of 2^1024 - 2^970, the first magnitude that is nearest to no finite double.
const std::string too_large =
    "1797693134862315807937289714053034150799341327100378269361737789804449682927647509466490"
    "1797758720709633028641669288791094655554785194040263065748867150582068190890200070838367"
    "6273854845817711531764475730270069855571366959622842914819860834936475292719074168444365"
    "510704342711559699508093042880177904174497792";

TEST(Integer, ParsesSignAndDigitsOnly) {
    for (const char* text : {"", "+", "-", "1.0", " 1", "1_0", "0x1", "1e3", "--1", "\xd9\xa1"}) {
        EXPECT_FALSE(Integer::parse(text)) << text;
    }
    const std::pair<const char*, const char*> cases[] = {
        {"-0", "0"},
        {"+007", "7"},
        {"-9223372036854775808", "-9223372036854775808"},
        {"9223372036854775808", "9223372036854775808"},
        {"-000100000000000000000000", "-100000000000000000000"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(integer(text).text(), shown);
}

TEST(Integer, KeepsBuiltInIntegersAndGivesBackOnlyWhatFits) {
    const Integer largest_unsigned = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(largest_unsigned.text(), "18446744073709551615");
    EXPECT_EQ(largest_unsigned.as<std::uint64_t>(), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(largest_unsigned.as<std::int64_t>(), std::nullopt);
    EXPECT_EQ(integer("18446744073709551616").as<std::uint64_t>(), std::nullopt);
    EXPECT_EQ(Integer(-1).as<std::uint64_t>(), std::nullopt);
    EXPECT_EQ(integer("-9223372036854775809").as<std::uint64_t>(), std::nullopt);
    EXPECT_EQ(Integer(300).as<std::uint8_t>(), std::nullopt);
    EXPECT_EQ(Integer(-128).as<signed char>(), -128);
    static_assert(!BuiltinInteger<bool> && !BuiltinInteger<char> && !BuiltinInteger<char32_t>);
}

TEST(Number, OrdersIntegersAndDoublesExactly) {
    const Number ascending[] = {
        -infinity,
        integer("-" + too_large),
        -largest,
        integer("-100000000000000000001"),
        -1e20,
        integer("-9223372036854775809"),
        -0x1p63,
        -0x1p53 - 2,
        -(1LL << 53) - 1,
        -0x1p53,
        -1,
        -5e-324,
        0,
        5e-324,
        0.5,
        (1LL << 53),
        (1LL << 53) + 1,
        0x1p53 + 2,
        std::numeric_limits<std::int64_t>::max(),
        0x1p63,
        integer("9223372036854775809"),
        std::numeric_limits<std::uint64_t>::max(),
        0x1p64,
        1e20,
        integer("100000000000000000001"),
        largest,
        integer(too_large),
        infinity,
    };
    for (const Number& a : ascending) {
        for (const Number& b : ascending) {
            EXPECT_EQ(a <=> b, &a - ascending <=> &b - ascending) << a << " against " << b;
        }
        EXPECT_EQ(a <=> Number(nan), std::partial_ordering::unordered) << a;
    }
}

TEST(Number, EqualNumbersHashAlike) {
    const std::pair<Number, Number> pairs[] = {{0, -0.0},
                                               {1, 1.0},
                                               {-(1LL << 53), -0x1p53},
                                               {std::numeric_limits<std::int64_t>::min(), -0x1p63},
                                               {integer("9223372036854775808"), 0x1p63},
                                               {integer("100000000000000000000"), 1e20}};
    for (const auto& [a, b] : pairs) {
        EXPECT_EQ(a, b);
        EXPECT_EQ(a.hash(), b.hash()) << a;
    }
    EXPECT_NE(Number(nan), Number(nan));
}

TEST(NumberText, IsTheGeneralFormatOfSixDigits) {
    const std::pair<Number, const char*> cases[] = {
        {0, "0"},
        {1, "1"},
        {0.5, "0.5"},
        {0.0001, "0.0001"},
        {0.00001, "1e-05"},
        {0.000123456789, "0.000123457"},
        {65535, "65535"},
        {999999, "999999"},
        {999999.5, "1e+06"},
        {1000000, "1e+06"},
        {1234567, "1.23457e+06"},
        {3.14159265, "3.14159"},
        {9.999995, "10"},
        {2.5, "2.5"},
        {0.0000005, "5e-07"},
        {1e100, "1e+100"},
        {-3, "-3"},
        {-0.0, "-0"},
        {infinity, "inf"},
        {-infinity, "-inf"},
        {std::copysign(nan, -1.0), "nan"},
        {integer("123456500000000000000"), "1.23456e+20"},
    };
    for (const auto& [number, text] : cases) EXPECT_EQ(number_text(number), text);
    EXPECT_THROW(number_text(integer(too_large)), OverflowError);
}

}  // namespace
}  // namespace velmora::config
