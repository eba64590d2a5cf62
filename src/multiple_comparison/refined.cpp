#include "multiple_comparison/refined.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/tools/toms748_solve.hpp>

#include "multiple_comparison/refined_policy.hpp"
#include "multiple_comparison/refined_scale.hpp"

namespace orvanth {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// k (k - 1) is a 32-bit integer up to here.
constexpr std::int32_t kMostGroups = 46341;

// How many coefficients count: all but the last, or the first alone.
std::size_t Used(ComparisonKind kind, std::int32_t k) {
    return kind == ComparisonKind::kAllPairs ? 1 : static_cast<std::size_t>(k) - 1;
}

bool IsValid(ComparisonKind kind, std::int32_t k, double df, std::span<const double> lambda) {
    if (k < 1 || k > kMostGroups || !(df > 0) || lambda.size() < Used(kind, k)) return false;
    const std::span<const double> used = lambda.first(Used(kind, k));
    return std::all_of(used.begin(), used.end(), [](double l) { return std::fabs(l) < 1; });
}

// Equal coefficients share a run wherever they stand, as the order of a product does not matter here.
// The sign of a coefficient does not matter to a two-sided comparison.
ComparisonStatistic MakeStatistic(ComparisonKind kind, std::int32_t k, std::span<const double> lambdas) {
    const std::span<const double> used = lambdas.first(Used(kind, k));
    std::vector<double> sorted(used.begin(), used.end());
    if (kind == ComparisonKind::kTwoSided)
        for (double& lambda : sorted) lambda = std::fabs(lambda);
    std::sort(sorted.begin(), sorted.end());
    ComparisonStatistic statistic{kind, k, {}, 0.0};
    for (double lambda : sorted) {
        if (statistic.runs.empty() || statistic.runs.back().lambda != lambda)
            statistic.runs.push_back({lambda, 1.0 / std::sqrt(1.0 - lambda * lambda), 0});
        ++statistic.runs.back().count;
        statistic.steepest = std::max(statistic.steepest, statistic.runs.back().c * std::fabs(lambda));
    }
    if (kind == ComparisonKind::kAllPairs) statistic.runs.front().count = k - 1;
    return statistic;
}

// How many comparisons the statistic is the largest of.
double Comparisons(const ComparisonStatistic& statistic) {
    const double k = statistic.k;
    return statistic.kind == ComparisonKind::kAllPairs ? k * (k - 1) / 2 : k - 1;
}

// P(T > x) of a single comparison, P(|T| > x) of a two-sided one.
double SingleUpperTail(const ComparisonStatistic& statistic, double x, double df) {
    const double tail = df >= kKnownScaleDf
                            ? UpperNormal(x)
                            : boost::math::cdf(boost::math::students_t_distribution<double, RefinedPolicy>(df), -x);
    return statistic.kind == ComparisonKind::kOneSided ? tail : 2 * tail;
}

double Probability(const ComparisonStatistic& statistic, double x, double df, bool upper) {
    const bool nonNegative = statistic.kind != ComparisonKind::kOneSided;
    if (statistic.k == 1 || x == kInfinity) return upper ? 0.0 : 1.0;
    if (x == -kInfinity || (nonNegative && x <= 0)) return upper ? 1.0 : 0.0;
    // Only with lambda = 1 / sqrt 2 are all pairs a distribution; otherwise the value at infinity is not 1.
    if (statistic.kind == ComparisonKind::kAllPairs && std::fabs(statistic.steepest - 1.0) > 1e-12) {
        const double lower = StudentisedProbability(statistic, x, df, false);
        return upper ? 1.0 - lower : lower;
    }
    // Where the other tail is small its complement has the smaller error.
    if (!upper && Comparisons(statistic) * SingleUpperTail(statistic, x, df) < 0.1)
        return 1.0 - StudentisedProbability(statistic, x, df, true);
    if (upper && !nonNegative && SingleUpperTail(statistic, -x, df) < 0.1)
        return 1.0 - StudentisedProbability(statistic, x, df, false);
    return StudentisedProbability(statistic, x, df, upper);
}

double CDF(ComparisonKind kind, double x, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    if (std::isnan(x) || !IsValid(kind, k, df, lambda)) return kNaN;
    return Probability(MakeStatistic(kind, k, lambda), x, df, upper);
}

// The x with upper tail q of a single comparison.
double SingleUpperPoint(double df, double q) {
    if (df >= kKnownScaleDf)
        return boost::math::constants::root_two<double>() * boost::math::erfc_inv(2 * q, RefinedPolicy());
    return -boost::math::quantile(boost::math::students_t_distribution<double, RefinedPolicy>(df), q);
}

// The x with P(|T| <= x) = p of a single comparison, for a small p by the density at 0.
double SingleAbsolutePoint(double df, double p) {
    if (p > 1e-4) return SingleUpperPoint(df, 0.5 - p / 2);
    const double density =
        df >= kKnownScaleDf ? boost::math::constants::one_div_root_two_pi<double>()
                            : boost::math::pdf(boost::math::students_t_distribution<double, RefinedPolicy>(df), 0.0);
    return p / (2 * density);
}

struct Bracket {
    double low;
    double high;
};

// From below a single comparison; from above Bonferroni's inequality, or for a small lower tail of
// absolute values Sidak's (J. Amer. Statist. Assoc. 62 (1967) 626).
Bracket QuantileBracket(const ComparisonStatistic& statistic, double p, double df, bool upper) {
    const double comparisons = Comparisons(statistic);
    if (statistic.kind == ComparisonKind::kOneSided) {
        if (upper) return {SingleUpperPoint(df, p), SingleUpperPoint(df, p / comparisons)};
        return {-SingleUpperPoint(df, p), SingleUpperPoint(df, (1.0 - p) / comparisons)};
    }
    if (upper) return {SingleUpperPoint(df, p / 2), SingleUpperPoint(df, p / (2 * comparisons))};
    return {SingleAbsolutePoint(df, p), SingleAbsolutePoint(df, std::pow(p, 1 / comparisons))};
}

double ICDF(ComparisonKind kind, double p, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    if (!(p > 0 && p < 1) || k < 2 || !IsValid(kind, k, df, lambda)) return kNaN;
    const ComparisonStatistic statistic = MakeStatistic(kind, k, lambda);
    // The smaller tail has the accurate logarithm. 1 - p is exact for p >= 1/2.
    if (p > 0.5) {
        p = 1.0 - p;
        upper = !upper;
    }
    // The unknown is z = log x, or asinh x where x may be negative; log P is nearly linear in it.
    const bool oneSided = kind == ComparisonKind::kOneSided;
    const auto toX = [&](double z) { return oneSided ? std::sinh(z) : std::exp(z); };
    const auto toZ = [&](double x) { return oneSided ? std::asinh(x) : std::log(x); };
    const double sign = upper ? -1.0 : 1.0;
    const auto function = [&](double z) {
        const double probability = Probability(statistic, toX(z), df, upper);
        return sign * (std::log(std::max(probability, 1e-320)) - std::log(p));
    };
    const Bracket bracket = QuantileBracket(statistic, p, df, upper);
    double low = toZ(bracket.low), high = toZ(bracket.high);
    double atLow = function(low), atHigh = function(high);
    // With two groups both ends are the root; elsewhere rounding may leave it just outside.
    for (double widening = 1e-9; atLow > 0 && widening < 1e3; widening *= 8) atLow = function(low -= widening);
    for (double widening = 1e-9; atHigh < 0 && widening < 1e3; widening *= 8) atHigh = function(high += widening);
    if (atLow == 0) return toX(low);
    if (atHigh == 0) return toX(high);
    if (atLow > 0 || atHigh < 0) return kNaN;
    std::uintmax_t evaluations = 100;
    const auto closeEnough = [](double a, double b) { return std::fabs(b - a) <= 2e-10 * (1e-3 + std::fabs(a)); };
    const auto [a, b] = boost::math::tools::toms748_solve(function, low, high, atLow, atHigh, closeEnough,
                                                          evaluations, RefinedPolicy());
    return toX((a + b) / 2);
}

}  // namespace

double RefinedTukeyCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return CDF(ComparisonKind::kAllPairs, x, k, df, lambda, upper);
}

double RefinedHsuCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return CDF(ComparisonKind::kOneSided, x, k, df, lambda, upper);
}

double RefinedDunnettCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return CDF(ComparisonKind::kTwoSided, x, k, df, lambda, upper);
}

double RefinedTukeyICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return ICDF(ComparisonKind::kAllPairs, p, k, df, lambda, upper);
}

double RefinedHsuICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return ICDF(ComparisonKind::kOneSided, p, k, df, lambda, upper);
}

double RefinedDunnettICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    return ICDF(ComparisonKind::kTwoSided, p, k, df, lambda, upper);
}

}  // namespace orvanth
