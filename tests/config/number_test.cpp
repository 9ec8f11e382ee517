#include "velmora/config/number.hpp"

#include <cmath>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

constexpr auto most_unsigned = std::numeric_limits<std::uint64_t>::max();

static_assert(!BuiltinInteger<bool> && !BuiltinInteger<char> && !BuiltinInteger<char32_t>);

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
    for (const char* text : {"", "+", "-", "1.0", " 1", "1_0", "--1", "\xd9\xa1"})
        EXPECT_FALSE(Integer::parse(text)) << text;
    const std::pair<const char*, const char*> cases[] = {
        {"-0", "0"}, {"+007", "7"}, {"-000100000000000000000000", "-100000000000000000000"}};
    for (const auto& [text, shown] : cases) EXPECT_EQ(integer(text).text(), shown);
}

TEST(Integer, GivesBackOnlyWhatFits) {
    for (const Integer& each : {Integer(most_unsigned), integer("18446744073709551615")}) {
        EXPECT_EQ(each.as<std::uint64_t>(), most_unsigned);
        EXPECT_EQ(each.as<std::int64_t>(), std::nullopt);
    }
    for (const char* text : {"-1", "18446744073709551616", "-9223372036854775809"})
        EXPECT_EQ(integer(text).as<std::uint64_t>(), std::nullopt);
    EXPECT_EQ(Integer(-129).as<signed char>(), std::nullopt);
    EXPECT_EQ(Integer(-128).as<signed char>(), -128);
}

TEST(Number, OrdersIntegersAndDoublesExactly) {
    std::istringstream words(
        "-inf -" + too_large + " -1.7976931348623157e+308 -100000000000000000001 -1e20 " +
        "-9223372036854775809 -0x1p63 -9007199254740994.0 -9007199254740993 -1 -5e-324 0 0.5 1 "
        "1.5 2 0x1p53 9007199254740993 9223372036854775807 0x1p63 9223372036854775809 "
        "18446744073709551615 0x1p64 1e20 100000000000000000001 1.7976931348623157e+308 " +
        too_large + " inf");
    std::vector<Number> ascending;
    for (std::string word; words >> word;) {
        const auto whole = Integer::parse(word);
        ascending.push_back(whole ? Number(*whole) : std::strtod(word.c_str(), nullptr));
    }
    for (const Number& a : ascending) {
        for (const Number& b : ascending) EXPECT_EQ(a <=> b, &a <=> &b) << a << " against " << b;
        EXPECT_EQ(a <=> std::nan(""), std::partial_ordering::unordered) << a;
    }
    EXPECT_NE(Number(std::nan("")), Number(std::nan("")));
    const std::pair<Number, double> equal[] = {{0, -0.0},
                                               {integer("-9223372036854775808"), -0x1p63},
                                               {integer("9223372036854775808"), 0x1p63},
                                               {0.5, 0.5}};
    for (const auto& [a, b] : equal) {
        EXPECT_EQ(a, b);
        EXPECT_EQ(a.hash(), Number(b).hash()) << a;
    }
}

TEST(NumberText, IsTheGeneralFormatOfSixDigits) {
    EXPECT_EQ(number_text(integer("123456500000000000000")), "1.23456e+20");
    EXPECT_EQ(number_text(std::copysign(std::nan(""), -1.0)), "nan");
    EXPECT_THROW(number_text(integer(too_large)), OverflowError);
}

}  // namespace
}  // namespace velmora::config
