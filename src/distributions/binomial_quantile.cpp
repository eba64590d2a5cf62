#include "distributions/binomial_quantile.hpp"

#include <algorithm>
#include <cmath>

#include <boost/math/special_functions/erf.hpp>

#include "frame/policies.hpp"
#include "special/beta.hpp"

namespace orvanth {

namespace {

// A normal quantile with its skewness correction (Cornish and Fisher); only a place to start from.
double Estimate(double probability, double n, double p) {
    const double sd = std::sqrt(n * p * (1 - p));
    const double x = -boost::math::erfc_inv(2 * probability, DefaultPolicy()) * std::sqrt(2.0);
    const double skewness = (1 - 2 * p) / sd;
    const double guess = n * p + sd * (x + skewness * (x * x - 1) / 6);
    return std::isnan(guess) ? n / 2 : std::clamp(std::floor(guess), 0.0, std::floor(n));
}

}  // namespace

double BinomialCumulative(double k, double n, double p) {
    if (k == n || p == 0) return 1;
    if (p == 1) return 0;
    return RegularizedBetaC(k + 1, n - k, p);
}

// Whole numbers are searched: the cumulative probability rises, so the largest k that does not
// exceed the target is the floor of the real solution.
double BinomialSearch(double probability, double n, double p, bool roundUp) {
    const auto exceeds = [&](double k) { return BinomialCumulative(k, n, p) > probability; };
    const double top = std::floor(n);
    double low = 0, high = top + 1;  // low does not exceed, high does or is beyond the end
    double step = 1;
    const double start = Estimate(probability, n, p);
    if (exceeds(start)) {
        for (high = start; high - step > low && exceeds(high - step); step *= 2) high -= step;
        low = std::max(low, high - step);
    } else {
        for (low = start; low + step < high && !exceeds(low + step); step *= 2) low += step;
        high = std::min(high, low + step);
    }
    for (double middle = std::floor(low + (high - low) / 2); middle > low && middle < high;
         middle = std::floor(low + (high - low) / 2))
        (exceeds(middle) ? high : low) = middle;
    if (!roundUp || BinomialCumulative(low, n, p) == probability) return low;
    return std::min(low + 1, n);
}

}  // namespace orvanth
