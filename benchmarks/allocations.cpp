// Counts what is allocated. On its own, so that no code sees through its functions.
#include <cstdlib>
#include <new>

#include "contender.hpp"

namespace {

std::uint64_t count = 0;

}  // namespace

void* operator new(std::size_t size) {
    ++count;
    if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

std::uint64_t bench::allocations() noexcept {
    return count;
}
