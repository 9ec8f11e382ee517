// The example program through its command line.
#include "command_line.hpp"

#include <algorithm>
#include <csignal>
#include <tuple>

#include <velmora/yaml/yaml.hpp>

#include "file_values.hpp"
#include "settings.hpp"

using namespace velmora::config;
using testing::HasSubstr;

namespace {

TEST_F(CommandLine, TellsWhatItTakes) {
    EXPECT_EQ(run("$webd template").out, content_of(GOLDEN_TEMPLATE));
    EXPECT_THAT(run("$webd --help").out, HasSubstr("template"));
    EXPECT_THAT(run("$webd show --set log.utc=x --set log.level=loud").err,
                AllOf(HasSubstr("log.utc"), HasSubstr("log.level")));
    const std::pair<int, std::vector<std::string>> cases[] = {
        {0,
         {"--help", "check --set log.level=info --set log.utc=0", "explain --set log.level=info log.utc",
          "check --set cache.enabled=0 --set cache.max_bytes=9"}},
        {1,
         {"--help >/dev/full", "show >/dev/full", "show --file f.yaml", "show --set log.level=loud",
          "check --set tls.enabled=1", "check --set server.tags=\"$(printf 'a\\rb')\"",
          "check --set server.tags=\"$(printf 'a\\177')\"", "check --set cache.max_bytes=9", "run --set tls.enabled=1",
          "run --set log.file=no/file"}},
        {2, {"", "set log.utc=0", "set --file f.yaml", "explain log.utc log.utx"}}};
    for (const auto& [status, all] : cases) {
        for (const std::string& arguments : all) EXPECT_EQ(run("$webd " + arguments).status, status) << arguments;
    }
}

TEST_F(CommandLine, ShowsValuesAndPointsAtWhatItIgnores) {
    std::ofstream("log.file") << "a";
    const std::string variables =
        "CREDENTIALS_DIRECTORY=. WEBD_PORT=9_090 WEBD_LOG_FILE=b WEBD_CACHE_TTL=60 WEBD_LOG_LEVEL=loud ";
    const std::string arguments = " --file " SAMPLE " --set server.workers=3";
    const Outcome shown = run(variables + "$webd show" + arguments);
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(std::count(shown.out.begin(), shown.out.end(), '\n'), 20);
    EXPECT_EQ(std::count(shown.err.begin(), shown.err.end(), '^'), 9);
    for (const char* line :
         {"server.host           '0.0.0.0'  # " SAMPLE ":3:9\n", "server.port           9090  # $WEBD_PORT\n",
          "server.workers        3  # the command line\n", "server.keep_alive     75.0  # default\n",
          "log.file              'a'  # ./log.file\n", "cache.ttl             60.0  # $WEBD_CACHE_TTL\n",
          SAMPLE ":4:9: Ignoring server.port in " SAMPLE ": Invalid value for server.port: 70000. It must be at "
                 "least 1 and at most 65535; keeping 9090 from $WEBD_PORT\n"
                 "    4 |   port: 70000           # out of bounds\n      |         ^~~~~\n",
          "there is no such section; did you mean 'cache'?\n   14 | cahce:                  # misspelt\n"
          "      | ^~~~~\n",
          "Must be one of: debug, error, info, warning; keeping 'debug' from " SAMPLE ":11:10\n"})
        EXPECT_THAT(shown.out + shown.err, HasSubstr(line));
    const Outcome checked = run(variables + "$webd check" + arguments);
    EXPECT_EQ(std::tie(checked.status, checked.out, checked.err), std::tuple(1, "", shown.err));
    EXPECT_EQ(run("$webd show").err, "");
    EXPECT_THAT(run("f=$(printf 'a\nb'); echo log: {utc: 0} >\"$f\"; $webd show --file \"$f\"").out,
                HasSubstr("# a\\nb:1:12\n"));

    EXPECT_THAT(run(variables + "$webd explain cache.ttl log.level" + arguments + " --set log.level=info").out,
                HasSubstr("  a change takes no restart\n\nlog.level = 'info'\n"
                          "  Least severe messages that are logged. A str, one of: debug, error, info, warning.\n"
                          "  from     the command line\n  hides    'debug'  " SAMPLE ":11:10\n  refused  'loud'  "
                          "$WEBD_LOG_LEVEL: "));
    EXPECT_THAT(run("$webd explain log.utc log.utx").err, HasSubstr("did you mean 'log.utc'?\n"));
    const std::string all = run("$webd explain").out;
    EXPECT_EQ(std::count(all.begin(), all.end(), '='), 20);
}

TEST_F(CommandLine, JudgesATextAlikeWhereverItComesFrom) {
    // The key, its variable, the text, and the value or why there is none.
    const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
        {"server.host", "WEBD_HOST", "it's #1=\"ü\"\t\\\x7f", "  'it\\'s #1=\"ü\"\\t\\\\\\x7f'  #"},
        {"cache.bypass", "WEBD_CACHE_BYPASS", "[a, yes]", " ['[a', 'yes]']  #"},
        {"tls.enabled", "WEBD_TLS", "2",
         "Cannot set tls.enabled='2': expected bool ('2' is not one of true/false, yes/no, on/off, "
         "y/n, t/f, 1/0)"},
    };
    for (const auto& [label, variable, text, verdict] : cases) {
        ::setenv("text", text.c_str(), 1);
        const Outcome environment = run(variable + "=\"$text\" $webd show");
        EXPECT_THAT(environment.out + environment.err, HasSubstr(verdict));
        const Outcome option = run("$webd show --set " + label + "=\"$text\"");
        EXPECT_THAT(option.out + option.err, HasSubstr(verdict));
        const Outcome set = run("$webd set --file f.yaml " + label + "=\"$text\"");
        EXPECT_THAT(run("$webd show --file f.yaml").out + set.err, HasSubstr(verdict));
        EXPECT_EQ(fs::remove("f.yaml"), set.status == 0);
    }
}

