// The configuration of a small web daemon.
#pragma once

#include <velmora/config/spec.hpp>

/// Its type: a record of sections.
const velmora::config::RecordType& settings();
