// The example program through its command line.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <tuple>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <velmora/utils/logging.hpp>
#include <velmora/yaml/yaml.hpp>

#include "settings.hpp"

namespace fs = std::filesystem;
using namespace velmora::config;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string content_of(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> lines_of(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

class CommandLine : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "webd-XXXXXX";
        folder = ::mkdtemp(name.data());
        ::setenv("webd", WEBD_CONFIG, 1);
    }
    void TearDown() override { fs::remove_all(folder); }

    // Runs a shell command in the folder of the test.
    Outcome run(const std::string& command) const {
        const std::string all = "cd " + folder.string() + " && { " + command + "; } >out 2>err";
        const int status = std::system(all.c_str());
        const Outcome outcome{WEXITSTATUS(status), content_of(folder / "out"),
                              content_of(folder / "err")};
        fs::remove(folder / "out");
        fs::remove(folder / "err");
        return outcome;
    }

    void write(const std::string& text) const {
        std::ofstream(folder / "f.yaml", std::ios::binary) << text;
    }
    std::string file() const { return content_of(folder / "f.yaml"); }

    fs::path folder;
};

using Template = CommandLine;

TEST_F(Template, TellsAllThatTheDeclarationDerives) {
    const std::string printed = run("\"$webd\" template").out;
    EXPECT_EQ(printed, content_of(GOLDEN_TEMPLATE));
}

TEST_F(Template, ReadsAsTheDefaultsWithoutAWarning) {
    std::vector<std::string> warnings;
    velmora::utils::set_sink(
        [&](const velmora::utils::LogRecord& record) { warnings.push_back(record.message()); });
    const ConfigValue file = velmora::yaml::load(run("\"$webd\" template").out);
    ASSERT_EQ(file.get<Mapping>().size(), sections_of(settings()).size());
    for (const Section& section : sections_of(settings())) {
        const ConfigValue& data = *file.get<Mapping>().find(section.name());
        EXPECT_EQ(data.get<Mapping>().size(), section.keys().size());
        EXPECT_EQ(section.read(data), section.kind().make());
    }
    velmora::utils::set_sink({});
    EXPECT_THAT(warnings, ElementsAre());

    const Outcome shown = run("\"$webd\" template | \"$webd\" show --file /dev/stdin");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.err, "");
    for (const std::string& line : lines_of(shown.out)) EXPECT_THAT(line, HasSubstr("  file  "));
}

using Show = CommandLine;

TEST_F(Show, TellsValuesAndWhereTheyComeFrom) {
    write("server:\n  host: 0.0.0.0\n  port: 80\ncache: {bypass: '/a, /b'}\n");
    const Outcome shown = run("WEBD_PORT=9_090 WEBD_TLS=on \"$webd\" show --file f.yaml");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.err, "");
    for (const char* line :
         {"server.host          file         '0.0.0.0'\n",
          "server.port          environment  9090\n", "server.workers       default      4\n",
          "tls.enabled          environment  True\n",
          "cache.bypass         file         ['/a', '/b']\n"}) {
        EXPECT_THAT(shown.out, HasSubstr(line));
    }
    EXPECT_EQ(lines_of(shown.out).size(), 20U);
}

TEST_F(Show, WarnsOfWhateverItIgnores) {
    const Outcome shown = run("WEBD_LOG_LEVEL=loud \"$webd\" show --file " SAMPLE);
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.out, HasSubstr("log.level            file         'debug'\n"));
    EXPECT_THAT(shown.out, HasSubstr("server.port          default      8080\n"));
    EXPECT_EQ(lines_of(shown.err).size(), 12U);
    for (const char* warning :
         {"Ignoring cahce in the config file: there is no such section; did you mean 'cache'?\n",
          "Ignoring cache.max_byts in the config file: there is no such key; did you mean "
          "'max_bytes'?\n",
          "Ignoring log.colour in the config file: there is no such key\n",
          "Ignoring the tls section of the config file: it is not a mapping\n",
          "Ignoring the environment variable WEBD_LOG_LEVEL for log.level: Invalid value for "
          "log.level: 'loud'. Must be one of: debug, error, info, warning; keeping 'debug'\n"}) {
        EXPECT_THAT(shown.err, HasSubstr(warning));
    }
}

