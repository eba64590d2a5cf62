#include "linalg/allocation_count.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> allocations = 0;
}  // namespace

long orvanth::test::AllocationCount() { return allocations; }

void* operator new(std::size_t size) {
    ++allocations;
    if (void* block = std::malloc(size)) return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
