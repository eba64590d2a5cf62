// The integral of a conditional probability over the whole distribution of the studentising scale.
#ifndef ORVANTH_MULTIPLE_COMPARISON_REFINED_SCALE_HPP
#define ORVANTH_MULTIPLE_COMPARISON_REFINED_SCALE_HPP

#include "multiple_comparison/refined_latent.hpp"

namespace orvanth {

// From here on the scale differs from 1 by less than 1e-7 and its integral from the value at 1 by
// less than 1e-11 of it.
inline constexpr double kKnownScaleDf = 1e14;

// P(statistic <= x) or P(statistic > x) with df degrees of freedom.
double StudentisedProbability(const ComparisonStatistic& statistic, double x, double df, bool upper);

}  // namespace orvanth

#endif
