#include "velmora/config/coercers.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "velmora/config/display.hpp"
#include "velmora/utils/errors.hpp"

namespace velmora::config {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// The display form of what the coercer returns, or the kind and message of the error that it
// throws.
std::string outcome(KeyKind kind, const ConfigValue& value) {
    const auto& [own_kind, coerce] = _COERCERS.at(static_cast<std::size_t>(kind));
    EXPECT_EQ(own_kind, kind);
    try {
        return display(coerce(value));
    } catch (const ValueError& error) {
        return std::string("ValueError: ") + error.what();
    } catch (const TypeError& error) {
        return std::string("TypeError: ") + error.what();
    } catch (const OverflowError& error) {
        return std::string("OverflowError: ") + error.what();
    }
}

struct Case {
    ConfigValue value;
    std::string outcome;
};

void expect_outcomes(KeyKind kind, const std::vector<Case>& cases) {
    for (const Case& each : cases)
        EXPECT_EQ(outcome(kind, each.value), each.outcome) << kind << " " << _shown(each.value);
}

Integer power_of_ten(std::size_t exponent) {
    return Integer::parse("1" + std::string(exponent, '0')).value();
}

// 2^1024 - 2^970, the least integer that is nearest to no finite double.
const std::string border_text =
    "1797693134862315807937289714053034150799341327100378269361737789804449682927647509466490"
    "1797758720709633028641669288791094655554785194040263065748867150582068190890200070838367"
    "6273854845817711531764475730270069855571366959622842914819860834936475292719074168444365"
    "510704342711559699508093042880177904174497792";
const Integer border = Integer::parse(border_text).value();
const Integer border_less_one = Integer::parse(border_text.substr(0, 308) + "1").value();
const std::string too_large =
    "OverflowError: expected an integer below 2^1024 - 2^970 in magnitude, got ";

TEST(Coercers, Bool) {
    expect_outcomes(
        KeyKind::bool_,
        {{true, "True"},
         {1, "True"},
         {-3, "True"},
         {nan, "True"},
         {infinity, "True"},
         {power_of_ten(30), "True"},
         {0, "False"},
         {-0.0, "False"},
         {" Off ", "False"},
         {"2", "ValueError: '2' is not one of true/false, yes/no, on/off, y/n, t/f, 1/0"},
         {{}, "ValueError: cannot interpret None as a boolean"},
         {List{}, "ValueError: cannot interpret [] as a boolean"},
         {List{std::string(100, 'a')},
          "ValueError: cannot interpret ['" + std::string(100, 'a') + "'] as a boolean"}});
}

TEST(Coercers, Int) {
    expect_outcomes(KeyKind::int_,
                    {{true, "ValueError: expected an integer, got a boolean"},
                     {infinity, "ValueError: inf is not a finite number"},
                     {-nan, "ValueError: nan is not a finite number"},
                     {2.9, "2"},
                     {-2.9, "-2"},
                     {-0.5, "0"},
                     {1e20, "100000000000000000000"},
                     {power_of_ten(300), "1" + std::string(300, '0')},
                     {power_of_ten(309), too_large + "1" + std::string(76, '0') + "..."},
                     {border_less_one, border_less_one.text()},
                     {border, too_large + border_text.substr(0, 77) + "..."},
                     {"-" + border_text, too_large + "'-" + border_text.substr(0, 75) + "..."},
                     {std::string(10'000'000, '9'), too_large + "'" + std::string(76, '9') + "..."},
                     {"-" + std::string(10'000'000, '0') + "1", "-1"},
                     {" 42 ", "42"},
                     {"\u00a0+5\u2028", "5"},
                     {"1_000", "1000"},
                     {"042", "42"},
                     {"-0", "0"},
                     {{}, "TypeError: expected an integer, got None"},
                     {List{1}, "TypeError: expected an integer, got [1]"}});
    for (const char* text : {"4.0", "4e2", "0x10", "1 000", "_42", "42_", "4__2", "+_4", "", "-",
                             "+-1", "\xd9\xa1", "1e999", "nan"}) {
        EXPECT_EQ(outcome(KeyKind::int_, text),
                  "ValueError: expected a decimal integer, got " + _shown(text));
    }
}

TEST(Coercers, Float) {
    expect_outcomes(
        KeyKind::float_,
        {{false, "ValueError: expected a number, got a boolean"},
         {-infinity, "ValueError: -inf is not a finite number"},
         {5, "5.0"},
         {(1LL << 53) + 1, "9007199254740992.0"},
         {-0.0, "-0.0"},
         {power_of_ten(308), "1e+308"},
         {border_less_one, "1.7976931348623157e+308"},
         {border, too_large + border_text.substr(0, 77) + "..."},
         {power_of_ten(309),
          "OverflowError: expected an integer below 2^1024 - 2^970 in magnitude, got 1" +
              std::string(76, '0') + "..."},
         {"2.9", "2.9"},
         {".5", "0.5"},
         {" -5.\t", "-5.0"},
         {"+1_000.2_5e1_0", "10002500000000.0"},
         {"1E-2", "0.01"},
         {"1e-999", "0.0"},
         {"-1e-999999999999", "-0.0"},
         {"0e999999999999", "0.0"},
         {"0." + std::string(400, '0') + "1e401", "1.0"},
         {"0." + std::string(1'000'000, '0') + "1e99999999999999999999",
          "ValueError: '0." + std::string(74, '0') + "... is not a finite number"},
         {std::string(400, '9') + "e-399", "10.0"},
         {"1e999", "ValueError: '1e999' is not a finite number"},
         {"1e999999999999", "ValueError: '1e999999999999' is not a finite number"},
         {std::string(100, '9') + "e999",
          "ValueError: '" + std::string(76, '9') + "... is not a finite number"},
         {"10e9223372036854775807",
          "ValueError: \'10e9223372036854775807\' is not a finite number"},
         {"123e9223372036854775806",
          "ValueError: \'123e9223372036854775806\' is not a finite number"},
         {"0.01e-9223372036854775807", "0.0"},
         {"0.01e-9223372036854775808", "0.0"},
         {" -Infinity", "ValueError: ' -Infinity' is not a finite number"},
         {"+iNF", "ValueError: '+iNF' is not a finite number"},
         {"-nan", "ValueError: '-nan' is not a finite number"},
         {{}, "TypeError: expected a number, got None"},
         {Mapping{}, "TypeError: expected a number, got {}"}});
    for (const char* text : {"", ".", "+", "1,5", "0x10", "1e", "1e+", "e5", "1_.5", "1._5", "1e_5",
                             "1 2", "nan(1)", "infinit", "in_f", "--1", "+-1", "1.2.3", "1f"}) {
        EXPECT_EQ(outcome(KeyKind::float_, text),
                  "ValueError: expected a decimal number, got " + _shown(text));
    }
}

TEST(Coercers, Text) {
    expect_outcomes(KeyKind::str, {{{}, "ValueError: no value"},
                                   {"", "''"},
                                   {" a ", "' a '"},
                                   {false, "'False'"},
                                   {10, "'10'"},
                                   {1.0, "'1.0'"},
                                   {List{"a"}, "\"['a']\""}});
}

TEST(Coercers, List) {
    expect_outcomes(KeyKind::list,
                    {{List{"a", " ", 1, nullptr, true, 1.5, List{"x"}},
                      R"(['a', ' ', '1', 'None', 'True', '1.5', "['x']"])"},
                     {List{}, "[]"},
                     {"a, b,,", "['a', 'b']"},
                     {"", "[]"},
                     {5, "ValueError: cannot interpret 5 as a list"},
                     {{}, "ValueError: cannot interpret None as a list"},
                     {Mapping{{"a", 1}}, "ValueError: cannot interpret {'a': 1} as a list"}});
    const ConfigValue given = List{"a"};
    EXPECT_FALSE(_coerce_list(given).get<List>().same_as(given.get<List>())) << "a new list";
}

}  // namespace
}  // namespace velmora::config
