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

// The largest relaxation where a value has a small share in a sum over scales.
constexpr double kMostRoom = 1e8;

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
    // The far tail is left out where it does not reach the last digit: Phi(-8.3) is 5e-17, and for m >= h the
    // ratio of the tails is below exp(-2 m h).
    if (m < h) return 1.0 - UpperNormal(h - m) - (h + m > 8.3 ? 0.0 : UpperNormal(h + m));
    return UpperNormal(m - h) - (m * h > 19 ? 0.0 : UpperNormal(m + h));
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

// The whole number at which an integrand with one hump is largest: uphill from 0, or where it underflows
// there, from the number nearest to 0 where it does not.
template <class Function>
double CoarseMode(const Function& integrand) {
    double mode = 0.0, largest = integrand(0.0);
    for (double y = 1; largest == 0.0 && y < kLatentLimit; ++y)
        for (const double at : {y, -y})
            if (const double value = integrand(at); value > largest) {
                largest = value;
                mode = at;
            }
    for (const double direction : {1.0, -1.0})
        for (;;) {
            const double value = integrand(mode + direction);
            if (value <= largest) break;
            largest = value;
            mode += direction;
        }
    return mode;
}

// A step at which the halves agree for most arguments: the largest of many comparisons changes fast.
double FirstStep(const ComparisonStatistic& statistic) {
    return 1 / (1.5 + statistic.steepest * (0.7 + std::log(static_cast<double>(statistic.k))));
}

// A bound of P(statistic <= v) that falls with v for every comparison: no factor of the integrand exceeds
// the probability of an interval of its length about 0.
double LowerBound(const ComparisonStatistic& statistic, double v) {
    if (statistic.kind == ComparisonKind::kOneSided) return 1.0;
    const bool allPairs = statistic.kind == ComparisonKind::kAllPairs;
    double bound = allPairs ? statistic.k : 1.0;
    for (const ComparisonRun& run : statistic.runs)
        bound *= Power(NormalInterval(0.0, run.c * (allPairs ? v / 2 : v)), run.count);
    return bound;
}

// Whether all coefficients have one sign. If not, the upper one-sided integrand has two humps.
bool HaveOneSign(const ComparisonStatistic& statistic) {
    return statistic.runs.front().lambda >= 0 || statistic.runs.back().lambda <= 0;
}

double TailProbability(const ComparisonStatistic& statistic, double v, bool upper, double share, LatentStart& start) {
    double largest = 0.0, mode = start.mode;
    const auto integrand = [&](double y, double = 1.0) {
        const double value = Integrand(statistic, v, upper, y);
        if (value > largest) {
            largest = value;
            mode = y;
        }
        return value;
    };
    // The error goes with the square of the difference. A tenth of the room is used.
    const double room = std::clamp(0.1 / share, 1.0, kMostRoom);
    const double agree = kHalvesAgree * std::sqrt(room), negligible = kNegligibleTerm * room;
    // Two-sided, the upper integrand rises up to about |y| = v.
    TrapezoidRange range{0.0, 0.0, kLatentLimit, agree, kFloor, true, true, negligible, upper ? v : 0.0};
    if (statistic.kind != ComparisonKind::kTwoSided) {
        const bool oneHump = statistic.kind == ComparisonKind::kAllPairs || !upper || HaveOneSign(statistic);
        const double end = oneHump ? kLatentLimit : kLatentEnd;
        // Steep factors move the hump so far from one scale to the next that nothing is left at its old place.
        if (oneHump && (!start.known || integrand(start.mode) == 0.0)) start.mode = CoarseMode(integrand);
        range = {oneHump ? start.mode : 0.0, -end, end, agree, kFloor, false, oneHump, negligible};
    }
    // At 0.9 of the width of the steepest normal factor the rule resolves it to exp(-24).
    const double largestStep = std::min(0.6, 0.9 / std::max(statistic.steepest, 1e-3));
    // For an integrand like exp(-y^2 / 2) the logarithm of the difference goes with 1 / step^2. The step
    // aims a little below the accepted difference.
    const double aim = std::log(agree) - 1.2;
    const double step =
        start.known ? start.step * std::clamp(std::sqrt(start.logDifference / aim), 0.6, 1.3) : FirstStep(statistic);
    const TrapezoidResult result = Trapezoid(integrand, range, std::min(step, largestStep));
    start = {result.step, std::log(std::clamp(result.difference, 1e-30, 0.1)), mode, largest > 0.0};
    return result.value;
}

}  // namespace

double UpperNormal(double z) {
    return boost::math::erfc(ErfReal(z * one_div_root_two<double>()), RefinedPolicy()).value / 2;
}

double ConditionalProbability(const ComparisonStatistic& statistic, double v, bool upper, double share,
                              LatentStarts& starts) {
    const double comparisons =
        statistic.kind == ComparisonKind::kAllPairs ? 0.5 * statistic.k * (statistic.k - 1) : statistic.k - 1;
    const double single = UpperNormal(v) * (statistic.kind == ComparisonKind::kOneSided ? 1 : 2);
    // All pairs with another coefficient than 1 / sqrt 2 are no distribution: the tails do not add to 1.
    const bool tailsAddToOne =
        statistic.kind != ComparisonKind::kAllPairs || std::fabs(statistic.steepest - 1) < 1e-12;
    // A probability near 1 is the complement of the small one: its own integrand is broad with a small
    // narrow dip, which the halves do not show.
    if (tailsAddToOne && upper && single > 0.05) {
        if (LowerBound(statistic, v) < 1e-14 / share) return 1.0;
        return 1.0 - TailProbability(statistic, v, false, share, starts.lower);
    }
    if (tailsAddToOne && !upper && comparisons * single < 0.05)
        return 1.0 - TailProbability(statistic, v, true, share, starts.upper);
    return TailProbability(statistic, v, upper, share, upper ? starts.upper : starts.lower);
}

}  // namespace orvanth