using Set = CommandLine;

TEST_F(Set, ChangesTheValuesAloneOrNothing) {
    const std::string l = "log:\n", on = l + "  utc: on\n", off = l + "  utc: false\n", set_off = "log.utc=0";
    const std::string utc = "Cannot write log.utc: ", tags = "Cannot write server.tags: ";
    const std::string file = "Cannot write log.file: ", level = "Cannot write log.level: ";
    const std::string anchor = "it has an anchor or a tag\n", lines = "its value is in several lines\n";
    const std::string comments = "there are comments in its value\n", tls = "tls:\n  enabled: true\n";
    // The file, the pairs, and what the file then is or why it stays as it is.
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", "log.utc=0 tls.enabled=1 log.file=/a", off + "  file: /a\n" + tls},
        {"", "server.tags=true,FALSE,yes,No,on,off,y,N,Null,az_09-AZ.,/,a:b,9",
         "server:\n  tags: [\"true\", \"FALSE\", \"yes\", \"No\", \"on\", \"off\", \"y\", \"N\", \"Null\", az_09-AZ., "
         "/, \"a:b\", \"9\"]\n"},
        {"---", set_off, "---\nlog:\n  utc: false"},
        {"# a", set_off, "# a\nlog:\n  utc: false"},
        {"--- # a\n...", set_off, "--- # a\n" + off + "..."},
        {"log:", "log.file= log.utc=0", l + "  file: \"\"\n  utc: false"},
        {" log:\n  x: 1\n\n tls: ~ # a\n  # b\n y: 1", "log.utc=0 tls.enabled=1 server.port=1",
         " log:\n  x: 1\n  utc: false\n\n tls:  # a\n   enabled: true\n  # b\n y: 1\n server:\n   port: 1"},
        {l + "  utc: # a\n  # a\n    null # b\n", set_off, l + "  utc: # a\n  # a\n    false # b\n"},
        {on + "...x: ...\n# b\n... \n", "log.file=a=b tls.enabled=1",
         on + "  file: \"a=b\"\n...x: ...\n# b\n" + tls + "... \n"},
        {l + "    \"utc\" : \"8\\\"0\" # a\n\n    x: [1]\n\n# b\nx:\n", "log.utc=0 log.file=yes log.level=info",
         l + "    \"utc\" : false # a\n\n    x: [1]\n    file: \"yes\"\n    level: info\n\n# b\nx:\n"},
        {"\xef\xbb\xbflog:\r\n  utc:\r\n  x: 1\r\n\r\ntls: {}\r\n", "log.utc=0 log.file=~ tls.enabled=1",
         "\xef\xbb\xbflog:\r\n  utc: false\r\n  x: 1\r\n  file: \"~\"\r\n\r\ntls: {enabled: true}\r\n"},
        {"{server: {tags: [a, 'b'] , x: 1}, tls: , cache: ~}", "log.utc=0 tls.enabled=1 cache.ttl=1e16 server.tags=x",
         "{log: {utc: false}, server: {tags: [x] , x: 1}, tls: {enabled: true} , cache: {ttl: 1e+16}}"},
        {"{ }", "log.utc=0 tls.enabled=1", "{log: {utc: false}, tls: {enabled: true} }"},
        {"{\n\t\"log\": {\"utc\": null, \"level\": \"info\"}, \"tls\":null\n}\n",
         "log.level=error log.utc=0 log.file=\"$(printf '\\001\\177\\t\\r')\" tls.enabled=1 server.tags=a",
         "{\n\t\"server\": {\"tags\": [\"a\"]},\n\t\"log\": {\"file\": \"\\u0001\\u007f\\t\\r\", \"utc\": false, "
         "\"level\": \"error\"}, \"tls\": {\"enabled\": true}\n}\n"},
        {"{\"log\": {}}", "log.file=a", "{\"log\": {\"file\": \"a\"}}"},
        {"server:\n  tags:  # a\n    - a\n    - 'b''c'\n  x: 1\n", "server.tags=x,#y",
         "server:\n  tags:  # a\n    - x\n    - \"#y\"\n  x: 1\n"},
        {"server:\n  tags:\n  - a\n", "server.tags=", "server:\n  tags:\n    []\n"},
        {"x: &x a\nserver: {host: *x,tags: [*x]}\n", "server.tags=b server.host=c",
         "x: &x a\nserver: {host: c,tags: [b]}\n"},
        {"server:\r\n  tags: [a,\r\n   b]\r\ncache:\r\n  bypass:\r\n  - a\r\n  - b\r\n",
         "server.tags=c cache.bypass=d,e", "server:\r\n  tags: [c]\r\ncache:\r\n  bypass:\r\n  - d\r\n  - e\r\n"},
        {l + "  x: 'a\n   # b'\n", set_off, l + "  x: 'a\n   # b'\n  utc: false\n"},
        {"a: &u utc\nb: &n 1\nlog: {*u : *n}\n", set_off, "a: &u utc\nb: &n 1\nlog: {*u : false}\n"},
        {l + "  file: 'a\n    #'  # b\n  utc: 'no'\n", "log.file=a log.utc=0", l + "  file: a  # b\n  utc: 'no'\n"},
        {l + "  x: \"a\n   # b\"\n  # c\ntls:\n  x: &x !!str |\n   a\n   # b\n\n", "log.utc=0 tls.enabled=1",
         l + "  x: \"a\n   # b\"\n  utc: false\n  # c\ntls:\n  x: &x !!str |\n   a\n   # b\n  enabled: true\n\n"},
        {"log:\r\n  x: >+\r\n   a\r\n\r\n  # c\r\n", set_off,
         "log:\r\n  x: >+\r\n   a\r\n\r\n  utc: false\r\n  # c\r\n"},
        {on, "lgo.a=1 log.file=a log.utc=0 log.utx=2 log.utc=1 log.level=loud log.utc utc=0",
         "there is no section 'lgo'; did you mean 'log'?\n"
         "there is no key 'log.utx'; did you mean 'log.utc'?\nlog.utc is given twice\n"
         "Invalid value for log.level: 'loud'. Must be one of: debug, error, info, warning\n"
         "write 'log.utc' as SECTION.KEY=VALUE\n"
         "there is no key 'utc'; did you mean 'log.utc'?\n"},
        {on, "log.file=\"$(printf '\\377')\"", "Cannot write log.file: '\\udcff' is no UTF-8\n"},
        {"a: 1\na: 2\n", set_off, "f.yaml:2:1: this key is there twice\n"},
        {"? \n  utc: on", set_off, "Cannot change the file: it would differ in more than these keys\n"},
        {"...\n'x'", set_off, "Cannot change the file: it would differ in more than these keys\n"},
        {"log:\r\n  utc: on\r", set_off, "Cannot change the file: a carriage return alone ends a line in it\n"},
        {"log: &s\n  utc: on\nx: *s\n", set_off, utc + "an alias repeats its section\n"},
        {"&r\nlog:\n  a: *r\n", set_off, utc + "an alias repeats the file\n"},
        {"a: &s {b: 1}\nlog: *s\n", set_off, utc + "its section is an alias\n"},
        {"server: !!map {}\nlog: 5\n", "log.utc=0 server.tags=a",
         utc + "its section is not a mapping\n" + tags + "its section has an anchor or a tag\n"},
        {"--- ~\n", set_off, utc + "the file is not a mapping\n"},
        {"log:\n  utc: &p on\n  level: !!str info\nserver:\n  tags:\n  - a # b\n  - c\n",
         "log.utc=0 log.level=error server.tags=c", utc + anchor + level + anchor + tags + comments},
        {"log:\n  utc: &p\n  level: !!null\nserver:\n  tags: [a, # b\n    c]\n",
         "log.utc=0 log.level=error server.tags=c", utc + anchor + level + anchor + tags + comments},
        {"log:\n  ? utc\n  :\nserver:\n  tags: [a # b\n    ]\n", "log.utc=0 server.tags=c",
         utc + "no colon follows its name\n" + tags + comments},
        {"log:\n  utc: {a: 1}\n  file: a\n   b\n  level: >\n", "log.utc=0 log.file=c log.level=info",
         utc + "a null or a mapping is in its value\n" + file + lines + level + lines},
        {"log:\n  x: |\n    a", set_off, utc + "the block scalar before it has no line end\n"},
        {"log:\n  ? a\n  : b\n", set_off, utc + "the keys beside it do not begin their lines\n"},
    };
    for (const auto& [before, pairs, after] : cases) {
        const Outcome outcome = set(before, pairs);
        EXPECT_EQ(outcome.status == 2 ? outcome.err : content(), after) << pairs;
        EXPECT_EQ(content(), outcome.status == 2 ? before : after) << pairs;
    }
}

