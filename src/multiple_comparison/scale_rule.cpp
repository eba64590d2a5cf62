#include "multiple_comparison/scale_rule.hpp"

#include <cmath>
#include <cstddef>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "frame/policies.hpp"

namespace orvanth {

namespace {

constexpr double kInfiniteDf = 1000.0;
constexpr double kLowerScaleProbability = 5e-08;
constexpr double kUpperScaleProbability = 0.99999995;

// For fewer degrees of freedom both quantiles underflow to 0, or have no value at all.
constexpr double kUnderflowDf = 1e-10;

// A range of no length: every integral over it is 0.
ScaleRule EmptyRule() {
    ScaleRule rule;
    rule.isPoint = false;
    rule.scales.fill(1.0);
    rule.densities.fill(0.0);
    return rule;
}

}  // namespace

ScaleRule MakeScaleRule(double df) {
    ScaleRule rule;
    if (df >= kInfiniteDf) return rule;
    if (!(df > 0))
        RaiseDomain("boost::math::chi_squared_distribution<%1%>::chi_squared_distribution",
                    "Degrees of freedom argument is %1%, but must be > 0 !", df);
    if (df < kUnderflowDf) return EmptyRule();
    const double logGamma = Narrow(boost::math::lgamma(df / 2, DefaultPolicy()), "boost::math::lgamma<%1%>(%1%)");
    const boost::math::chi_squared_distribution<double, DefaultPolicy> chiSquared(df);
    const double low = std::sqrt(boost::math::quantile(chiSquared, kLowerScaleProbability) * 0.5);
    const double high = std::sqrt(boost::math::quantile(chiSquared, kUpperScaleProbability) * 0.5);
    rule.isPoint = false;
    rule.length = high - low;
    if (rule.length == 0) return EmptyRule();
    const double half = rule.length * 0.5;
    const double rootTwo = std::sqrt(2.0), rootDf = std::sqrt(df);
    for (std::size_t i = 0; i < kRulePoints; ++i) {
        const double u = (GaussLegendre48.nodes[i] + 1.0) * half + low;
        rule.scales[i] = (rootTwo * u) / rootDf;
        rule.densities[i] = std::exp(std::log(u) * (df - 1) - u * u - logGamma);
    }
    return rule;
}

}  // namespace orvanth
