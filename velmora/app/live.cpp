#include "velmora/app/live.hpp"

#include <array>
#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

#include "velmora/app/loading.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::app {

class Subscription::Entry {
public:
    Entry(std::string name, Subscriber subscriber)
        : name_(std::move(name)), subscriber_(std::move(subscriber)) {}

    void end() {
        Subscriber ended;
        const std::lock_guard lock(running_);
        ended_ = true;
        if (!telling_) ended.swap(subscriber_);
    }

    void tell(const Plan& changes) {
        Plan own;
        for (const Change& change : changes.changes) {
            if (change.label == name_ || change.label.starts_with(name_ + ".")) own.add(change);
        }
        const std::lock_guard lock(running_);
        if (ended_ || own.changes.empty()) return;
        telling_ = true;
        try {
            subscriber_(own);
        } catch (const std::exception& error) {
            log_failure(error);
        } catch (...) {
            log_failure("it has thrown what is no exception");
        }
        telling_ = false;
        if (ended_) subscriber_ = nullptr;
    }

private:
    void log_failure(const utils::LogArgument& what) const {
        utils::logger("velmora.app")
            .log(utils::Level::error, "A subscriber to %s has failed: %s", name_, what);
    }

    std::string name_;
    Subscriber subscriber_;
    // Recursive, since a subscriber may end its own subscription.
    std::recursive_mutex running_;
    bool telling_ = false;
    bool ended_ = false;
};

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    Subscription taken(std::move(other));
    std::swap(entry_, taken.entry_);
    return *this;
}

Subscription::~Subscription() {
    if (entry_ != nullptr) entry_->end();
}

class LiveValues::Data {
public:
    Data(Declaration declaration, std::vector<Layer> layers, LoadOptions options)
        : declaration_(std::move(declaration)),
          layers_(std::move(layers)),
          options_(std::move(options)) {
        put(declaration_.load(layers_, options_));
    }

    Values get() const {
        const Stripe& own = stripes_[own_stripe()];
        const std::lock_guard lock(own.mutex);
        return Values(own.values);
    }

    Reload reload(const ReloadOptions& how);
    Subscription subscribe(std::string_view name, Subscriber subscriber);

private:
    static constexpr std::size_t cache_line = 64;
    static constexpr std::size_t stripe_count = 16;

    // The values once more, for some of the threads: each stripe has a mutex and, in `Owner`, a count of
    // owners that others do not write to, so that reading threads hardly ever meet.
    struct alignas(cache_line) Stripe {
        mutable std::mutex mutex;
        std::shared_ptr<const Values::Data> values;
    };
    struct alignas(cache_line) Owner {
        Values values;
    };

    static std::size_t own_stripe() noexcept {
        static std::atomic<std::size_t> threads = 0;
        thread_local const std::size_t own = threads++ % stripe_count;
        return own;
    }

    void put(const Values& values);
    void tell(const Plan& changes);

    Declaration declaration_;
    std::vector<Layer> layers_;
    LoadOptions options_;
    std::array<Stripe, stripe_count> stripes_;
    std::mutex reloading_;
    std::atomic<std::thread::id> reloader_;
    std::mutex subscribing_;
    std::vector<std::weak_ptr<Subscription::Entry>> subscribed_;
};

void LiveValues::Data::put(const Values& values) {
    std::array<std::shared_ptr<const Values::Data>, stripe_count> all;
    for (auto& each : all)
        each = {std::make_shared<const Owner>(Owner{values}), values.data_.get()};
    // At once, so that no thread reads older values than another has read before.
    std::array<std::unique_lock<std::mutex>, stripe_count> locks;
    for (std::size_t i = 0; i < stripe_count; ++i) locks[i] = std::unique_lock(stripes_[i].mutex);
    for (std::size_t i = 0; i < stripe_count; ++i) stripes_[i].values.swap(all[i]);
}

Reload LiveValues::Data::reload(const ReloadOptions& how) {
    const auto self = std::this_thread::get_id();
    if (reloader_ == self) throw std::logic_error("a reload cannot be made within a reload");
    const std::lock_guard lock(reloading_);
    struct Turn {
        ~Turn() { reloader = std::thread::id(); }
        std::atomic<std::thread::id>& reloader;
    };
    reloader_ = self;
    const Turn turn = {reloader_};

    const Values before = get();
    const Values after = Loading(declaration_, layers_, options_).reload(before, how);
    Reload done = {plan(before, after), pending(after)};
    put(after);
    tell(done.changes);
    return done;
}

void LiveValues::Data::tell(const Plan& changes) {
    std::vector<std::shared_ptr<Subscription::Entry>> all;
    {
        const std::lock_guard lock(subscribing_);
        for (const auto& each : subscribed_) {
            if (auto entry = each.lock()) all.push_back(std::move(entry));
        }
    }
    for (const auto& entry : all) entry->tell(changes);
}

Subscription LiveValues::Data::subscribe(std::string_view name, Subscriber subscriber) {
    if (subscriber == nullptr) throw TypeError("a subscriber must be a function");
    if (name.find('.') == std::string_view::npos) {
        declaration_.section(name);
    } else {
        declaration_.key(name);
    }
    auto entry = std::make_shared<Subscription::Entry>(std::string(name), std::move(subscriber));
    const std::lock_guard lock(subscribing_);
    std::erase_if(subscribed_, [](const auto& each) { return each.expired(); });
    subscribed_.push_back(entry);
    return Subscription(std::move(entry));
}

LiveValues::LiveValues(Declaration declaration, std::vector<Layer> layers, LoadOptions options)
    : data_(std::make_unique<Data>(std::move(declaration), std::move(layers), std::move(options))) {
}
LiveValues::~LiveValues() = default;

Values LiveValues::now() const {
    return data_->get();
}

Reload LiveValues::reload(const ReloadOptions& options) {
    return data_->reload(options);
}

Subscription LiveValues::on_change(std::string_view name, Subscriber subscriber) {
    return data_->subscribe(name, std::move(subscriber));
}

}  // namespace velmora::app
