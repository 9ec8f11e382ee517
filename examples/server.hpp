// The daemon: threads that answer HTTP requests.
#pragma once

#include "settings.hpp"

/// Listens, and answers requests until SIGTERM or SIGINT comes, in as many threads as there are to
/// be workers. Throws std::system_error when it cannot listen, and what a worker ends by itself with.
void serve(const Config& config);