TEST_F(Set, SaysWhatMustRestart) {
    const std::string restart = "Restart for the changes to apply: ";
    const std::pair<std::string, std::string> cases[] = {
        {"cache.policy=lfu server.port=81 cache.ttl=5", restart + "daemon\n"},
        {"cache.ttl=5 cache.policy=lfu server.port=80", restart + "worker\n"},
        {"cache.ttl=5 log.utc=yes", "The changes apply without a restart.\n"},
        {"cache.ttl=300 server.port=80", "No value has changed.\n"},
    };
    for (const auto& [pairs, message] : cases)
        EXPECT_EQ(set("server:\n  port: 80\ncache:\n  ttl: x\n", pairs).out, message) << pairs;
}

TEST_F(Set, LosesNoChangeWhenSeveralRunAtOnce) {
    for (const char* i : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        ::setenv("i", i, 1);
        run("for key in server.workers log.file tls.certificate; do "
            "$webd set $key=$i --file f.yaml & done; wait");
        EXPECT_EQ(run("grep -c $i f.yaml").out, "3\n");
    }
}

TEST_F(Set, ReplacesTheFileBehindALinkWithItsOwnerAndPermissions) {
    fs::create_directories("real/links");
    fs::create_symlink("../f.yaml", "real/links/f.yaml");
    fs::create_symlink("real/links/f.yaml", "f.yaml");
    EXPECT_EQ(run("umask 027; $webd set server.port=80 --file f.yaml").status, 0);
    EXPECT_EQ(fs::status("real/f.yaml").permissions(), fs::perms(0640));
    // What an earlier run that was killed has left behind is in nobody's way.
    const std::string stat =
        run("chown 1:1 real/f.yaml; chmod 604 real/f.yaml; cp real/f.yaml real/.f.yaml.webd-config; "
            "stat -c '%u %g %a' real/f.yaml")
            .out;
    EXPECT_EQ(run("$webd set server.port=81 --file f.yaml").status, 0);
    EXPECT_EQ(run("stat -c '%u %g %a' real/f.yaml").out, stat);
    EXPECT_EQ(content(), "server:\n  port: 81\n");
    EXPECT_EQ(entries_of("real") + entries_of("real/links"), 3);

    EXPECT_EQ(run("$webd set server.port=81 --file real").err, "real: Is a directory\n");
    EXPECT_EQ(run("$webd set server.port=81 --file no/f.yaml").status, 1);
    EXPECT_EQ(run("mkfifo pipe; echo >pipe & $webd set server.port=81 --file pipe; cat pipe").err,
              "pipe: Invalid argument\n");
    EXPECT_EQ(run("$webd set server.port=81 --file /proc/self/mem").err, "/proc/self/mem: Input/output error\n");
    EXPECT_TRUE(fs::is_fifo("pipe"));
}

