// What Values are handles of. Private.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "velmora/app/declaration_data.hpp"
#include "velmora/app/values.hpp"

namespace velmora::app {

struct Values::Data {
    static const Data& of(const Values& values) noexcept { return *values.data_; }

    /// Settles what holds by what is given.
    void hold();
    /// Whether another value waits to hold for the key at a position.
    bool is_pending(std::size_t key) const {
        return pending != nullptr && *pending->held[key] != *held[key];
    }

    std::shared_ptr<const Declaration::Data> declaration;
    /// By key, the strongest first.
    std::vector<std::vector<GivenValue>> given;
    /// By key; in `given` or `lists`, or the default of `declaration`.
    std::vector<const config::ConfigValue*> held = {};
    /// Defaults that are lists.
    std::deque<config::ConfigValue> lists = {};
    /// By section.
    std::vector<Raw> raws;
    /// That had something in them.
    std::vector<std::string> files = {};
    std::vector<Fault> faults = {};
    /// What a reload has loaded, where something of it waits for a restart.
    std::shared_ptr<const Data> pending = nullptr;
    /// What a schema has made of the values.
    std::shared_ptr<const void> bound = nullptr;
};

/// Whether these are the same to whoever reads them: 1 is not 1.0, and the order of keys counts.
bool same(const Raw& a, const Raw& b);

/// The one that holds of what is given a key, the strongest first; null for the default.
const GivenValue* held_of(const std::vector<GivenValue>& given);

}  // namespace velmora::app
