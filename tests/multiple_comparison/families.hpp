// The six exports by statistic, and coefficients of groups of equal size.
#ifndef ORVANTH_TESTS_MULTIPLE_COMPARISON_FAMILIES_HPP
#define ORVANTH_TESTS_MULTIPLE_COMPARISON_FAMILIES_HPP

#include <cmath>
#include <cstdint>
#include <vector>

#include "multiple_comparison/plain_mc.hpp"
#include "orvanth/multiple_comparison.h"

namespace orvanth::test {

using Export = double (*)(double, std::int32_t, double, const double*, TailFlag);

struct Family {
    plain::Statistic statistic;
    Export cumulative;
    Export quantile;
};

inline constexpr Family kFamilies[] = {{plain::Statistic::kTukey, MCaCDF, MCaICDF},
                                       {plain::Statistic::kHsu, MCbCDF, MCbICDF},
                                       {plain::Statistic::kDunnett, MCcCDF, MCcICDF}};

inline const double kEqual = 1 / std::sqrt(2.0);
inline const std::vector<double> kEqualGroups(128, kEqual);

}  // namespace orvanth::test

#endif
