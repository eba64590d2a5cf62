// Log-factorials as the noncentral hypergeometric code uses them. LogFactorial of kolmogorov/ is
// another function with another table: the digits differ.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_LOG_FACTORIAL_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_LOG_FACTORIAL_HPP

#include <cstdint>

namespace orvanth {

inline constexpr std::int32_t kFNCLogFactorialEntries = 1024;

// ln k!: a running sum of logarithms below 1024, Stirling's series from there on; FNCInvalidValue for a negative k.
double FNCLogFactorial(std::int32_t k);

}  // namespace orvanth

#endif
