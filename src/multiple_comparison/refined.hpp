// Refined forms of the three multiple-comparison distributions, for published numbers.
//
// The plain forms use two fixed rules of 48 points, cut 5e-8 off each end of the scale and take the
// scale as known from df = 1000 on. Here both rules follow the arguments, the whole range of the scale
// counts, and each tail is computed as a tail. Over k to 100, df from 1 to infinity and coefficients
// to 0.95 in size: absolute error of a probability 1e-10, relative error of a tail down to 1e-12 1e-9,
// relative error of a quantile 1e-8.
//
// x        the statistic, on the scale of t
// p        a probability in (0, 1)
// k        number of groups, 1 to kMostGroups; for a quantile from 2 on
// df       degrees of freedom, from kLeastDf on; infinity is a known scale
// lambda   as in the plain forms: the first k - 1 coefficients count (all pairs: the first), each
//          at most kLargestCoefficient in size
// upper    P(X > x) in place of P(X <= x)
// Outside these ranges the result is a quiet NaN. Nothing is thrown but std::bad_alloc.
#ifndef ORVANTH_MULTIPLE_COMPARISON_REFINED_HPP
#define ORVANTH_MULTIPLE_COMPARISON_REFINED_HPP

#include <cstdint>
#include <span>

namespace orvanth {

// k (k - 1) is a 32-bit integer up to here.
inline constexpr std::int32_t kMostGroups = 46341;

// Below this a quantile of one half nears the largest double.
inline constexpr double kLeastDf = 1e-3;

// The cost of a call grows with 1 / sqrt(1 - lambda^2).
inline constexpr double kLargestCoefficient = 0.9999;

double RefinedTukeyCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper);
double RefinedHsuCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper);
double RefinedDunnettCDF(double x, std::int32_t k, double df, std::span<const double> lambda, bool upper);

double RefinedTukeyICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper);
double RefinedHsuICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper);
double RefinedDunnettICDF(double p, std::int32_t k, double df, std::span<const double> lambda, bool upper);

}  // namespace orvanth

#endif