TEST_F(Set, LeavesTheFileAsItIsWhenItCannotReplaceIt) {
    const std::string old = "server:\n  port: 80\n# " + std::string(100000, 'x') + "\n";
    const bool is_root = ::geteuid() == 0;
    const std::string set = std::string(is_root ? "setpriv --bounding-set=-all " : "") + "$webd set --file f.yaml ";
    write(old);
    // A signal in the middle of writing ends the program.
    EXPECT_EQ(run("ulimit -f 2; " + set + "server.port=81").status, 128 + SIGXFSZ);
    EXPECT_EQ(entries_of("."), 1);
    run("chown 1:1 f.yaml; chmod 444 f.yaml");
    EXPECT_EQ(run(set + "server.port=81").err, "f.yaml: Permission denied\n");
    EXPECT_EQ(run(set + "server.port=80").status, 0);
    EXPECT_EQ(content(), old);
    // To a group that the user is not in the file cannot be given.
    fs::permissions("f.yaml", fs::perms(0666));
    EXPECT_EQ(run(set + "server.port=81").status, 0);
    EXPECT_EQ(fs::status("f.yaml").permissions(), fs::perms(is_root ? 0606 : 0666));
    EXPECT_EQ(content(), std::string(old).replace(16, 2, "81"));
}

TEST(Differ, ByTheseChangesAlone) {
    const auto differ = [&declared = schema().declaration()](const char* after) {
        const ConfigValue before = velmora::yaml::load("{s: 1, server: {x: .nan, port: 80}}");
        const std::vector<Change> changes = {{declared.key("server.port"), 81}, {declared.key("log.utc"), true}};
        return differ_by(changes, before, velmora::yaml::load(after));
    };
    EXPECT_TRUE(differ("{s: 1, server: {port: 81, x: .nan}, log: {utc: true}}"));
    for (const char* after :
         {"{s: 2, server: {port: 81, x: .nan}, log: {utc: true}}",
          "{s: 1, server: {port: 82, x: .nan}, log: {utc: true}}",
          "{s: 1, server: {port: 81, x: 1.5}, log: {utc: true}}", "{s: 1, server: {port: 81}, log: {utc: true}}",
          "{s: 1, server: {port: 81, x: .nan}}", "[]"})
        EXPECT_FALSE(differ(after)) << after;
}

}  // namespace
