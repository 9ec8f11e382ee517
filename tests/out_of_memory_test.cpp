// Public operations with their first, second, third ... allocation failing: each has its whole effect or none, and
// nothing leaks. What is used though freed, AddressSanitizer says.
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <new>
#include <random>

#include <gtest/gtest.h>

#include "allocations.hpp"
#include "examples/locked_file.hpp"
#include "folder.hpp"
#include "support.hpp"
#include "velmora/utils/logging.hpp"

using velmora::test::allocations_left, velmora::test::living, velmora::test::unlimited;

void* operator new(std::size_t size, std::align_val_t alignment) {
    if (allocations_left == 0) throw std::bad_alloc();
    if (allocations_left > 0) --allocations_left;
    const auto unit = static_cast<std::size_t>(alignment);
    void* const memory = std::aligned_alloc(unit, (size + unit) / unit * unit);
    if (memory == nullptr) throw std::bad_alloc();
    ++living;
    return memory;
}
void* operator new(std::size_t size) {
    return operator new(size, std::align_val_t(__STDCPP_DEFAULT_NEW_ALIGNMENT__));
}
void operator delete(void* memory) noexcept {
    living -= memory != nullptr ? 1 : 0;
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    operator delete(memory);
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
    const std::string after = state(whole);
    bool failed = true;
    for (long count = 0; failed; ++count) {
        const long living_before = living;
        {
            const ConfigValue value = make();
            const std::string before = state(value);
            failed = false;
            allocations_left = count;
            try {
                act(value);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            allocations_left = unlimited;
            ASSERT_EQ(state(value), failed ? before : after) << "after " << count << " allocations";
        }
        ASSERT_EQ(living, living_before) << "after " << count << " allocations";
    }
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
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set(3, List{v}); });
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set("self", v); });
        expect_all_or_nothing(make, [](Value v) { v.get<Mapping>().set(List{v}, 1); });
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

// The list that an item is, or that it has as a key.
List part(const ConfigValue& item) {
    const auto* mapping = item.get_if<Mapping>();
    return mapping != nullptr ? part(mapping->begin()->key) : item.get<List>();
}

// Puts lists into each other at random. What is freed too early differs from its twin, which is kept.
TEST(Cycles, KeepWhatIsReachedAndFreeTheRest) {
    std::mt19937 random(20261124);
    const List below{1};
    const long living_before = living;
    for (int round = 0; round < 500; ++round) {
        std::vector<List> kept;
        std::vector<std::array<List, 2>> held;
        for (int i = 0; i < 8; ++i) held.push_back({List(i, below), kept.emplace_back(List(i, below))});
        while (!held.empty()) {
            std::swap(held[random() % held.size()], held.back());
            auto [list, twin] = held.back();
            const auto& [other, other_twin] = held[random() % held.size()];
            const std::size_t at = random() % list.size();
            const auto put = [&, wrapped = random() % 3 == 0](List& into, ConfigValue item) {
                if (wrapped) item = Mapping{{item, item}};
                at == 0 ? into.push_back(item) : into.set(at, item);
            };
            if (const auto choice = random() % 6; choice < 2) {
                ASSERT_TRUE(list == twin);
                held.pop_back();
            } else if (choice == 2 && at > 1) {
                held.push_back({part(list[at]), part(twin[at])});
            } else {
                put(list, other);
                put(twin, other_twin);
            }
        }
    }
    EXPECT_EQ(living, living_before);
}

TEST(OutOfMemory, LeavesNoFileOpenOrBehind) {
    namespace fs = std::filesystem;
    const auto entries = [](const fs::path& folder) { return std::distance(fs::directory_iterator(folder), {}); };
    const test::Folder folder;
    const auto descriptors = entries("/proc/self/fd");
    bool failed = true;
    for (long count = 0; failed; ++count) {
        allocations_left = count;
        try {
            LockedFile(folder.path("file")).replace("content");
            failed = false;
        } catch (const std::bad_alloc&) {
        }
        allocations_left = unlimited;
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
        EXPECT_EQ(entries(folder.path("")), failed ? 0 : 1);
    }
}

}  // namespace
}  // namespace velmora::config