TEST_F(Show, FailsWithoutAFileOfYaml) {
    write("server: [\n");
    const Outcome broken = run("\"$webd\" show --file f.yaml");
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.out, "");
    EXPECT_THAT(broken.err, testing::StartsWith("f.yaml:2:1: "));
    EXPECT_EQ(run("\"$webd\" show --file missing.yaml").status, 1);
    write("- not a mapping\n");
    EXPECT_THAT(run("\"$webd\" show --file f.yaml").err, HasSubstr("it is not a mapping"));
}

TEST_F(CommandLine, JudgesATextAlikeWhereverItComesFrom) {
    const std::string no_choice = "Must be one of: debug, error, info, warning";
    // The key, its variable, the text, and the value or why there is none.
    const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
        {"server.port", "WEBD_PORT", "8080", "8080"},
        {"server.port", "WEBD_PORT", "8_080", "8080"},
        {"server.port", "WEBD_PORT", " +443 ", "443"},
        {"server.port", "WEBD_PORT", "70000",
         "Invalid value for server.port: 70000. It must be at least 1 and at most 65535"},
        {"server.port", "WEBD_PORT", "80.5",
         "Cannot set server.port='80.5': expected int (expected a decimal integer, got '80.5')"},
        {"server.port", "WEBD_PORT", "",
         "Cannot set server.port='': expected int (expected a decimal integer, got '')"},
        {"tls.enabled", "WEBD_TLS", "yes", "True"},
        {"tls.enabled", "WEBD_TLS", "2",
         "Cannot set tls.enabled='2': expected bool ('2' is not one of true/false, yes/no, on/off, "
         "y/n, t/f, 1/0)"},
        {"log.sample_rate", "WEBD_LOG_SAMPLE_RATE", "1e-1", "0.1"},
        {"log.sample_rate", "WEBD_LOG_SAMPLE_RATE", "1e999",
         "Cannot set log.sample_rate='1e999': expected float ('1e999' is not a finite number)"},
        {"log.sample_rate", "WEBD_LOG_SAMPLE_RATE", "1.5",
         "Invalid value for log.sample_rate: 1.5. It must be at least 0 and at most 1"},
        {"log.level", "WEBD_LOG_LEVEL", "error", "'error'"},
        {"log.level", "WEBD_LOG_LEVEL", "yes", "Invalid value for log.level: 'yes'. " + no_choice},
        {"log.level", "WEBD_LOG_LEVEL", "", "Invalid value for log.level: ''. " + no_choice},
        {"server.host", "WEBD_HOST", "", "''"},
        {"server.host", "WEBD_HOST", "1e999", "'1e999'"},
        {"server.host", "WEBD_HOST", "it's #1: \"ü\"\t\\\n", R"('it\'s #1: "ü"\t\\\n')"},
        {"cache.bypass", "WEBD_CACHE_BYPASS", "[a, b]", "['[a', 'b]']"},
        {"cache.bypass", "WEBD_CACHE_BYPASS", "", "[]"},
        {"cache.max_bytes", "WEBD_CACHE_MAX_BYTES", "99999999999999999999", "99999999999999999999"},
    };
    for (const auto& [label, variable, text, verdict] : cases) {
        SCOPED_TRACE(label + "=" + text);
        const auto judged_by = [&, &label = label, &verdict = verdict](const std::string& origin,
                                                                       const Outcome& outcome) {
            SCOPED_TRACE(origin);
            if (outcome.err.empty()) {
                EXPECT_THAT(outcome.out, testing::ContainsRegex(label + " +" + origin + " +"))
                    << outcome.out;
                EXPECT_THAT(outcome.out, HasSubstr("  " + verdict + "\n"));
            } else {
                EXPECT_THAT(outcome.err, HasSubstr(verdict));
            }
        };
        ::setenv("text", text.c_str(), 1);
        judged_by("environment", run(variable + "=\"$text\" \"$webd\" show"));

        const Outcome set = run("\"$webd\" set " + label + "=\"$text\" --file set.yaml");
        if (set.status == 2) {
            EXPECT_EQ(set.err, verdict + "\n");
            EXPECT_FALSE(fs::exists(folder / "set.yaml"));
        } else {
            judged_by("file", run("\"$webd\" show --file set.yaml"));
        }
        fs::remove(folder / "set.yaml");

        std::string quoted = "\"";
        for (const char c : text) {
            if (c == '"' || c == '\\') quoted += '\\';
            quoted += c == '\n' ? std::string("\\n") : std::string(1, c);
        }
        const std::size_t dot = label.find('.');
        write(label.substr(0, dot) + ":\n  " + label.substr(dot + 1) + ": " + quoted + "\"\n");
        judged_by("file", run("\"$webd\" show --file f.yaml"));
    }
}

