// Workspace of one call, for the exports that ask LAPACK for its size.
#ifndef ORVANTH_LINALG_SCRATCH_HPP
#define ORVANTH_LINALG_SCRATCH_HPP

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace orvanth {

inline constexpr std::size_t kScratchAlignment = 32;

// The block from the heap begins up to an alignment earlier; its address stands before the scratch. (The
// heap's own aligned allocation splits blocks and takes longer than a small decomposition can hide.) A failed
// allocation is not tested: LAPACK gets the null pointer. A size below zero, which only rejected arguments
// give, counts as zero.
template <class T>
T* AllocateScratch(std::int64_t elements) noexcept {
    const std::size_t bytes = (elements > 0 ? static_cast<std::size_t>(elements) : 0) * sizeof(T);
    void* const block = std::malloc(bytes + kScratchAlignment);
    if (block == nullptr) return nullptr;
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    auto* const scratch = reinterpret_cast<void**>((address / kScratchAlignment + 1) * kScratchAlignment);
    scratch[-1] = block;
    return reinterpret_cast<T*>(scratch);
}

inline void ReleaseScratch(void* scratch) noexcept {
    if (scratch != nullptr) std::free(static_cast<void**>(scratch)[-1]);
}

}  // namespace orvanth

#endif
