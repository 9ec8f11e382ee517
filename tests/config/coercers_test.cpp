#include "velmora/config/coercers.hpp"

#include <limits>

#include <gtest/gtest.h>

#include "support.hpp"

namespace velmora::config {
namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Integer integer(const std::string& text) {
    return Integer::parse(text).value();
}

std::string zeros(std::size_t count) {
    return std::string(count, '0');
}

// 2^1024 - 2^970, the least integer that is nearest to no finite double.
const std::string border =
    "1797693134862315807937289714053034150799341327100378269361737789804449682927647509466490"
    "1797758720709633028641669288791094655554785194040263065748867150582068190890200070838367"
    "6273854845817711531764475730270069855571366959622842914819860834936475292719074168444365"
    "510704342711559699508093042880177904174497792";
const std::string below_border = border.substr(0, 308) + "1";
const std::string large = "OverflowError: expected an integer below 2^1024 - 2^970 in magnitude, got ";
const std::string finite = " is not a finite number";
constexpr KeyKind b = KeyKind::bool_, i = KeyKind::int_, f = KeyKind::float_, l = KeyKind::list;

TEST(Coercers, TakeOrRefuse) {
    const struct {
        KeyKind kind;
        ConfigValue value;
        std::string outcome;
    } cases[] = {
        {b, true, "True"},
        {b, -3, "True"},
        {b, nan, "True"},
        {b, 0, "False"},
        {b, -0.0, "False"},
        {b, " Off ", "False"},
        {b, {}, "ValueError: cannot interpret None as a boolean"},
        {b, List{border}, "ValueError: cannot interpret ['" + border + "'] as a boolean"},
        {i, true, "ValueError: expected an integer, got a boolean"},
        {i, inf, "ValueError: inf" + finite},
        {i, 2.9, "2"},
        {i, -2.9, "-2"},
        {i, 1e20, "100000000000000000000"},
        {i, integer(below_border), below_border},
        {i, integer(border), large + border.substr(0, 77) + "..."},
        {i, "-" + border, large + "'-" + border.substr(0, 75) + "..."},
        {i, std::string(10'000'000, '9'), large + "'" + std::string(76, '9') + "..."},
        {i, "-" + zeros(10'000'000) + "1", "-1"},
        {i, "\u00a0+1_0_00\u2028", "1000"},
        {i, "042", "42"},
        {i, {}, "TypeError: expected an integer, got None"},
        {f, false, "ValueError: expected a number, got a boolean"},
        {f, -inf, "ValueError: -inf" + finite},
        {f, (1LL << 53) + 1, "9007199254740992.0"},
        {f, integer(below_border), "1.7976931348623157e+308"},
        {f, integer(border), large + border.substr(0, 77) + "..."},
        {f, "+1_000.2_5e1_0", "10002500000000.0"},
        {f, " -5.\t", "-5.0"},
        {f, ".5", "0.5"},
        {f, "1E-2", "0.01"},
        {f, "-1e-999999999999", "-0.0"},
        {f, "0e999999999999", "0.0"},
        {f, "0." + zeros(400) + "1e401", "1.0"},
        {f, std::string(400, '9') + "e-399", "10.0"},
        {f, "0.01e-9223372036854775808", "0.0"},
        {f, "1e999", "ValueError: '1e999'" + finite},
        {f, "1E+999", "ValueError: '1E+999'" + finite},
        {f, "12e9223372036854775807", "ValueError: '12e9223372036854775807'" + finite},
        {f, "." + zeros(99) + "1e99999999999999999999", "ValueError: '." + zeros(75) + "..." + finite},
        {f, " -Infinity", "ValueError: ' -Infinity'" + finite},
        {f, "+iNF", "ValueError: '+iNF'" + finite},
        {f, "-nan", "ValueError: '-nan'" + finite},
        {f, Mapping{}, "TypeError: expected a number, got {}"},
        {KeyKind::str, {}, "ValueError: no value"},
        {KeyKind::str, " a ", "' a '"},
        {KeyKind::str, List{false, 1.0}, "'[False, 1.0]'"},
        {l, List{"a", " ", nullptr, List{"x"}}, R"(['a', ' ', 'None', "['x']"])"},
        {l, "a, b,,", "['a', 'b']"},
        {l, Mapping{{"a", 1}}, "ValueError: cannot interpret {'a': 1} as a list"},
    };
    for (const auto& [kind, value, expected] : cases) {
        EXPECT_EQ(test::outcome([&, k = kind, &v = value] { return coercer_of(k)(v); }), expected)
            << kind << _shown(value);
    }
}

TEST(Coercers, RefuseTextsThatAreNoDecimalNumbers) {
    const auto refuses = [](KeyKind kind, const char* wanted, const std::string& text) {
        EXPECT_EQ(test::outcome([&] { return coercer_of(kind)(text); }),
                  std::string("ValueError: expected a decimal ") + wanted + ", got " + _shown(text));
    };
    for (const char* text :
         {"4.0", "4e2", "0x10", "1 000", "_42", "42_", "4__2", "+_4", "", "-", "+-1", "\xd9\xa1", "nan", "/", ":"})
        refuses(i, "integer", text);
    for (const char* text : {"", ".", "+", "1,5", "0x10", "1e", "1e+", "e5", "1_.5", "1._5", "1e_5", "nan(1)",
                             "infinit", "in_f", "--1", "+-1", "1.2.3", "1f"})
        refuses(f, "number", text);
}

TEST(Coercers, MakeNewLists) {
    const List given{"a"};
    EXPECT_FALSE(_coerce_list(given).get<List>().same_as(given));
}

}  // namespace
}  // namespace velmora::config
