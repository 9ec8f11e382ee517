// One load of a declaration. Private.
#pragma once

#include <memory>
#include <vector>

#include "velmora/app/declaration.hpp"
#include "velmora/app/intake.hpp"
#include "velmora/app/reload.hpp"

namespace velmora::app {

/// Takes in layers once. What it is made from must outlive it.
class Loading {
public:
    Loading(const Declaration& declaration, const std::vector<Layer>& layers,
            const LoadOptions& options);

    /// The values of a start.
    Values load();

    /// What is wrong with the layers, but for required keys and checks.
    std::vector<Fault> faults();

    /// The values that are in effect after a reload in place of `now`. Throws LoadError where they
    /// must not be.
    Values reload(const Values& now, const ReloadOptions& how);

private:
    Values::Data take_layers(bool strict, bool whole = true);
    /// Makes of values what a schema makes of them.
    void bind(Values::Data& data) const;
    /// Binds, checks and reports what is to hold.
    Values finish(Values::Data data);
    void make_checks(const Values& values, Severity severity, std::vector<Fault>& faults) const;
    std::string origin_of(const Values::Data& data, std::size_t key) const;

    const Declaration& declaration_;
    const std::vector<Layer>& layers_;
    const LoadOptions& options_;
    bool alone_;
    Intake intake_;
};

}  // namespace velmora::app
