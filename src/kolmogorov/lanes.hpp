// Four doubles side by side, for sums that each keep their own order of terms.
#ifndef ORVANTH_KOLMOGOROV_LANES_HPP
#define ORVANTH_KOLMOGOROV_LANES_HPP

#include <cstdint>
#include <cstring>

namespace orvanth::kolmogorov {

constexpr std::int32_t kLanes = 4;

// Four, because a wider vector would not fit into one register and would live in memory.
using Lanes = double __attribute__((vector_size(32)));
static_assert(sizeof(Lanes) == kLanes * sizeof(double));

// Arrays of doubles are aligned for one double only, so lanes are copied in and out. The compiler makes one
// unaligned move of each copy. By reference, since passing a vector by value depends on the instruction set.
[[gnu::always_inline]] inline void Load(const double* from, Lanes& lanes) { std::memcpy(&lanes, from, sizeof lanes); }
[[gnu::always_inline]] inline void Store(const Lanes& lanes, double* to) { std::memcpy(to, &lanes, sizeof lanes); }

}  // namespace orvanth::kolmogorov

#endif
