// The kinds of failure, split by what whoever catches them does differently.
#pragma once

#include <stdexcept>

namespace velmora {

/// A value of a suitable type that has no acceptable reading.
class ValueError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// A value, a field or a declared type of the wrong type.
class TypeError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// A number too large for what it must become.
class OverflowError : public std::overflow_error {
public:
    using std::overflow_error::overflow_error;
};

}  // namespace velmora
