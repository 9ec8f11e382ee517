// Checking the values of keys and reading sections.
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "velmora/config/spec.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::config {
namespace {

Key key_of(KeyKind kind, SettingOptions options = {}) {
    return {"s",
            "k",
            kind,
            Restart::none,
            std::make_shared<const Setting>("", std::move(options)),
            RecordType("S", {})};
}

// The display form of the value that the key takes, or the message of its refusal.
std::string outcome(const Key& key, const ConfigValue& value) {
    try {
        return display(key.coerce(value));
    } catch (const ConfigKeyError& error) {
        return error.what();
    }
}

TEST(KeyCoerce, NamesTheKeyAndShowsTheValue) {
    const Key flag = key_of(KeyKind::bool_);
    const Key count = key_of(KeyKind::int_, {.bounds = POSITIVE});
    const Key ratio = key_of(KeyKind::float_, {.bounds = PROBABILITY});
    const Key level =
        key_of(KeyKind::str, {.choices = {"info", "debug", "warning", "Zero", "info"}});
    const Key both = key_of(KeyKind::int_, {.bounds = POSITIVE, .choices = {"1"}});
    const Key list = key_of(KeyKind::list);
    const std::string long_text(100, 'x');
    const std::string choices = ". Must be one of: Zero, debug, info, info, warning";
    const std::tuple<const Key&, ConfigValue, std::string> cases[] = {
        {flag, " yes", "True"},
        {flag, (List{1, 2}),
         "Cannot set s.k=[1, 2]: expected bool (cannot interpret [1, 2] as a boolean)"},
        {flag, List{long_text},
         "Cannot set s.k=['" + long_text.substr(25) + "...: expected bool (cannot interpret ['" +
             long_text + "'] as a boolean)"},
        {count, "1", "1"},
        {count, 1.9, "1"},
        {count, 0, "Invalid value for s.k: 0. It must be above 0"},
        {count, true, "Cannot set s.k=True: expected int (expected an integer, got a boolean)"},
        {count, nullptr, "Cannot set s.k=None: expected int (expected an integer, got None)"},
        {ratio, 1, "1.0"},
        {ratio, 2, "Invalid value for s.k: 2.0. It must be at least 0 and at most 1"},
        {ratio, std::numeric_limits<double>::infinity(),
         "Cannot set s.k=inf: expected float (inf is not a finite number)"},
        {level, "debug", "'debug'"},
        {level, nullptr, "Cannot set s.k=None: expected str (no value)"},
        {level, "loud", "Invalid value for s.k: 'loud'" + choices},
        {level, "Info", "Invalid value for s.k: 'Info'" + choices},
        {level, 5, "Invalid value for s.k: '5'" + choices},
        {level, long_text, "Invalid value for s.k: '" + long_text + "'" + choices},
        {both, 1, "Invalid value for s.k: 1. Must be one of: 1"},
        {both, -1, "Invalid value for s.k: -1. Must be one of: 1"},
        {list, "a,b", "['a', 'b']"},
        {list, 5, "Cannot set s.k=5: expected list (cannot interpret 5 as a list)"},
    };
    for (const auto& [key, value, expected] : cases) EXPECT_EQ(outcome(key, value), expected);
}

TEST(KeyCoerce, CarriesTheCoercersErrorAsItsCause) {
    const auto cause_of = [](const Key& key, const ConfigValue& value) {
        try {
            (void)key.coerce(value);
        } catch (const ConfigKeyError& error) {
            return error.cause();
        }
        return std::make_exception_ptr(std::runtime_error("not refused"));
    };
    const Key count = key_of(KeyKind::int_, {.bounds = POSITIVE});
    try {
        std::rethrow_exception(cause_of(count, "x"));
    } catch (const ValueError& error) {
        EXPECT_STREQ(error.what(), "expected a decimal integer, got 'x'");
    }
    EXPECT_THROW(std::rethrow_exception(cause_of(count, nullptr)), TypeError);
    EXPECT_THROW(std::rethrow_exception(cause_of(count, std::string(400, '9'))), OverflowError);
    EXPECT_EQ(cause_of(count, 0), nullptr);
    EXPECT_EQ(cause_of(key_of(KeyKind::str, {.choices = {"a"}}), "b"), nullptr);
}

TEST(KeyCoerce, PassesOtherErrorsOn) {
    EXPECT_THROW((void)key_of(static_cast<KeyKind>(9)).coerce(1), std::out_of_range);
    EXPECT_THROW((void)key_of(KeyKind::str, {.bounds = POSITIVE}).coerce("a"), TypeError);
    const Integer huge = Integer::parse("1" + std::string(400, '0')).value();
    EXPECT_THROW((void)key_of(KeyKind::int_, {.bounds = Bound(0, Integer(huge))}).coerce(-1),
                 OverflowError);
}

const RecordType section_type("S",
                              {
                                  {"level", str_type,
                                   setting("info", "", {.choices = {"info", "debug", "warning"}})},
                                  {"count", int_type, setting(3, "", {.bounds = POSITIVE})},
                                  {"tags", list_of(str_type), setting(List{"a"}, "")},
                                  {"ratio", float_type, setting(0.5, "")},
                              });

class SectionRead : public testing::Test {
protected:
    void SetUp() override {
        utils::set_sink([this](const utils::LogRecord& record) { records.push_back(record); });
    }
    void TearDown() override { utils::set_sink({}); }

