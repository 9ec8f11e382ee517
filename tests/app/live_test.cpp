// What is in effect after reloads, what waits, who is told; and that threads may do all of it at once.
#include "velmora/app/live.hpp"

#include <atomic>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "folder.hpp"
#include "support.hpp"
#include "velmora/utils/logging.hpp"
#include "velmora/utils/quoting.hpp"

namespace {

namespace app = velmora::app;
using namespace velmora::config;
using velmora::test::outcome;

struct Part {
    int none = 0;
    int worker = 0;
    int daemon = 9;
    std::vector<std::string> nones;
    std::optional<int> limit;
    std::string token;
};
struct Config {
    Part s;
    app::Raw r;
};

const app::Schema<Config>& schema() {
    static const app::Schema<Config> schema =
        app::Schema<Config>{
            app::section(&Config::s, "s", "Section.", {.restart = Restart::daemon},
                         {
                             app::key(&Part::none, "none", "Nothing.", {.restart = Restart::none, .formerly = {"old"}}),
                             app::key(&Part::worker, "worker", "Worker.", {.restart = Restart::worker}),
                             app::key(&Part::daemon, "daemon", "Daemon."),
                             app::key(&Part::nones, "nones", "As many.", {.restart = Restart::none}),
                             app::required(&Part::token, "token", "Token.", {.secret = true}),
                             app::key(&Part::limit, "limit", "Limit.", {.secret = true}),
                         }),
            app::raw(&Config::r, "r", "Read as a whole.", {.restart = Restart::worker}),
        }
            .check({"s.daemon", "s.none"},
                   [](const Config& config) { return config.s.none > config.s.daemon ? "too much" : ""; });
    return schema;
}

std::string brief(const app::Plan& plan) {
    std::string text(name_of(plan.restart));
    for (const app::Change& each : plan.changes) text += " " + each.label + ":" + each.before + ">" + each.after;
    return text;
}

// A running program and the files that it reads.
class Running : public testing::Test {
protected:
    // Null for none, "/" for what cannot be read.
    void put(const std::string& file, const char* content) const {
        folder.remove(file);
        if (content != nullptr) folder.write(content == std::string("/") ? file + "/x" : file, content);
    }

    std::string in_effect() const {
        const app::Snapshot<Config> now = live().now();
        return std::to_string(now->s.none) + std::to_string(now->s.worker) + std::to_string(now->s.daemon) +
               display(now->r.value());
    }

    std::string reload(const app::ReloadOptions& options = {}) {
        printed.clear();
        try {
            const app::Reload done = live().reload(options);
            EXPECT_EQ(brief(done.pending), brief(pending(live().now().values())));
            printed = in_effect() + " " + brief(done.changes) + " | " + brief(done.pending) + printed;
        } catch (const app::LoadError& error) {
            for (const app::Fault& fault : error.faults()) {
                printed += "\n" + one_line(fault);
                if (fault.kind != app::FaultKind::unusable_source || fault.line != 0) continue;
                const bool of_key = fault.source.find("/s.") != fault.source.npos || fault.source.front() == '$';
                EXPECT_EQ(fault.key.find('.') != fault.key.npos, of_key) << fault.message;
                EXPECT_THAT(printed, testing::HasSubstr(" " + velmora::utils::one_line(fault.source) + ": "));
            }
            printed = in_effect() + printed;
        }
        return folder.local(printed);
    }

    app::Layer variables(app::EnvironmentOptions options) const {
        options.prefix = "W_";
        options.variables = {{"W_S_LIMIT_FILE", folder.path("t")}};
        return app::environment(options);
    }

    app::Live<Config>& live() const { return *live_; }
    void start() {
        put("a", "s: {none: 1, daemon: 5}\nr: [1]");
        put("d", nullptr);
        put("d/1.yaml", "s: {worker: 1}");
        put("ab", "x-b: 1");
        put("c", nullptr);
        put("c/s.token", "'t0ken'");
        put("c/s.nones", "x");
        put("t", "2");
        live_.emplace(schema(),
                      std::vector{app::text("r:", folder.path("a")), variables({}),
                                  app::file(folder.path("a"), {.optional = true}),
                                  app::file(folder.path("ab"), {.optional = true}), app::directory(folder.path("d")),
                                  app::credentials({.directory = folder.path("c")})},
                      app::LoadOptions{.report = [this](const app::Fault& each) { printed += "\n" + one_line(each); }});
    }

