// The search behind BinomialICDF.
#ifndef ORVANTH_DISTRIBUTIONS_BINOMIAL_QUANTILE_HPP
#define ORVANTH_DISTRIBUTIONS_BINOMIAL_QUANTILE_HPP

namespace orvanth {

// P(X <= k) of the binomial distribution, continued to every real k from 0 to n: no tests.
double BinomialCumulative(double k, double n, double p);

// The floor, or the ceiling, of the real k with P(X <= k) = probability, for a probability above
// P(X = 0) and below 1.
double BinomialSearch(double probability, double n, double p, bool roundUp);

}  // namespace orvanth

#endif
