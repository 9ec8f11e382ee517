// Checking the values of keys and reading sections.
#include <gtest/gtest.h>

#include "support.hpp"
#include "velmora/config/coercers.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::config {
namespace {

using test::huge, test::outcome;

Key key_of(KeyKind kind, SettingOptions options = {}) {
    const auto about = std::make_shared<const Setting>("", std::move(options));
    return {"s", "k", kind, Restart::none, about, RecordType("S", {})};
}

TEST(KeyCoerce, NamesTheKeyAndShowsTheValue) {
    const Key flag = key_of(KeyKind::bool_), count = key_of(KeyKind::int_, {.bounds = POSITIVE});
    const Key ratio = key_of(KeyKind::float_, {.bounds = PROBABILITY});
    const Key level = key_of(KeyKind::str, {.choices = {"info", "debug", "7", "info", "Zero"}});
    const std::string nul("a\0b", 3), x(100, 'x'), choices = ". Must be one of: 7, Zero, debug, info, info";
    const std::string cannot = "ConfigKeyError: Cannot set s.k=", invalid = "ConfigKeyError: Invalid value for s.k: ";
    const std::string shown = _shown(huge), border = "2^1024 - 2^970 in magnitude";
    const std::tuple<Key, ConfigValue, std::string> cases[] = {
        {flag, " yes", "True"},
        {flag, List{x},
         cannot + "['" + x.substr(25) + "...: expected bool (cannot interpret ['" + x +
             "'] as a boolean) <- ValueError"},
        {count, "1", "1"},
        {count, 0, invalid + "0. It must be above 0"},
        {count, nullptr, cannot + "None: expected int (expected an integer, got None) <- TypeError"},
        {count, huge,
         cannot + shown + ": expected int (expected an integer below " + border + ", got " + shown +
             ") <- OverflowError"},
        {ratio, 1, "1.0"},
        {ratio, 2, invalid + "2.0. It must be at least 0 and at most 1"},
        {level, 7, "'7'"},
        {level, 5, invalid + "'5'" + choices},
        {level, x, invalid + "'" + x + "'" + choices},
        {key_of(KeyKind::str, {.choices = {nul}}), nul + "c", invalid + "'a\\x00bc'. Must be one of: " + nul},
        {key_of(KeyKind::int_, {.bounds = POSITIVE, .choices = {"1"}}), -1, invalid + "-1. Must be one of: 1"},
        {key_of(KeyKind::list), "a,b", "['a', 'b']"},
        {key_of(static_cast<KeyKind>(9)), 1, "another error: a key of a kind that has no coercer"},
        {key_of(KeyKind::str, {.bounds = POSITIVE}), "a",
         "TypeError: a bound cannot be compared with 'a', which is no number"},
        {key_of(KeyKind::int_, {.bounds = Bound(0, huge)}), -1,
         "OverflowError: integer too large for a floating-point number"},
    };
    for (const auto& [key, value, expected] : cases)
        EXPECT_EQ(outcome([&, &k = key, &v = value] { return k.coerce(v); }), expected);
}

TEST(KeyCoerce, AgreesWithTheCoercerOfItsKind) {
    const Integer above = Integer::parse("9223372036854775808").value();
    const ConfigValue values[] = {nullptr,   true, 7,     above,     huge,    0.5,      test::inf,
                                  test::nan, "7",  " x ", List{"a"}, List{1}, Mapping{}};
    for (const auto& [kind, coerce] : _COERCERS) {
        for (const ConfigValue& value : values) {
            const std::string own = outcome([&, &as_kind = coerce] { return as_kind(value); });
            const std::string text = outcome([&, &its_kind = kind] { return key_of(its_kind).coerce(value); });
            const bool refused = text.starts_with("ConfigKeyError: ") && own.find("Error: ") != std::string::npos;
            EXPECT_TRUE(text == own || refused) << kind << ": " << own << ", but " << text;
        }
    }
}

class SectionRead : public testing::Test {
protected:
    SectionRead() {
        utils::set_sink([this](const utils::LogRecord& record) { records.push_back(record); });
    }
    ~SectionRead() override { utils::set_sink({}); }

    // The record and, each on a line of its own, the warnings.
    std::string read(const Section& read_section, const ConfigValue& data) {
        records.clear();
        std::string text = outcome([&] { return read_section.read(data); });
        for (const auto& each : records) text += "\n" + each.message();
        return text;
    }

