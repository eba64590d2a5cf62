#include "distributions/binomial_kernel.hpp"

#include <cmath>
#include <cstdint>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/special_functions/beta.hpp>

#include "frame/policies.hpp"

namespace orvanth {

namespace {

// How far the search steps out from the estimate while it has no bracket yet: the estimate is good
// for many trials and poor for few, where it is replaced.
struct Start {
    double estimate;
    double factor;
};

Start EstimateQuantile(double lower, double upper, double n, double p) {
    const double guess =
        boost::math::binomial_detail::inverse_binomial_cornish_fisher(n, p, lower, upper, DefaultPolicy());
    if (n > 100) return {guess, 1.01F};  // the step is the float nearest to 1.01, and likewise below
    if (n > 10 && n - 1 > guess && guess > 3) return {guess, 1.15F};
    if (n >= 10) return {guess, 2};
    if (guess > n / 64) return {n / 4, 2};
    return {n / 1024, 8};
}

}  // namespace

double BinomialProbability(double k, double n, double p) {
    if (p == 0) return k == 0 ? 1 : 0;
    if (p == 1) return k == n ? 1 : 0;
    if (n == 0) return 1;
    if (k == 0) return std::pow(1 - p, n);
    if (k == n) return std::pow(p, k);
    return boost::math::ibeta_derivative(k + 1, n - k + 1, p, DefaultPolicy()) / (n + 1);
}

double BinomialTail(double k, double n, double p, bool upper) {
    if (k == n || p == 0) return upper ? 0 : 1;
    if (p == 1) return upper ? 1 : 0;
    return upper ? boost::math::ibeta(k + 1, n - k, p, DefaultPolicy())
                 : boost::math::ibetac(k + 1, n - k, p, DefaultPolicy());
}

// Required: the answer is the floor or the ceiling of the solution that the search ends on. It is
// not moved to the end of a run of counts whose tails are equal as doubles.
double BinomialQuantile(double lower, double upper, double n, double p, Rounding rounding) {
    if (lower == 0) return 0;
    if (lower == 1) return n;
    if (lower <= std::pow(1 - p, n)) return 0;
    const Start start = EstimateQuantile(lower, upper, n, p);
    if (lower <= BinomialProbability(0, n, p)) return 0;

    const boost::math::binomial_distribution<double, DefaultPolicy> distribution(n, p);
    // The search runs on the smaller of the two tails, which has the more digits.
    const bool onUpper = !(lower < upper);
    const double target = onUpper ? upper : lower;
    std::uintmax_t iterations = bmp::get_max_root_iterations<DefaultPolicy>();
    if (rounding == Rounding::kDown)
        return std::floor(boost::math::detail::do_inverse_discrete_quantile(
            distribution, target, onUpper, start.estimate < 1 ? 1 : std::floor(start.estimate), start.factor, 1.0,
            boost::math::tools::equal_floor(), iterations));
    return std::ceil(boost::math::detail::do_inverse_discrete_quantile(distribution, target, onUpper,
                                                                       std::ceil(start.estimate), start.factor, 1.0,
                                                                       boost::math::tools::equal_ceil(), iterations));
}

double LowerProportion(double a, double b, double alpha) {
    return boost::math::ibeta_inv(a, b, alpha, static_cast<double*>(nullptr), DefaultPolicy());
}

double UpperProportion(double a, double b, double alpha) {
    return boost::math::ibetac_inv(a, b, alpha, static_cast<double*>(nullptr), DefaultPolicy());
}

}  // namespace orvanth
