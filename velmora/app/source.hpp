// What a layer is to a load. Private.
#pragma once

#include "velmora/app/intake.hpp"
#include "velmora/app/layer.hpp"

namespace velmora::app::detail {

class Source {
public:
    explicit Source(OnFault on_fault) noexcept : on_fault_(on_fault) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    OnFault on_fault() const noexcept { return on_fault_; }
    /// Whether it is one mapping of sections, "the config file" where there is nothing else.
    virtual bool is_document() const noexcept { return false; }
    /// Gives all that it has, weakest first.
    virtual void give(Intake& intake) const = 0;

private:
    OnFault on_fault_;
};

}  // namespace velmora::app::detail
