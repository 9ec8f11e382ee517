// Reading a section, against a reader written by hand for that one section, on the same data.
#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>

#include <benchmark/benchmark.h>

#include "velmora/config/spec.hpp"

namespace {

using namespace velmora::config;

const RecordType server(
    "Server",
    {
        {"host", str_type, setting("127.0.0.1", "Address.")},
        {"port", int_type, setting(8080, "Port.", {.bounds = Bound(1, 65535)})},
        {"workers", int_type, setting(4, "Workers.", {.bounds = Bound(1, 256)})},
        {"keep_alive", float_type, setting(75.0, "Seconds.", {.bounds = NON_NEGATIVE})},
        {"maintenance", bool_type, setting(false, "Answer with 503.")},
        {"policy", str_type, setting("lru", "Policy.", {.choices = {"lru", "lfu", "fifo"}})},
        {"certificate", str_type, setting("/etc/webd/cert.pem", "File.")},
        {"tags", list_of(str_type), setting(List{}, "Tags.")},
    });

// Every key, in the order of the declaration or in its reverse.
Mapping data(bool reversed) {
    std::vector<Mapping::Entry> entries = {
        {"host", "an.address.that.is.not.so.short.example.org"},
        {"port", 8443},
        {"workers", 16},
        {"keep_alive", 12.5},
        {"maintenance", true},
        {"policy", "lfu"},
        {"certificate", "/etc/letsencrypt/live/example.org/fullchain.pem"},
        {"tags", List{"a tag that needs memory of its own", "b"}},
    };
    if (reversed) std::reverse(entries.begin(), entries.end());
    Mapping mapping;
    for (auto& [key, value] : entries) mapping.set(key, value);
    return mapping;
}

// What a careful programmer writes for this section and no other.
struct Server {
    std::string host = "127.0.0.1";
    std::int64_t port = 8080;
    std::int64_t workers = 4;
    double keep_alive = 75.0;
    bool maintenance = false;
    std::string policy = "lru";
    std::string certificate = "/etc/webd/cert.pem";
    std::vector<std::string> tags;
};

std::int64_t checked(const ConfigValue& value, std::int64_t low, std::int64_t high) {
    const auto read = value.get<std::int64_t>();
    if (read < low || read > high) throw std::out_of_range("out of range");
    return read;
}

Server read_by_hand(const Mapping& data) {
    Server read;
    for (const auto& [key, value] : data) {
        const auto& name = *key.get_if<std::string>();
        if (name == "host") {
            read.host = *value.get_if<std::string>();
        } else if (name == "port") {
            read.port = checked(value, 1, 65535);
        } else if (name == "workers") {
            read.workers = checked(value, 1, 256);
        } else if (name == "keep_alive") {
            read.keep_alive = value.get<double>();
            if (!std::isfinite(read.keep_alive) || read.keep_alive < 0)
                throw std::out_of_range("out of range");
        } else if (name == "maintenance") {
            read.maintenance = value.get<bool>();
        } else if (name == "policy") {
            constexpr std::array<std::string_view, 3> policies = {"lru", "lfu", "fifo"};
            read.policy = *value.get_if<std::string>();
            if (std::find(policies.begin(), policies.end(), read.policy) == policies.end()) {
                throw std::invalid_argument("no such policy");
            }
        } else if (name == "certificate") {
            read.certificate = *value.get_if<std::string>();
        } else if (name == "tags") {
            read.tags = value.get<std::vector<std::string>>();
        }
    }
    return read;
}

void by_hand(benchmark::State& state) {
    const Mapping given = data(state.range(0) != 0);
    for (auto _ : state) {
        Server read = read_by_hand(given);
        if (read.port != 8443 || read.tags.size() != 2) state.SkipWithError("read wrongly");
        benchmark::DoNotOptimize(read);
    }
}
BENCHMARK(by_hand)->ArgName("reversed")->Arg(0)->Arg(1);

void section_read(benchmark::State& state) {
    const Section section = sections_of(RecordType(
        "Config",
        {{"server", server, velmora::config::section(server, "", {.restart = Restart::none})}}))[0];
    const ConfigValue given = data(state.range(0) != 0);
    for (auto _ : state) {
        Record read = section.read(given);
        if (read.get<int>("port") != 8443) state.SkipWithError("read wrongly");
        benchmark::DoNotOptimize(read);
    }
}
BENCHMARK(section_read)->ArgName("reversed")->Arg(0)->Arg(1);

}  // namespace
