// A reload with its first, second, third ... allocation failing.
#include <array>

#include <gtest/gtest.h>

#include "allocations.hpp"
#include "folder.hpp"
#include "velmora/app/live.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::test {
namespace {

struct Section {
    int number = 0;
};
struct Config {
    Section s;
};

TEST(OutOfMemory, ReloadsChangeAllAndTellAllOrNothing) {
    const Folder folder;
    folder.write("f", "s: {number: 0}");
    app::Live<Config> live(app::Schema<Config>{app::section(&Config::s, "s", "S.", {config::Restart::none},
                                                            {app::key(&Section::number, "number", "N.")})},
                           {app::file(folder.path("f"))});
    int logged = 0, held = 0;
    std::array<int, 3> told = {};
    std::vector<app::Subscription> subscriptions;
    for (int& each : told) {
        subscriptions.push_back(live.on_change("s.number", [&each, fails = &each == &told[1]](const app::Plan&) {
            ++each;
            if (fails) throw "what cannot be logged without memory";
        }));
    }
    utils::set_sink([&](const utils::LogRecord&) { ++logged; });
    utils::logger("velmora.app");
    const long living_before = living;
    for (long count = 0; logged < 2; ++count) {
        folder.write("f", "s: {number: " + std::to_string(held + 1) + "}");
        const app::Subscription passing = live.on_change("s.number", [](const app::Plan&) {});
        allocations_left = count;
        try {
            live.reload();
            ++held;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = unlimited;
        ASSERT_EQ(living, living_before + 1) << "after " << count << " allocations";
        ASSERT_EQ(live.now()->s.number, held) << "after " << count << " allocations";
        ASSERT_EQ(told, (std::array{held, held, held})) << "after " << count << " allocations";
    }
    utils::set_sink({});
    EXPECT_GT(held, logged);
}

}  // namespace
}  // namespace velmora::test
