// The hypergeometric distribution over whole counts: N items of which r are marked, a sample of n
// taken without replacement, X marked items in it. Nothing here tests its arguments: r <= N and
// n <= N hold on entry.
#ifndef ORVANTH_DISTRIBUTIONS_HYPERGEOMETRIC_KERNEL_HPP
#define ORVANTH_DISTRIBUTIONS_HYPERGEOMETRIC_KERNEL_HPP

#include <algorithm>
#include <cstdint>

namespace orvanth {

struct HypergeometricCounts {
    std::int64_t r;  // marked items
    std::int64_t n;  // sample
    std::int64_t N;  // population; all three fit an unsigned 32-bit integer

    std::int64_t Lowest() const { return std::max<std::int64_t>(0, n + r - N); }
    std::int64_t Highest() const { return std::min(n, r); }
};

// Populations up to the first go by factorials that are doubles. Up to the second, the 10000th prime,
// they go by factorials with twice the digits, above it by the Lanczos approximation.
inline constexpr std::int64_t kLargestFactorialPopulation = 170;
inline constexpr std::int64_t kLargestLongFactorial = 104729;

// P(X = x), in [0, 1]; 0 outside the support.
double HypergeometricProbability(std::int64_t x, const HypergeometricCounts& counts);

// P(X <= x), or P(X > x) for the upper tail, by a sum over the shorter side of the mode.
double HypergeometricTail(std::int64_t x, const HypergeometricCounts& counts, bool upper);

// The count at which the lower tail reaches p, rounded up; q is 1 - p. Both are in [0, 1].
std::int64_t HypergeometricQuantile(double p, double q, const HypergeometricCounts& counts);

// The three forms of the probability, for x inside the support.
double ProbabilityByFactorials(std::int64_t x, const HypergeometricCounts& counts);
double ProbabilityByLongFactorials(std::int64_t x, const HypergeometricCounts& counts);
double ProbabilityByLanczos(std::int64_t x, const HypergeometricCounts& counts);

}  // namespace orvanth

#endif
