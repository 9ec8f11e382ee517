// The commands that show the configuration in effect.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "settings.hpp"

/// Prints every key, its value and where that comes from.
void show(std::ostream& out, const velmora::app::Snapshot<Config>& now);

/// Prints what holds for the keys with these labels, or for all keys when there are none, and why.
/// Throws Refused, with a line for everything that is no key.
void explain(std::ostream& out, const velmora::app::Snapshot<Config>& now,
             const std::vector<std::string>& labels);
