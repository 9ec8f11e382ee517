#include "velmora/app/live.hpp"

#include <atomic>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

#include "velmora/app/left_right.hpp"
#include "velmora/app/loading.hpp"
#include "velmora/utils/errors.hpp"
#include "velmora/utils/logging.hpp"

namespace velmora::app {

class Subscription::Entry {
public:
    Entry(std::string name, Subscriber subscriber)
        : name_(std::move(name)), subscriber_(std::move(subscriber)) {}

    Plan own_part_of(const Plan& changes) const {
        Plan own;
        for (const Change& change : changes.changes) {
            if (change.label == name_ || change.label.starts_with(name_ + ".")) own.add(change);
        }
        return own;
    }

    void tell(const Plan& own) noexcept {
        teller_ = std::this_thread::get_id();
        State state = State::subscribed;
        if (!state_.compare_exchange_strong(state, State::telling)) return;
        try {
            call(own);
        } catch (...) {
            // Not even the failure could be logged.
        }
        state = State::telling;
        if (state_.compare_exchange_strong(state, State::subscribed)) return;
        subscriber_ = nullptr;
        state_ = State::ended;
        state_.notify_all();
    }

    void end() noexcept {
        State state = state_;
        while (!state_.compare_exchange_weak(
            state, state == State::telling ? State::ending : State::ended)) {
        }
        if (state == State::subscribed) {
            subscriber_ = nullptr;
        } else if (teller_ != std::this_thread::get_id()) {
            state_.wait(State::ending);
        }
    }

private:
    // One that ends while it is being told is let go of by who tells it.
    enum class State : int { subscribed, telling, ending, ended };

    void call(const Plan& own) const {
        try {
            subscriber_(own);
        } catch (const std::exception& error) {
            log_failure(error);
        } catch (...) {
            log_failure("it has thrown what is no exception");
        }
    }

    void log_failure(const utils::LogArgument& what) const {
        utils::logger("velmora.app")
            .log(utils::Level::error, "A subscriber to %s has failed: %s", name_, what);
    }

    std::string name_;
    Subscriber subscriber_;
    std::atomic<State> state_ = State::subscribed;
    std::atomic<std::thread::id> teller_;
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
          options_(std::move(options)),
          values_(shares_of(declaration_.load(layers_, options_))) {}

    Values get() const noexcept { return Values(values_.get()); }
    Reload reload(const ReloadOptions& how);
    Subscription subscribe(std::string_view name, Subscriber subscriber);

private:
    using Shares = LeftRight<Values::Data>::Shares;
    struct Notice {
        std::shared_ptr<Subscription::Entry> to;
        Plan changes;
    };

    static Shares shares_of(const Values& values) { return Shares(values.data_.share()); }

    Declaration declaration_;
    std::vector<Layer> layers_;
    LoadOptions options_;
    LeftRight<Values::Data> values_;
    std::mutex reloading_;
    std::atomic<std::thread::id> reloader_;
    std::mutex subscribing_;
    std::vector<std::weak_ptr<Subscription::Entry>> subscribed_;
};

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
    Shares shares = shares_of(after);
    std::vector<Notice> notices;
    {
        const std::lock_guard subscribing(subscribing_);
        for (const auto& each : subscribed_) {
            std::shared_ptr<Subscription::Entry> entry = each.lock();
            if (entry == nullptr) continue;
            Plan own = entry->own_part_of(done.changes);
            if (!own.changes.empty()) notices.push_back({std::move(entry), std::move(own)});
        }
        // Nothing throws from here on.
        values_.put(std::move(shares));
    }
    for (const Notice& notice : notices) notice.to->tell(notice.changes);
    values_.drop_former();
    return done;
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

Values LiveValues::now() const noexcept {
    return data_->get();
}

Reload LiveValues::reload(const ReloadOptions& options) {
    return data_->reload(options);
}

Subscription LiveValues::on_change(std::string_view name, Subscriber subscriber) {
    return data_->subscribe(name, std::move(subscriber));
}

}  // namespace velmora::app
