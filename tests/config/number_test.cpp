#include "velmora/config/number.hpp"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

using test::nan;

static_assert(!BuiltinInteger<bool> && !BuiltinInteger<char> && !BuiltinInteger<char32_t>);

Integer integer(const std::string& text) {
    return Integer::parse(text).value();
}

TEST(Integer, ParsesSignAndDigitsAndGivesBackWhatFits) {
    for (const char* text : {"", "+", "-", "1.0", " 1", "1_0", "--1", "\xd9\xa1", "/", ":"})
        EXPECT_FALSE(Integer::parse(text)) << text;
    const std::pair<const char*, const char*> cases[] = {
        {"-0", "0"}, {"+007", "7"}, {"-000100000000000000000000", "-100000000000000000000"}};
    for (const auto& [text, shown] : cases) EXPECT_EQ(integer(text).text(), shown);
    for (std::size_t size = 1; size < 600; size += 1 + size / 20) {
        std::string digits(size, '7');
        EXPECT_EQ(integer(digits).text(), digits);
        EXPECT_EQ(integer("-" + std::string(20, '0') + digits), integer("-" + digits));
        digits[size * 2 / 3] = ':';
        EXPECT_FALSE(Integer::parse(digits)) << digits;
    }
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    for (const Integer& each : {Integer(most), integer("18446744073709551615")}) {
        EXPECT_EQ(each.as<std::uint64_t>(), most);
        EXPECT_EQ(each.as<std::int64_t>(), std::nullopt);
    }
    for (const char* text : {"-1", "18446744073709551616", "-9223372036854775809"})
        EXPECT_EQ(integer(text).as<std::uint64_t>(), std::nullopt);
    EXPECT_EQ(Integer(-129).as<signed char>(), std::nullopt);
    EXPECT_EQ(Integer(-128).as<signed char>(), -128);
}

TEST(Number, OrdersIntegersAndDoublesExactly) {
    std::istringstream words("-inf -" + test::border + " -1.7976931348623157e+308 -100000000000000000001 -1e20 " +
                             "-9223372036854775809 -0x1p63 -9007199254740994.0 -9007199254740993 -1 -5e-324 0 0.5 1 "
                             "1.5 2 0x1p53 9007199254740993 9223372036854775807 0x1p63 9223372036854775809 "
                             "18446744073709551615 0x1p64 1e20 100000000000000000001 1.7976931348623157e+308 " +
                             test::border + " inf");
    std::vector<Number> ascending;
    for (std::string word; words >> word;) {
        const auto whole = Integer::parse(word);
        ascending.push_back(whole ? Number(*whole) : std::strtod(word.c_str(), nullptr));
    }
    for (const Number& a : ascending) {
        for (const Number& b : ascending) EXPECT_EQ(a <=> b, &a <=> &b) << a << " against " << b;
        EXPECT_EQ(a <=> nan, std::partial_ordering::unordered) << a;
    }
    EXPECT_NE(Number(nan), Number(nan));
    const std::pair<Number, double> equal[] = {{0, -0.0},
                                               {integer("-9223372036854775808"), -0x1p63},
                                               {integer("9223372036854775808"), 0x1p63},
                                               {0.5, 0.5},
                                               {test::inf, test::inf}};
    for (const auto& [a, b] : equal) {
        EXPECT_EQ(a, b);
        EXPECT_EQ(a.hash(), Number(b).hash()) << a;
    }
}

TEST(ParseDecimal, ReadsFewDigitsAsItReadsMany) {
    std::mt19937 random(20261123);
    for (int round = 0; round < 20'000; ++round) {
        std::string text = random() % 2 == 0 ? "-" : "";
        for (auto size = 1 + random() % 18; size > 0; --size) text += static_cast<char>('0' + random() % 10);
        if (round % 8 != 0) text.insert(text.size() - random() % 18 % text.size(), ".");
        ASSERT_EQ(parse_decimal(text), parse_decimal(text + "e0")) << text;
        ASSERT_FALSE(parse_decimal(text + "..")) << text;
    }
}

TEST(NumberText, IsTheGeneralFormatOfSixDigits) {
    EXPECT_EQ(number_text(integer("123456500000000000000")) + number_text(-nan), "1.23456e+20nan");
    EXPECT_THROW(number_text(integer(test::border)), OverflowError);
}

}  // namespace
}  // namespace velmora::config
