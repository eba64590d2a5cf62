#include "multiple_comparison/refined_latent.hpp"

#include <algorithm>
#include <cmath>

#include <boost/math/constants/constants.hpp>
#include <boost/math/special_functions/erf.hpp>

#include "multiple_comparison/refined_policy.hpp"
#include "multiple_comparison/trapezoid.hpp"
#include "special/erf_real.hpp"

namespace orvanth {

namespace {

using boost::math::constants::one_div_root_two;
using boost::math::constants::one_div_root_two_pi;

// Beyond this point the normal density is below 5e-25.
constexpr double kLatentEnd = 10.5;
// Beyond this point the normal density is 0 in doubles.
constexpr double kLatentLimit = 38.5;

// Conditional probabilities below this do not count against a tail of 1e-12.
constexpr double kFloor = 1e-24;

// The square leaves room for a narrow part beside the hump.
constexpr double kHalvesAgree = 6e-7;

double NormalDensity(double z) { return one_div_root_two_pi<double>() * std::exp(-0.5 * z * z); }

double Power(double base, std::int32_t exponent) {
    double result = 1.0;
    for (; exponent != 0; exponent >>= 1, base *= base)
        if (exponent & 1) result *= base;
    return result;
}

// 1 - (1 - q)^m without cancellation. The series leaves out (m q)^4 / 120 of its value.
double AnyOf(double q, std::int32_t m) {
    const double n = m;
    if (n * q > 1e-3) return 1.0 - Power(1.0 - q, m);
    return n * q * (1.0 - (n - 1) * q / 2 * (1.0 - (n - 2) * q / 3 * (1.0 - (n - 3) * q / 4)));
}

// Phi(m + h) - Phi(m - h) for m >= 0 and h >= 0. The series leaves out (h (1 + m))^4 / 120.
double NormalInterval(double m, double h) {
    if (h * (1.0 + m) < 3e-3) return 2 * h * NormalDensity(m) * (1.0 + (m * m - 1.0) * h * h / 6);
    if (m < h) return 1.0 - UpperNormal(h - m) - UpperNormal(h + m);
    return UpperNormal(m - h) - UpperNormal(m + h);
}

// The integrands over the latent value y.

double AllPairsLower(const ComparisonStatistic& statistic, double v, double y) {
    const ComparisonRun& run = statistic.runs.front();
    const double half = run.c * v / 2;
    const double between = NormalInterval(std::fabs(run.c * run.lambda * y - half), half);
    return statistic.k * NormalDensity(y) * Power(between, run.count);
}

double AllPairsUpper(const ComparisonStatistic& statistic, double v, double y) {
    const ComparisonRun& run = statistic.runs.front();
    const double z = run.c * run.lambda * y;
    const double below = std::max(UpperNormal(-z), 1e-300);
    const double q = std::min(1.0, UpperNormal(run.c * v - z) / below);
    return statistic.k * NormalDensity(y) * Power(below, run.count) * AnyOf(q, run.count);
}

double OneSidedLower(const ComparisonStatistic& statistic, double v, double y) {
    double product = NormalDensity(y);
    for (const ComparisonRun& run : statistic.runs)
        product *= Power(UpperNormal(-run.c * (v + run.lambda * y)), run.count);
    return product;
}

double OneSidedUpper(const ComparisonStatistic& statistic, double v, double y) {
    double any = 0.0;
    for (const ComparisonRun& run : statistic.runs) {
        const double q = AnyOf(UpperNormal(run.c * (v + run.lambda * y)), run.count);
        any += q - any * q;
    }
    return NormalDensity(y) * any;
}

double TwoSidedLower(const ComparisonStatistic& statistic, double v, double y) {
    double product = NormalDensity(y);
    for (const ComparisonRun& run : statistic.runs)
        product *= Power(NormalInterval(std::fabs(run.c * run.lambda * y), run.c * v), run.count);
    return product;
}

double TwoSidedUpper(const ComparisonStatistic& statistic, double v, double y) {
    double any = 0.0;
    for (const ComparisonRun& run : statistic.runs) {
        const double tails = UpperNormal(run.c * (v - run.lambda * y)) + UpperNormal(run.c * (v + run.lambda * y));
        const double q = AnyOf(std::min(1.0, tails), run.count);
        any += q - any * q;
    }
    return NormalDensity(y) * any;
}

double Integrand(const ComparisonStatistic& statistic, double v, bool upper, double y) {
    switch (statistic.kind) {
        case ComparisonKind::kAllPairs:
            return upper ? AllPairsUpper(statistic, v, y) : AllPairsLower(statistic, v, y);
        case ComparisonKind::kOneSided:
            return upper ? OneSidedUpper(statistic, v, y) : OneSidedLower(statistic, v, y);
        default:
            return upper ? TwoSidedUpper(statistic, v, y) : TwoSidedLower(statistic, v, y);
    }
}

// The whole number at which the integrand is largest.
template <class Function>
double CoarseMode(const Function& integrand) {
    double mode = 0.0, largest = integrand(0.0);
    for (double y = 1; y < kLatentLimit; ++y)
        for (const double at : {y, -y}) {
            const double value = integrand(at);
            if (value > largest) {
                largest = value;
                mode = at;
            }
        }
    return mode;
}

// Whether all coefficients have one sign. If not, the upper one-sided integrand has two humps.
bool HaveOneSign(const ComparisonStatistic& statistic) {
    return statistic.runs.front().lambda >= 0 || statistic.runs.back().lambda <= 0;
}

double TailProbability(const ComparisonStatistic& statistic, double v, bool upper, LatentStart& start) {
    double largest = 0.0, mode = start.mode;
    const auto integrand = [&](double y) {
        const double value = Integrand(statistic, v, upper, y);
        if (value > largest) {
            largest = value;
            mode = y;
        }
        return value;
    };
    TrapezoidRange range{0.0, 0.0, kLatentLimit, kHalvesAgree, kFloor, true, true};
    if (statistic.kind != ComparisonKind::kTwoSided) {
        const bool oneHump = statistic.kind == ComparisonKind::kAllPairs || !upper || HaveOneSign(statistic);
        const double end = oneHump ? kLatentLimit : kLatentEnd;
        if (oneHump && !start.known) start.mode = CoarseMode(integrand);
        range = {oneHump ? start.mode : 0.0, -end, end, kHalvesAgree, kFloor, false, oneHump};
    }
    // At 0.9 of the width of the steepest normal factor the rule resolves it to exp(-24).
    const double largestStep = std::min(0.6, 0.9 / std::max(statistic.steepest, 1e-3));
    const TrapezoidResult result = Trapezoid(integrand, range, std::min(start.step, largestStep));
    // For an integrand like exp(-y^2 / 2) the logarithm of the difference goes with 1 / step^2. The
    // next step aims a little below the accepted difference.
    constexpr double aim = -15.5;
    const double reached = std::log(std::max(result.difference, 1e-30));
    start = {result.step * std::clamp(std::sqrt(reached / aim), 0.7, 1.2), mode, largest > 0.0};
    return result.value;
}

}  // namespace

double UpperNormal(double z) {
    return boost::math::erfc(ErfReal(z * one_div_root_two<double>()), RefinedPolicy()).value / 2;
}

double ConditionalProbability(const ComparisonStatistic& statistic, double v, bool upper, LatentStarts& starts) {
    const double comparisons =
        statistic.kind == ComparisonKind::kAllPairs ? 0.5 * statistic.k * (statistic.k - 1) : statistic.k - 1;
    const double single = UpperNormal(v) * (statistic.kind == ComparisonKind::kOneSided ? 1 : 2);
    // All pairs with another coefficient than 1 / sqrt 2 are no distribution: the tails do not add to 1.
    const bool tailsAddToOne =
        statistic.kind != ComparisonKind::kAllPairs || std::fabs(statistic.steepest - 1) < 1e-12;
    // A probability near 1 is the complement of the small one: its own integrand is broad with a small
    // narrow dip, which the halves do not show.
    if (tailsAddToOne && upper && single > 0.05) return 1.0 - TailProbability(statistic, v, false, starts.lower);
    if (tailsAddToOne && !upper && comparisons * single < 0.05)
        return 1.0 - TailProbability(statistic, v, true, starts.upper);
    return TailProbability(statistic, v, upper, upper ? starts.upper : starts.lower);
}

}  // namespace orvanth
