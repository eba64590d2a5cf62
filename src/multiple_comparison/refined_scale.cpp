#include "multiple_comparison/refined_scale.hpp"

#include <algorithm>
#include <cmath>

#include <boost/math/constants/constants.hpp>
#include <boost/math/special_functions/gamma.hpp>

#include "multiple_comparison/refined_policy.hpp"
#include "multiple_comparison/trapezoid.hpp"

namespace orvanth {

namespace {

// Below this df the density of log s falls off so slowly to the left that the variable is compressed.
constexpr double kHeavyTailDf = 8.0;

// Accepted difference of the sums over the even and the odd points. Over equal coefficients, k to 100 and
// levels from 1e-6 to 1 - 1e-10 the error at such a difference is below 4e-11. From few to many df it goes
// with a higher power of the difference, except for two-sided comparisons of many groups.
double HalvesAgree(const ComparisonStatistic& statistic, double df) {
    // All pairs with another coefficient than 1 / sqrt 2 have no upper tail to take instead near their limit. The
    // integrand is a broad hump with a small part missing there, where a difference of 2e-6 leaves an error of 1e-7.
    if (statistic.kind == ComparisonKind::kAllPairs && std::fabs(statistic.steepest - 1) > 1e-12) return 1e-8;
    if (statistic.kind == ComparisonKind::kTwoSided && df < 20) return 2e-6;
    return std::clamp(2e-6 * df, 2e-6, 2e-4);
}

// A step at which the halves agree for most arguments, in units of 1 / sqrt(df + 5), about the width of the
// density of t. The fit to the steps needed for k = 3, 10 and 100 and df from 1 to 999.
double FirstStep(const ComparisonStatistic& statistic, double df, bool upper) {
    const double logGroups = std::log(static_cast<double>(statistic.k));
    double reciprocal = 0.0;
    if (df >= kHeavyTailDf)
        reciprocal = 1.95 + 1.5 * logGroups / std::sqrt(df);
    else if (statistic.kind == ComparisonKind::kOneSided)
        reciprocal = 2.8 + 0.2 * logGroups;
    else
        reciprocal = (upper ? 0.9 : 1.6) + 0.11 * df + (1.8 - 0.11 * df) * logGroups;
    return 1 / (reciprocal * std::sqrt(df + 5));
}

// log of 2 (df/2)^(df/2) exp(-df/2) / Gamma(df/2), by Stirling's series from df = 30 on.
double LogDensityAtOne(double df) {
    const double a = df / 2;
    if (df < 30) return std::log(2.0) + a * std::log(a) - a - boost::math::lgamma(a, RefinedPolicy());
    const double r = 1 / (a * a);
    return std::log(2.0) + 0.5 * std::log(a * boost::math::constants::one_div_two_pi<double>()) -
           (1.0 / 12 - r * (1.0 / 360 - r * (1.0 / 1260 - r / 1680))) / a;
}

// t - (exp(2t) - 1) / 2, which has its maximum 0 at t = 0.
double LogDensityShape(double t) {
    if (std::fabs(t) > 0.05) return t - std::expm1(2 * t) / 2;
    // -sum of (2t)^m / (2 m!) from m = 2; the first term left out is (2t)^10 / (2 10!).
    const double z = 2 * t;
    double sum = 0.0;
    for (int m = 9; m >= 3; --m) sum = (1.0 + sum) * z / m;
    return -z * z / 4 * (1.0 + sum);
}

// log of a rough conditional probability, to find where the integrand over the scale is large.
double RoughLogProbability(const ComparisonStatistic& statistic, double v, bool upper) {
    const auto logUpperNormal = [](double z) {
        return z < 25 ? std::log(UpperNormal(z)) : -0.5 * z * z - std::log(z) - 0.92;
    };
    const double comparisons = statistic.k - 1;
    if (upper) return std::min(0.0, std::log(comparisons) + logUpperNormal(v));
    if (statistic.kind == ComparisonKind::kOneSided) return logUpperNormal(-v);
    return 0.5 * comparisons * std::log(std::max(1.0 - 2 * UpperNormal(v), 0.7 * std::min(v, 1.0)));
}

// The largest value of a function with one maximum, by the golden section, to 1e-3 of the interval.
template <class Function>
double Maximum(const Function& function, double low, double high) {
    constexpr double golden = 0.6180339887498949;
    double left = high - golden * (high - low), right = low + golden * (high - low);
    double atLeft = function(left), atRight = function(right);
    for (int i = 0; i < 16; ++i) {
        if (atLeft < atRight) {
            low = left;
            left = right;
            atLeft = atRight;
            right = low + golden * (high - low);
            atRight = function(right);
        } else {
            high = right;
            right = left;
            atRight = atLeft;
            left = high - golden * (high - low);
            atLeft = function(left);
        }
    }
    return (low + high) / 2;
}

}  // namespace

double StudentisedProbability(const ComparisonStatistic& statistic, double x, double df, bool upper) {
    LatentStarts latent;
    if (df >= kKnownScaleDf) return ConditionalProbability(statistic, x, upper, 1.0, latent);

    // Over t = log s, whose density is K exp(df (t - (exp(2t) - 1) / 2)).
    const double logConstant = LogDensityAtOne(df);
    const auto integrand = [&](double t, double share) {
        const double density = std::exp(logConstant + df * LogDensityShape(t));
        if (density == 0.0) return 0.0;
        return density * ConditionalProbability(statistic, x * std::exp(t), upper, share, latent);
    };
    const auto rough = [&](double t) {
        return df * LogDensityShape(t) + RoughLogProbability(statistic, x * std::exp(t), upper);
    };
    double centre = Maximum(rough, -std::log1p(std::fabs(x)) - 1.0, 0.5 * std::log1p((statistic.k - 1) / df) + 0.5);

    // Where the probability underflows at the centre, the integrand grows towards larger probabilities.
    const double towards = (x > 0) != upper ? 0.25 : -0.25;
    for (int i = 0; i < 40 && integrand(centre, 1.0) == 0.0; ++i) centre += towards;

    const double agree = HalvesAgree(statistic, df), step = FirstStep(statistic, df, upper);
    constexpr double reach = 740.0;  // exp(-reach) is negligible against every double
    if (df >= kHeavyTailDf)
        return Trapezoid(integrand, {centre, -reach, reach, agree, 1e-300, false, true}, step).value;
    // t = centre + w - (exp(-w) - 1) / 2 makes the left tail fall off doubly exponentially.
    const auto compressed = [&](double w, double share) {
        const double e = 0.5 * std::exp(-w);
        return (1.0 + e) * integrand(centre + w - e + 0.5, share);
    };
    return Trapezoid(compressed, {0.0, -20.0, 20.0, agree, 1e-300, false, true}, step).value;
}

}  // namespace orvanth
