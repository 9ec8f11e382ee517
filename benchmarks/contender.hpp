// What all benchmarks have in common: contenders for one job each, whose results are checked before
// anything is timed.
//
//     const Contender by_hand("show_int/limit", [](Run& run) {
//         run.once([] { return std::to_string(42); }, std::string("42"));
//     });
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

namespace bench {

/// Calls of `operator new` so far.
std::uint64_t allocations() noexcept;

/// One run of a contender: the check of its results, or a time measured.
class Run {
public:
    /// A run without a state is a check.
    explicit Run(benchmark::State* state) noexcept : state_(state) {}

    /// Times `work(input)`, the freeing of its result included. `read` of that result must equal
    /// the expected one of the same position.
    template <class Inputs, class Expected, class Work, class Read = std::identity>
    void each(const Inputs& inputs, const Expected& expected, Work work, Read read = {}) {
        if (state_ == nullptr) {
            for (std::size_t i = 0; i < inputs.size(); ++i)
                check(read(work(inputs[i])) == expected[i]);
            return;
        }
        const std::uint64_t before = allocations();
        for (auto _ : *state_) {
            for (const auto& input : inputs) benchmark::DoNotOptimize(work(input));
        }
        report(inputs.size(), allocations() - before);
    }

    /// Times `work()` in the same way.
    template <class Expected, class Work, class Read = std::identity>
    void once(Work work, const Expected& expected, Read read = {}) {
        if (state_ == nullptr) return check(read(work()) == expected);
        const std::uint64_t before = allocations();
        for (auto _ : *state_) benchmark::DoNotOptimize(work());
        report(1, allocations() - before);
    }

private:
    static void check(bool correct) {
        if (!correct) throw std::runtime_error("a wrong result");
    }

    void report(std::size_t operations, std::uint64_t allocated);

    benchmark::State* state_;
};

/// A benchmark of the name "JOB/WHO", who is "ours", "limit" or a peer. Makes its inputs and has
/// them timed; is called many times in one run of the program.
class Contender {
public:
    Contender(std::string name, std::function<void(Run&)> function);
};

}  // namespace bench
