#include "multiple_comparison/mc.hpp"

#include <cmath>
#include <cstddef>
#include <tuple>

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/tools/toms748_solve.hpp>

#include "frame/boost_detail.hpp"
#include "frame/policies.hpp"

namespace orvanth {

namespace {

constexpr std::uintmax_t kSolverCap = 198;
constexpr unsigned kSolverBits = 24;

std::vector<double> ResidualScales(std::int32_t k, const double* lambda) {
    if (k < 0) RaiseOutOfMemory();
    std::vector<double> scale(static_cast<std::size_t>(k));
    for (std::size_t j = 0; j < scale.size(); ++j) scale[j] = 1.0 / std::sqrt(1.0 - lambda[j] * lambda[j]);
    return scale;
}

}  // namespace

MC::MC(std::int32_t k, double df, const double* lambda)
    : lambda_(lambda), scale_(ResidualScales(k, lambda)), k_(k), df_(df) {}

void MC::CheckDegreesOfFreedom() const {
    if (!(df_ > 0) || !std::isfinite(df_))
        RaiseDomain("boost::math::students_t_distribution<%1%>::students_t_distribution",
                    "Degrees of freedom argument is %1%, but must be > 0 !", df_);
}

double MC::StudentT(double q) const {
    constexpr const char* function = "boost::math::quantile(const students_t_distribution<%1%>&, %1%)";
    if (q == 0) return -RaiseOverflow(function);
    if (q == 1) return RaiseOverflow(function);
    if (df_ / 2 == 0) return q == 0.5 ? 0 : RaiseOverflow(function);  // Boost.Math halves it
    return boost::math::quantile(boost::math::students_t_distribution<double, DefaultPolicy>(df_), q);
}

double MC::CDF(double x, const ScaleRule& rule) const {
    if (rule.isPoint) return ConditionalCDF(x, 1.0);
    double sum = 0.0;
    for (std::size_t i = 0; i < kRulePoints; ++i)
        sum = ((ConditionalCDF(x, rule.scales[i]) * rule.densities[i]) * rule.length) * GaussLegendre48.weights[i] +
              sum;
    return sum;
}

double MC::CDF(double x) const { return CDF(x, MakeScaleRule(df_)); }

double MC::ICDF(double p) const {
    const double alpha = 1.0 - p;
    auto [low, high] = QuantileRange(alpha);
    // Two groups: the quantile of the single comparison is exact, and nothing is integrated.
    if (low != high) {
        const ScaleRule rule = MakeScaleRule(df_);
        const auto rootFunction = [&](double x) { return CDF(x, rule) - p; };
        const double atHigh = rootFunction(high);
        const double atLow = rootFunction(low);
        std::uintmax_t evaluations = kSolverCap;
        std::tie(low, high) = boost::math::tools::toms748_solve(
            rootFunction, low, high, atLow, atHigh, boost::math::tools::eps_tolerance<double>(kSolverBits),
            evaluations, DefaultPolicy());
    }
    return (high - low) * 0.5 + low;
}

}  // namespace orvanth
