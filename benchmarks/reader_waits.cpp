// How long readers of the values in effect wait at worst while one thread reloads every 5 ms: first among
// themselves, then beside one reader of the policy SCHED_IDLE, which the others preempt wherever it is.
// A worst read holds what a reader was preempted for itself; blocked are those that gave up the processor.
//
//     velmora_reader_waits [RUNS [SECONDS [READERS]]]     # 5 of each kind, 20 s, as many as processors
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <sched.h>
#include <sys/resource.h>

#include "live_config.hpp"

namespace {

namespace app = velmora::app;
using bench::Config;
using bench::schema;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

struct Reader {
    explicit Reader(bool idle) : is_idle(idle) {}

    void read(const app::Live<Config>& live, const std::atomic<bool>& over) {
        const sched_param none = {};
        if (is_idle && sched_setscheduler(0, SCHED_IDLE, &none) != 0) std::abort();
        auto before = Clock::now();
        while (!over) {
            if (live.now()->server.port != 80) std::abort();
            const auto after = Clock::now();
            worst = std::max(worst, Milliseconds(after - before));
            before = after;
            ++reads;
        }
        rusage usage = {};
        getrusage(RUSAGE_THREAD, &usage);
        blocked = usage.ru_nvcsw;
    }

    bool is_idle;
    Milliseconds worst{};
    long reads = 0;
    long blocked = 0;
};

void run(int readers, bool with_idle, std::chrono::seconds duration) {
    app::Live<Config> live(schema(), {app::text("server: {port: 80}", "f")});
    std::atomic<bool> over = false;
    std::vector<Reader> all(static_cast<std::size_t>(readers), Reader(false));
    if (with_idle) all.emplace_back(true);
    std::vector<std::thread> threads;
    for (Reader& each : all) threads.emplace_back([&] { each.read(live, over); });
    int reloads = 0;
    Milliseconds longest{};
    for (const auto end = Clock::now() + duration; Clock::now() < end; ++reloads) {
        const auto start = Clock::now();
        live.reload();
        longest = std::max(longest, Milliseconds(Clock::now() - start));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    over = true;
    for (std::thread& each : threads) each.join();
    Milliseconds worst{};
    long reads = 0, blocked = 0;
    for (const Reader& each : all) {
        if (each.is_idle) continue;
        worst = std::max(worst, each.worst);
        reads += each.reads;
        blocked += each.blocked;
    }
    std::printf(
        "%-10s worst read %7.1f ms, blocked in %5ld of %10ld, %4d reloads, longest %7.1f ms\n",
        with_idle ? "with idle:" : "without:", worst.count(), blocked, reads, reloads,
        longest.count());
    std::fflush(stdout);
}

}  // namespace

int main(int count, char** given) {
    const auto argument = [&](int i, int otherwise) {
        return i < count ? std::atoi(given[i]) : otherwise;
    };
    const int runs = argument(1, 5), seconds = argument(2, 20),
              readers = argument(3, static_cast<int>(std::thread::hardware_concurrency()));
    for (int i = 0; i < runs; ++i) {
        for (const bool with_idle : {false, true})
            run(readers, with_idle, std::chrono::seconds(seconds));
    }
}
