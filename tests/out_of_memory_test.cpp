// Public operations with their first, second, third ... allocation failing: each has its whole effect or none. What
// leaks, or is used though freed, AddressSanitizer says.
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <new>

#include <gtest/gtest.h>

#include "examples/locked_file.hpp"
#include "support.hpp"
#include "velmora/utils/logging.hpp"

namespace {

constexpr long all = -1;
long allocations_left = all;

}  // namespace

void* operator new(std::size_t size) {
    if (allocations_left == 0) throw std::bad_alloc();
    if (allocations_left > 0) --allocations_left;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace velmora::config {
namespace {

// What is shown of a value and what is found in it under its keys.
std::string state(const ConfigValue& value) {
    std::string text = display(value);
    if (const auto* mapping = value.get_if<Mapping>()) {
        for (const auto& [key, held] : *mapping) text += mapping->find(key) == &held ? "+" : "-";
    }
    return text;
}

// `act` changes or uses a value that `make` makes.
void expect_all_or_nothing(ConfigValue (*make)(), void (*act)(const ConfigValue&)) {
    const ConfigValue whole = make();
    act(whole);
    for (long count = 0; count < 10'000; ++count) {
        const ConfigValue value = make();
        const std::string before = state(value);
        bool failed = false;
        allocations_left = count;
        try {
            act(value);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        allocations_left = all;
        ASSERT_EQ(state(value), failed ? before : state(whole)) << "after " << count << " allocations";
        if (!failed) return;
    }
    FAIL() << "never succeeds";
}

ConfigValue list() {
    return List{1, List{"a text that needs memory of its own"}};
}
template <int size>
ConfigValue mapping() {
    Mapping made;
    for (int i = 0; i < size; ++i) made.set(i, "another text that needs memory of its own");
    return made;
}
ConfigValue ring() {
    List first{1};
    List second{first};
    first.push_back(second);
    return List{first, second};
}
const RecordType& config_type() {
    static const RecordType section_type("S",
                                         {{"text", str_type, setting("a default that needs memory of its own", "")},
                                          {"level", str_type, setting("info", "", {.choices = {"info", "debug"}})},
                                          {"count", int_type, setting(1, "", {.bounds = POSITIVE})},
                                          {"tags", list_of(str_type), setting(List{"a", "b"}, "")}});
    static const RecordType type("C", {{"s", section_type, section(section_type, "", {.restart = Restart::none})}});
    return type;
}

TEST(OutOfMemory, LeavesTheWholeEffectOrNone) {
    using Value = const ConfigValue&;
    expect_all_or_nothing(list, [](Value v) { v.get<List>().push_back("a text that needs memory of its own"); });
    expect_all_or_nothing(list, [](Value v) { v.get<List>().push_back(v); });
    expect_all_or_nothing(list, [](Value v) { v.get<List>()[1].get<List>().push_back(v); });
    expect_all_or_nothing(list, [](Value v) { v.get<List>().set(0, List{v, Mapping{{v, "a"}}}); });
    expect_all_or_nothing(ring, [](Value v) { v.get<List>()[0].get<List>().push_back(v); });
    expect_all_or_nothing(ring, [](Value v) { v.get<List>().set(0, nullptr); });
    expect_all_or_nothing(ring, [](Value v) { (void)(v == ring() && v.hash() == 0); });
    for (ConfigValue (*make)() : {mapping<0>, mapping<8>, mapping<9>, mapping<40>}) {
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set("a key that needs memory of its own", 1); });
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set(3, "an old key, a new text"); });
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set("self", v); });
        expect_all_or_nothing(make, [](Value v) { (void)v.get<Mapping>().copy(); });
    }
    expect_all_or_nothing(list, [](Value v) { (void)(display(v) + _shown(v)); });
    expect_all_or_nothing(list, [](Value) { (void)display(sections_of(config_type())[0]); });
    utils::set_sink([](const utils::LogRecord& record) { (void)record.message(); });
    expect_all_or_nothing(list, [](Value v) {
        static const std::vector<Section> sections = sections_of(config_type());
        (void)sections[0].read(Mapping{{"text", v}, {"level", "x"}, {"count", "0"}, {"tags", "a,b"}});
        (void)sections[0].read(v);
        (void)config_type().make().get<Record>("s");
        utils::logger("a.logger.that.is.made.only.here").set_level(utils::Level::debug);
    });
    utils::set_sink({});
}

TEST(OutOfMemory, LeavesNoFileOpenOrBehind) {
    namespace fs = std::filesystem;
    const auto entries = [](const fs::path& folder) { return std::distance(fs::directory_iterator(folder), {}); };
    const fs::path folder = testing::TempDir() + "velmora-out-of-memory";
    fs::create_directory(folder);
    const auto descriptors = entries("/proc/self/fd");
    bool failed = true;
    for (long count = 0; failed; ++count) {
        allocations_left = count;
        try {
            LockedFile(folder / "file").replace("content");
            failed = false;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = all;
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_EQ(entries(folder), failed ? 0 : 1);
    }
    fs::remove_all(folder);
}

}  // namespace
}  // namespace velmora::config
