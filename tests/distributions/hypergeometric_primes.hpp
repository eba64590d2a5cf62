// The hypergeometric probability by exact prime factorisation: a second opinion on the form that goes
// by long factorials.
#ifndef ORVANTH_TESTS_DISTRIBUTIONS_HYPERGEOMETRIC_PRIMES_HPP
#define ORVANTH_TESTS_DISTRIBUTIONS_HYPERGEOMETRIC_PRIMES_HPP

#include <utility>
#include <vector>

#include "distributions/hypergeometric_kernel.hpp"

namespace orvanth::test {

// The primes of P(X = x) and their powers, for x inside the support and N up to 104729.
std::vector<std::pair<std::int32_t, int>> PrimeFactors(std::int64_t x, const HypergeometricCounts& counts);

// P(X = x), its prime factors multiplied with 320 bits.
double ProbabilityByPrimes(std::int64_t x, const HypergeometricCounts& counts);

}  // namespace orvanth::test

#endif
