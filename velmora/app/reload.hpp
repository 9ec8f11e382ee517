// What a reload may do, and what it has done.
#pragma once

#include "velmora/app/explain.hpp"
#include "velmora/config/declaration.hpp"

namespace velmora::app {

struct ReloadOptions {
    /// The most that the caller restarts afterwards. What takes no more comes into effect, for those
    /// as well that are not restarted yet.
    config::Restart granted = config::Restart::none;
    /// Whether warnings are to stand in the way no more than at a start, and weaker values or
    /// defaults to take the place of refused ones. Errors always do, advice never does.
    bool despite_faults = false;
    /// Whether files, sections in them, folders and credentials that gave something before may be gone
    /// or empty, as those are for a moment that are being written.
    bool despite_missing_files = false;
};

struct Reload {
    /// What has come into effect.
    Plan changes;
    /// What waits for a restart.
    Plan pending;
};

}  // namespace velmora::app
