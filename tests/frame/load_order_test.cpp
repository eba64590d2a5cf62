// The order in which the process-wide state comes to be, seen from operator new before main.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#include "frame/load_state.hpp"

namespace {

struct Allocation {
    std::size_t size;
    std::uint64_t invalidValue;  // bits of FNCInvalidValue at that moment
    bool workMade;               // whether LapackWork is set already
};

// In static storage without a constructor, so that it serves before any initialiser has run.
Allocation firstAllocations[4000];
std::size_t count = 0;

void* Allocate(std::size_t size) {
    if (count < std::size(firstAllocations))
        firstAllocations[count++] = {size, std::bit_cast<std::uint64_t>(orvanth::FNCInvalidValue),
                                     orvanth::LapackWork != nullptr};
    if (void* block = std::malloc(size > 0 ? size : 1)) return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace {

TEST(LoadState, TheInvalidValueThenTheWorkspaceThenTheIntegerWorkspace) {
    std::vector<Allocation> blocks;
    for (std::size_t i = 0; i < count; ++i)
        if (firstAllocations[i].size == 80000 || firstAllocations[i].size == 40000)
            blocks.push_back(firstAllocations[i]);
    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(blocks[0].size, 80000u);
    EXPECT_EQ(blocks[0].invalidValue, 0xE8C308A501F805DDu);
    EXPECT_FALSE(blocks[0].workMade);
    EXPECT_EQ(blocks[1].size, 40000u);
    EXPECT_TRUE(blocks[1].workMade);
}

}  // namespace
