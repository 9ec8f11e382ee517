// The allocations of a program whose operator new is that of out_of_memory_test.cpp.
#pragma once

namespace velmora::test {

inline constexpr long unlimited = -1;
/// How many succeed before one fails.
inline long allocations_left = unlimited;
inline long living = 0;

}  // namespace velmora::test
