#include "multiple_comparison/mc.hpp"

#include <bit>
#include <cmath>
#include <cstddef>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/tools/toms748_solve.hpp>

#include "frame/policies.hpp"

namespace orvanth {

namespace {

constexpr double kInfiniteDf = 1000.0;
constexpr double kLowerScaleProbability = 5e-08;
constexpr double kUpperScaleProbability = 0.99999995;
constexpr std::uintmax_t kSolverCap = 198;
constexpr unsigned kSolverBits = 24;

constexpr const char* kBadDf = "Degrees of freedom argument is %1%, but must be > 0 !";

bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

}  // namespace

// The outer rule over u = sqrt(chi^2 / 2), whose density is 2 u^(df-1) exp(-u^2) / Gamma(df/2). It
// depends on df alone, so a quantile makes it once. Empty where df counts as infinite.
struct MC::ScaleRule {
    bool isPoint = true;
    double length = 0.0;
    std::array<double, kRulePoints> scales;     // s = sqrt(chi^2 / df)
    std::array<double, kRulePoints> densities;  // without the 2, which the half-length cancels
};

MC::MC(std::int32_t k, double df, const double* lambda)
    : lambda_(lambda), scale_(new double[static_cast<std::size_t>(k)]), k_(k), df_(df) {
    for (std::int32_t j = 0; j < k; ++j) scale_[j] = 1.0 / std::sqrt(1.0 - lambda[j] * lambda[j]);
}

void MC::CheckDegreesOfFreedom() const {
    if (!(df_ > 0) || !std::isfinite(df_))
        RaiseDomain("boost::math::students_t_distribution<%1%>::students_t_distribution", kBadDf, df_);
}

double MC::StudentT(double q) const {
    constexpr const char* function = "boost::math::quantile(const students_t_distribution<%1%>&, %1%)";
    if (q == 0) return -RaiseOverflow(function);
    if (q == 1) return RaiseOverflow(function);
    return boost::math::quantile(boost::math::students_t_distribution<double, DefaultPolicy>(df_), q);
}

std::int32_t MC::RunLength(std::int32_t first, std::int32_t end) const {
    std::int32_t j = first + 1;
    while (j < end && SameBits(lambda_[j], lambda_[first])) ++j;
    return j - first;
}

MC::ScaleRule MC::MakeScaleRule() const {
    ScaleRule rule;
    if (df_ >= kInfiniteDf) return rule;
    if (!(df_ > 0) || !std::isfinite(df_))
        RaiseDomain("boost::math::chi_squared_distribution<%1%>::chi_squared_distribution", kBadDf, df_);
    const double logGamma = Narrow(boost::math::lgamma(df_ / 2, DefaultPolicy()), "boost::math::lgamma<%1%>(%1%)");
    const boost::math::chi_squared_distribution<double, DefaultPolicy> chiSquared(df_);
    const double low = std::sqrt(boost::math::quantile(chiSquared, kLowerScaleProbability) * 0.5);
    const double high = std::sqrt(boost::math::quantile(chiSquared, kUpperScaleProbability) * 0.5);
    rule.isPoint = false;
    rule.length = high - low;
    const double half = rule.length * 0.5;
    const double rootTwo = std::sqrt(2.0), rootDf = std::sqrt(df_);
    for (std::size_t i = 0; i < kRulePoints; ++i) {
        const double u = (GaussLegendre48.nodes[i] + 1.0) * half + low;
        rule.scales[i] = (rootTwo * u) / rootDf;
        rule.densities[i] = std::exp(std::log(u) * (df_ - 1) - u * u - logGamma);
    }
    return rule;
}

double MC::CDF(double x, const ScaleRule& rule) const {
    if (rule.isPoint) return ConditionalCDF(x, 1.0);
    double sum = 0.0;
    for (std::size_t i = 0; i < kRulePoints; ++i)
        sum = ((ConditionalCDF(x, rule.scales[i]) * rule.densities[i]) * rule.length) * GaussLegendre48.weights[i] +
              sum;
    return sum;
}

double MC::CDF(double x) const { return CDF(x, MakeScaleRule()); }

struct MCRootFunction {
    const MC* distribution;
    double target;
    const MC::ScaleRule* rule;

    double operator()(double x) const { return distribution->CDF(x, *rule) - target; }
};

double MC::ICDF(double p) const {
    const double alpha = 1.0 - p;
    auto [low, high] = QuantileRange(alpha);
    // Two groups: the quantile of the single comparison is exact, and nothing is integrated.
    if (low != high) {
        const ScaleRule rule = MakeScaleRule();
        const MCRootFunction function{this, p, &rule};
        const double atHigh = function(high);
        const double atLow = function(low);
        std::uintmax_t evaluations = kSolverCap;
        std::tie(low, high) = boost::math::tools::toms748_solve(
            function, low, high, atLow, atHigh, boost::math::tools::eps_tolerance<double>(kSolverBits), evaluations,
            DefaultPolicy());
    }
    return (high - low) * 0.5 + low;
}

}  // namespace orvanth
