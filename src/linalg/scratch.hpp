// Workspace of one call, for the exports that ask LAPACK for its size.
#ifndef ORVANTH_LINALG_SCRATCH_HPP
#define ORVANTH_LINALG_SCRATCH_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace orvanth {

inline constexpr std::size_t kScratchAlignment = 32;

// The status of a call that finds no memory for its scratch. LAPACK's own numbers end far above it.
inline constexpr std::int32_t kNoMemory = -1010;

struct ReleaseScratch {
    void operator()(void* scratch) const noexcept { std::free(static_cast<void**>(scratch)[-1]); }
};

template <class T>
using Scratch = std::unique_ptr<T[], ReleaseScratch>;

// Null if there is no memory, or if no address space could hold it. The block from the heap begins up to an alignment
// earlier; its address stands before the scratch. The heap's own aligned allocation splits blocks, which takes long
// enough to show in a small decomposition. A size below zero counts as zero; only rejected arguments give one.
template <class T>
Scratch<T> AllocateScratch(std::int64_t elements) noexcept {
    const auto count = static_cast<std::uint64_t>(std::max<std::int64_t>(elements, 0));
    if (count > (PTRDIFF_MAX - kScratchAlignment) / sizeof(T)) return nullptr;
    const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(T);
    void* const block = std::malloc(bytes + kScratchAlignment);
    if (block == nullptr) return nullptr;
    const std::size_t toBoundary = kScratchAlignment - reinterpret_cast<std::uintptr_t>(block) % kScratchAlignment;
    auto* const scratch = reinterpret_cast<void**>(static_cast<char*>(block) + toBoundary);
    scratch[-1] = block;
    return Scratch<T>(reinterpret_cast<T*>(scratch));
}

}  // namespace orvanth

#endif
