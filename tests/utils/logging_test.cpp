#include "velmora/utils/logging.hpp"

#include <thread>

#include "support.hpp"

namespace velmora::utils {
namespace {

// Counts how often it is written; cannot be where there is no counter.
struct Probe {
    int* writes;
};
std::string display(const Probe& probe) {
    if (probe.writes == nullptr) throw std::runtime_error("no form");
    return ++*probe.writes, "<shown>";
}
std::string plain_text(const Probe& probe) {
    return display(probe);
}

class Logging : public testing::Test {
protected:
    Logging() {
        set_sink([this](const LogRecord& record) { records.push_back(record); });
    }
    ~Logging() override { set_sink({}); }

    std::vector<LogRecord> records;
};

TEST(LogRecord, FillsTemplatesInEvenWhereArgumentsDoNotFit) {
    const std::string nul("a\0b", 3);
    const LogArgument one("o'ne"), two(std::runtime_error("two")), none(static_cast<const char*>(nullptr));
    const std::tuple<const char*, std::vector<LogArgument>, std::string> cases[] = {
        {"plain", {}, "plain"},
        {"%s, %r, 100%%", {one, one}, "o'ne, \"o'ne\", 100%"},
        {"%r%s%r%s%r", {two, two, none, ValueError(nul), -4L}, "'two'twoNone" + nul + "-4"},
        {"%s and %s", {one}, "o'ne and %s"},
        {"only %s", {one, two, one}, "only o'ne ('two', \"o'ne\")"},
        {"%d%", {one}, "%d% (\"o'ne\")"},
        {"%%s", {}, "%s"},
    };
    for (const auto& [message_template, arguments, message] : cases)
        EXPECT_EQ(LogRecord("l", Level::info, message_template, arguments).message(), message);
}

TEST_F(Logging, WritesArgumentsOnlyWhenTheTextIsAskedFor) {
    int writes = 0;
    Logger& log = logger("test.lazy");
    log.warning("%s and %r", Probe{&writes}, Probe{&writes});
    log.log(Level::info, "%s", Probe{&writes});
    log.log(Level::error, "error");
    EXPECT_EQ(writes, 0);
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].message(), "<shown> and <shown>");
    EXPECT_EQ(records[1].level(), Level::error);
}

TEST_F(Logging, TakesLevelsFromTheNearestLoggerAbove) {
    Logger& leaf = logger("test.levels.leaf");
    Logger& sibling = logger("test.levelsibling");
    EXPECT_EQ(&leaf, &logger("test.levels.leaf"));
    EXPECT_EQ(leaf.level(), Level::warning);
    logger("test.levels").set_level(Level::debug);
    logger("test").set_level(Level::error);
    EXPECT_EQ(leaf.level(), Level::debug);
    EXPECT_EQ(sibling.level(), Level::error);
    EXPECT_EQ(logger("test.levels.new").level(), Level::debug);
    logger("test.levels").set_level({});
    EXPECT_EQ(leaf.level(), Level::error);
    logger("").set_level(Level::info);
    logger("test").set_level({});
    EXPECT_TRUE(leaf.enabled(Level::info) && !leaf.enabled(Level::debug));
    logger("").set_level({});
}

TEST_F(Logging, FallsBackToOneLineOnStandardError) {
    const auto written = [](Level level, const auto& argument) {
        testing::internal::CaptureStderr();
        logger("test.stderr").log(level, "keeping %s", argument);
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(std::string(name_of(Level::debug)).append(name_of(Level::info)), "debuginfo");
    set_sink([](const LogRecord&) { throw std::runtime_error("full"); });
    EXPECT_EQ(written(Level::error, "two\nlines\xff"), "test.stderr: error: keeping two\\nlines\\udcff\n");
    set_sink({});
    EXPECT_EQ(written(Level::warning, "text"), "test.stderr: warning: keeping text\n");
    EXPECT_EQ(written(Level::warning, Probe{nullptr}), "test.stderr: warning: keeping %s\n");
}

TEST_F(Logging, LetsASinkLogAndReplaceItself) {
    set_sink([this](const LogRecord&) {
        set_sink([this](const LogRecord& inner) { records.push_back(inner); });
        logger("test.inner").warning("inner");
    });
    logger("test.outer").warning("outer");
    EXPECT_EQ(records.at(0).message(), "inner");
}

TEST(LoggingThreads, ShareLoggersLevelsAndSinks) {
    std::atomic<int> received = 0;
    const LogSink count = [&](const LogRecord&) { ++received; };
    set_sink(count);
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (int turn = 0; turn < 1000; ++turn) set_sink(count);
    });
    while (threads.size() < 5) {
        threads.emplace_back([] {
            for (int turn = 0; turn < 100; ++turn) {
                Logger& log = logger("test.threads." + std::to_string(turn));
                log.set_level(turn % 2 == 0 ? std::nullopt : std::optional(Level::debug));
                log.warning("%s", turn);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    set_sink({});
    EXPECT_EQ(received, 400);
}

}  // namespace
}  // namespace velmora::utils
