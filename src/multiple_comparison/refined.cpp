#include "multiple_comparison/refined.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include <boost/math/distributions/students_t.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/tools/toms748_solve.hpp>

#include "multiple_comparison/refined_policy.hpp"
#include "multiple_comparison/refined_scale.hpp"

namespace orvanth {

namespace {

constexpr double kNoResult = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// How many coefficients count: all but the last, or the first alone.
std::size_t Used(ComparisonKind kind, std::int32_t k) {
    return kind == ComparisonKind::kAllPairs ? 1 : static_cast<std::size_t>(k) - 1;
}

bool IsValid(ComparisonKind kind, std::int32_t k, double df, std::span<const double> lambda) {
    if (k < 1 || k > kMostGroups || !(df >= kLeastDf) || lambda.size() < Used(kind, k)) return false;
    const std::span<const double> used = lambda.first(Used(kind, k));
    return std::all_of(used.begin(), used.end(), [](double l) { return std::fabs(l) <= kLargestCoefficient; });
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

// P(|T| > x) and P(|T| <= x) of Student's t for x >= 0. A probability above 1/2 may be the complement of the
// other; the complementary beta function loses digits near 1.
struct Tails {
    double upper;
    double lower;
};

Tails TwoSidedTails(double x, double df) {
    if (df >= kKnownScaleDf) {
        const double z = x * boost::math::constants::one_div_root_two<double>();
        return {2 * UpperNormal(x), boost::math::erf(z, RefinedPolicy())};
    }
    if (x * x < df) {
        const double ratio = x / df * x;
        const double z = ratio / (1.0 + ratio);
        const double lower = boost::math::ibeta(0.5, df / 2, z, RefinedPolicy());
        return {lower < 0.5 ? 1.0 - lower : boost::math::ibetac(0.5, df / 2, z, RefinedPolicy()), lower};
    }
    const double ratio = df / x / x;
    const double upper = boost::math::ibeta(df / 2, 0.5, ratio / (1.0 + ratio), RefinedPolicy());
    return {upper, 1.0 - upper};
}

// Of one comparison: P(T > x), or for two-sided statistics P(|T| > x).
double SingleUpperTail(const ComparisonStatistic& statistic, double x, double df) {
    const Tails tails = TwoSidedTails(std::fabs(x), df);
    if (statistic.kind != ComparisonKind::kOneSided) return tails.upper;
    return x < 0 ? 0.5 + tails.lower / 2 : tails.upper / 2;
}

double SingleLowerTail(const ComparisonStatistic& statistic, double x, double df) {
    return statistic.kind == ComparisonKind::kOneSided ? SingleUpperTail(statistic, -x, df)
                                                       : TwoSidedTails(std::fabs(x), df).lower;
}

// Whether P(statistic > x) is small enough that P(statistic <= x) is its complement.
bool IsSmallUpperTail(const ComparisonStatistic& statistic, double x, double df) {
    if (Comparisons(statistic) * SingleUpperTail(statistic, x, df) < 0.1) return true;
    // With few df the scale decides: the largest of m normal comparisons is near the root of 2 log m.
    if (x <= 0 || df >= 8) return false;
    const double normal = 0.5 + 1.8 * std::log(Comparisons(statistic));
    return boost::math::gamma_p(df / 2, df * normal / (2 * x * x), RefinedPolicy()) < 0.35;
}

// Only with lambda = 1 / sqrt 2 are all pairs a distribution; otherwise the value at infinity is not 1.
bool IsDistribution(const ComparisonStatistic& statistic) {
    return statistic.kind != ComparisonKind::kAllPairs || std::fabs(statistic.steepest - 1.0) <= 1e-12;
}

// Two groups are a single comparison, whose distribution is Student's.
bool IsSingle(const ComparisonStatistic& statistic) { return statistic.k == 2 && IsDistribution(statistic); }

double Probability(const ComparisonStatistic& statistic, double x, double df, bool upper) {
    const bool nonNegative = statistic.kind != ComparisonKind::kOneSided;
    if (statistic.k == 1 || x == kInfinity) return upper ? 0.0 : 1.0;
    if (x == -kInfinity || (nonNegative && x <= 0)) return upper ? 1.0 : 0.0;
    if (IsSingle(statistic)) return upper ? SingleUpperTail(statistic, x, df) : SingleLowerTail(statistic, x, df);
    if (!IsDistribution(statistic)) {
        const double lower = StudentisedProbability(statistic, x, df, false);
        return upper ? 1.0 - lower : lower;
    }
    // Where the other tail is small its complement has the smaller error.
    if (!upper && IsSmallUpperTail(statistic, x, df)) return 1.0 - StudentisedProbability(statistic, x, df, true);
    if (upper && !nonNegative && SingleUpperTail(statistic, -x, df) < 0.1)
        return 1.0 - StudentisedProbability(statistic, x, df, false);
    return StudentisedProbability(statistic, x, df, upper);
}

double CDF(ComparisonKind kind, double x, std::int32_t k, double df, std::span<const double> lambda, bool upper) {
    if (std::isnan(x) || !IsValid(kind, k, df, lambda)) return kNoResult;
    return Probability(MakeStatistic(kind, k, lambda), x, df, upper);
}

// The x with upper tail q of a single comparison.
double SingleUpperPoint(double df, double q) {
    if (df >= kKnownScaleDf)
        return boost::math::constants::root_two<double>() * boost::math::erfc_inv(2 * q, RefinedPolicy());
    return -boost::math::quantile(boost::math::students_t_distribution<double, RefinedPolicy>(df), q);
}

// The x with P(|T| <= x) = p of a single comparison, for a small p by the density at 0 and its curvature.
double SingleAbsolutePoint(double df, double p) {
    if (p > 1e-4) return SingleUpperPoint(df, 0.5 - p / 2);
    const double density =
        df >= kKnownScaleDf ? boost::math::constants::one_div_root_two_pi<double>()
                            : boost::math::pdf(boost::math::students_t_distribution<double, RefinedPolicy>(df), 0.0);
    const double x = p / (2 * density);
    return x * (1.0 + (1.0 + 1.0 / df) * x * x / 6);
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
    if (!(p > 0 && p < 1) || k < 2 || !IsValid(kind, k, df, lambda)) return kNoResult;
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
    if (IsSingle(statistic)) return bracket.low;
    // A quantile near the largest double or above it is not found.
    constexpr double limit = 709.0;
    double low = std::clamp(toZ(bracket.low), -limit, limit), high = std::clamp(toZ(bracket.high), -limit, limit);
    double atLow = function(low), atHigh = function(high);
    // With two groups both ends are the root; elsewhere rounding may leave it just outside.
    for (double widening = 1e-9; atLow > 0 && widening < 1e3; widening *= 8)
        atLow = function(low = std::max(low - widening, -limit));
    for (double widening = 1e-9; atHigh < 0 && widening < 1e3; widening *= 8)
        atHigh = function(high = std::min(high + widening, limit));
    if (atLow == 0) return toX(low);
    if (atHigh == 0) return toX(high);
    if (atLow > 0 || atHigh < 0) return kNoResult;
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
