// Compiled once for each EXPRESSION that the compiler must refuse, and for one that it must take.
#include "velmora/config/spec.hpp"

using namespace velmora::config;

const RecordType type("Type", {{"key", int_type, setting(1, "doc")}});
const auto made = EXPRESSION;
