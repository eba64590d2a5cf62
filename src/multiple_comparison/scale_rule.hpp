// The 48-point rule over the studentising scale.
#ifndef ORVANTH_MULTIPLE_COMPARISON_SCALE_RULE_HPP
#define ORVANTH_MULTIPLE_COMPARISON_SCALE_RULE_HPP

#include <array>

#include "multiple_comparison/gauss48.hpp"

namespace orvanth {

// The variable of integration is u = sqrt(chi^2 / 2), whose density is 2 u^(df-1) exp(-u^2) /
// Gamma(df/2).
struct ScaleRule {
    bool isPoint = true;                        // the scale is exactly 1, and the rest is empty
    double length = 0.0;                        // of the range of u
    std::array<double, kRulePoints> scales;     // s = sqrt(chi^2 / df)
    std::array<double, kRulePoints> densities;  // without the factor 2: the half-length cancels it
};

// The rule depends on df alone. From df = 1000 on it is a single point. Refuses a df that is not
// positive.
ScaleRule MakeScaleRule(double df);

}  // namespace orvanth

#endif
