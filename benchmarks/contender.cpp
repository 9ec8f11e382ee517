#include "contender.hpp"

#include <exception>
#include <iostream>
#include <regex>
#include <utility>
#include <vector>

namespace bench {

namespace {

struct Entry {
    std::string name;
    std::function<void(Run&)> function;
};

std::vector<Entry>& entries() {
    static std::vector<Entry> entries;
    return entries;
}

bool gives_expected_results(const Entry& entry) {
    try {
        Run check(nullptr);
        entry.function(check);
        return true;
    } catch (const std::exception& error) {
        std::cerr << entry.name << ": " << error.what() << '\n';
        return false;
    }
}

}  // namespace

void Run::report(std::size_t operations, std::uint64_t allocated) {
    const auto each = static_cast<double>(operations);
    state_->counters["operations"] = each;
    state_->counters["allocations"] =
        static_cast<double>(allocated) / static_cast<double>(state_->iterations()) / each;
}

Contender::Contender(std::string name, std::function<void(Run&)> function) {
    entries().push_back({std::move(name), std::move(function)});
}

}  // namespace bench

int main(int argc, char** argv) {
    using namespace bench;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    const std::regex filter(benchmark::GetBenchmarkFilter());
    bool correct = true;
    for (const Entry& entry : entries()) {
        if (!std::regex_search(entry.name, filter)) continue;
        correct = gives_expected_results(entry) && correct;
        benchmark::RegisterBenchmark(entry.name.c_str(), [&entry](benchmark::State& state) {
            Run timed(&state);
            entry.function(timed);
        });
    }
    if (!correct) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
