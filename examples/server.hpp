// The daemon: threads that answer HTTP requests.
#pragma once

#include <velmora/app/live.hpp>

#include "settings.hpp"

/// Listens, and answers requests until SIGTERM or SIGINT comes, in as many threads as there are to
/// be workers. SIGHUP has it reload, restart the workers where that takes it, and open the log anew;
/// what a reload throws is logged. SIGPIPE is ignored from then on. Throws std::system_error when it cannot log or listen, and what a worker ends by itself with.
void serve(velmora::app::Live<Config>& live);
