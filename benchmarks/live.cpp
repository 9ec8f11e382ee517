// Reading the values in effect, while other threads do the same and one reloads.
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "contender.hpp"
#include "live_config.hpp"

namespace bench {

namespace app = velmora::app;

namespace {

constexpr int given_port = 80;
constexpr int other_readers = 7;

// Threads at work as long as it lives: readers, and one that writes.
class Others {
public:
    Others(const std::function<void()>& read, const std::function<void()>& write) {
        for (int i = 0; i < other_readers; ++i) start(read);
        start(write);
    }
    Others(const Others&) = delete;
    Others& operator=(const Others&) = delete;
    ~Others() {
        over_ = true;
        for (std::thread& thread : threads_) thread.join();
    }

private:
    void start(const std::function<void()>& act) {
        threads_.emplace_back([this, act] {
            while (!over_) act();
        });
    }

    std::atomic<bool> over_ = false;
    std::vector<std::thread> threads_;
};

app::Live<Config>& live() {
    static app::Live<Config> live(schema(), {app::text("server: {port: 80}", "f")});
    return live;
}

void read_live() {
    benchmark::DoNotOptimize(live().now()->server.port);
}
void reload() {
    live().reload();
}

const Contender ours("live/ours", [](Run& run) {
    const Others others(read_live, reload);
    run.once([] { return live().now()->server.port; }, given_port);
});
const Contender limit("live/limit", [](Run& run) {
    const Others others(read_live, reload);
    static const Config config = {{given_port}};
    const Config* read = &config;
    benchmark::DoNotOptimize(read);
    run.once([&] { return read->server.port; }, given_port);
});

// What is written by hand: one pointer that is shared, behind one mutex.
class Guarded {
public:
    std::shared_ptr<const Config> get() const {
        const std::lock_guard lock(mutex_);
        return config_;
    }
    void set(std::shared_ptr<const Config> config) {
        const std::lock_guard lock(mutex_);
        config_.swap(config);
    }

private:
    mutable std::mutex mutex_;
    std::shared_ptr<const Config> config_ = std::make_shared<const Config>(Config{{given_port}});
};

const Contender one_mutex("live/one mutex", [](Run& run) {
    Guarded guarded;
    const Others others(
        [&] { benchmark::DoNotOptimize(guarded.get()->server.port); },
        [&] {
            benchmark::DoNotOptimize(schema().load({app::text("server: {port: 80}", "f")}));
            guarded.set(std::make_shared<const Config>(Config{{given_port}}));
        });
    run.once([&] { return guarded.get()->server.port; }, given_port);
});

}  // namespace

}  // namespace bench
