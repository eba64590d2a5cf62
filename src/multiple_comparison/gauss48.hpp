// The two 48-point rules: positive nodes in descending order, then their negatives in the same
// order. Sums run in table order, so the order decides digits.
#ifndef ORVANTH_MULTIPLE_COMPARISON_GAUSS48_HPP
#define ORVANTH_MULTIPLE_COMPARISON_GAUSS48_HPP

#include <array>
#include <cstddef>

namespace orvanth {

inline constexpr std::size_t kRulePoints = 48;
inline constexpr std::size_t kHalfRule = 24;  // entry i + 24 is the mirror of entry i

struct Rule48 {
    std::array<double, kRulePoints> nodes;
    std::array<double, kRulePoints> weights;
};

// GaussHermite48 for the weight exp(-t^2), GaussLegendre48 on [-1, 1].
#include "multiple_comparison/gauss48.inc"

}  // namespace orvanth

#endif
