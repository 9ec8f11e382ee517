// One load of a declaration. Private.
#pragma once

#include <vector>

#include "velmora/app/declaration.hpp"
#include "velmora/app/intake.hpp"

namespace velmora::app {

class Loading {
public:
    explicit Loading(const Declaration& declaration) : declaration_(declaration) {}

    Values load(const std::vector<Layer>& layers, const LoadOptions& options) const;

private:
    void make_checks(const Values& now, const Intake& intake, std::vector<Fault>& faults) const;
    std::string origin_of(const Values::Data& data, std::size_t key) const;

    const Declaration& declaration_;
};

}  // namespace velmora::app
