// The inverse error function over arrays, to under one unit in the last place.
#ifndef ORVANTH_RANDOM_ERF_INV_HPP
#define ORVANTH_RANDOM_ERF_INV_HPP

#include <cstdint>

namespace orvanth {

inline constexpr std::int32_t kErfInvRows = 212;
inline constexpr std::int32_t kErfInvColumns = 17;

// Columns 0 to 14 the polynomial, 15 and 16 the heads of constant and slope; written by
// tools/make_erf_inv_table.py.
extern const double ErfInvCoefficientTable[kErfInvRows][kErfInvColumns];

// erfinv(1 - 2^-53), at the largest double below 1.
inline constexpr double kErfInvLargest = 5.8635847487551676;

// values[i] = erfinv(arguments[i]); the arrays may be the same. +-1 and what lies outside go to the
// numeric error callback.
void vdErfInv(std::int32_t count, const double* arguments, double* values);

// The same, element by element: the bits that every processor gives.
void ErfInvPortable(std::int32_t count, const double* arguments, double* values);

}  // namespace orvanth

#endif
