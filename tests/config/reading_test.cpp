// Checking the values of keys and reading sections.
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "support.hpp"
#include "velmora/config/spec.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::config {
namespace {

using Texts = std::vector<std::string>;
using test::outcome;

Key key_of(KeyKind kind, SettingOptions options = {}) {
    return {
        "s", "k", kind, Restart::none, std::make_shared<const Setting>("", std::move(options)), RecordType("S", {})};
}

const Key flag = key_of(KeyKind::bool_);
const Key count = key_of(KeyKind::int_, {.bounds = POSITIVE});
const Key ratio = key_of(KeyKind::float_, {.bounds = PROBABILITY});
const Key level = key_of(KeyKind::str, {.choices = {"info", "debug", "Zero", "info"}});
const Key nul = key_of(KeyKind::str, {.choices = {std::string("a\0b", 3)}});
const Key both = key_of(KeyKind::int_, {.bounds = POSITIVE, .choices = {"1"}});
const Key list = key_of(KeyKind::list);

TEST(KeyCoerce, NamesTheKeyAndShowsTheValue) {
    const std::string x(100, 'x'), cut = x.substr(25) + "...";
    const std::string cannot = "ConfigKeyError: Cannot set s.k=";
    const std::string invalid = "ConfigKeyError: Invalid value for s.k: ";
    const std::string choices = ". Must be one of: Zero, debug, info, info";
    const std::tuple<const Key&, ConfigValue, std::string> cases[] = {
        {flag, " yes", "True"},
        {flag, List{x}, cannot + "['" + cut + ": expected bool (cannot interpret ['" + x + "'] as a boolean)"},
        {count, "1", "1"},
        {count, 0, invalid + "0. It must be above 0"},
        {count, true, cannot + "True: expected int (expected an integer, got a boolean)"},
        {ratio, 1, "1.0"},
        {ratio, 2, invalid + "2.0. It must be at least 0 and at most 1"},
        {ratio, std::numeric_limits<double>::infinity(), cannot + "inf: expected float (inf is not a finite number)"},
        {level, "debug", "'debug'"},
        {level, nullptr, cannot + "None: expected str (no value)"},
        {level, "Info", invalid + "'Info'" + choices},
        {level, 5, invalid + "'5'" + choices},
        {level, x, invalid + "'" + x + "'" + choices},
        {nul, "a", invalid + "'a'. Must be one of: " + std::string("a\0b", 3)},
        {both, -1, invalid + "-1. Must be one of: 1"},
        {list, "a,b", "['a', 'b']"},
        {list, 5, cannot + "5: expected list (cannot interpret 5 as a list)"},
    };
    for (const auto& [key, value, expected] : cases)
        EXPECT_EQ(outcome([&, &k = key, &v = value] { return k.coerce(v); }), expected);
}

TEST(KeyCoerce, CarriesTheCoercersErrorAsItsCause) {
    const auto cause_of = [](const Key& key, const ConfigValue& value) -> std::string {
        try {
            return display(key.coerce(value));
        } catch (const ConfigKeyError& error) {
            if (error.cause() == nullptr) return "none";
            return outcome([&]() -> ConfigValue { std::rethrow_exception(error.cause()); });
        }
    };
    EXPECT_EQ(cause_of(count, "x"), "ValueError: expected a decimal integer, got 'x'");
    EXPECT_EQ(cause_of(count, nullptr), "TypeError: expected an integer, got None");
    EXPECT_EQ(cause_of(count, std::string(400, '9')).substr(0, 24), "OverflowError: expected ");
    EXPECT_EQ(cause_of(count, 0), "none");
    EXPECT_EQ(cause_of(level, "b"), "none");
}

TEST(KeyCoerce, PassesOtherErrorsOn) {
    const Integer huge = Integer::parse("1" + std::string(400, '0')).value();
    EXPECT_EQ(outcome([] { return key_of(static_cast<KeyKind>(9)).coerce(1); }),
              "another error: a key of a kind that has no coercer");
    EXPECT_EQ(outcome([] { return key_of(KeyKind::str, {.bounds = POSITIVE}).coerce("a"); }),
              "TypeError: a bound cannot be compared with 'a', which is no number");
    EXPECT_EQ(outcome([&] { return key_of(KeyKind::int_, {.bounds = Bound(0, huge)}).coerce(-1); }),
              "OverflowError: integer too large for a floating-point number");
}

class SectionRead : public testing::Test {
protected:
    SectionRead() {
        utils::set_sink([this](const utils::LogRecord& record) {
            records.push_back(record);
            messages.push_back(record.message());
        });
    }
    ~SectionRead() override { utils::set_sink({}); }

