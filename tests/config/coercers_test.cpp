#include "velmora/config/coercers.hpp"

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

using test::border, test::inf, test::nan, test::repeated;

std::string coerced(KeyKind kind, const ConfigValue& value) {
    return test::outcome([&] { return coercer_of(kind)(value); });
}

TEST(Coercers, TakeOrRefuse) {
    constexpr KeyKind b = KeyKind::bool_, i = KeyKind::int_, f = KeyKind::float_, s = KeyKind::str, l = KeyKind::list;
    const std::string below = border.substr(0, 308) + "1", many(10'000'000, '0');
    const std::string large = "OverflowError: expected an integer below 2^1024 - 2^970 in magnitude, got ";
    const std::tuple<KeyKind, std::vector<ConfigValue>, std::string> cases[] = {
        {b, {true, -3, nan}, "True"},
        {b, {0, -0.0, " Off "}, "False"},
        {b, {nullptr}, "ValueError: cannot interpret None as a boolean"},
        {b, {List{border}}, "ValueError: cannot interpret ['" + border + "'] as a boolean"},
        {i, {2, 2.9, "2"}, "2"},
        {i, {-2.9}, "-2"},
        {i, {1e20}, "100000000000000000000"},
        {i, {below, Integer::parse(below).value()}, below},
        {i, {Integer::parse(border).value()}, large + border.substr(0, 77) + "..."},
        {i, {"-" + border}, large + "'-" + border.substr(0, 75) + "..."},
        {i, {"9" + many}, large + "'9" + many.substr(0, 75) + "..."},
        {i, {"-" + many + "1"}, "-1"},
        {i, {"\u00a0+1_0_00\u2028", repeated("0", 66) + "_1000"}, "1000"},
        {i, {inf}, "ValueError: inf is not a finite number"},
        {i, {true}, "ValueError: expected an integer, got a boolean"},
        {i, {nullptr}, "TypeError: expected an integer, got None"},
        {f, {(1LL << 53) + 1}, "9007199254740992.0"},
        {f, {Integer::parse(below).value()}, "1.7976931348623157e+308"},
        {f, {Integer::parse(border).value()}, large + border.substr(0, 77) + "..."},
        {f, {"+1_000.2_5e1_0"}, "10002500000000.0"},
        {f, {".5", "5E-1"}, "0.5"},
        {f, {" -5.\t"}, "-5.0"},
        {f, {"-1e-999999999999"}, "-0.0"},
        {f, {"0e999999999999", "0.01e-9223372036854775808", "0." + many + "1e+9", "." + many + "1"}, "0.0"},
        {f, {"0." + many + "1e10000001"}, "1.0"},
        {f, {"1" + many + "e-9999999"}, "10.0"},
        {f, {false}, "ValueError: expected a number, got a boolean"},
        {f, {Mapping{}}, "TypeError: expected a number, got {}"},
        {s, {nullptr}, "ValueError: no value"},
        {s, {" a "}, "' a '"},
        {s, {List{false, 1.0}}, "'[False, 1.0]'"},
        {l, {List{"a", " ", nullptr, List{"x"}}}, R"(['a', ' ', 'None', "['x']"])"},
        {l, {"a, b,,"}, "['a', 'b']"},
        {l, {Mapping{{"a", 1}}}, "ValueError: cannot interpret {'a': 1} as a list"},
    };
    for (const auto& [kind, values, expected] : cases) {
        for (const ConfigValue& value : values) EXPECT_EQ(coerced(kind, value), expected) << kind << _shown(value);
    }
    for (const ConfigValue& value : List(-inf, "1e999", "1E+999", "12e9223372036854775807", "-nan", " -Infinity",
                                         "+iNF", std::string(400, '9'), "." + many + "1e99999999999999999999"))
        EXPECT_EQ(coerced(f, value), "ValueError: " + _shown(value) + " is not a finite number");
    for (const char* text :
         {"4.0", "4e2", "0x10", "1 000", "_42", "42_", "4__2", "+_4", "", "-", "+-1", "\xd9\xa1", "nan"})
        EXPECT_EQ(coerced(i, text), "ValueError: expected a decimal integer, got " + _shown(text));
    for (const char* text : {"", ".", "+", "1,5", "0x10", "1e", "1e+", "e5", "1_.5", "1._5", "1e_5", "nan(1)",
                             "infinit", "in_f", "--1", "+-1", "1.2.3", "1f"})
        EXPECT_EQ(coerced(f, text), "ValueError: expected a decimal number, got " + _shown(text));
    const List given{"a"};
    EXPECT_FALSE(_coerce_list(given).get<List>().same_as(given));
}

}  // namespace
}  // namespace velmora::config
