// Giving faults their places. Private.
#pragma once

#include "velmora/app/fault.hpp"
#include "velmora/yaml/located.hpp"

namespace velmora::app {

enum class Shown { line, part, nothing };

/// Says where in `document` the fault is, and shows as much of it.
void place_at(yaml::Span span, const yaml::LocatedValue& document, Shown shown, Fault& fault);

}  // namespace velmora::app
