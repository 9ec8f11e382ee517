// Plain structs as declarations: what keys their members make, and that every accepted value becomes the struct.
#include "velmora/app/schema.hpp"

#include <chrono>
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>

#include "support.hpp"
#include "velmora/app/lint.hpp"
#include "velmora/app/traits.hpp"
#include "velmora/utils/texts.hpp"

namespace {

namespace app = velmora::app;
using namespace velmora::config;
using velmora::test::outcome;

enum class Level { debug = 3, info = -1 };
app::EnumNames<Level> names_of(Level) {
    return {{Level::debug, "debug"}, {Level::info, "info"}};
}
enum class Nameless {};
app::EnumNames<Nameless> names_of(Nameless) {
    return {};
}

struct All {
    bool flag = true;
    std::int8_t tiny = -1;
    std::uint64_t large = 1;
    unsigned small = 5;
    float rate = 0.1F;
    double real = 0.1;
    std::string text = "abc";
    std::filesystem::path path = "/srv";
    Level level = Level::info;
    std::chrono::duration<double> wait{1.5};
    std::chrono::milliseconds pause{20};
    std::chrono::duration<std::uint8_t, std::ratio<1, 3>> third{2};
    std::vector<std::string> texts = {"a", "b"};
    std::vector<std::uint8_t> bytes = {1, 2};
    std::vector<Level> levels = {Level::debug};
    std::vector<std::filesystem::path> paths;
    std::vector<float> rates = {0.1F};
    std::optional<int> limit;
    std::optional<std::vector<int>> some = {{1}};
    std::optional<std::chrono::seconds> end;
    std::string token = "unused";
};
struct Config {
    All all;
    app::Raw hosts;
    All again;
};

app::SectionRow<Config> section_of(All Config::*member, const char* name) {
    return app::section(member, name, "Everything.", {.restart = Restart::worker},
                        {
                            app::key(&All::flag, "flag", "Flag.", {.env = "FLAG", .restart = Restart::none}),
                            app::key(&All::tiny, "tiny", "Integer.", {.bounds = Bound(-100, 127)}),
                            app::key(&All::large, "large", "Integer.", {.bounds = Bound(0, velmora::test::inf)}),
                            app::key(&All::small, "small", "Integer.", {.bounds = POSITIVE}),
                            app::key(&All::rate, "rate", "Float.", {.bounds = Bound(-velmora::test::inf, 1e30, true)}),
                            app::key(&All::real, "real", "Float."),
                            app::key(&All::text, "text", "Text.", {.choices = {"abc", "1.20"}}),
                            app::key(&All::path, "path", "Path."),
                            app::key(&All::level, "level", "Level."),
                            app::key(&All::wait, "wait", "How long it waits.", {.bounds = NON_NEGATIVE}),
                            app::key(&All::pause, "pause", "Milliseconds that it pauses", {.env = "PAUSE"}),
                            app::key(&All::third, "third", "Pause"),
                            app::key(&All::texts, "texts", "Texts.", {.choices = {"a", "b", "x"}}),
                            app::key(&All::bytes, "bytes", "Bytes.", {.bounds = Bound(0, 200)}),
                            app::key(&All::levels, "levels", "Levels."),
                            app::key(&All::paths, "paths", "Paths."),
                            app::key(&All::rates, "rates", "Rates.", {.bounds = POSITIVE}),
                            app::key(&All::limit, "limit", "Limit.", {.bounds = POSITIVE}),
                            app::key(&All::some, "some", "Some.", {.bounds = Bound(-velmora::test::inf, 8)}),
                            app::key(&All::end, "end", "End."),
                            app::required(&All::token, "token", "Token.", {.secret = true, .formerly = {"key"}}),
                        });
}

const app::Schema<Config>& schema() {
    static const app::Schema<Config> schema{
        section_of(&Config::all, "all"),
        app::raw(&Config::hosts, "hosts", "Hosts.", {.restart = Restart::none}),
    };
    return schema;
}

// The faults of a load with `pairs` set, or the record of what holds.
std::string loaded(const std::vector<std::string>& pairs, const std::string& yaml = "") {
    std::ostringstream out;
    const auto now = schema().load({app::values(Mapping{{"all", Mapping{{"token", "t"}}}}, "base"),
                                    app::text(yaml, "f"), app::sets(pairs, {.on_fault = app::OnFault::warn})},
                                   {.report = [&](const app::Fault& fault) {
                                       out << fault.message.substr(0, fault.message.find("; keeping"))
                                           << (fault.note.empty() ? "" : " = ") << fault.note << '\n';
                                   }});
    return out.str().empty() ? display(now.values().reveal_record("all")) : out.str();
}

TEST(Schema, MakesKeysOfMembers) {
    std::ostringstream out;
    EXPECT_EQ(schema().declaration().sections().back().name(), "hosts");
    for (const app::Key& key : schema().declaration().section("all").keys()) {
        out << key.name() << ' ' << key.kind() << ' ' << key.default_value() << ' ' << key.doc() << " "
            << key.accepted() << (key.env() ? " $" + *key.env() : "") << (key.restart() == Restart::none ? " none" : "")
            << '\n';
    }
    EXPECT_EQ(out.str(),
              "flag bool True Flag. a bool $FLAG none\n"
              "tiny int -1 Integer. an int, at least -100 and at most 127\n"
              "large int 1 Integer. an int, at least 0\n"
              "small int 5 Integer. an int, above 0\n"
              "rate float 0.1 Float. a float, at most 1e+30\n"
              "real float 0.1 Float. a float\n"
              "text str 'abc' Text. a str, one of: 1.20, abc\n"
              "path str '/srv' Path. a str\n"
              "level str 'info' Level. a str, one of: debug, info\n"
              "wait float 1.5 How long it waits, in seconds. a float, at least 0\n"
              "pause int 20 Milliseconds that it pauses an int $PAUSE\n"
              "third int 2 Pause, in units of 1/3 seconds an int\n"
              "texts list ['a', 'b'] Texts. a list of texts, one of: a, b, x\n"
              "bytes list [1, 2] Bytes. a list of ints, at least 0 and at most 200\n"
              "levels list ['debug'] Levels. a list of texts, one of: debug, info\n"
              "paths list [] Paths. a list of texts\n"
              "rates list [0.1] Rates. a list of floats, above 0\n"
              "limit int None Limit. an int, above 0\n"
              "some list [1] Some. a list of ints, at most 8\n"
              "end int None End, in seconds. an int\n"
              "token str None Token. a str\n");
    const auto key = [](const char* label) { return schema().declaration().key(label); };
    EXPECT_TRUE(key("all.bytes").bounds() && key("all.token").is_required() && key("all.end").is_optional());
    EXPECT_EQ(key("all.levels").choices(), (std::vector<std::string>{"debug", "info"}));
    EXPECT_EQ(schema().declaration().section("all").restart(), Restart::worker);
}

TEST(Schema, AcceptsWhatMembersHoldAndNothingElse) {
    const std::pair<const char*, const char*> cases[] = {
        {"tiny=128",
         "Ignoring all.tiny from the command line: Invalid value for all.tiny: 128. It must be at least -100 and at "
         "most 127\n"},
        {"large=18446744073709551616",
         "Ignoring all.large from the command line: Invalid value for all.large: 18446744073709551616. It must be at "
         "least 0 and at most 1.84467e+19 = all.large takes an int, at least 0 and at most 18446744073709551615\n"},
        {"texts=a,c",
         "Ignoring all.texts from the command line: Invalid value for all.texts item 2: 'c'. Must be one of: a, b, "
         "x\n"},
        {"rate=3e38",
         "Ignoring all.rate from the command line: Invalid value for all.rate: 3e+38. It must be at least -3.40282e+38 "
         "and at most 1e+30 = all.rate takes a float, at least -3.4028235e+38 and at most 1e+30\n"},
        {"bytes=1,201",
         "Ignoring all.bytes from the command line: Invalid value for all.bytes item 2: 201. It must be at least 0 and "
         "at most 200 = all.bytes counts bytes\n"},
        {"rates=1e-50",
         "Ignoring all.rates from the command line: Invalid value for all.rates item 1: 0.0. It must be above 0 and at "
         "most 3.40282e+38 = all.rates takes a list of floats, above 0 and at most 3.4028235e+38\n"},
        {"some=0x1",
         "Ignoring all.some from the command line: Cannot set all.some item 1='0x1': expected int (expected a decimal "
         "integer, got '0x1') = all.some takes a list of ints, at least -2147483648 and at most 8\n"},
        {"end=",
         "Ignoring all.end from the command line: Cannot set all.end='': expected int (expected a decimal integer, "
         "got '') = all.end takes an int, at least -9223372036854775808 and at most 9223372036854775807, and counts "
         "seconds\n"},
        {"token=u",
         "Ignoring all.token from the command line: it is secret, and this can be seen by everyone: give it in a file, "
         "a variable or a credential\n"},
    };
    for (const auto& [pair, expected] : cases) EXPECT_EQ(loaded({std::string("all.") + pair}), expected);
    std::string faults;
    schema().load({app::text("x-a: &a [1, 201]\nall: {token: t, bytes: *a, levels: [info, x]}", "f"),
                   app::environment({.variables = {{{"PAUSE", "tcp://h"}}}})},
                  {.report = [&](const app::Fault& fault) { faults += text_of(fault); }});
    EXPECT_THAT(faults,
                testing::MatchesRegex("f:2:24: [^|]*\\|[^|]*\\|                        \\^~?\n[^\n]*counts bytes\n"
                                      "f:2:43: [^|]*\\|[^|]*\\|                                           \\^\n"
                                      "Ignoring all.pause from [^\n]*\n      = container platforms .*"));
    const char* const yaml =
        "all: {bytes: [0x1, 1e1], paths: [1.20, no], limit: 7, some: ~, levels: [info, debug], end: 3, text: 1.20}";
    EXPECT_EQ(
        loaded({"all.tiny=-100", "all.large=18446744073709551615", "all.rate=1e30", "all.third=255", "all.path=a b",
                "all.rates=0.1234567891"},
               yaml),
        "all(flag=True, tiny=-100, large=18446744073709551615, small=5, rate=1e+30, real=0.1, text='1.20', path='a b', "
        "level='info', wait=1.5, pause=20, third=255, "
        "texts=['a', 'b'], bytes=[1, 10], levels=['info', 'debug'], paths=['1.20', 'no'], rates=[0.12345679], limit=7, "
        "some=None, end=3, token='t')");
}

TEST(Schema, RefusesChecksThatAreNone) {
    const std::function<std::string(const Config&)> none;
    const auto checked = [](const auto& rule) {
        return outcome([&] { return schema().check({"all.limit"}, rule).declaration().sections()[0].name(); });
    };
    EXPECT_THAT(checked(none), testing::StartsWith("TypeError: "));
    EXPECT_THAT(checked(static_cast<std::string (*)(const Config&)>(nullptr)), testing::StartsWith("TypeError: "));
    EXPECT_EQ(checked([](const Config&) { return ""; }), "all");
}

TEST(Schema, SplitsTextsOfAFileIntoItems) {
    const auto now = schema().load(
        {app::text("all: {token: t, levels: 'debug, info', paths: 'a, b', bytes: '1, 2', some: ~}", "f")});
    EXPECT_EQ(now->all.levels, (std::vector{Level::debug, Level::info}));
    EXPECT_EQ(now->all.paths, (std::vector<std::filesystem::path>{"a", "b"}));
    EXPECT_EQ(now->all.bytes, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(now->all.some, std::nullopt);
}

TEST(Schema, SaysWhatItTakesForSomethingElse) {
    struct Row {
        const char* key;
        const char* written;
        const char* value;  // "" when it is refused.
        const char* advice;
    };
    const Row rows[] = {
        {"flag", "2", "True", "2 is taken as True"},
        {"flag", ".nan", "True", "nan is taken as True"},
        {"flag", "0.0", "False", ""},
        {"tiny", "25.9", "25", "25.9 is taken as 25"},
        {"tiny", "1e1", "10", ""},
        {"real", "9007199254740993", "9007199254740992.0", "9007199254740993 is taken as 9007199254740992.0"},
        {"rate", "0.1234567891", "0.12345679", "0.1234567891 is taken as 0.12345679"},
        {"rate", "0.3", "0.3", ""},
        {"bytes", "[1, 2, 3.5, 4.5]", "[1, 2, 3, 4]", "item 3: 3.5 is taken as 3"},
        {"pause", "2.0", "2", ""},
        {"pause", "2.5", "", ""},
        {"pause", "-0.5", "", ""},
        {"path", "[p]", "", ""},
        {"path", "{}", "", ""},
        {"texts", "[a, [b]]", "", ""},
        {"paths", "[a, {b: 1}]", "", ""},
        {"bytes", "8", "[8]", ""},
        {"bytes", "0x8", "", ""},
        {"bytes", "~", "", ""},
        {"paths", "1.20", "['1.20']", ""},
        {"paths", "no", "['no']", ""},
        {"paths", "!!int 8", "", ""},
        {"paths", "{a: b}", "", ""},
        {"levels", "debug", "['debug']", ""},
    };
    for (const auto& [key, written, value, advice] : rows) {
        std::vector<app::Fault> faults;
        const auto now =
            schema().load({app::text("all:\n  " + std::string(key) + ": " + written + "\n  token: t", "f")},
                          {.report = [&](const app::Fault& fault) { faults.push_back(fault); }});
        const std::string label = "all." + std::string(key);
        const bool refused = *value == '\0';
        ASSERT_EQ(faults.size(), refused || *advice != '\0' ? 1U : 0U) << key << written;
        EXPECT_EQ(now.values().held(label) == nullptr, refused) << key << written;
        EXPECT_EQ(now.values().shown(label),
                  refused ? display(schema().declaration().key(label).default_value()) : value);
        if (faults.empty()) continue;
        EXPECT_EQ(faults[0].severity, refused ? app::Severity::warning : app::Severity::advice);
        EXPECT_THAT(faults[0].message, testing::EndsWith(refused ? "" : ": " + std::string(advice)));
        EXPECT_EQ(faults[0].line, 2U);
    }
}

TEST(Schema, TakesDefaultsFromTheConfiguration) {
    struct Part {
        int a = 1;
        float b = std::numeric_limits<float>::max();
        float c = 0.1F;
    };
    struct Two {
        Part first = {.a = 5};
        Part second;
    };
    const auto part = [](Part Two::*member, const char* name) {
        return app::section(member, name, "Doc.", {.restart = Restart::none},
                            {
                                app::key(&Part::a, "a", "Doc."),
                                app::key(&Part::b, "b", "Doc.", {.bounds = POSITIVE}),
                                app::key(&Part::c, "c", "Doc.", {.bounds = Bound(0.1F, 0.7F)}),
                            });
    };
    const app::Schema<Two> two{part(&Two::first, "first"), part(&Two::second, "second")};
    const auto now = two.load({app::text("first: {b: 1e-50, c: 0.7}\nsecond: {a: 7, b: 3.4028235e+38, c: 0.09}", "f")},
                              {.report = [](const app::Fault&) {}});
    EXPECT_EQ(std::tuple(now->first.a, now->first.b, now->first.c, now->second.a, now->second.b, now->second.c),
              std::tuple(5, std::numeric_limits<float>::max(), 0.7F, 7, std::numeric_limits<float>::max(), 0.1F));
    EXPECT_EQ(now.faults().size() + app::Snapshot<Two>(now).faults().size(), 4U);
    EXPECT_EQ(app::Schema<Two>(two).declaration().load({})["first.a"], ConfigValue(5));
}

TEST(Schema, NamesUnits) {
    using namespace app::detail;
    const std::vector<std::string> units = {unit_text(1, 1000000000), unit_text(1, 1000000), unit_text(1, 1000),
                                            unit_text(1, 1),          unit_text(60, 1),      unit_text(3600, 1),
                                            unit_text(86400, 1),      unit_text(604800, 1),  unit_text(2, 1)};
    EXPECT_THAT(units, testing::ElementsAre("nanoseconds", "microseconds", "milliseconds", "seconds", "minutes",
                                            "hours", "days", "weeks", "units of 2/1 seconds"));
}

TEST(Schema, SetsEveryMember) {
    const char* const yaml =
        "all: {flag: no, tiny: -100, large: 18446744073709551615, small: 6, rate: 0.3, real: 2, text: 1.20, path: /p, "
        "level: debug, wait: 2.5, pause: 30, third: 4,\n"
        "      texts: [x], bytes: [3, 200], levels: [info, debug], paths: [p, q], rates: [1.5], limit: 9, some: [7, "
        "8], end: 10, key: secret}\n"
        "hosts: {a: 1}";
    const app::Snapshot<Config> now = schema().load({app::text(yaml, "f")});
    const All& all = now->all;
    EXPECT_EQ(std::tuple(all.flag, all.tiny, all.large, all.small, all.rate, all.real, all.text, all.path, all.level),
              std::tuple(false, -100, 18446744073709551615U, 6U, 0.3F, 2.0, "1.20", "/p", Level::debug));
    EXPECT_EQ(std::tuple(all.wait.count(), all.pause.count(), all.third.count(), all.limit, all.end, all.token),
              std::tuple(2.5, 30, 4, 9, std::chrono::seconds(10), "secret"));
    EXPECT_EQ(std::tuple(all.texts, all.bytes, all.levels, all.paths, all.rates, all.some),
              std::tuple(std::vector<std::string>{"x"}, std::vector<std::uint8_t>{3, 200},
                         std::vector{Level::info, Level::debug}, std::vector<std::filesystem::path>{"p", "q"},
                         std::vector{1.5F}, std::vector{7, 8}));
    EXPECT_EQ(display(now->hosts.value()), "{'a': 1}");
    const app::Snapshot<Config> copy = now;
    EXPECT_EQ(&copy->all, &now->all);
    EXPECT_EQ(outcome([] {
                  return schema()
                      .check({"all.limit", "all.tiny"},
                             [](const Config& config) { return config.all.limit > config.all.tiny ? "too much" : ""; })
                      .load({app::text("all: {limit: 1, token: t}", "f")})
                      .values()["all.end"];
              }),
              "another error: f:1:14: error: all.limit, all.tiny: too much (all.limit is 1 from f:1:14, all.tiny is -1 "
              "by default)");
}

// Its mistakes, one line each.
std::string mistakes(const std::vector<FieldDecl>& sections) {
    return velmora::utils::joined(app::lint(RecordType("Config", sections)), "\n");
}
FieldDecl in_section(const std::string& name, const std::vector<FieldDecl>& keys, const char* doc = "Doc.") {
    const RecordType kind("Kind", keys);
    return {name, kind, section(kind, doc, {.restart = Restart::none})};
}

TEST(Lint, FindsWhatIsWrongWithADeclaration) {
    const RecordType other("Other", {});
    const std::pair<std::vector<FieldDecl>, const char*> cases[] = {
        {{in_section("s", {{"a", int_type, setting(7, "Doc.", {.env = "A", .bounds = Bound(1, 7)})},
                           {"b-c", int_type, app::optional(setting(nullptr, "Doc.", {.env = "_B1"}))},
                           {"d", str_type, setting("x", "Doc.", {.env = "A_FILE"})}})},
         ""},
        {{in_section("s", {{"a", int_type, app::required(setting(0, "Doc.", {.bounds = POSITIVE}))}})},
         "s.a: it refuses its own default: Invalid value for s.a: 0. It must be above 0"},
        {{in_section("s", {{"a", int_type, app::with_traits(setting(1.5, "Doc."), {.secret = true})}})},
         "s.a: its default (secret) would become (secret)"},
        {{in_section("s", {{"a", int_type, setting(nullptr, "Doc.")}})},
         "s.a: it refuses its own default: Cannot set s.a=None: expected int (expected an integer, got None)"},
        {{in_section("s", {{"a", list_of(str_type), setting(List{1}, "Doc.")}})},
         "s.a: its default [1] would become ['1']"},
        {{in_section("s", {{"a", str_type, setting("7", "Doc.", {.bounds = POSITIVE})}})},
         "s.a: it has bounds, but is no number\ns.a: it refuses its own default: "},
        {{in_section("s", {{"a", float_type, setting(1, "Doc.", {.bounds = Bound(2, 1)})}})},
         "s.a: its bounds admit nothing: Bound(low=2, high=1, low_open=False)\ns.a: it refuses"},
        {{in_section("s", {{"a", float_type, setting(1, "Doc.", {.bounds = Bound(1, 1, true)})}})},
         "s.a: its bounds admit nothing: Bound(low=1, high=1, low_open=True)\ns.a: it refuses"},
        {{in_section("s", {{"a", float_type, setting(1, "Doc.", {.bounds = Bound(velmora::test::nan)})}})},
         "s.a: its bounds admit nothing: Bound(low=nan, high=None, low_open=False)\ns.a: it refuses"},
        {{in_section("s", {{"a", str_type, setting("x", "Doc.", {.choices = {"x", "y", "x"}})}})},
         "s.a: its choice 'x' is there twice"},
        {{in_section("s", {{"a", bool_type, setting(true, "Doc.", {.choices = {"x"}})}})},
         "s.a: it has choices, but is no text\ns.a: it refuses"},
        {{in_section("s", {{"a", str_type, setting("x", "Doc.", {.env = "V"})},
                           {"b", str_type, setting("x", "Doc.", {.env = "V"})}})},
         "s.b: its variable V is that of s.a as well"},
        {{in_section("s", {{"a", str_type, setting("x", "Doc.", {.env = "1A"})},
                           {"b", str_type, setting("x", "Doc.", {.env = "1A"})},
                           {"c", str_type, setting("x", "Doc.", {.env = ""})}})},
         "s.a: no shell can set a variable named '1A'\ns.b: no shell can set a variable named '1A'\n"
         "s.c: no shell can set a variable named ''"},
        {{in_section("s", {{"a", str_type, app::with_traits(setting("x", "Doc.", {.env = "V"}), {.secret = true})},
                           {"b", str_type, setting("x", "Doc.", {.env = "V_FILE"})}})},
         "s.b: its variable V_FILE is that of s.a as well"},
        {{in_section("r", {{"a", str_type, app::with_traits(setting("x", "Doc."), {.formerly = {"c"}})}}),
          in_section("s", {{"a", str_type, app::with_traits(setting("x", "Doc."), {.formerly = {"b", "c", "c", ""}})},
                           {"b", str_type, setting("x", "Doc.")}})},
         "s.a: its old name b is the name of a key\ns.a: its old name c is there twice in its section\ns.a: its old "
         "name '' can have been none"},
        {{in_section("s", {{"a", int_type, app::with_traits(setting("pw", "Doc."), {.secret = true})}})},
         "s.a: it refuses its own default: Invalid value for s.a, a secret that is not shown. It must be an int"},
        {{in_section("s", {{"a", str_type, setting("x", "  ")}, {"b", str_type, setting("x", "A\tcontrol.")}}, "")},
         "s: it has no doc\ns.a: it has no doc\ns.b: its doc is no single line"},
        {{in_section("True", {{"a.b", str_type, setting("x", "Doc.")},
                              {"1", str_type, setting("x", "Doc.")},
                              {"", str_type, setting("x", "Doc.")}})},
         "True: this is no name for a section in files and variables\nTrue.a.b: this is no name for a key in files and "
         "variables\nTrue.1: this is no name for a key in files and variables\nTrue.: this is no name"},
        {{in_section("false", {{"Null", str_type, setting("x", "Doc.")}})},
         "false: this is no name for a section in files and variables\nfalse.Null: this is no name"},
        {{in_section("x-s", {})}, "x-s: names that begin with x- are left to anchors"},
        {{{"s", other, section(RecordType("Kind", {}), "Doc.", {.restart = Restart::none})}},
         "s: its field is declared with another type than its section is made of"},
    };
    for (const auto& [fields, expected] : cases) {
        const std::vector<FieldDecl>& sections = fields;
        const std::string found = mistakes(sections);
        EXPECT_EQ(found.substr(0, *expected == '\0' ? found.npos : std::string(expected).size()), expected);
        EXPECT_EQ(outcome([&] {
                      return app::Declaration(RecordType("Config", sections)).sections().size() == 1 ? "made" : "";
                  }),
                  found.empty() ? "made" : "TypeError: the declaration has mistakes:\n" + found);
    }
    struct Narrow {
        std::uint8_t a = 1;
        Level b = static_cast<Level>(9);
        std::vector<std::uint8_t> c = {250};
        std::vector<std::string> d;
        std::vector<int> e;
        std::chrono::seconds f{1};
        std::vector<Nameless> h;
    };
    struct Wrong {
        Narrow s;
        app::Raw r;
    };
    EXPECT_THAT(
        outcome([] {
            return app::Schema<Wrong>{
                app::section(&Wrong::s, "s", "Doc.", {.restart = Restart::none},
                             {
                                 app::key(&Narrow::a, "a", "Doc.", {.bounds = Bound(1, 256)}),
                                 app::key(&Narrow::b, "b", "Doc."),
                                 app::key(&Narrow::c, "c", "Doc.", {.bounds = Bound(-1, 100), .secret = true}),
                                 app::key(&Narrow::d, "d", "Doc.", {.choices = {"x", "x"}}),
                                 app::key(&Narrow::e, "e", "Doc.", {.bounds = Bound(2, 1)}),
                                 app::key(&Narrow::f, "f", ""),
                                 app::key(&Narrow::a, "g", "Doc."),
                                 app::key(&Narrow::h, "h", "Doc."),
                             }),
                app::raw(&Wrong::r, "r", "Doc.", {Restart::none}),
                app::section(&Wrong::s, "t", "Doc.", {.restart = Restart::none}, {}),
                app::raw(&Wrong::r, "u", "Doc.", {Restart::none})}
                .declaration()
                .sections()
                .front()
                .name();
        }),
        testing::MatchesRegex(
            "TypeError: the declaration has mistakes:\n"
            "s.a: its bounds go beyond its member's type, which holds what is at least 0 and at most 255\n"
            "s.b: it refuses its own default: Invalid value for s.b: '9'. Must be one of: debug, info\n"
            "s.c: its bounds go beyond its member's type, which holds what is at least 0 and at most 255\n"
            "s.c: it refuses its own default: Invalid value for s.c, a secret that is not shown. It must be a list of "
            "ints, at least -1 and at most 100\n"
            "s.d: its choice 'x' is there twice\n"
            "s.e: its bounds admit nothing: Bound\\(low=2, high=1, low_open=False\\)\n"
            "s.f: it has no doc\n"
            "s.g: its member is that of a as well\ns.h: names_of names no value of its type\n"
            "t: its member is that of s as well\nu: its member is that of r as well"));
}

}  // namespace
