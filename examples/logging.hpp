// Where messages go while the daemon runs.
#pragma once

#include "settings.hpp"

/// Has all loggers write to the file, or else to standard error, a line with the time for each
/// message. Throws std::system_error when the file cannot be written to, and then all stays as it was.
void open_log(const Log& settings);
