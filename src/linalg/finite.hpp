// The pass over a matrix that keeps infinities and NaNs from LAPACK's unbounded iterations.
#ifndef ORVANTH_LINALG_FINITE_HPP
#define ORVANTH_LINALG_FINITE_HPP

#include <cstdint>

namespace orvanth {

// Whether every element of an m by n matrix is finite. A leading dimension that LAPACK will reject is not
// followed through memory: the answer is then true, and LAPACK's is the last word.
bool IsFinite(const double* a, std::int32_t m, std::int32_t n, std::int32_t lda) noexcept;

// The same for the lower triangle, diagonal included, of a matrix of order n.
bool IsLowerTriangleFinite(const double* a, std::int32_t n, std::int32_t lda) noexcept;

}  // namespace orvanth

#endif
