#include "support/controlled_new.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

thread_local int fill = -1;     // a byte, or -1: as malloc leaves it
thread_local int allowed = -1;  // allocations that still succeed, or -1: no limit
thread_local long live = 0;

#if defined(_WIN32)
// A block with an alignment has a head of its own in the C run-time of Windows, and is released by another function.
void* AllocateAligned(std::size_t size, std::size_t alignment) { return _aligned_malloc(size, alignment); }
void FreeAligned(void* block) { _aligned_free(block); }
#else
void* AllocateAligned(std::size_t size, std::size_t alignment) {
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}
void FreeAligned(void* block) { std::free(block); }
#endif

// `alignment` is 0 where the form of new has none.
void* Allocate(std::size_t size, std::size_t alignment) {
    if (allowed == 0) {
        errno = ENOMEM;
        return nullptr;
    }
    if (allowed > 0) --allowed;
    void* const block = alignment > 0 ? AllocateAligned(size, alignment) : std::malloc(size > 0 ? size : 1);
    if (block == nullptr) return nullptr;
    ++live;
    if (fill >= 0) std::memset(block, fill, size);
    return block;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
    if (void* const block = Allocate(size, alignment)) return block;
    throw std::bad_alloc();
}

void Release(void* block) {
    if (block != nullptr) --live;
    std::free(block);
}

void ReleaseAligned(void* block) {
    if (block != nullptr) --live;
    FreeAligned(block);
}

}  // namespace

namespace orvanth::test {

NewFilledWith::NewFilledWith(unsigned char byte) { fill = byte; }
NewFilledWith::~NewFilledWith() { fill = -1; }
NewFailsAfter::NewFailsAfter(int count) { allowed = count; }
NewFailsAfter::~NewFailsAfter() { allowed = -1; }
long LiveBlocks() { return live; }

}  // namespace orvanth::test

void* operator new(std::size_t size) { return AllocateOrThrow(size, 0); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size, 0); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }
void operator delete(void* block, std::align_val_t) noexcept { ReleaseAligned(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { ReleaseAligned(block); }