using Set = CommandLine;

TEST_F(Set, ChangesTheValueAlone) {
    const std::string header = "# Mine.\n\nserver:   # here\n";
    // The file, the pairs, and what the file then is.
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {header + "  port: 80  # why\n\n  x: [1]\ntls:\n", "server.port=81",
         header + "  port: 81  # why\n\n  x: [1]\ntls:\n"},
        {header + "  'port' : \"8\\\"0\" # why", "server.port=81 server.host=yes",
         header + "  'port' : 81 # why\n  host: \"yes\"\n"},
        {"server:\r\n  port: 80\r\n\r\n# TLS\r\ntls: {}\r\n", "server.workers=2 tls.enabled=1",
         "server:\r\n  port: 80\r\n  workers: 2\r\n\r\n# TLS\r\ntls: {enabled: true}\r\n"},
        {"\xef\xbb\xbfserver:\n    port: # none\n", "server.port=81 log.level=debug",
         "\xef\xbb\xbfserver:\n    port: 81 # none\nlog:\n  level: debug\n"},
        {"server: ~ # none yet\n  # soon\ntls: 1", "server.port=81",
         "server:  # none yet\n  port: 81\n  # soon\ntls: 1"},
        {"{server: {port: 80, tags: [a, 'b'] }, log: , tls: null}",
         "server.port=81 server.tags=x log.utc=0 tls.enabled=0 cache.ttl=1e16",
         "{cache: {ttl: 1e+16}, server: {port: 81, tags: [x] }, log: {utc: false} , "
         "tls: {enabled: false}}"},
        {"server:\n  tags:  # all\n    - a\n    - 'b''c'\n  port: 80\n", "server.tags=x,#y",
         "server:\n  tags:  # all\n    - x\n    - \"#y\"\n  port: 80\n"},
        {"server:\n  tags:\n  - a\n  port: 80\n",
         "server.tags=", "server:\n  tags:\n    []\n  port: 80\n"},
        {"a: &n 80\nserver:\n  port: *n\n", "server.port=81", "a: &n 80\nserver:\n  port: 81\n"},
        {"server:\n  host: 'two\n    lines'  # end\n", "server.host=one",
         "server:\n  host: one  # end\n"},
        {"server:\n  port: '8_080'  # as it is\n", "server.port=8080",
         "server:\n  port: '8_080'  # as it is\n"},
        {"# Nothing yet.\n", "server.port=81", "# Nothing yet.\nserver:\n  port: 81\n"},
    };
    for (const auto& [before, pairs, after] : cases) {
        write(before);
        const Outcome set = run("\"$webd\" set " + pairs + " --file f.yaml");
        EXPECT_EQ(set.err, "");
        EXPECT_EQ(set.status, 0);
        EXPECT_EQ(file(), after);
    }
}

