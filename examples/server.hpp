// The daemon: processes that answer HTTP requests.
#pragma once

#include "settings.hpp"

/// Listens, and answers requests until SIGTERM or SIGINT comes, in as many processes as there are
/// to be workers. Throws std::system_error when it cannot listen, std::runtime_error when a worker
/// ends by itself.
void serve(const Config& config);
