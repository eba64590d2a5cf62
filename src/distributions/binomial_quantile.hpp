// The tails of the binomial distribution and the search behind BinomialICDF. Nothing here tests its
// arguments: p in [0, 1], n >= 0 and 0 <= k <= n hold on entry.
#ifndef ORVANTH_DISTRIBUTIONS_BINOMIAL_QUANTILE_HPP
#define ORVANTH_DISTRIBUTIONS_BINOMIAL_QUANTILE_HPP

namespace orvanth {

// P(X <= k), or P(X > k) for the upper tail, continued to every real k from 0 to n.
double BinomialTail(double k, double n, double p, bool upper);

enum class Rounding { kDown, kUp };

// The floor, or the ceiling, of the real k at which P(X <= k) = lower; upper is 1 - lower, which may
// have more digits. For (1 - p)^n < lower < 1.
double SearchBinomialQuantile(double lower, double upper, double n, double p, Rounding rounding);

}  // namespace orvanth

#endif
