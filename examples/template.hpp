// The command that writes a configuration file to start from.
#pragma once

#include <iosfwd>

/// Prints a YAML file of all keys, described and at their defaults.
void print_template(std::ostream& out);
