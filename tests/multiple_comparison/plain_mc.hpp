// The distributions as plain double loops over nodes and comparisons: the order of operations that
// the library's evaluation keeps, bit for bit, and the baseline of its benchmark.
#ifndef ORVANTH_TESTS_MULTIPLE_COMPARISON_PLAIN_MC_HPP
#define ORVANTH_TESTS_MULTIPLE_COMPARISON_PLAIN_MC_HPP

#include <cstdint>

namespace orvanth::plain {

enum class Statistic { kTukey, kHsu, kDunnett };

// 1 - Phi(-z) by Boost's normal distribution.
double U(double z);

double Conditional(Statistic statistic, double x, double s, std::int32_t k, const double* lambda);
double Cumulative(Statistic statistic, double x, std::int32_t k, double df, const double* lambda);

// The quantile as the solver gives it from the plain double loop, with any number of bits.
double Quantile(Statistic statistic, double p, std::int32_t k, double df, const double* lambda, unsigned bits);

// The quantile of Student's t by Boost.
double StudentT(double df, double q);

}  // namespace orvanth::plain

#endif
