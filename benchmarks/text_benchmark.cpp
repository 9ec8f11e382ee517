// Showing values: long texts against a plain copy, huge values against small ones; reading long
// numbers.
#include <string>

#include <benchmark/benchmark.h>

#include "velmora/config/spec.hpp"
#include "velmora/utils/quoting.hpp"

namespace {

using namespace velmora::config;

std::string repeated(std::string_view text, std::size_t bytes) {
    std::string result;
    while (result.size() < bytes) result += text;
    return result;
}

constexpr std::size_t megabyte = 1'000'000;

void copy(benchmark::State& state) {
    const std::string text(megabyte, 'a');
    for (auto _ : state) benchmark::DoNotOptimize(std::string(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(copy);

void quote(benchmark::State& state, std::string_view unit) {
    const std::string text = repeated(unit, megabyte);
    for (auto _ : state) {
        std::string form = velmora::utils::quoted_text(text);
        if (form.size() < text.size() + 2) state.SkipWithError("quoted wrongly");
        benchmark::DoNotOptimize(form);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK_CAPTURE(quote, clean, "a line of plain text without anything to escape ");
BENCHMARK_CAPTURE(quote, lines, "a line of plain text without anything to escape\n");
BENCHMARK_CAPTURE(quote, accents, "déjà vu, à la carte, ");
BENCHMARK_CAPTURE(quote, control, "\x01");

void shown(benchmark::State& state) {
    List list;
    for (std::int64_t i = 0; i < state.range(0); ++i) list.push_back(i);
    const ConfigValue value = list;
    for (auto _ : state) benchmark::DoNotOptimize(_shown(value));
}
BENCHMARK(shown)->Arg(40)->Arg(10'000'000);

void coerce_digits(benchmark::State& state) {
    const ConfigValue text = std::string(static_cast<std::size_t>(state.range(0)), '1');
    for (auto _ : state) {
        try {
            benchmark::DoNotOptimize(_coerce_number(text, KeyKind::int_));
        } catch (const velmora::OverflowError&) {
        }
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(coerce_digits)->Arg(4)->Arg(300)->Arg(100'000)->Arg(10'000'000);

}  // namespace