TEST_F(Set, RefusesAndChangesNothing) {
    const std::string good = "server:\n  port: 80\n";
    // The file, the pairs, and what the message says.
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {good, "server.port=81 log.level=loud", "Invalid value for log.level: 'loud'"},
        {good, "server.port=81 servr.port=82", "no section 'servr'; did you mean 'server'?"},
        {good, "server.prot=81", "no key of server 'prot'; did you mean 'port'?"},
        {good, "server.port", "Expected SECTION.KEY=VALUE, got 'server.port'"},
        {good, "server.port=81 server.port=82", "server.port is given twice"},
        {good, "log.file=\"$(printf '\\377')\"", "is no UTF-8"},
        {"server: [\n", "server.port=81", "f.yaml:2:1: "},
        {"server: &s\n  port: 80\nother: *s\n", "server.port=81", "would not differ in it alone"},
        {"a: &s {port: 80}\nserver: *s\n", "server.port=81", "its section is an alias"},
        {"server: 5\n", "server.port=81", "its section is not a mapping"},
        {"- 5\n", "server.port=81", "the file is not a mapping"},
        {"server:\n  port: &p 80\n", "server.port=81", "it has an anchor or a tag"},
        {"server:\n  port: !!str\n", "server.port=81", "it has an anchor or a tag"},
        {"server:\n  host: |\n    a\n", "server.host=b", "its value is in several lines"},
        {"server:\n  host: a\n    b\n", "server.host=b", "its value is in several lines"},
        {"server:\n  tags:\n  - a # b\n  - c\n", "server.tags=d", "there are comments"},
        {"server:\n  tags: [a, # b\n    c]\n", "server.tags=d", "there are comments"},
        {"server:\n  port: {a: 1}\n", "server.port=81", "a mapping is in its value"},
        {"server:\n  ? port\n  :\n", "server.port=81", "no colon follows its name"},
        {"server:\n  port: 80\n...\n", "tls.enabled=1", "would not differ in it alone"},
    };
    for (const auto& [before, pairs, message] : cases) {
        write(before);
        const Outcome set = run("\"$webd\" set " + pairs + " --file f.yaml");
        EXPECT_EQ(set.status, 2) << before << pairs;
        EXPECT_EQ(set.out, "");
        EXPECT_THAT(set.err, HasSubstr(message));
        EXPECT_EQ(file(), before);
    }
    EXPECT_EQ(run("\"$webd\" set server.port=81").status, 2);
}

TEST_F(Set, SaysWhatMustRestart) {
    const std::pair<std::string, std::string> cases[] = {
        {"cache.ttl=5 log.utc=no server.port=81", "Restart for the changes to apply: daemon\n"},
        {"cache.ttl=5 log.utc=no server.port=80", "Restart for the changes to apply: worker\n"},
        {"cache.ttl=5 log.utc=yes", "The changes apply without a restart.\n"},
        {"cache.ttl=300 server.port=80", "No value has changed.\n"},
    };
    for (const auto& [pairs, message] : cases) {
        write("server:\n  port: 80\ncache:\n  ttl: x\n");
        EXPECT_EQ(run("\"$webd\" set " + pairs + " --file f.yaml").out, message) << pairs;
    }
}

TEST_F(Set, ReplacesTheFileBehindALinkWithItsPermissions) {
    fs::create_directory(folder / "real");
    std::ofstream(folder / "real" / "f.yaml") << "server:\n  port: 80\n";
    fs::permissions(folder / "real" / "f.yaml", fs::perms(0640));
    fs::create_symlink("real/f.yaml", folder / "f.yaml");
    EXPECT_EQ(run("\"$webd\" set server.port=81 --file f.yaml").status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "f.yaml"));
    EXPECT_EQ(file(), "server:\n  port: 81\n");
    EXPECT_EQ(fs::status(folder / "real" / "f.yaml").permissions(), fs::perms(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "real"), {}), 1);

    EXPECT_EQ(run("\"$webd\" set server.port=81 --file missing/f.yaml").status, 1);
    EXPECT_EQ(run("\"$webd\" set server.port=81 --file real").status, 1);
}

}  // namespace
