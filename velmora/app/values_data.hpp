// What Values are handles of. Private.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "velmora/app/declaration_data.hpp"
#include "velmora/app/values.hpp"

namespace velmora::app {

/// What may give values to a load: a reload takes for gone what gave some and stands empty now.
struct Giver {
    enum class Kind { file, section, folder, credential, variable };
    enum class State { gives, empty, missing };

    Kind kind;
    State state;
    /// As faults name it. That of a credential may be another in another load, for a key that was
    /// renamed.
    std::shared_ptr<const std::string> source;
    /// The position of the section, or of the key that the credential is of; else 0.
    std::size_t part = 0;
    /// The position of the layer.
    std::size_t layer = 0;
};

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
    std::vector<Giver> givers = {};
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