    std::vector<utils::LogRecord> records;
    const RecordType type{"S",
                          {{"level", str_type, setting("info", "", {.choices = {"info", "debug"}})},
                           {"count", int_type, setting(3, "", {.bounds = POSITIVE})},
                           {"tags", list_of(str_type), setting(List{"a"}, "")},
                           {"ratio", float_type, setting(0.5, "")}}};
    const std::shared_ptr<const SectionSetting> about = std::make_shared<SectionSetting>("", Restart::none);
    const Section section{"s", type, about, _keys_of("s", type, *about)};
};

TEST_F(SectionRead, CostsAWarningAndTheDefaultForABadValue) {
    const std::string defaults = "S(level='info', count=3, tags=['a'], ratio=0.5)", keeping = "; keeping the default ";
    const std::string no_mapping = "\nIgnoring the s section of the config file: it is not a mapping";
    const std::string ignoring = "\nIgnoring s.", cannot = " in the config file: Cannot set s.";
    const std::pair<ConfigValue, std::string> cases[] = {
        {nullptr, defaults},
        {Mapping{}, defaults},
        {ConfigValue(List{1, 2}), defaults + no_mapping},
        {false, defaults + no_mapping},
        {Mapping{{"Level", "loud"}, {1, 2}, {List{"level"}, 1}, {"count ", 0}}, defaults},
        {Mapping{{"tags", "x,y"}, {"count", "7"}, {"level", "debug"}, {"ratio", 1}},
         "S(level='debug', count=7, tags=['x', 'y'], ratio=1.0)"},
        {Mapping{{"ratio", "x"}, {"tags", nullptr}, {"count", 0}, {"level", nullptr}, {"o", 1}},
         defaults + ignoring + "level" + cannot + "level=None: expected str (no value)" + keeping + "'info'" +
             ignoring + "count in the config file: Invalid value for s.count: 0. It must be above 0" + keeping + "3" +
             ignoring + "tags" + cannot + "tags=None: expected list (cannot interpret None as a list)" + keeping +
             "['a']" + ignoring + "ratio" + cannot + "ratio='x': expected float (expected a decimal number, got 'x')" +
             keeping + "0.5"},
    };
    for (const auto& [data, expected] : cases) EXPECT_EQ(read(section, data), expected);
    EXPECT_EQ(records.at(0).logger(), "velmora.config.spec");
    EXPECT_EQ(records[0].level(), utils::Level::warning);
    EXPECT_EQ(records[0].message_template(), "Ignoring %s in the config file: %s; keeping the default %r");
    EXPECT_EQ(records[0].arguments().size(), 3U);
    Record record = section.kind().make();
    record = section.read(nullptr);
    EXPECT_EQ(outcome([&] { return record.get<bool>("tags"); }), "TypeError: s.tags holds ['a'], not a flag");
}

TEST_F(SectionRead, FindsTheFieldsOfItsKeysInAnyOrder) {
    const std::vector<Key>& keys = section.keys();
    const ConfigValue data = Mapping{{"level", "debug"}, {"count", 5}, {"ratio", 0}, {"k", true}};
    EXPECT_EQ(read(Section("s", type, about, {keys[3], keys[1]}), data),
              "S(level='info', count=5, tags=['a'], ratio=0.0)");
    EXPECT_EQ(read(Section("s", type, about, {key_of(KeyKind::bool_)}), data), "TypeError: S has no field 'k'");
}

TEST_F(SectionRead, SharesNothingWithDefaultsDataOrWarnings) {
    const ConfigValue data = Mapping{{"tags", List{"x"}}};
    section.read(data).get<List>("tags").push_back("mine");
    section.read(nullptr).get<List>("tags").push_back("mine");
    EXPECT_EQ(display(data) + display(section.read(nullptr).get<List>("tags")), "{'tags': ['x']}['a']");

    List shared{1};
    utils::logger("velmora.config.spec").warning("%r", ConfigValue(shared));
    shared.push_back(2);
    EXPECT_EQ(records.back().message(), "[1]");
}

TEST_F(SectionRead, PassesOtherErrorsOnAndOutlivesItsSinks) {
    const RecordType broken(
        "S", {{"first", int_type, setting(1, "")}, {"second", str_type, setting("", "", {.bounds = POSITIVE})}});
    EXPECT_EQ(
        read(Section("s", broken, about, _keys_of("s", broken, *about)), Mapping{{"second", "a"}, {"first", ""}}),
        "TypeError: a bound cannot be compared with 'a', which is no number\nIgnoring s.first in the config file: "
        "Cannot set s.first='': expected int (expected a decimal integer, got ''); keeping the default 1");

    testing::internal::CaptureStderr();
    ConfigValue data = Mapping{{"level", 0}, {"count", 0}, {"ratio", 1}};
    utils::set_sink([&](const utils::LogRecord&) {
        data = nullptr;
        throw std::runtime_error("the sink is full");
    });
    EXPECT_EQ(section.read(data).get<double>("ratio"), 1.0);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace velmora::config