    std::vector<utils::LogRecord> records;
    Texts messages;
    const RecordType type{"S",
                          {{"level", str_type, setting("info", "", {.choices = {"info", "debug"}})},
                           {"count", int_type, setting(3, "", {.bounds = POSITIVE})},
                           {"tags", list_of(str_type), setting(List{"a"}, "")},
                           {"ratio", float_type, setting(0.5, "")}}};
    const Section section{"s", type, std::make_shared<const SectionSetting>("", Restart::none),
                          _keys_of("s", type, SectionSetting("", Restart::none))};
};

TEST_F(SectionRead, CostsAWarningAndTheDefaultForABadValue) {
    const std::string defaults = "S(level='info', count=3, tags=['a'], ratio=0.5)";
    const std::string no_mapping = "Ignoring the s section of the config file: it is not a mapping";
    const std::string bad_level = "Ignoring s.level in the config file: ";
    const std::string bad_count = "Ignoring s.count in the config file: Invalid value for s.count: ";
    const std::tuple<ConfigValue, std::string, Texts> cases[] = {
        {nullptr, defaults, {}},
        {Mapping{}, defaults, {}},
        {(List{1, 2}), defaults, {no_mapping}},
        {false, defaults, {no_mapping}},
        {Mapping{{"Level", "loud"}, {1, 2}, {List{"level"}, 1}, {"count ", 0}}, defaults, {}},
        {Mapping{{"tags", "x,y"}, {"count", "7"}, {"level", "debug"}, {"ratio", 1}},
         "S(level='debug', count=7, tags=['x', 'y'], ratio=1.0)",
         {}},
        {Mapping{{"ratio", "x"}, {"tags", nullptr}, {"count", 0}, {"level", nullptr}, {"o", 1}},
         defaults,
         {bad_level + "Cannot set s.level=None: expected str (no value); keeping the default 'info'",
          bad_count + "0. It must be above 0; keeping the default 3",
          "Ignoring s.tags in the config file: Cannot set s.tags=None: expected list (cannot "
          "interpret None as a list); keeping the default ['a']",
          "Ignoring s.ratio in the config file: Cannot set s.ratio='x': expected float (expected a "
          "decimal number, got 'x'); keeping the default 0.5"}},
    };
    for (const auto& [data, record, warnings] : cases) {
        records.clear();
        messages.clear();
        EXPECT_EQ(display(section.read(data)), record);
        EXPECT_EQ(messages, warnings);
    }
    EXPECT_EQ(records[0].logger(), "velmora.config.spec");
    EXPECT_EQ(records[0].level(), utils::Level::warning);
    EXPECT_EQ(records[0].message_template(), "Ignoring %s in the config file: %s; keeping the default %r");
    EXPECT_EQ(records[0].arguments().size(), 3U);
    EXPECT_EQ(outcome([&] { return section.read(nullptr).get<int>("tags"), "read"; }).substr(0, 29),
              "TypeError: s.tags holds ['a']")
        << "called by the key's label";
}

TEST_F(SectionRead, FindsTheFieldsOfItsKeysInAnyOrder) {
    const std::vector<Key>& keys = section.keys();
    const auto about = std::make_shared<const SectionSetting>("", Restart::none);
    const ConfigValue data = Mapping{{"level", "debug"}, {"count", 5}, {"ratio", 0}, {"k", true}};
    EXPECT_EQ(display(Section("s", type, about, {keys[3], keys[1]}).read(data)),
              "S(level='info', count=5, tags=['a'], ratio=0.0)");
    EXPECT_EQ(outcome([&] {
                  return Section("s", type, about, {keys[3], flag}).read(data);
              }),
              "TypeError: S has no field 'k'");
}

TEST_F(SectionRead, SharesNothingWithDefaultsDataOrWarnings) {
    const ConfigValue data = Mapping{{"tags", List{"x"}}};
    section.read(data).get<List>("tags").push_back("mine");
    section.read(nullptr).get<List>("tags").push_back("mine");
    EXPECT_EQ(display(data), "{'tags': ['x']}");
    EXPECT_EQ(display(section.read(nullptr)["tags"].if_value()->get<List>()), "['a']");

    List shared{1};
    utils::logger("velmora.config.spec").warning("%r", ConfigValue(shared));
    shared.push_back(2);
    EXPECT_EQ(records.back().message(), "[1]");
}

TEST_F(SectionRead, PassesOtherErrorsOnAndOutlivesItsSinks) {
    const RecordType broken(
        "B", {{"first", int_type, setting(1, "")}, {"second", str_type, setting("", "", {.bounds = POSITIVE})}});
    const Section faulty = sections_of(
        RecordType("C", {{"b", broken, velmora::config::section(broken, "", {.restart = Restart::none})}}))[0];
    EXPECT_THROW((void)faulty.read(Mapping{{"second", "a"}, {"first", "x"}}), TypeError);
    EXPECT_EQ(messages.size(), 1U) << "earlier warnings stay";

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
