#include "multiple_comparison/plain_mc.hpp"

#include <cmath>
#include <cstdlib>
#include <tuple>

#include <boost/math/distributions/chi_squared.hpp>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/tools/toms748_solve.hpp>

#include "frame/boost_detail.hpp"  // the library's own forms of templates of Boost
#include "frame/policies.hpp"
#include "multiple_comparison/gauss48.hpp"

namespace orvanth::plain {

double U(double z) {
    const boost::math::normal_distribution<double, DefaultPolicy> normal(0.0, 1.0);
    return 1.0 - boost::math::cdf(normal, -z);
}

namespace {

double Power(double base, std::int32_t exponent) {
    double result = 1.0;
    for (std::uint32_t rest = static_cast<std::uint32_t>(std::abs(exponent)); rest != 0; rest >>= 1) {
        if (rest & 1u) result *= base;
        base *= base;
    }
    return exponent < 0 ? 1.0 / result : result;
}

}  // namespace

double Conditional(Statistic statistic, double x, double s, std::int32_t k, const double* lambda) {
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

double Cumulative(Statistic statistic, double x, std::int32_t k, double df, const double* lambda) {
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

double StudentT(double df, double q) {
    return boost::math::quantile(boost::math::students_t_distribution<double, DefaultPolicy>(df), q);
}

double Quantile(Statistic statistic, double p, std::int32_t k, double df, const double* lambda, unsigned bits) {
    const double comparisons = statistic == Statistic::kTukey ? k * (k - 1) / 2 : k - 1;
    const double sides = statistic == Statistic::kHsu ? 1 : 2, alpha = 1.0 - p;
    double low = -StudentT(df, alpha / sides);
    double high = -StudentT(df, alpha / (sides * comparisons));
    const auto function = [&](double x) { return Cumulative(statistic, x, k, df, lambda) - p; };
    std::uintmax_t evaluations = 198;
    std::tie(low, high) = boost::math::tools::toms748_solve(function, low, high, function(low), function(high),
                                                            boost::math::tools::eps_tolerance<double>(bits),
                                                            evaluations, DefaultPolicy());
    return (high - low) * 0.5 + low;
}

}  // namespace orvanth::plain
