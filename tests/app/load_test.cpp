// Layers: which value holds, what is reported, and that one file alone is read as the component reads it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "folder.hpp"
#include "support.hpp"
#include "velmora/app/declaration.hpp"
#include "velmora/app/explain.hpp"
#include "velmora/app/traits.hpp"
#include "velmora/utils/logging.hpp"
#include "velmora/utils/texts.hpp"

namespace velmora::app {
namespace {

namespace fs = std::filesystem;
using namespace config;
using test::Folder;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

const Declaration& webd() {
    static const RecordType server(
        "Server", {{"port", int_type, setting(8080, "Port.", {.env = "PORT", .bounds = Bound(1, 65535)})},
                   {"limit", int_type, optional(setting(nullptr, "Limit.", {.env = "LIMIT"}))},
                   {"name", str_type, setting("web", "Name.")},
                   {"keep-alive", float_type, setting(1.0, "Seconds.")},
                   {"tags", list_of(str_type), setting(List{"a"}, "Tags.")}});
    static const RecordType log("Log",
                                {{"level", str_type, setting("info", "Level.", {.choices = {"info", "debug"}})}});
    static const RecordType config("Config",
                                   {{"server", server, section(server, "Server.", {.restart = Restart::daemon})},
                                    raw("hosts", "Hosts.", {.restart = Restart::none}),
                                    {"log", log, section(log, "Log.", {.restart = Restart::none})}});
    static const Declaration declaration(config);
    return declaration;
}

struct Loaded {
    std::optional<Values> values;
    std::vector<std::string> faults;  // One line each.
    std::vector<std::string> keys;    // Of the faults.
    std::vector<std::string> sources;
    std::string printed;  // The faults as compilers do.
};

Loaded load(const Declaration& declaration, const std::vector<Layer>& layers) {
    Loaded loaded;
    const auto keep = [&](const Fault& fault) {
        loaded.faults.push_back(one_line(fault));
        loaded.keys.push_back(fault.key);
        loaded.sources.push_back(fault.source);
        loaded.printed += text_of(fault);
    };
    try {
        loaded.values = declaration.load(layers, {.report = keep});
    } catch (const LoadError& error) {
        std::for_each(error.faults().begin(), error.faults().end(), keep);
    }
    return loaded;
}

std::vector<std::string> faults_of(const std::vector<Layer>& layers) {
    return load(webd(), layers).faults;
}

// What a source gives two keys, server.port and server.limit, of which the latter is optional.
enum class Given { nothing, number, word, null, empty };
enum class Kind { weak_file, file, variables, pairs };

Layer layer_of(Kind kind, Given given, const std::string& number) {
    const bool yaml = kind <= Kind::file;
    const std::string texts[] = {"", number, "x", yaml ? "null" : "x", yaml ? "''" : ""};
    const std::string& value = texts[static_cast<int>(given)];
    if (yaml)
        return text(given == Given::nothing ? "# nothing" : "server: {limit: " + value + ", port: " + value + "}",
                    number);
    if (given == Given::nothing) return kind == Kind::variables ? environment({.variables = {{}}}) : sets({});
    if (kind == Kind::variables) return environment({.variables = {{{"PORT", value}, {"LIMIT", value}}}});
    return sets({"server.limit=" + value, "server.port=" + value}, {.name = number, .on_fault = OnFault::warn});
}

TEST(Layers, InEveryOrderTheStrongestAcceptedValueHolds) {
    constexpr unsigned kinds = 4, givens = 5;
    std::vector<unsigned> order = {0, 1, 2, 3};
    do {
        for (unsigned combination = 0; combination < givens * givens * givens * givens; ++combination) {
            std::vector<Layer> layers;
            std::string port = "8080", limit = "None", of_port = "the default 8080", of_limit = "the default None";
            std::size_t refused = 0;
            for (unsigned i = 0, rest = combination; i < kinds; ++i, rest /= givens) {
                const auto kind = static_cast<Kind>(order[i]);
                auto given = static_cast<Given>(rest % givens);
                const std::string number = std::to_string(order[i] + 1);
                layers.push_back(layer_of(kind, given, number));
                if (kind == Kind::variables && given == Given::empty) given = Given::nothing;
                if (given == Given::nothing) continue;
                const bool none = given == Given::null && kind <= Kind::file;
                const bool accepted = given == Given::number;
                refused += accepted ? 0 : none ? 1 : 2;
                const std::string place = kind == Kind::variables ? "$" : kind == Kind::pairs ? number : number + ":1:";
                if (accepted) of_port = (port = number) + " from " + place;
                if (accepted || none) of_limit = (limit = accepted ? number : "None") + " from " + place;
            }
            const Loaded loaded = load(webd(), layers);
            ASSERT_EQ(display((*loaded.values)["server.port"]), port) << combination;
            ASSERT_EQ(display((*loaded.values)["server.limit"]), limit) << combination;
            ASSERT_EQ(loaded.values->held("server.port") == nullptr, port == "8080") << combination;
            ASSERT_EQ(loaded.faults.size(), refused) << combination;
            for (const std::string& fault : loaded.faults) {
                const bool about_port = fault.find("server.port") != std::string::npos;
                ASSERT_THAT(fault, HasSubstr("; keeping " + (about_port ? of_port : of_limit)));
            }
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Layers, ComeFromFilesAndFolders) {
    const Folder folder;
    folder.write("a\x1b.yaml", "server: {port: 1, name: a}");
    folder.write("d/10.yaml", "server: {port: 2, limit: 2}");
    folder.write("d/9.yaml", "server: {port: 3}");
    folder.write("d/.hidden.yaml", "server: {prot: 4}");
    folder.write("d/9.yaml~", "server: {port: 5}");
    folder.write("d/readme", "server: {port: 6}");
    folder.write("..data/11.yaml", "server: {name: linked}");
    fs::create_symlink("../..data/11.yaml", folder.path("d/11.yaml"));
    folder.write("c/server.limit", "77\r\n");
    folder.write("c/server.name", " two lines\n\r\n");
    folder.write("c/log.level", "\n");
    folder.write("c/tls.key", "?");
    fs::create_symlink("nowhere", folder.path("c/server.port"));
    folder.write("e/1\x1b.yaml/file", "");
    fs::create_symlink("nowhere", folder.path("e/2.yaml"));
    folder.write("e/3.yaml", "servr: 1");
    folder.write("b.yaml", "server: {port: 0}");
    folder.write("u\x1b/server.port/file", "");
    fs::create_symlink("server.limit", folder.path("u\x1b/server.limit"));
    folder.write("k/server.port", "hidden");
    folder.write("k/log.level", "hidden");
    fs::create_symlink("nowhere", folder.path("k/server.limit"));
    for (const char* name : {"1.yaml", "2.x.yml", "3.YaML", ".4.yml", "yml"})
        folder.write(std::string("n/") + name, "log:");
    for (const char* name : {"server_limit", "server.limits", ".server.limit", "tls"})
        folder.write(std::string("m/") + name, "1");
    folder.write("q/1.yaml", "s: {");
    folder.write("p/server.port", "");
    fs::create_symlink("loop", folder.path("loop"));
    folder.write("big", "");
    fs::resize_file(folder.path("big"), 5'000'000'000);
    folder.write("o/server.limit", "");
    fs::resize_file(folder.path("o/server.limit"), most_file_bytes + 1);
    ASSERT_EQ(mkfifo(folder.path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(folder.path("m/log.level").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(folder.path("e/4.yaml").c_str(), 0600), 0);
    ASSERT_EQ(mknod(folder.path("socket").c_str(), S_IFSOCK | 0600, 0), 0);
    const std::string missing = folder.path("missing"), in_place =
                                                            ": it is a pipe, a socket or a device: write a file in "
                                                            "its place";
    const auto now = [&](const std::vector<Layer>& layers) {
        const Loaded loaded = load(webd(), layers);
        const std::string record = loaded.values ? display(loaded.values->record("server")) : "";
        return utils::joined(loaded.faults, "\n") + record.substr(0, record.find(", keep"));
    };
    const Layer a = file(folder.path("a\x1b.yaml"));
    const std::vector<std::pair<std::vector<Layer>, std::string>> cases = {
        {{a}, "Server(port=1, limit=None, name='a'"},
        {{a, directory(folder.path("d"))}, "Server(port=3, limit=2, name='linked'"},
        {{directory(folder.path("d")), a}, "Server(port=1, limit=2, name='a'"},
        {{a, directory(missing), file(missing, {.optional = true}), credentials({.directory = missing})},
         "Server(port=1, limit=None, name='a'"},
        {{credentials({.directory = folder.path("c")}), a}, "Server(port=1, limit=77, name='a'"},
        {{a, credentials({.directory = folder.path("c")})}, "Server(port=1, limit=77, name=' two lines\\n'"},
        {{file(missing)}, "error: missing: cannot be read: No such file or directory"},
        {{file(folder.path("d"), {.optional = true})}, "error: d: cannot be read: Is a directory"},
        {{directory(missing, {.optional = false})}, "error: missing: cannot be read: No such file or directory"},
        {{directory(folder.path("a\x1b.yaml"))}, "error: a\\x1b.yaml: cannot be read: Not a directory"},
        {{directory(folder.path("e/"), {.on_fault = OnFault::refuse})},
         "error: Refusing e/1\\x1b.yaml: it is no file\nerror: e/2.yaml: cannot be read: No such file or directory\n"
         "e/3.yaml:1:1: error: Refusing servr in e/3.yaml: there is no such section; did you mean 'server'?\n"
         "error: Refusing e/4.yaml: it is no file"},
        {{file(folder.path("b.yaml"), {.on_fault = OnFault::refuse})},
         "b.yaml:1:16: error: Refusing server.port in the config file: Invalid value for server.port: 0. It must be at "
         "least 1 and at most 65535"},
        {{file(folder.path("fifo"))}, "error: fifo: cannot be read" + in_place},
        {{file(folder.path("socket"))}, "error: socket: cannot be read" + in_place},
        {{file("/dev/zero")}, "error: /dev/zero: cannot be read" + in_place},
        {{a, file("/dev/null")}, "Server(port=1, limit=None, name='a'"},
        {{file(folder.path("big"))}, "error: big: cannot be read: it has more than 67108864 bytes"},
        {{file(folder.path("a\x1b.yaml"), {.most_bytes = 26})}, "Server(port=1, limit=None, name='a'"},
        {{file(folder.path("a\x1b.yaml"), {.most_bytes = 25})},
         "error: a\\x1b.yaml: cannot be read: it has more than 25 bytes"},
        {{file("/proc/self/status", {.most_bytes = 9})},
         "error: /proc/self/status: cannot be read: it has more than 9 bytes"},
        {{directory(folder.path("d"), {.most_bytes = 25})},
         "error: d/10.yaml: cannot be read: it has more than 25 bytes"},
        {{file("", {.optional = true}), directory("")},
         "error: '': cannot be read: its path is empty\nerror: '': cannot be read: its path is empty"},
        {{directory(folder.path("n/"))},
         "advice: n/2.x.yml is not read: names must end in \".yaml\"\n"
         "advice: n/3.YaML is not read: names must end in \".yaml\"Server(port=8080, limit=None, name='web'"},
        {{credentials({.directory = folder.path("m")})},
         "error: m/log.level: cannot be read" + in_place +
             "\nadvice: m/server.limits is not read; did you mean 'server.limit'?\n"
             "advice: m/server_limit is not read; did you mean 'server.limit'?"},
        {{credentials({.directory = folder.path("loop")})},
         "error: loop: cannot be read: Too many levels of symbolic links"},
        {{credentials({.directory = folder.path("a\x1b.yaml")})}, "error: a\\x1b.yaml: is no directory of credentials"},
        {{credentials({.directory = folder.path("u\x1b")})},
         "error: u\\x1b/server.port: cannot be read: Is a directory\n"
         "error: u\\x1b/server.limit: cannot be read: Too many levels of symbolic links"},
        {{credentials({.directory = folder.path("k"), .on_fault = OnFault::refuse})},
         "error: Refusing server.port from k/server.port: Invalid value for server.port, a secret that is not shown. "
         "It must be an int, at least 1 and at most 65535\nerror: Refusing log.level from k/log.level: Invalid value "
         "for log.level, a secret that is not shown. It must be a str, one of: debug, info"},
    };
    for (const auto& [layers, expected] : cases) EXPECT_EQ(folder.local(now(layers)), expected);

    const auto port = [](const char* name) {
        return FieldDecl(name, int_type, required(with_traits(setting(nullptr, "Doc."), {.secret = true})));
    };
    const RecordType server("Server", {port("port"), port("limit")});
    const RecordType log("Log", {{"level", str_type, setting("", "Doc.")}});
    const Declaration needs(
        RecordType("Config", {{"server", server, section(server, "Doc.", {.restart = Restart::none})},
                              {"log", log, section(log, "Doc.", {.restart = Restart::none})}}));
    const auto variable = [](const std::string& path) {
        return environment({.prefix = "W_", .variables = {{{"W_SERVER_LIMIT_FILE", path}}}});
    };
    const std::vector<std::pair<Layer, std::string>> unknown = {
        {text("s: {", "f"), ""},
        {file(missing), ""},
        {directory(folder.path("e/1\x1b.yaml")), "server.port, server.limit"},
        {directory(folder.path("q")), ""},
        {credentials({.directory = folder.path("loop")}), ""},
        {credentials({.directory = folder.path("o")}), "server.limit, server.port"},
        {variable(missing), "server.limit, server.port"},
    };
    for (const auto& [layer, keys] : unknown) {
        const Loaded loaded = load(needs, {layer});
        EXPECT_EQ(utils::joined(loaded.keys), keys);
    }
    const Layer empty[] = {text("server:\nlog:", "f\x1b"), file(missing, {.optional = true}),
                           credentials({.directory = folder.path("p")}), variable(folder.path("c/log.level"))};
    EXPECT_THAT(load(needs, {std::begin(empty), std::end(empty)}).printed,
                AllOf(HasSubstr("server.limit must be given"),
                      HasSubstr("= the server section of f\\x1b is empty, " + missing +
                                " is missing, the file of $W_SERVER_LIMIT_FILE is empty\n"),
                      HasSubstr("= the server section of f\\x1b is empty, " + missing + " is missing, " +
                                folder.path("p/server.port") + " is empty\n")));
}

TEST(Layers, TakeTextsAndYamlByTheirRules) {
    struct Case {
        const char* key;
        const char* written;
        const char* in_yaml;  // The display form; "" when it is refused.
        const char* as_text;
    };
    const Case cases[] = {
        {"port", "1e3", "1000", ""},
        {"port", "0x1f90", "8080", ""},
        {"port", "1_000", "1000", "1000"},
        {"name", "1.20", "'1.20'", "'1.20'"},
        {"name", "0640", "'0640'", "'0640'"},
        {"name", "no", "'no'", "'no'"},
        {"name", "'1'", "'1'", "\"'1'\""},
        {"name", "!!float 1.50", "'1.5'", "'!!float 1.50'"},
        {"name", "~", "", "'~'"},
        {"tags", "[1.20, 0x1, 'x']", "['1.20', '0x1', 'x']", "['[1.20', '0x1', \"'x']\"]"},
        {"tags", "[a, {b: 1}]", "", "['[a', '{b: 1}]']"},
        {"tags", "'a, b'", "['a', 'b']", "[\"'a\", \"b'\"]"},
        {"keep-alive", "1e3", "1000.0", "1000.0"},
    };
    for (const auto& [key, written, in_yaml, as_text] : cases) {
        const auto value_from = [key = "server." + std::string(key)](const Layer& layer) {
            const Values values = webd().load({layer}, {.report = [](const Fault&) {}});
            const auto& given = values.given(key).front();
            EXPECT_TRUE(!given.accepted() || given.value() == values[key]);
            return given.accepted() ? display(values[key]) : "";
        };
        EXPECT_EQ(value_from(text("server: {" + std::string(key) + ": " + written + "}", "f")), in_yaml) << written;
        EXPECT_EQ(value_from(text("x-a: &a " + std::string(written) + "\nserver: {" + key + ": *a}", "f")), in_yaml)
            << written;
        EXPECT_EQ(value_from(sets({"server." + std::string(key) + "=" + written}, {.on_fault = OnFault::warn})),
                  as_text)
            << written;
    }
}

TEST(Layers, ReportEverythingInOrderWithItsPlace) {
    const char* const yaml =
        "x-anchors: &port 70000\n"
        "sirvir: {}\n"
        "log: [level]\n"
        "server:\n"
        "  prot: 1\n"
        "  tags: a\n"
        "  port: *port\n"
        "  <<: {limit: 1}\n"
        "  limit: {a: 1}\n"
        "hosts: {anything: [goes]}\n"
        "1: 2\n"
        "\"a\\nb\": 2\n";
    EXPECT_THAT(
        faults_of({text(yaml, "f"),
                   environment({.prefix = "W_",
                                .variables = {{{"PORT", "udp://10.0.0.1:80"},
                                               {"LIMIT", "x tcp://"},
                                               {"W_SERVER_PORT", "1"},
                                               {"W_LOG_LEVEL", "tcp://loud"},
                                               {"PORT_FILE", "/"},
                                               {"W_OTHER", "1"},
                                               {"W_SERVER_KEEP_ALIVE", "2"}}}}),
                   sets({"server.prot=1", "log.level", "server.port=1", "server.port=0"})}),
        ElementsAre("f:7:9: Ignoring server.port in f: Invalid value for server.port: 70000. It must be at least 1 and "
                    "at most 65535; keeping 1 from the command line",
                    "f:9:10: Ignoring server.limit in f: Cannot set server.limit={'a': 1}: expected int (expected an "
                    "integer, got {'a': 1}); keeping the default None",
                    "f:3:6: Ignoring the log section of f: it is not a mapping",
                    "f:2:1: Ignoring sirvir in f: there is no such section; did you mean 'server'?",
                    "f:5:3: Ignoring server.prot in f: there is no such key; did you mean 'port'?",
                    "f:8:3: Ignoring server.<< in f: merge keys are not followed; write out what it would merge",
                    "f:11:1: Ignoring 1 in f: there is no such section",
                    "f:12:1: Ignoring 'a\\nb' in f: there is no such section",
                    "Ignoring server.port from $PORT: Cannot set server.port='udp://10.0.0.1:80': expected int "
                    "(expected a decimal integer, got 'udp://10.0.0.1:80'); keeping 1 from the command line "
                    "(container platforms set such variables for a service of this name: turn that off (in Kubernetes "
                    "with enableServiceLinks: false), or rename the service)",
                    "Ignoring server.limit from $LIMIT: Cannot set server.limit='x tcp://': expected int (expected a "
                    "decimal integer, got 'x tcp://'); keeping the default None",
                    "Ignoring log.level from $W_LOG_LEVEL: Invalid value for log.level: 'tcp://loud'. Must be one of: "
                    "debug, info; keeping the default 'info'",
                    "advice: $PORT_FILE is not read: only that of a secret key names a file, and server.port is none",
                    "advice: $W_SERVER_PORT is not read: the variable of server.port is $PORT",
                    "error: Refusing server.port from the command line: Invalid value for server.port: 0. It must be "
                    "at least 1 and at most 65535",
                    "error: Refusing 'server.prot' from the command line: there is no key 'server.prot'; did you mean "
                    "'server.port'?",
                    "error: Refusing 'log.level' from the command line: write it as log.level=VALUE"));
}

TEST(Layers, RefuseWhereTheyMust) {
    const auto variables = [](std::map<std::string, std::string> all) {
        return environment({.prefix = "W_", .empty_counts = true, .variables = std::move(all)});
    };
    const std::vector<std::pair<std::vector<Layer>, std::vector<const char*>>> cases = {
        {{text("server: {port: 0}\nlog: {level: x", "f"), sets({"server.limit=x"})},
         {"f:2:15: error: ", "error: Refusing server.limit from the command line: Cannot set"}},
        {{text("- 1", "f", {.on_fault = OnFault::refuse}), text("", "g")}, {"f:1:1: error: Refusing f: it is a list"}},
        {{text("port: 1", "f", {.on_fault = OnFault::refuse})},
         {"f:1:1: error: Refusing port in the config file: there is no such section"}},
        {{text("server: ~\nlog: {levle: 1}\nxy: 1\n'': 2\n<<: 3", "f")},
         {"f:2:7: Ignoring log.levle in the config file: there is no such key; did you mean 'level'?",
          "f:3:1: Ignoring xy in the config file", "f:4:1: Ignoring '' in the config file",
          "f:5:1: Ignoring << in the config file: merge keys are not followed"}},
        {{text("# c\n[1]", "f")}, {"f:2:1: Ignoring the config file: it is a list"}},
        {{values(Mapping{{"servr", 1}}, "v", {.on_fault = OnFault::refuse})}, {"error: Refusing servr in"}},
        {{environment({.on_fault = OnFault::refuse, .variables = {{{"PORT", "x"}}}})}, {"error: Refusing server.port"}},
        {{sets({"server.limit=x", "server.port=x", "servr"}, {.name = "\x1b"})},
         {"error: Refusing server.port from \\x1b: ", "error: Refusing server.limit from \\x1b: ",
          "error: Refusing 'servr' from \\x1b: write it as SECTION.KEY=VALUE"}},
        {{variables({{"PORT", ""}})}, {"Ignoring server.port from $PORT: Cannot set server.port=''"}},
        {{text("hosts: [1]", "f"), sets({"hosts.a=1", "=", "servr.port=1"})},
         {"error: Refusing 'hosts.a' from the command line: the section hosts is read as a whole",
          "error: Refusing '' from the command line: there is no section ''",
          "error: Refusing 'servr.port' from the command line: there is no section 'servr'; did you mean 'server'?"}},
        {{values(Mapping{{"server", Mapping{{"port", nullptr}, {"a b", 1}}}}, "v")},
         {"Ignoring server.port in the config file: Cannot set server.port=None",
          "Ignoring server.'a b' in the config file"}},
    };
    for (const auto& [layers, beginnings] : cases) {
        const Loaded loaded = load(webd(), layers);
        ASSERT_EQ(loaded.faults.size(), beginnings.size()) << utils::joined(loaded.faults, "\n");
        bool refused = false;
        for (std::size_t i = 0; i < beginnings.size(); ++i) {
            EXPECT_THAT(loaded.faults[i], testing::StartsWith(beginnings[i]));
            refused |= loaded.faults[i].find("error: ") != std::string::npos;
        }
        EXPECT_EQ(loaded.values.has_value(), !refused);
    }
}

TEST(Layers, TakeTheEnvironmentOfTheProcess) {
    const Folder folder;
    folder.write("server.limit", "5");
    folder.write("own/server.keep-alive", "3");
    setenv("PORT", "81", 1);
    setenv("CREDENTIALS_DIRECTORY", folder.path("").c_str(), 1);
    const Layer variables = environment(), files = credentials(), own = credentials({.directory = folder.path("own")});
    unsetenv("PORT");
    unsetenv("CREDENTIALS_DIRECTORY");
    char no_variable[] = "LIMIT";  // A parent may pass on what has no "=".
    char* only[] = {no_variable, nullptr};
    char** const before = std::exchange(environ, only);
    EXPECT_TRUE(webd().load({environment()}).faults().empty());
    environ = before;
    const Values now = webd().load({variables, files, own, credentials(), sets({"server.name=x", "server.name=y=z"})});
    EXPECT_EQ(display(now.record("server")), "Server(port=81, limit=5, name='y=z', keep-alive=3.0, tags=['a'])");
    EXPECT_EQ(display(now.record("log")), "Log(level='info')");
    now.record("server").get<List>("tags").push_back("b");
    EXPECT_EQ(display(now["server.tags"]), "['a']");
    EXPECT_EQ(now.given("server.name").size(), 2U);
    const Values refused = webd().load({text("server: {port: x}", "f"), environment({.variables = {{{"PORT", "y"}}}})},
                                       {.report = [](const Fault&) {}});
    EXPECT_EQ(display(refused.given("server.port")[0].value()), "'y'");
    EXPECT_EQ(display(refused.given("server.port")[1].value()), "'x'");
    now["server.tags"].get<List>().push_back("b");
    EXPECT_EQ(display(webd().load({})["server.tags"]), "['a']");
}

// Records as "LOGGER: MESSAGE".
std::vector<std::string> logged(const std::vector<Layer>& layers) {
    std::vector<std::string> lines;
    utils::set_sink([&](const utils::LogRecord& record) {
        const bool usual = record.level() == utils::Level::warning;
        lines.push_back(record.logger() + (usual ? "" : " " + std::string(name_of(record.level()))) + ": " +
                        record.message());
    });
    utils::logger("velmora").set_level(utils::Level::info);
    webd().load(layers);
    utils::logger("velmora").set_level(std::nullopt);
    utils::set_sink(nullptr);
    return lines;
}

TEST(Layers, AreLoggedWithTheirPlaces) {
    const Layer one = text("log: 1\nserver: {port: 0, prot: 1}", "f");
    EXPECT_THAT(logged({one}),
                ElementsAre("velmora.config.spec: Ignoring server.port in the config file: Invalid value for "
                            "server.port: 0. It must be at least 1 and at most 65535; keeping the default 8080",
                            "velmora.config.spec: Ignoring the log section of the config file: it is not a mapping",
                            "velmora.app: f:2:19: Ignoring server.prot in the config file: there is no such key; did "
                            "you mean 'port'?"));
    EXPECT_THAT(logged({text("server: {port: 8.5}", "f")}),
                ElementsAre("velmora.app info: f:1:16: advice: server.port in the config file: 8.5 is taken as 8"));
    EXPECT_THAT(
        logged({one, sets({"server.port=x"}, {.on_fault = OnFault::warn})}),
        ElementsAre("velmora.config.spec: f:2:16: Ignoring server.port in f: Invalid value for server.port: 0. It must "
                    "be at least 1 and at most 65535; keeping the default 8080",
                    "velmora.config.spec: f:1:6: Ignoring the log section of f: it is not a mapping",
                    "velmora.app: f:2:19: Ignoring server.prot in f: there is no such key; did you mean 'port'?",
                    HasSubstr("velmora.config.spec: Ignoring server.port from the command line")));
}

// A declaration of one section, whose keys are "a", "b", ...
RecordType config_of(std::vector<std::pair<DeclaredType, FieldDetails>> keys) {
    std::vector<FieldDecl> fields;
    for (auto& [type, details] : keys)
        fields.emplace_back(std::string(1, static_cast<char>('a' + fields.size())), type, std::move(details));
    const RecordType kind("S", std::move(fields));
    return {"Config", {{"s", kind, section(kind, "Doc.", {.restart = Restart::none})}}};
}

TEST(Layers, AskForWhatIsRequiredAndCheckAcrossKeys) {
    const Declaration two(
        config_of({{int_type, required(with_traits(setting(nullptr, "First.", {.env = "A"}), {.unit = "apples"}))},
                   {int_type, setting(5, "Second.")}}));
    const Declaration ordered = two.check({"s.b", "s.a"}, [](const Values& now) {
        return now.get<int>("s.a") < now.get<int>("s.b") ? "" : "out of order";
    });
    using Faults = std::vector<std::string>;
    EXPECT_EQ(load(ordered, {}).faults, Faults{"error: s.a must be given a value, in $A for one: First."});
    EXPECT_THAT(load(ordered, {text("s: {a: x}", "f")}).faults,
                ElementsAre(testing::EndsWith("got 'x') (s.a counts apples)"),
                            "error: s.a must be given a value, in $A for one: First."));
    EXPECT_THAT(load(ordered, {text("s: {a: 4}", "g\x1b"), text("s: {a: x}", "f")}).faults,
                ElementsAre(HasSubstr("; keeping 4 from g\\x1b:1:8 (")));
    const Loaded both = load(ordered, {text("s: {a: 9, b: 3}", "f\x1b")});
    EXPECT_EQ(both.keys, Faults{"s.b"});
    EXPECT_EQ(both.printed,
              "f\\x1b:1:14: error: s.b, s.a: out of order\n    1 | s: {a: 9, b: 3}\n      |              ^\n"
              "      = s.b is 3 from f\\x1b:1:14, s.a is 9 from f\\x1b:1:8\n");
    EXPECT_EQ(load(ordered, {text("s: {a: 4}", "f")}).faults, Faults{});
    EXPECT_EQ(load(ordered, {text("s: {a: 4}", "f"), sets({"s.b=x"})}).sources, Faults{"the command line"});
    EXPECT_EQ(load(ordered, {text("s: {a: 4, b: 5}", "f"), sets({"s.b=3"})}).faults,
              Faults{"f:1:8: error: s.b, s.a: out of order (s.b is 3 from the command line, s.a is 4 from f:1:8)"});
    EXPECT_EQ(load(ordered, {text("s:\n  a: 9", "f")}).faults,
              Faults{"f:2:6: error: s.b, s.a: out of order (s.b is 5 by default, s.a is 9 from f:2:6)"});
    EXPECT_THAT(load(ordered.check({"s.a"}, [](const Values&) { return ""; })
                         .check({"s.a"}, [](const Values&) { return "never right\n"; }),
                     {text("s: {a: 5}", "f")})
                    .faults,
                ElementsAre(HasSubstr("out of order"), HasSubstr("s.a: never right\\n (")));
    for (const std::string unit :
         {"bytes", "nanoseconds", "microseconds", "milliseconds", "seconds", "minutes", "hours", "days"})
        EXPECT_EQ(Declaration(config_of({{float_type, setting(1.0, "In " + unit + ".")}})).key("s.a").unit(), unit);
    EXPECT_THROW((void)two.check({"s.c"}, nullptr), ConfigKeyError);
    EXPECT_THROW((void)two.check({"s.a"}, nullptr), TypeError);
    EXPECT_THROW((void)two.check({}, nullptr), ValueError);
}

TEST(Layers, TakeOldNamesAndSayTheNewOnes) {
    const Folder folder;
    folder.write("one/s.old", "7");
    folder.write("one/s.c", "2");
    folder.write("two/s.a", "6");
    folder.write("two/s.older", "5");
    const auto formerly = [](std::vector<std::string> names) { return KeyTraits{.formerly = std::move(names)}; };
    const Declaration renamed(config_of({{int_type, with_traits(setting(1, "A."), formerly({"old", "older"}))},
                                         {int_type, with_traits(setting(2, "B."), formerly({"c"}))}}));
    const auto variables = [](std::map<std::string, std::string> all) {
        return environment({.prefix = "W_", .variables = std::move(all)});
    };
    const std::tuple<std::vector<Layer>, const char*, std::vector<std::string>> cases[] = {
        {{text("s: {old: 7, zz: 0}", "f")},
         "7",
         {"f:1:5: advice: s.old in the config file is called s.a now: rename it", "f:1:13: Ignoring s.zz"}},
        {{credentials({.directory = folder.path("one")})},
         "7",
         {"advice: " + folder.path("one/s.old in "), "advice: " + folder.path("one/s.c in ")}},
        {{credentials({.directory = folder.path("two")})}, "6", {"advice: " + folder.path("two/s.older in ")}},
        {{text("s: {old: 7, b: 1, a: 8}", "f"), text("", "g")},
         "8",
         {"f:1:5: advice: s.old in f is called s.a now, which is given as well: remove it"}},
        {{text("s: {older: 7, old: x}", "f")},
         "1",
         {"f:1:15: advice: s.old in", "f:1:20: Ignoring s.a in the config file: Cannot set",
          "f:1:5: advice: s.older in"}},
        {{text("s: {a: 7}", "f"), variables({{"W_S_OLDER", "8"}})},
         "8",
         {"advice: $W_S_OLDER in the environment is called s.a now: rename it"}},
        {{variables({{"W_S_OLD", "x"}})}, "1", {"advice: $W_S_OLD in the", "Ignoring s.a from $W_S_OLD: Cannot set"}},
        {{variables({{"W_S_OLD", "8"}, {"W_S_A", "9"}})},
         "9",
         {"advice: $W_S_OLD in the environment is called s.a now, which"}},
        {{sets({"s.b=1", "s.old=7"})}, "7", {"advice: s.old in the command line is called s.a now: rename it"}},
        {{sets({"s.old=7", "s.a=6"})}, "6", {"advice: s.old in the command line is called s.a now, which"}},
    };
    for (const auto& [layers, value, faults] : cases) {
        const Loaded loaded = load(renamed, layers);
        EXPECT_EQ(display((*loaded.values)["s.a"]), value);
        ASSERT_EQ(loaded.faults.size(), faults.size()) << utils::joined(loaded.faults, "\n");
        for (std::size_t i = 0; i < faults.size(); ++i) EXPECT_THAT(loaded.faults[i], testing::StartsWith(faults[i]));
    }
    const Declaration clashing(
        config_of({{int_type, with_traits(setting(1, "A."), formerly({"x-z"}))},
                   {int_type, with_traits(setting(1, "B."), formerly({"x_z", "c-file"}))},
                   {int_type, with_traits(setting(1, "C."), {.secret = true, .formerly = {"d"}})}}));
    const Loaded clashed = load(clashing, {variables({{"W_S_D_FILE", folder.path("one/s.old")}})});
    EXPECT_THAT(clashed.keys, ElementsAre("s.a", "s.b", "s.b", "s.c", "s.c"));
    EXPECT_THAT(clashed.sources, ElementsAre("$W_S_X_Z", "$W_S_X_Z", "$W_S_C_FILE", "$W_S_C_FILE", "$W_S_D_FILE"));
    folder.write("three/s.old/file", "");
    EXPECT_EQ(load(renamed, {credentials({.directory = folder.path("three")})}).keys.front(), "s.a");
    EXPECT_THAT(load(clashing, {sets({"s.a=1", "s.x_z=2"})}).faults, ElementsAre(HasSubstr("rename it")));
}

// A declaration with secrets: s.token and s.codes, and all of the raw section vault.
const Declaration& with_secrets() {
    const auto secret = [](const char* variable, std::vector<std::string> formerly) {
        return [=](const ConfigValue& value) {
            return with_traits(setting(value, "Doc.", {.env = variable}), {.secret = true, .formerly = formerly});
        };
    };
    static const RecordType s("S", {{"c", int_type, setting(1, "Open.")},
                                    {"token", str_type, secret("TOKEN", {"keys", "key"})("")},
                                    {"pin", int_type, secret("PIN", {})(7)},
                                    {"codes", list_of(str_type), optional(secret("CODES", {})(List{"SECRET"}))},
                                    {"d", str_type, setting("a", "Open.", {.choices = {"a", "b"}})}});
    static const RecordType log("Log", {{"level", int_type, setting(1, "Level.")}});
    static const RecordType config("Config", {{"s", s, section(s, "Doc.", {.restart = Restart::none})},
                                              raw("vault", "Doc.", {.restart = Restart::none, .secret = true}),
                                              raw("hosts", "Doc.", {.restart = Restart::none}),
                                              {"log", log, section(log, "Doc.", {.restart = Restart::none})}});
    static const Declaration declaration(config);
    return declaration;
}

// All that is said of a load, and of the values that it comes to.
std::string said(const std::vector<Layer>& layers, const Declaration& declaration = with_secrets()) {
    const Loaded loaded = load(declaration, layers);
    std::string all = utils::joined(loaded.faults, "\n") + "\n" + loaded.printed + utils::joined(loaded.keys);
    if (!loaded.values) return all;
    for (const Explanation& each : explain(*loaded.values)) all += text_of(each);
    return all + text_of(plan(declaration.load({}), *loaded.values)) + loaded.values->shown("s.token");
}

TEST(Secrets, SlipOutOfNoTextWithOneMistakeInIt) {
    const std::string bases[] = {
        "s: {c: x, token: SECRETSECRET, d: y}\nlog: {level: x}\n",
        "{\"s\": {\"c\": \"x\", \"token\": \"SECRETSECRET\", \"d\": \"y\"}, \"log\": {\"level\": \"x\"}}\n",
        "s:\n  c: x\n  token: SECRETSECRET\n  d: y\nlog:\n  level: x\n",
        "log: {level: x}\ns:\n  c:\n  token: |\n    SECRETSECRET\n  codes: [a, 'SECRETSECRET',\n   b]\n  d: y\nvault: "
        "{x: SECRETSECRET}\n",
    };
    const std::string signs = " ,:={}[]\"'#&*!|>-?\n\t\\x";
    for (const std::string& base : bases) {
        for (std::size_t at = 0; at < base.size(); ++at) {
            std::vector<std::string> edits = {base.substr(0, at) + base.substr(at + 1), base.substr(0, at)};
            for (const char sign : signs) {
                edits.push_back(base.substr(0, at) + sign + base.substr(at));
                edits.push_back(base.substr(0, at) + sign + base.substr(at + 1));
            }
            for (const std::string& edit : edits) {
                const std::string all = said({text(edit, "f")});
                ASSERT_EQ(all.find("SECRET"), std::string::npos) << edit << "\n" << all;
            }
        }
    }
}

TEST(Secrets, HideNothingButWhatMayBeOne) {
    const Folder folder;
    for (const char* name : {"s.token", "s.pin", "s.c"})
        folder.write(name, name == std::string("s.token") ? "\n" : "SECRET");
    folder.write("file", "SECRET");
    const auto variables = [](std::map<std::string, std::string> all) { return environment({.variables = all}); };
    struct Row {
        Layer layer;
        std::vector<const char*> parts;  // Of what is said.
    };
    const Row rows[] = {
        {text("s: {token:SECRET}", "f"),
         {"s.token... in", "a space behind the \":\"", " | s: {token\n", " |     ^~~~~\n"}},
        {text("s: {token=SECRET}", "f"), {"s.token... in", "in place of the \"=\""}},
        {text("s: {{token: SECRET}}", "f"), {"s.(secret) in", "there is no such key\n", " | s: {\n"}},
        {text("s: {token: SEC,SECRET, 12: 1}", "f"), {"1:16: Ignoring s.(secret) in", "1:24: Ignoring s.(secret) in"}},
        {text("s:\n  c:\n    token: SECRET\n  d: |\n    SECRET", "f"),
         {"s.c, which is not shown", "s.d, which", "be an int", "refused  (secret)"}},
        {text("s:\n  d: x key SECRET\n  c: {token: SECRET}\nlog: {level: [[SECRET]]}", "f"),
         {"s.c, which is not", "s.d, which is not", "log.level, which is not"}},
        {text("s:\n  token: |\n    SECRET\n  c: x\n  codes:\n  - SECRET\nlog: {level: x}", "f"),
         {"4 |   c: x\n", "7 | log: {level: x}\n"}},
        {values(Mapping{{"s", Mapping{{"c", Mapping{{"token", "SECRET"}}}}}}, "v"), {"s.c, which is not shown"}},
        {text("s:\n  'tokn'\t: SECRET\n  d: x", "f"),
         {"did you mean 'token'?", "2 |   'tokn'\n", "3 |   d: x\n      |      ^\n"}},
        {text("log:\n  token: SECRET", "f"), {"Ignoring log.token", "did you mean 's.token'?", "2 |   token\n"}},
        {text("token: SECRET", "f"), {"Ignoring token in", "did you mean 's.token'?"}},
        {text("s: {pin: SECRET, c: x}", "f"),
         {"s.pin, a secret that is not shown", "1 | s: {pin: \n      |          ^\n", "s.c='x'"}},
        {text("s:\n  pin: # SECRET", "f"), {"s.pin, a secret: it is empty", "a value that has a # needs quotes"}},
        {text("s:\n  pin:\n", "f"),
         {"it is empty. It must be an int", "write a value, or take the key out", "refused  None",
          "2 |   pin:\n      |       ^\n"}},
        {text("s: {pin: ''}", "f"), {"s.pin, a secret: it is empty"}},
        {text("s: SECRET", "f"), {"it is not a mapping", "1 | s: \n"}},
        {text("- SECRET", "f"), {"it is a list, not a mapping of sections\n"}},
        {text("log:\n  level: x ]\n  a: b: c", "f"), {"3 |   a: b: c\n"}},
        {text("s: {}\rlog:\r# SECRET\r\n  level: ]", "f"), {"4 |   level: ]\n"}},
        {text("log: {a: {token: SECRET ]", "f"), {"f:1:25: error: "}},
        {text("s:\n  c: x: SECRET", "f"), {"f:2:"}},
        {text("log:\n  level: a\n vault: {x: SECRET}", "f"), {"f:3:"}},
        {text("log: {level: 1}s: {key: \"SECRET\"}", "f"), {"f:1:"}},
        {text("vault:\n  x: y: SECRET", "f"), {"f:2:"}},
        {text("x: 1\n? SECRET\n: 1\n? SECRET\n: 1", "f"), {"f:4:"}},
        {text("{vault: [SECRET], log: {level: x}}", "f"), {"vault: None -> (secret), takes", "log.level='x'"}},
        {text("hosts: [open]\nlog:\n  level:\n    x", "f"), {"hosts: None -> ['open']", "log.level='x'"}},
        {variables({{"TOKEN", "\"SECRET\""}, {"PIN", "SECRET"}}),
         {"advice: s.token from $TOKEN: the quotes", "s.token: (secret) -> (secret), takes",
          "s.pin from $PIN: Invalid value for s.pin, a secret"}},
        {variables({{"PIN_FILE", folder.path("file")}, {"TOKEN_FILE", "SECRET"}}),
         {"s.pin, a secret", "error: $TOKEN_FILE: "}},
        {credentials({.directory = folder.path("")}),
         {"Ignoring s.c from", "s.c, a secret that is", "refused  (secret)"}},
        {sets({"s.token-SECRET"}), {"'s.token' from the command line: write it as"}},
        {sets({"s.keysSECRET"}), {"'s.keys' from"}},
        {sets({"s.tokn-SECRET", "s.tokn-Z9:SECRET="}), {"'' from the command line: write", "'s.tokn-Z9' from"}},
        {sets({"s.token:SECRET="}), {"'s.token' from", "write it as s.token=VALUE"}},
        {sets({"s.token=SECRET", "s.key=SECRET"}), {"it is secret, and this can be seen by everyone"}},
        {sets({"s.c = 26"}), {"'s.c' from the command line: write it as s.c=VALUE"}},
    };
    for (const auto& [layer, parts] : rows) {
        const std::string all = said({layer});
        EXPECT_EQ(all.find("SECRET"), std::string::npos) << all;
        for (const char* part : parts) EXPECT_THAT(all, HasSubstr(part));
    }
    const Values now =
        with_secrets().load({text("s: {token: SECRET, pin: 7.9, codes: [a]}\nvault: SECRET\nlog: {level: 2}", "f")});
    const Values& known = now;
    EXPECT_EQ(load(with_secrets(), {variables({{"TOKEN", "x"}, {"TOKEN_FILE", "/"}})}).keys.size(), 1U);
    EXPECT_TRUE(known.faults().empty() && with_secrets().section("vault").is_secret());
    const Values refusing = with_secrets().load({text("s: {pin: SECRET}", "f")}, {.report = [](const Fault&) {}});
    const auto shown = [](auto ask) { return test::outcome([&] { return config::display(ask()); }); };
    for (const std::string& refused :
         {shown([&] { return known["s.token"]; }),
          shown([&] { return ConfigValue(known.get<std::string>("s.token")); }),
          shown([&] { return known.given("s.token")[0].value(); }),
          shown([&] { return refusing.given("s.pin")[0].value(); }), shown([&] { return known.record("s"); }),
          shown([&] { return known.raw("vault").value(); }),
          shown([&] { return with_secrets().key("s.pin").coerce("SECRET"); }),
          shown([&] { return with_secrets().load({}).raw("vault").value(); })})
        EXPECT_THAT(refused,
                    testing::AllOf(testing::StartsWith("ConfigKeyError: "), testing::Not(HasSubstr("SECRET"))));
    EXPECT_EQ(known.shown("s.token") + known.raw("vault").shown() + with_secrets().key("s.pin").shown(7),
              "(secret)(secret)(secret)");
    EXPECT_EQ(display(known.reveal("s.token")) + display(known.raw("vault").reveal()), "'SECRET''SECRET'");
    EXPECT_EQ(display(known.reveal_record("s")), "S(c=1, token='SECRET', pin=7, codes=['a'], d='a')");
    EXPECT_EQ(display(known.record("log")) + display(known.given("s.codes")[0].reveal()), "Log(level=2)['a']");
    EXPECT_EQ(display(with_secrets().key("s.token").coerce("SECRET")), "'SECRET'");
}

TEST(Layers, SayWhatOperatorsMeant) {
    const auto variables = [](const char* name, const char* value) {
        return environment({.prefix = "W_", .variables = {{{name, value}}}});
    };
    // What the one fault says; "" for none.
    const std::pair<Layer, const char*> rows[] = {
        {text("port: 26", "f"), "did you mean 'server.port'?"},
        {text("server.port: 26", "f"), "write port under server"},
        {text("log: {server.port: 26}", "f"), "write port under server"},
        {text("log: {port: 26}", "f"), "did you mean 'server.port'?"},
        {sets({"port=26"}), "there is no key 'port'; did you mean 'server.port'?"},
        {sets({"server:port=26"}), "write it as server.port=VALUE"},
        {sets({"server.port:26"}), "write it as server.port=VALUE"},
        {sets({" server.port = 26"}), "write it as server.port=VALUE"},
        {variables("W_SERVER_NAMES", "x"), "did you mean $W_SERVER_NAME?"},
        {variables("W_LOG_LEVEL_FILE", "x"), "log.level is none"},
        {variables("W_SERVER_NAME", "\"x\""), "the quotes around it are part of the value"},
        {sets({"server.tags='a, b'"}), "the quotes around it are part of the value"},
        {variables("W_SERVER_NAME", "\"x'"), ""},
        {variables("W_SERVER_NAME", "'"), ""},
        {variables("W_SERVER_NAMES", ""), ""},
        {variables("SERVER_NAMES", "x"), ""},
        {environment({.variables = {{{"SERVER_NAME", "'x'"}}}}), ""},
        {variables("W_LOG_LEVEK", "udp://10.0.0.1:80"), ""},
    };
    for (const auto& [layer, meant] : rows) {
        const std::vector<std::string> faults = faults_of({layer});
        ASSERT_EQ(faults.size(), *meant == '\0' ? 0U : 1U) << meant << utils::joined(faults);
        for (const std::string& fault : faults) EXPECT_THAT(fault, HasSubstr(meant));
    }
    const Declaration like_services(config_of(
        {{int_type, with_traits(setting(1, "A."), {.formerly = {"service-hosts", "service-ports", "port-9"}})}}));
    for (const char* name : {"W_S_SERVICE_HOST", "W_S_SERVICE_PORT", "W_S_PORT_80"})
        EXPECT_TRUE(load(like_services, {variables(name, "1")}).faults.empty());
    EXPECT_THAT(faults_of({text("log: {server: 1}", "f")})[0], testing::EndsWith("there is no such key"));
    const auto meant = [](const char* name) {
        return test::outcome([&] {
            std::string labels;
            for (const Key& key : webd().keys(name)) labels += key.label() + " ";
            return labels;
        });
    };
    EXPECT_EQ(meant("log") + meant("port") + meant("log.level"), "log.level server.port log.level ");
    EXPECT_EQ(meant("leve"), "ConfigKeyError: there is no section 'leve'");
    EXPECT_THAT(meant("hosts"), HasSubstr("read as a whole"));
    EXPECT_THAT(test::outcome([] { return webd().load({})["server"]; }),
                testing::EndsWith(
                    "its keys are 'server.port', 'server.limit', 'server.name', 'server.keep-alive', 'server.tags'"));
}

TEST(Layers, AreLookedAtAloneAndExplainedThoughTheyFail) {
    const Declaration needing(
        config_of({{int_type, required(setting(nullptr, "First."))}, {int_type, setting(5, "Second.")}}));
    const Declaration checked = needing.check({"s.b"}, [](const Values&) { return "never right"; });
    const Layer wrong = text("s: {b: x, d: 1}", "f");
    const std::vector<Fault> faults = checked.faults_of(wrong);
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(one_line(faults[0]).substr(0, 38), "f:1:8: Ignoring s.b in the config file");
    EXPECT_THAT(faults[0].message, testing::EndsWith("keeping the default 5"));
    EXPECT_THAT(faults[1].message, testing::EndsWith("did you mean 'a'?"));
    EXPECT_TRUE(checked.faults_of(text("s: {b: 1}", "f")).empty());
    EXPECT_EQ(checked.faults_of(text("s: {", "f"))[0].severity, Severity::error);
    for (const auto& [yaml, b] : {std::pair("s: {b: 7}", "7"), {"s: {a: 1, b: 8}", "8"}, {"s: {b: x}", "5"}}) {
        try {
            checked.load({text(yaml, "f"), sets({"s.b=y"}, {.on_fault = OnFault::warn})});
            ADD_FAILURE();
        } catch (const LoadError& error) {
            const LoadError copy = error;
            EXPECT_EQ(explain(copy.values(), "s.b").value, b);
            EXPECT_EQ(explain(copy.values(), "s.b").refused.front().value, "'y'");
            EXPECT_EQ(copy.faults().size(), copy.values().faults().size());
        }
    }
}

std::string random_text(std::mt19937& random) {
    const char* const texts[] = {"", "a", "1", "70000", "x, y", "true", "1.5", "abc", "-3", "None"};
    return texts[random() % std::size(texts)];
}

ConfigValue random_value(std::mt19937& random, int depth = 0) {
    switch (random() % (depth < 2 ? 8 : 6)) {
        case 0:
            return nullptr;
        case 1:
            return random() % 2 == 0;
        case 2:
            return static_cast<int>(random() % 200) - 100;
        case 3:
            return static_cast<double>(random() % 100) / 8;
        case 4:
            return test::inf;
        case 5:
            return random_text(random);
        case 6:
            return List{random_value(random, depth + 1), random_value(random, depth + 1)};
        default:
            return Mapping{{random_text(random), random_value(random, depth + 1)},
                           {"a", random_value(random, depth + 1)}};
    }
}

TEST(Layers, OneFileIsReadAsTheComponentReadsIt) {
    std::vector<std::string> warnings;
    utils::set_sink([&](const utils::LogRecord& record) {
        if (record.logger() == "velmora.config.spec") warnings.push_back(record.message());
    });
    std::mt19937 random(7);
    const DeclaredType types[] = {bool_type, int_type, float_type, str_type, list_of(str_type)};
    const ConfigValue defaults[] = {true, 7, 1.5, "abc", List{"x"}};
    std::size_t refused = 0;
    for (int run = 0; run < 3000; ++run) {
        std::vector<std::pair<DeclaredType, FieldDetails>> keys;
        Mapping data;
        std::vector<std::size_t> kinds;
        for (int i = 0; i < 4; ++i) {
            const auto kind = random() % std::size(types);
            SettingOptions options;
            if (kind == 3 && random() % 2 == 0) options.choices = {"abc", "1"};
            if ((kind == 1 || kind == 2) && random() % 2 == 0) options.bounds = Bound(-50, 50);
            keys.emplace_back(types[kind], setting(defaults[kind], "Doc.", options));
            kinds.push_back(kind);
        }
        for (const char name : {'d', 'b', 'a', 'c'}) {
            ConfigValue value = random_value(random);
            const auto* list = value.get_if<List>();
            const auto kind = kinds[static_cast<std::size_t>(name - 'a')];
            // A list or a mapping where a text belongs is taken by the component alone.
            if (kind == 3 && (list != nullptr || value.get_if<Mapping>() != nullptr)) value = nullptr;
            if (kind == 4 && list != nullptr) value = List{random_text(random), 1.5};
            if (random() % 4 != 0) data.set(std::string(1, name), value);
        }
        const ConfigValue section = random() % 10 == 0 ? random_value(random, 2) : ConfigValue(data);
        const RecordType config = config_of(std::move(keys));
        const Declaration declaration(config);
        warnings.clear();
        const Record expected = sections_of(config).front().read(section);
        const std::vector<std::string> expected_warnings = std::move(warnings);
        refused += expected_warnings.size();
        warnings.clear();
        EXPECT_EQ(declaration.load({values(Mapping{{"s", section}}, "f")}).record("s"), expected);
        EXPECT_EQ(warnings, expected_warnings);
    }
    EXPECT_GT(refused, 1000U);
    utils::set_sink(nullptr);
}

TEST(Names, AreLookedUpAndGuessed) {
    const Values now = webd().load({text("hosts:\n  a: &a [1, x]\nserver: {tags: *a}", "f")});
    EXPECT_EQ(webd().key("server.keep-alive").name(), "keep-alive");
    EXPECT_EQ(webd().section("log").keys().size(), 1U);
    EXPECT_EQ(test::outcome([&] { return now["server.prot"]; }),
              "ConfigKeyError: there is no key 'server.prot'; did you mean 'server.port'?");
    EXPECT_EQ(test::outcome([&] { return now.record("sever"); }),
              "ConfigKeyError: there is no section 'sever'; did you mean 'server'?");
    EXPECT_THROW(now.raw("log"), TypeError);
    const Raw& hosts = now.raw("hosts");
    const auto& list = hosts.value().find("a")->get<List>();
    EXPECT_EQ(one_line(hosts.fault(list, 1, "no\nport")), "f:2:13: no\\nport");
    EXPECT_EQ(display(hosts.value()), "{'a': [1, 'x']}");
    const Values bare = webd().load({values(Mapping{{"hosts", Mapping{{"a", List{1}}}}}, "v")});
    const auto& in_bare = bare.raw("hosts").value().get<Mapping>();
    EXPECT_EQ(one_line(bare.raw("hosts").fault(in_bare, *in_bare.begin(), "bad")), "bad");
    EXPECT_EQ(one_line(bare.raw("hosts").fault(in_bare.find("a")->get<List>(), 0, "bad")), "bad");
    EXPECT_EQ(display(webd().load({text("hosts: 1", "f"), text("hosts: ~", "g")}).raw("hosts").value()), "1");
    EXPECT_EQ(one_line(hosts.fault(hosts.value().get<Mapping>(), *hosts.value().get<Mapping>().begin(), "bad")),
              "f:2:9: bad");
}

TEST(Explanations, SayWhatHoldsAndWhy) {
    const auto load = [](const std::vector<Layer>& layers) {
        return webd().load(layers, {.report = [](const Fault&) {}});
    };
    const Layer variables = environment({.variables = {{{"PORT", "9090"}}}});
    const Values now = load({text("server: {port: 80}\nhosts: 1", "b"), variables, text("server: {port: 0}", "a\x1b")});
    EXPECT_EQ(text_of(explain(now, "server.port")),
              "server.port = 9090\n"
              "  Port. An int, at least 1 and at most 65535.\n"
              "  from     $PORT\n"
              "  hides    80  b:1:16\n"
              "  refused  0  a\\x1b:1:16: Invalid value for server.port: 0. It must be at least 1 and at most 65535\n"
              "  default  8080\n"
              "  a change takes a restart of the daemon\n");
    EXPECT_EQ(text_of(explain(now).back()),
              "log.level = 'info'\n  Level. A str, one of: debug, info.\n  from     the default\n  a change takes no "
              "restart\n");
    const Plan all = plan(now, load({text("log: {level: debug}\nhosts: 2", "f"), variables}));
    EXPECT_EQ(text_of(all), "log.level: 'info' -> 'debug', takes no restart\nhosts: 1 -> 2, takes no restart\n");
    EXPECT_EQ(all.restart, Restart::none);
    EXPECT_EQ(plan(now, load({text("hosts: 1", "f")})).restart, Restart::daemon);
    EXPECT_EQ(text_of(plan(now, now)), "Nothing changes.\n");
    const auto named = [&](char last) {
        return load({text("server: {name: " + test::repeated("n", 99) + last + "}", "f")});
    };
    const Plan further = plan(named('a'), named('b'));
    EXPECT_THAT(text_of(further), testing::EndsWith("nnn... (further on), takes a restart of the daemon\n"));
    EXPECT_EQ(further.changes[0].after, display(named('b')["server.name"]));
    EXPECT_THAT(text_of(explain(named('a'), "server.name")), HasSubstr("nnn...\n  Name."));
    const auto with_hosts = [&](const char* hosts) { return load({text("hosts: " + std::string(hosts), "f")}); };
    EXPECT_EQ(plan(with_hosts("{a: 1, b: 2}"), with_hosts("{b: 2, a: 1}")).changes.size(), 1U);
    EXPECT_TRUE(plan(with_hosts(".nan"), with_hosts(".nan")).changes.empty());
    const Layer shared = values(Mapping{{"hosts", List{test::nan}}}, "v"),
                bare = values(Mapping{{"hosts", test::nan}}, "v");
    for (const Layer& layer : {shared, bare, text("hosts: [.nan]", "f")})
        EXPECT_TRUE(plan(load({layer}), load({layer})).changes.empty());
    EXPECT_EQ(plan(with_hosts("[1, .nan]"), with_hosts("[1.0, .nan]")).changes.size(), 1U);
    EXPECT_THROW(plan(now, Declaration(config_of({})).load({})), ValueError);
}

TEST(Names, AreGuessedForTheFirstTwentyAlone) {
    std::string many = "server: {";
    for (char c = 'a'; c <= 'u'; ++c) many += std::string("port") + c + ": 1, ";
    const Folder folder;
    folder.write("server.limits", "1");
    const std::vector<std::string> faults =
        faults_of({text(many + "}", "f"), environment({.prefix = "W_", .variables = {{{"W_SERVER_NAMES", "x"}}}}),
                   credentials({.directory = folder.path("")}), sets({"server.prot=1"}, {.on_fault = OnFault::warn})});
    EXPECT_THAT(faults[19], HasSubstr("portt in f: there is no such key; did you mean 'port'?"));
    EXPECT_THAT(faults[20], testing::EndsWith("portu in f: there is no such key"));
    EXPECT_THAT(faults[21], testing::EndsWith("there is no such key"));
}

TEST(Faults, CutWhatHoldsUnlessOneFileIsAlone) {
    const std::string wide(300, 'x'), cut = wide.substr(0, 20);
    const Declaration long_default(config_of({{str_type, setting(wide, "Doc.")}}));
    const Layer null = text("s: {a: ~}", "f");
    EXPECT_THAT(load(long_default, {null}).faults,
                ElementsAre(testing::EndsWith("keeping the default '" + wide + "'")));
    EXPECT_THAT(load(long_default, {null, sets({})}).faults,
                ElementsAre(AllOf(HasSubstr("keeping the default '" + cut), testing::Not(HasSubstr(wide)))));
    const Declaration lists(config_of({{list_of(str_type), setting(List{wide}, "Doc.")}}));
    const auto given = [&](const std::string& value) { return text("s: {a: " + value + "}", "f"); };
    const LoadOptions silent = {.report = [](const Fault&) {}};
    Explanation all =
        explain(lists.load({given(wide + "b"), given("{" + wide + ": 1}"), given(wide + "c")}, silent), "s.a");
    EXPECT_THAT((std::vector{all.value, all.hidden[0].value, all.refused[0].value, all.default_value}),
                ElementsAre("['" + wide + "c']", "['" + wide + "b']", "{'" + wide + "': 1}", "['" + wide + "']"));
    all.pending = all.refused[0] = all.hidden[0];
    EXPECT_THAT(text_of(all), testing::Not(HasSubstr(wide)));
}

TEST(Faults, ShowTheLineOfABrokenFile) {
    EXPECT_EQ(load(webd(), {text("\xef\xbb\xbf# a\r\n# b\r# c\nlog: {\xc3\xbc ]: 1}\n# d\n", "f")}).printed,
              "f:4:9: error: this bracket closes none: remove it, or quote the text\n    4 | log: {\xc3\xbc ]: 1}\n    "
              "  |         ^\n");
    EXPECT_THAT(load(webd(), {text("\xef\xbb\xbf]", "f")}).printed, HasSubstr("    1 | ]\n      | ^\n"));
    EXPECT_THAT(load(webd(), {text("[1]", "f")}).printed, HasSubstr("    1 | [1]\n      | ^~~\n"));
    EXPECT_EQ(Excerpt("ab", 9, 1).marker(), "  ^");
    EXPECT_EQ(Excerpt("ab", 1, 9).marker(), " ^");
    EXPECT_EQ(text_of({.kind = FaultKind::of_application,
                       .severity = Severity::warning,
                       .key = "",
                       .source = "f",
                       .line = 1234567,
                       .column = 1,
                       .message = "?",
                       .excerpt = Excerpt("a", 0, 1)}),
              "f:1234567:1: ?\n1234567 | a\n        | ^\n");
}

TEST(Faults, ArePrintedAsCompilersDo) {
    const std::string half = test::repeated("\xc3\xa4", 60), wide = half + half;
    const std::string yaml = "server:\n  port: 70000 # up\n  limit:\t\"\xc3\xa4\\u00e4\" \nlog: {level: [1,\n 2]} \n" +
                             wide + ": 1\n" + "x-" + wide + ": 1\nhosts: {" + wide + ": '\xc2\x85', a: &a {}} #" +
                             half + "\n";
    std::ostringstream out;
    const Values now =
        webd().load({text(yaml, "f\x1b"), environment({.prefix = "W", .variables = {{{"PORT", "tcp://h"}}}})},
                    {.report = [&](const Fault& fault) { out << fault; }});
    const auto& hosts = now.raw("hosts").value().get<Mapping>();
    out << now.raw("hosts").fault(hosts, *hosts.begin(), "?");
    EXPECT_EQ(out.str(),
              "f\\x1b:2:9: Ignoring server.port in f\\x1b: Invalid value for server.port: 70000. It must be at least 1 "
              "and at most 65535; keeping the default 8080\n"
              "    2 |   port: 70000 # up\n"
              "      |         ^~~~~\n"
              "f\\x1b:3:10: Ignoring server.limit in f\\x1b: Cannot set server.limit='\xc3\xa4\xc3\xa4': expected int "
              "(expected a decimal integer, got '\xc3\xa4\xc3\xa4'); keeping the default None\n"
              "    3 |   limit:\\t\"\xc3\xa4\\u00e4\" \n"
              "      |           ^~~~~~~~~\n"
              "f\\x1b:4:14: Ignoring log.level in f\\x1b: Cannot set log.level=[1, 2]: expected str "
              "(expected a text, got [1, 2]); keeping the default 'info'\n"
              "    4 | log: {level: [1,\n"
              "      |              ^\n"
              "f\\x1b:6:1: Ignoring '" +
                  wide.substr(0, 152) +
                  "... in f\\x1b: there is no such section\n"
                  "    6 | " +
                  half +
                  "...: 1\n"
                  "      | ^" +
                  std::string(62, '~') +
                  "\n"
                  "Ignoring server.port from $PORT: Cannot set server.port='tcp://h': expected int (expected a decimal "
                  "integer, got 'tcp://h'); keeping the default 8080\n"
                  "      = container platforms set such variables for a service of this name: turn that off (in "
                  "Kubernetes with enableServiceLinks: false), or rename the service\n"
                  "f\\x1b:8:131: ?\n"
                  "    8 | ..." +
                  half.substr(4) + ": '\\x85', a: &a {}} #" + half.substr(0, 54) +
                  "...\n"
                  "      | " +
                  std::string(63, ' ') + "^~~~~~\n");
}

}  // namespace
}  // namespace velmora::app
