// The configuration in effect while a program runs: read by all of its threads, and reloaded.
//
//     app::Live<Config> live(schema(), {app::file("/etc/webd.yaml"), app::environment()});
//
//     if (live.now()->server.maintenance) ...           // in any thread, for each request
//
//     const auto subscription = live.on_change("log", [&](const app::Plan&) { reopen(live.now()->log); });
//
//     try {                                             // on SIGHUP
//         std::cout << text_of(live.reload().changes);
//     } catch (const std::exception& error) {           // a LoadError or another; nothing has changed
//         std::cerr << error.what() << '\n';
//     }
#pragma once

#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/app/declaration.hpp"
#include "velmora/app/explain.hpp"
#include "velmora/app/layer.hpp"
#include "velmora/app/reload.hpp"
#include "velmora/app/schema.hpp"
#include "velmora/app/values.hpp"
#include "velmora/utils/export.hpp"

namespace velmora::app {

/// Is told by a reload, in its thread, what has come into effect of what it subscribes to. What it
/// throws is logged to velmora.app as an error, and does not end the subscription.
using Subscriber = std::function<void(const Plan& changes)>;

/// Keeps a subscriber subscribed as long as it lives, which may be longer than the values do.
class VELMORA_EXPORT Subscription {
public:
    /// To nothing.
    Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept;
    /// Waits for a subscriber that is running, unless it is the one that ends its subscription; so
    /// nobody may do this while holding a lock that the subscriber takes.
    ~Subscription();

private:
    friend class LiveValues;
    class Entry;

    explicit Subscription(std::shared_ptr<Entry> entry) : entry_(std::move(entry)) {}

    std::shared_ptr<Entry> entry_;
};

/// The values in effect of a declaration. All of it may be called from several threads.
class VELMORA_EXPORT LiveValues {
public:
    /// Loads them. `options` are those of all loads. Throws as `Declaration::load` does.
    LiveValues(Declaration declaration, std::vector<Layer> layers, LoadOptions options = {});
    LiveValues(const LiveValues&) = delete;
    LiveValues& operator=(const LiveValues&) = delete;
    ~LiveValues();

    /// Those in effect. Wait-free: it waits neither for readers nor for a reload, and locks and
    /// allocates nothing. What it gives is never older than what any thread was given before.
    ///
    /// A child process may call it after `fork`, and nothing else of this class; nor may it end
    /// subscriptions, so that it ends in `_exit` or runs another program.
    Values now() const noexcept;

    /// Loads anew and puts into effect what differs and takes no more restart than granted; the
    /// rest stays as it was, pending. Checks are made of the values that then hold together; those
    /// that a restart would fail by are reported as warnings.
    ///
    /// Throws LoadError where there is any fault but advice, or a file gone or empty that was not before, unless
    /// `options` allow for it; then everything is as it was, and nothing has been reported.
    ///
    /// Faults are reported before anything comes into effect; what a report or a check throws
    /// passes, and nothing has changed. It throws nothing once the values are in effect: then all
    /// who subscribed before are told, in the order in which they subscribed, and it returns when no
    /// thread is within a `now` that began with the old ones. One reload is made at a time, others
    /// wait; not for signal handlers. Throws std::logic_error when a report, a check or a subscriber
    /// calls it.
    Reload reload(const ReloadOptions& options = {});

    /// Has later reloads tell `subscriber` of changes to the key of this label, or to any key of the
    /// section of this name. Throws ConfigKeyError when there is neither.
    [[nodiscard]] Subscription on_change(std::string_view name, Subscriber subscriber);

private:
    class Data;
    std::unique_ptr<Data> data_;
};

/// The configuration in effect as the structs of a schema; else as `LiveValues`.
template <class Config>
class Live {
public:
    explicit Live(const Schema<Config>& schema, std::vector<Layer> layers, LoadOptions options = {})
        : values_(schema.declaration(), std::move(layers), std::move(options)) {}

    /// Those in effect, as `LiveValues::now`. They live as long as the snapshot does, so a loop keeps
    /// it:
    ///
    ///     for (const auto now = live.now(); const std::string& tag : now->server.tags) ...
    Snapshot<Config> now() const noexcept {
        return Snapshot<Config>([this] { return values_.now(); });
    }
    Reload reload(const ReloadOptions& options = {}) { return values_.reload(options); }
    [[nodiscard]] Subscription on_change(std::string_view name, Subscriber subscriber) {
        return values_.on_change(name, std::move(subscriber));
    }

private:
    LiveValues values_;
};

}  // namespace velmora::app
