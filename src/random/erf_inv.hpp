// The inverse error function over arrays, to under one unit in the last place.
#ifndef ORVANTH_RANDOM_ERF_INV_HPP
#define ORVANTH_RANDOM_ERF_INV_HPP

#include <cstdint>
#include <span>

namespace orvanth {

inline constexpr std::int32_t kErfInvRows = 212;
inline constexpr std::int32_t kErfInvColumns = 17;

// A row holds the coefficients 0 to 14 of a polynomial and the heads of its constant and its slope.
// tools/make_erf_inv_table.py writes it.
extern const double ErfInvCoefficientTable[kErfInvRows][kErfInvColumns];

// erfinv(1 - 2^-53), at the largest double below 1.
inline constexpr double kErfInvLargest = 5.8635847487551676;

// values[i] = erfinv(arguments[i]), and `atOne` with the sign of the argument at -1 and 1. The two arrays may be the
// same.
void ErfInv(std::span<const double> arguments, double* values, double atOne);

// The same without vectors, with the same bits: what every processor can run.
void ErfInvOneByOne(std::span<const double> arguments, double* values, double atOne);

}  // namespace orvanth

#endif