    velmora::test::Folder folder;
    std::string printed;

private:
    mutable std::optional<app::Live<Config>> live_;
};

TEST_F(Running, ReloadsPutIntoEffectWhatTheyMay) {
    constexpr auto none = Restart::none, worker = Restart::worker, daemon = Restart::daemon;
    const app::ReloadOptions faulty = {.despite_faults = true}, gone = {.despite_missing_files = true};
    const char* const changed = "s: {none: 2, daemon: 6}\nr: [2]";
    const char* const both_6 = "s: {none: 6, daemon: 6}";
    const char* const daemon_0 = "s: {none: 1, daemon: 0}";
    const std::string too_much = "s.daemon, s.none: too much (", at_none = "\na:1:11: error: " + too_much,
                      at_daemon = "\na:1:22: error: " + too_much;
    const std::string restart_fails =
        "115[1] none | daemon s.daemon:5>0 r:[1]>None\na:1:22: A restart would fail: " + too_much + "*";
    struct Row {
        const char* file;
        const char* content;
        app::ReloadOptions options;
        std::string expected;
    };
    std::vector<Row> rows = {
        {"a", "r: [1]\ns: {daemon: 5, none: 1}", {none}, "115[1] none | none"},
        {"a", changed, {none}, "215[1] none s.none:1>2 | daemon s.daemon:5>6 r:[1]>[2]"},
        {"a", changed, {worker}, "215[2] worker s.none:1>2 r:[1]>[2] | daemon s.daemon:5>6"},
        {"a", changed, {daemon}, "216[2] daemon s.none:1>2 s.daemon:5>6 r:[1]>[2] | none"},
        {"a", "s: {none: 1}", {none}, "115[1] none | daemon s.daemon:5>9 r:[1]>None"},
        {"a", "s: {none: 1, daemon: 5, worker: 3}\nr: [1]", {daemon}, "115[1] none | none"},
        {"a", "s: {none: 1, daemon: 5, limit: 3}\nr: [1]", {none}, "115[1] none | daemon s.limit:(secret)>(secret)"},
        {"a", "s: {none: 1, daemon: 5}\nr: [1.0]", {none}, "115[1] none | worker r:[1]>[1.0]"},
        {"c/s.token", "0ther", {none}, "115[1] none | daemon s.token:(secret)>(secret)"},
        {"c/s.token", "0ther", {daemon}, "115[1] daemon s.token:(secret)>(secret) | none"},

        {"a", "s: {none: x, daemon: 6}", {daemon}, "\na:1:11: error: Refusing s.none in a: Cannot set *"},
        {"a", "s: [1]", {daemon}, "\na:1:4: error: Refusing the s section of a: it is not a mapping"},
        {"a", "s: {nome: 2}", {daemon}, "\na:1:5: error: Refusing s.nome in a: there is no such key; *"},
        {"a", "[1]", {daemon}, "\na:1:1: error: Refusing a: it is a list, not a mapping of sections"},
        {"a", "s: {", {daemon}, "\na:1:5: error: *"},
        {"a", "/", {daemon}, "\nerror: a: cannot be read: Is a directory"},
        {"d/2.yaml", "/", {daemon}, "\nerror: Refusing d/2.yaml: it is no file"},
        {"d", "x", {daemon}, "\nerror: d: cannot be read: Not a directory"},
        {"a", both_6, {none}, at_none + "s.daemon is 5 until a restart, s.none is 6 from a:1:11)"},
        {"a", both_6, {daemon}, "616None daemon s.none:1>6 s.daemon:5>6 r:[1]>None | none"},
        {"a", daemon_0, {none}, restart_fails},
        {"a", daemon_0, {daemon}, at_daemon + "s.daemon is 0 from a:1:22, s.none is 1 from a:1:11)"},

        {"a", nullptr, {daemon}, "\nerror: a: is gone (to do without its values, restart)"},
        {"ab", nullptr, {daemon}, "\nerror: ab: is gone (*"},
        {"ab", "#", {daemon}, "\nerror: ab: has nothing in it any more (*"},
        {"a", "s: ~\nr: [1]", {daemon}, "\nerror: a: its section s is empty, which it was not before (*"},
        {"a", "r: [1]\ns: {}", {daemon}, "\nerror: a: its section s *"},
        {"a", "s: {none: 1}\nr: ~", {daemon}, "\nerror: a: its section r *"},
        {"a",
         "s:\nr:",
         {daemon},
         "\nerror: a: its section s is empty, which it was not before (to do without its values, restart)\nerror: a: "
         "its section r *"},
        {"a", "s: {none: 1, daemon: 5}\nr: {}", {daemon}, "115{} worker r:[1]>{} | none"},
        {"a", "r: [1]", {none}, "015[1] none s.none:1>0 | daemon s.daemon:5>9"},
        {"a", "s: {none: 1, daemon: 5}", {daemon}, "115None worker r:[1]>None | none"},
        {"d/1.yaml", nullptr, {daemon}, "\nerror: d: has nothing in it any more (*"},
        {"d/1.yaml",
         "#",
         {daemon},
         "\nerror: d/1.yaml: has nothing in it any more (to do without its values, restart)"},
        {"d", nullptr, {daemon}, "\nerror: d: is gone (*"},
        {"c/s.nones", nullptr, {daemon}, "\nerror: c/s.nones: is gone (*"},
        {"c/s.nones", "\r\n", {daemon}, "\nerror: c/s.nones: has nothing *"},
        {"c/s.token",
         "\n",
         {daemon},
         "\nerror: s.token must be given a value: Token. (c/s.token is empty)\nerror: c/s.token: has nothing *"},
        {"c", nullptr, {daemon}, "\nerror: s.token must be given a value: Token.\nerror: c: is gone (*"},
        {"t", "\n", {daemon}, "\nerror: $W_S_LIMIT_FILE: its file has nothing *"},
        {"a", "[1]", faulty, "\na:1:1: Ignoring a: it is a list, not a mapping of sections\nerror: a: has nothing *"},
        {"a", "s: {nome: 2}", gone, "\na:1:5: error: Refusing *"},
        {"d/1.yaml", "/", faulty, "\nIgnoring d/1.yaml: it is no file\nerror: d: has nothing *"},
        {"c/s.token", nullptr, gone, "\nerror: s.token must be given a value: Token."},
        {"a", nullptr, gone, "015[1] none s.none:1>0 | daemon s.daemon:5>9 r:[1]>None"},
        {"a", "s:\nr: [1]", gone, "015[1] none s.none:1>0 | daemon s.daemon:5>9"},
        {"d", nullptr, gone, "115[1] none | worker s.worker:1>0"},
        {"c/s.nones", "", gone, "115[1] none s.nones:['x']>[] | none"},

        {"a", "s: {none: x, daemon: x}", faulty,
         "015[1] none s.none:1>0 | daemon s.daemon:5>9 r:[1]>None\na:1:11: Ignoring s.none in a: Cannot set "
         "s.none='x': expected int (expected a decimal integer, got 'x'); keeping the default 0 (s.none takes an int, "
         "at least -2147483648 and at most 2147483647)\na:1:22: Ignoring s.daemon in a: Cannot set s.daemon='x': "
         "expected int (expected "
         "a decimal integer, got 'x'); keeping 5 until a restart *"},
        {"a",
         "s: {old: 2, daemon: 5}\nr: [1]",
         {none},
         "215[1] none s.none:1>2 | none\na:1:5: advice: s.old in a is called s.none now: rename it"},
        {"a", "s: {", faulty, "\na:1:5: error: *"},
        {"a", both_6, faulty, at_none + "*"},
    };
    for (const char* empty : {"", "\n", " ", "# webd\n", "---\n", "~", "{}", "\xef\xbb\xbf"})
        rows.push_back({"a", empty, {daemon}, "\nerror: a: has nothing in it any more (*"});
    const auto open_files = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto open_before = open_files();
    for (const auto& [file, content, options, expected] : rows) {
        start();
        put(file, content);
        const std::string all = (expected.front() == '\n' ? "115[1]" : "") + expected;
        const std::string came = reload(options);
        if (all.back() == '*') {
            EXPECT_EQ(came.substr(0, all.size() - 1), all.substr(0, all.size() - 1));
            EXPECT_EQ(came.find('\n', all.size()), std::string::npos) << came;
        } else {
            EXPECT_EQ(came, all);
        }
        for (const app::Explanation& each : explain(live().now().values())) printed += text_of(each);
        EXPECT_THAT(printed, testing::Not(testing::HasSubstr("0ther")));
    }
    EXPECT_EQ(open_files(), open_before);
}

TEST_F(Running, KeepsWhatIsPendingUntilItHolds) {
    start();
    const auto daemon = [this] { return text_of(explain(live().now().values(), "s.daemon")); };
    const std::string head = "s.daemon = 5\n  Daemon. An int.\n",
                      tail = "  default  9\n  a change takes a restart of the daemon\n";
    const auto path = [this](const char* name) { return folder.path(name); };
    put("a", "s: {none: 1, daemon: 6}");
    EXPECT_EQ(reload(), "115[1] none | daemon s.daemon:5>6 r:[1]>None");
    EXPECT_EQ(daemon(), head + "  from     " + path("a:1:22") + ", as it was read before\n  pending  6  " +
                            path("a:1:22") + "\n" + tail);
    put("a", "s: {nome: 1}");
    put("d/1.yaml", nullptr);
    EXPECT_THAT(reload(), testing::HasSubstr("Refusing"));
    EXPECT_THAT(reload({.despite_faults = true}), testing::HasSubstr("d: has nothing"));
    put("d/1.yaml", "s: {worker: 1}");
    EXPECT_EQ(brief(pending(live().now().values())), "daemon s.daemon:5>6 r:[1]>None");
    put("a", nullptr);
    put("ab", nullptr);
    EXPECT_THAT(reload(), testing::AllOf(testing::HasSubstr(": a: is gone"), testing::HasSubstr(": ab: is gone")));
    EXPECT_EQ(reload({.despite_missing_files = true}), "015[1] none s.none:1>0 | daemon s.daemon:5>9 r:[1]>None");
    EXPECT_EQ(daemon(),
              head + "  from     " + path("a:1:22") + ", as it was read before\n  pending  9  the default\n" + tail);
    EXPECT_EQ(reload(), "015[1] none | daemon s.daemon:5>9 r:[1]>None");
    put("a", "s: {daemon: 5}\nr: [1]");
    EXPECT_EQ(reload(), "015[1] none | none");
    EXPECT_EQ(daemon(), head + "  from     " + path("a:1:13") + "\n" + tail);
    put("d/2\x1b.yaml", "s: {daemon: 7}");
    EXPECT_EQ(reload(), "015[1] none | daemon s.daemon:5>7");
    EXPECT_THAT(daemon(), testing::HasSubstr("pending  7  " + path("d/2\\x1b.yaml:1:13\n")));
    EXPECT_EQ(text_of(explain(live().now().values(), "s.none")).find("pending"), std::string::npos);
    put("d/2\x1b.yaml", "#");
    EXPECT_THAT(reload(), testing::HasSubstr("d/2\\x1b.yaml: has nothing"));
    reload({.despite_missing_files = true});
    EXPECT_EQ(reload(), "015[1] none | none");
    std::filesystem::rename(folder.path("d"), folder.path("e"));
    EXPECT_THAT(reload(), testing::HasSubstr("d: is gone"));
    std::filesystem::rename(folder.path("e"), folder.path("d"));
    // A drop-in less is a change, as long as there is another file.
    put("d/2\x1b.yaml", nullptr);
    EXPECT_EQ(reload(), "015[1] none | none");
    put("d/1.yaml", "#");
    EXPECT_EQ(reload({.despite_missing_files = true}), "015[1] none | worker s.worker:1>0");
    put("d/1.yaml", nullptr);
    EXPECT_EQ(reload(), "015[1] none | worker s.worker:1>0");
}

TEST_F(Running, KnowsTheFilesOfKeysByTheKeys) {
    start();
    put("c/s.old", "1");
    EXPECT_THAT(reload(), testing::StartsWith("115[1] none | none\nadvice: "));
    put("c/s.old", nullptr);
    put("c/s.none", "");
    EXPECT_THAT(reload(), testing::StartsWith("115[1]\nerror: c/s.none: has nothing"));
    put("c/s.old", "");
    put("c/s.none", "1");
    EXPECT_EQ(reload(), "115[1] none | none");
    put("c/s.nones", nullptr);
    put("c/s.none", "/");
    EXPECT_THAT(reload(), testing::MatchesRegex("115.1.\nerror: c/s.none: cannot be read: [^\n]*\nerror: c/s.nones: is "
                                                "gone [^\n]*"));
    put("c/s.none", "1");
    put("a", "/");
    put("ab", nullptr);
    std::filesystem::remove(folder.path("d/1.yaml"));
    std::filesystem::create_symlink("nowhere", folder.path("d/1.yaml"));
    EXPECT_THAT(reload(), testing::MatchesRegex("115.1.\nerror: a: [^\n]*\nerror: d/1.yaml: [^\n]*\nerror: ab: is "
                                                "gone [^\n]*\nerror: c/s.nones: is gone [^\n]*"));
    app::Live<Config> counting(schema(),
                               {app::credentials({.directory = folder.path("c")}), variables({.empty_counts = true})});
    put("t", "");
    EXPECT_THAT(outcome([&] { return brief(counting.reload().changes); }),
                testing::StartsWith("another error: error: Refusing s.limit from $W_S_LIMIT_FILE: "));
}

TEST_F(Running, TellsThoseWhoSubscribe) {
    start();
    std::string told;
    velmora::utils::set_sink([&](const velmora::utils::LogRecord& record) {
        told += record.logger() + ":" + std::string(name_of(record.level())) + ":" + record.message() + " ";
    });
    const auto owned = std::make_shared<int>();
    const auto telling = [&](const std::string& name, const std::string& to) {
        return live().on_change(
            to, [&told, name, owned](const app::Plan& plan) { told += name + "<" + brief(plan) + "> "; });
    };
    const app::Subscription of_section = telling("s", "s"), of_key = telling("none", "s.none"),
                            of_raw = telling("r", "r");
    app::Subscription of_worker, ended, replaced = telling("replaced", "s.none");
    of_worker = live().on_change("s.worker", [&](const app::Plan&) {
        told += in_effect() + outcome([&] { return brief(live().reload().changes); }) + " ";
        const app::Subscription within = telling("within", "s");
        of_worker = {};
        const auto owners = owned.use_count();
        ended = {};
        told += std::to_string(owners - owned.use_count());
    });
    ended = telling("ended", "s");
    replaced = telling("new", "s.none");
    put("a", "s: {none: 2, daemon: 6}");
    put("d/1.yaml", "s: {worker: 2}");
    EXPECT_EQ(reload(), "215[1] none s.none:1>2 | daemon s.worker:1>2 s.daemon:5>6 r:[1]>None");
    EXPECT_EQ(told, "s<none s.none:1>2> none<none s.none:1>2> ended<none s.none:1>2> new<none s.none:1>2> ");
    told.clear();
    EXPECT_EQ(reload({Restart::worker}), "225None worker s.worker:1>2 r:[1]>None | daemon s.daemon:5>6");
    EXPECT_EQ(told,
              "s<worker s.worker:1>2> r<worker r:[1]>None> "
              "225Noneanother error: a reload cannot be made within a reload 1");
    told.clear();
    put("c/s.nones", "x, y");
    const app::Subscription failing =
        live().on_change("s.nones", [](const app::Plan&) { throw std::runtime_error("no"); });
    const app::Subscription worse = live().on_change("s.nones", [](const app::Plan&) { throw 1; });
    const app::Subscription last = telling("last", "s.nones");
    EXPECT_EQ(reload(), "225None none s.nones:['x']>['x', 'y'] | daemon s.daemon:5>6");
    EXPECT_EQ(told,
              "s<none s.nones:['x']>['x', 'y']> velmora.app:error:A subscriber to s.nones has failed: no "
              "velmora.app:error:A subscriber to s.nones has failed: it has thrown what is no exception "
              "last<none s.nones:['x']>['x', 'y']> ");
    velmora::utils::set_sink(nullptr);
    for (const char* name : {"t", "s.non", "r.x"})
        EXPECT_THAT(outcome([&] { return telling("", name), ""; }), testing::HasSubstr("ConfigKeyError"));
    EXPECT_THAT(outcome([&] { return ended = live().on_change("s", nullptr), ""; }), testing::HasSubstr("TypeError"));

    told.clear();
    app::Subscription reported;  // In a reload, and before it puts anything into effect.
    app::Live<Config> other(schema(), {app::file(folder.path("a")), app::credentials({.directory = folder.path("c")})},
                            {.report = [&](const app::Fault&) {
                                reported = other.on_change("s", [&](const app::Plan& plan) { told += brief(plan); });
                            }});
    put("a", "s: {none: 3, daemon: 6}\nnothing: 1");
    other.reload({.despite_faults = true});
    EXPECT_EQ(told, "none s.none:2>3");
    start();
}

TEST_F(Running, ThreadsThatEndASubscriptionWaitForIt) {
    start();
    std::atomic<bool> told = false, waited = false;
    auto owned = std::make_shared<int>();
    const std::weak_ptr<int> left = owned;
    app::Subscription subscription;
    std::thread ending;
    subscription = live().on_change("s", [&, owned = std::move(owned)](const app::Plan&) {
        ending = std::thread([&] {
            subscription = {};
            waited = told && left.expired();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        told = true;
    });
    put("a", "s: {none: 2}");
    reload();
    ending.join();
    EXPECT_TRUE(waited);
}

TEST_F(Running, ThreadsReadReloadSubscribeAndForkAtOnce) {
    start();
    put("c/s.nones", nullptr);
    // Twice the same number, and a fault that is logged.
    const auto put_number = [this](int number) {
        const std::string nones = velmora::test::repeated("x,", number);
        folder.write("new",
                     "nothing: 1\ns: {none: " + std::to_string(number) + ", daemon: 99, nones: [" + nones + "]}");
        std::filesystem::rename(folder.path("new"), folder.path("a"));
    };
    const app::ReloadOptions options = {.despite_faults = true};
    std::atomic<int> read = 1, logged = 0;
    std::atomic<bool> over = false;
    const auto change_sink = [&] { velmora::utils::set_sink([&](const velmora::utils::LogRecord&) { ++logged; }); };
    change_sink();
    put_number(1);
    app::Live<Config> live(schema(), {app::file(folder.path("a")), app::credentials({.directory = folder.path("c")})});
    std::vector<std::thread> threads;
    const auto repeat = [&](const std::function<void()>& act) {
        threads.emplace_back([act, &over] {
            for (; !over; std::this_thread::yield()) act();
        });
    };
    for (int i = 0; i < 16; ++i) {  // One at least for each copy that is kept for readers.
        repeat([&] {
            for (int again = 0; again < 1000; ++again) live.now();
            int before = read;
            const app::Snapshot<Config> now = live.now();
            EXPECT_GE(now->s.none, before);
            EXPECT_EQ(now->s.nones.size(), static_cast<std::size_t>(now->s.none));
            while (before < now->s.none && !read.compare_exchange_weak(before, now->s.none)) {
            }
        });
    }
    repeat(change_sink);
    for (int i = 0; i < 2; ++i) repeat([&] { live.reload(options); });
    repeat([&] {
        std::string told;
        const auto subscription = live.on_change("s", [&told](const app::Plan& plan) { told += brief(plan); });
    });
    int told = 0;
    {
        const auto subscription = live.on_change("s.none", [&told](const app::Plan&) { ++told; });
        for (int number = 2; number < 40; ++number) {
            put_number(number);
            const pid_t child = fork();
            if (child == 0) _exit(live.now()->s.none);
            int status = 0;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_GE(WEXITSTATUS(status), number - 1);
            live.reload(options);
            EXPECT_EQ(live.now()->s.none, number);
        }
    }
    over = true;
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(told, 38);
    EXPECT_GE(logged, 39);
    velmora::utils::set_sink(nullptr);
}

}  // namespace
