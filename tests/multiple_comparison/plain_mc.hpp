// The distributions as plain double loops over nodes and comparisons: the order of operations that
// the library's evaluation keeps, bit for bit, and the baseline of its benchmark.
#ifndef ORVANTH_TESTS_MULTIPLE_COMPARISON_PLAIN_MC_HPP
#define ORVANTH_TESTS_MULTIPLE_COMPARISON_PLAIN_MC_HPP

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "frame/policies.hpp"
#include "multiple_comparison/gauss48.hpp"

namespace orvanth::plain {

enum class Statistic { kTukey, kHsu, kDunnett };

inline double U(double z) {
    const boost::math::normal_distribution<double, DefaultPolicy> normal(0.0, 1.0);
    return 1.0 - boost::math::cdf(normal, -z);
}

inline double Power(double base, std::int32_t exponent) {
    double result = 1.0;
    for (std::uint32_t rest = static_cast<std::uint32_t>(std::abs(exponent)); rest != 0; rest >>= 1) {
        if (rest & 1u) result *= base;
        base *= base;
    }
    return exponent < 0 ? 1.0 / result : result;
}

inline double Conditional(Statistic statistic, double x, double s, std::int32_t k, const double* lambda) {
    const double v = x * s;
    const double rootTwo = std::sqrt(2.0), rootPi = std::sqrt(3.141592653589793);
    double sum = 0;
    for (std::size_t i = 0; i < kRulePoints; ++i) {
        const double t = GaussHermite48.nodes[i];
        double prod = 1;
        if (statistic == Statistic::kTukey) {
            const double c = 1.0 / std::sqrt(1.0 - lambda[0] * lambda[0]);
            const double a = (lambda[0] * rootTwo) * t;
            prod = Power(U(c * a) - U((a - v) * c), k - 1);
        } else {
            for (std::int32_t j = 0; j < k - 1; ++j) {
                const double c = 1.0 / std::sqrt(1.0 - lambda[j] * lambda[j]);
                const double a = (lambda[j] * rootTwo) * t;
                const double factor = statistic == Statistic::kHsu ? U((a + v) * c) : U((v + a) * c) - U((a - v) * c);
                prod = factor * prod;
            }
        }
        sum += GaussHermite48.weights[i] * prod;
    }
    return statistic == Statistic::kTukey ? (k * sum) / rootPi : sum / rootPi;
}

inline double Cumulative(Statistic statistic, double x, std::int32_t k, double df, const double* lambda) {
    if (df >= 1000.0) return Conditional(statistic, x, 1.0, k, lambda);
    const boost::math::chi_squared_distribution<double, DefaultPolicy> chiSquared(df);
    const double logGamma = boost::math::lgamma(df / 2, DefaultPolicy());
    const double low = std::sqrt(boost::math::quantile(chiSquared, 5e-08) * 0.5);
    const double high = std::sqrt(boost::math::quantile(chiSquared, 0.99999995) * 0.5);
    const double L = high - low, h = L * 0.5;
    double sum = 0;
    for (std::size_t i = 0; i < kRulePoints; ++i) {
        const double u = (GaussLegendre48.nodes[i] + 1.0) * h + low;
        const double s = (std::sqrt(2.0) * u) / std::sqrt(df);
        const double inner = Conditional(statistic, x, s, k, lambda);
        const double e = std::exp(std::log(u) * (df - 1) - u * u - logGamma);
        sum = ((inner * e) * L) * GaussLegendre48.weights[i] + sum;
    }
    return sum;
}

}  // namespace orvanth::plain

#endif
