// The command that shows the configuration in effect.
#pragma once

#include <iosfwd>

#include "settings.hpp"

/// Prints every key, its value and where that comes from.
void show(std::ostream& out, const velmora::app::Snapshot<Config>& now);