    std::vector<utils::LogRecord> records;
    Section section = sections_of(RecordType(
        "C", {{"s", section_type,
               velmora::config::section(section_type, "", {.restart = Restart::none})}}))[0];
};

TEST_F(SectionRead, CostsAWarningAndTheDefaultForABadValue) {
    const std::string defaults = "S(level='info', count=3, tags=['a'], ratio=0.5)";
    const std::string no_mapping = "Ignoring the s section of the config file: it is not a mapping";
    const std::tuple<ConfigValue, std::string, std::vector<std::string>> cases[] = {
        {nullptr, defaults, {}},
        {Mapping{}, defaults, {}},
        {(List{1, 2}), defaults, {no_mapping}},
        {"level", defaults, {no_mapping}},
        {false, defaults, {no_mapping}},
        {Mapping{{"Level", "loud"}, {1, 2}, {List{"level"}, 1}, {"count ", 0}}, defaults, {}},
        {Mapping{{"tags", "x,y"}, {"count", "7"}, {"level", "debug"}, {"ratio", 1}},
         "S(level='debug', count=7, tags=['x', 'y'], ratio=1.0)",
         {}},
        {Mapping{{"level", "loud"}},
         defaults,
         {"Ignoring s.level in the config file: Invalid value for s.level: 'loud'. Must be one of: "
          "debug, info, "
          "warning; keeping the default 'info'"}},
        {Mapping{{"ratio", "x"}, {"tags", nullptr}, {"count", 0}, {"level", nullptr}, {"other", 1}},
         defaults,
         {"Ignoring s.level in the config file: Cannot set s.level=None: expected str (no value); "
          "keeping the default 'info'",
          "Ignoring s.count in the config file: Invalid value for s.count: 0. It must be above 0; "
          "keeping the default 3",
          "Ignoring s.tags in the config file: Cannot set s.tags=None: expected list (cannot "
          "interpret None as a list); "
          "keeping the default ['a']",
          "Ignoring s.ratio in the config file: Cannot set s.ratio='x': expected float (expected a "
          "decimal number, got "
          "'x'); keeping the default 0.5"}},
    };
    for (const auto& [data, record, warnings] : cases) {
        records.clear();
        EXPECT_EQ(testing::PrintToString(section.read(data)), record);
        std::vector<std::string> messages;
        for (const auto& each : records) messages.push_back(each.message());
        EXPECT_EQ(messages, warnings);
    }
    EXPECT_EQ(records[0].logger(), "velmora.config.spec");
    EXPECT_EQ(records[0].level(), utils::Level::warning);
    EXPECT_EQ(records[0].message_template(),
              "Ignoring %s in the config file: %s; keeping the default %r");
    EXPECT_EQ(records[0].arguments().size(), 3U);
}

TEST_F(SectionRead, SharesNoListWithDefaultsOrData) {
    const ConfigValue data = Mapping{{"tags", List{"x"}}};
    section.read(data).get<List>("tags").push_back("mine");
    section.read(nullptr).get<List>("tags").push_back("mine");
    EXPECT_EQ(display(data), "{'tags': ['x']}");
    EXPECT_EQ(display(section.read(nullptr)["tags"].if_value()->get<List>()), "['a']");
}

TEST_F(SectionRead, PassesOtherErrorsOnAndKeepsEarlierWarnings) {
    const RecordType broken("B", {{"first", int_type, setting(1, "")},
                                  {"second", str_type, setting("", "", {.bounds = POSITIVE})}});
    const Section faulty = sections_of(RecordType(
        "C", {{"b", broken, velmora::config::section(broken, "", {.restart = Restart::none})}}))[0];
    EXPECT_THROW((void)faulty.read(Mapping{{"second", "a"}, {"first", "x"}}), TypeError);
    EXPECT_EQ(records.size(), 1U);

    testing::internal::CaptureStderr();
    utils::set_sink([](const utils::LogRecord&) { throw std::runtime_error("the sink is full"); });
    EXPECT_EQ(section.read(Mapping{{"count", 0}, {"ratio", 1}}).get<double>("ratio"), 1.0);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace velmora::config
