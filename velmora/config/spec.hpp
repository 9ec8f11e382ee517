// The chief header: declares a configuration, resolves it, and checks and reads its values.
#pragma once

// IWYU pragma: begin_exports
#include "velmora/config/bound.hpp"
#include "velmora/config/coercers.hpp"
#include "velmora/config/declaration.hpp"
#include "velmora/config/display.hpp"
#include "velmora/config/record.hpp"
#include "velmora/config/schema.hpp"
#include "velmora/config/value.hpp"
#include "velmora/utils/errors.hpp"
// IWYU pragma: end_exports
