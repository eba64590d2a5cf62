// Workspace of one call, for the exports that ask LAPACK for its size.
#ifndef ORVANTH_LINALG_SCRATCH_HPP
#define ORVANTH_LINALG_SCRATCH_HPP

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace orvanth {

inline constexpr std::size_t kScratchAlignment = 32;

// A failed allocation is not tested: LAPACK gets the null pointer. A size below zero, which only rejected
// arguments give, counts as zero.
template <class T>
T* AllocateScratch(std::int64_t elements) noexcept {
    const std::size_t bytes = (elements > 0 ? static_cast<std::size_t>(elements) : 0) * sizeof(T);
    // aligned_alloc wants whole multiples of the alignment.
    const std::size_t whole = (bytes + kScratchAlignment - 1) / kScratchAlignment * kScratchAlignment;
    return static_cast<T*>(std::aligned_alloc(kScratchAlignment, whole));
}

inline void ReleaseScratch(void* scratch) noexcept { std::free(scratch); }

}  // namespace orvanth

#endif
