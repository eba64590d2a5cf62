// Four doubles side by side, for sums that run in one order each and next to each other.
#ifndef ORVANTH_KOLMOGOROV_LANES_HPP
#define ORVANTH_KOLMOGOROV_LANES_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

constexpr std::int32_t kLanes = 4;

// Four and not more: a vector wider than the processor's registers is kept in memory.
using Lanes = double __attribute__((vector_size(32), aligned(8), may_alias));
static_assert(sizeof(Lanes) == kLanes * sizeof(double));

}  // namespace orvanth::kolmogorov

#endif
