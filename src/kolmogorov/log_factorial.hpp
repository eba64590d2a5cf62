// Factorials and their logarithms as the Kolmogorov algorithms use them. FNCLogFactorial of
// noncentral_hypergeometric/ is another function with another table: the digits differ.
#ifndef ORVANTH_KOLMOGOROV_LOG_FACTORIAL_HPP
#define ORVANTH_KOLMOGOROV_LOG_FACTORIAL_HPP

#include <array>
#include <cstdint>

namespace orvanth::kolmogorov {

// i! for i = 0 to 20, exact.
extern const std::array<double, 21> FactorialTable;

// ln i! for i = 0 to 30 as stored decimals, up to 2e-14 off: results depend on these very digits.
extern const std::array<double, 31> LogFactorialTable;

// ln n!, n >= 0: the table up to 30, beyond it Stirling's series with truncated constants.
double LogFactorial(std::int32_t n);

}  // namespace orvanth::kolmogorov

#endif
