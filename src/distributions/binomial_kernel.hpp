// The binomial distribution with n trials, which need not be a whole number, and success fraction
// p. Nothing here tests its arguments: p in [0, 1], n >= 0 and 0 <= k <= n hold on entry.
#ifndef ORVANTH_DISTRIBUTIONS_BINOMIAL_KERNEL_HPP
#define ORVANTH_DISTRIBUTIONS_BINOMIAL_KERNEL_HPP

namespace orvanth {

// P(X = k).
double BinomialProbability(double k, double n, double p);

// P(X <= k), or P(X > k) for the upper tail.
double BinomialTail(double k, double n, double p, bool upper);

enum class Rounding { kDown, kUp };

// The whole number next to the k at which the lower tail is `lower`; upper is 1 - lower. Fails as
// the search does, with an exception.
double BinomialQuantile(double lower, double upper, double n, double p, Rounding rounding);

// The success fractions x with I_x(a, b) = alpha and with 1 - I_x(a, b) = alpha.
double LowerProportion(double a, double b, double alpha);
double UpperProportion(double a, double b, double alpha);

}  // namespace orvanth

#endif
