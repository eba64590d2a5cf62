// The passes over a matrix that keep infinities and NaNs from iterations of LAPACK that they would never end.
#ifndef ORVANTH_LINALG_FINITE_HPP
#define ORVANTH_LINALG_FINITE_HPP

#include "linalg/matrix_view.hpp"

namespace orvanth {

// Whether every element is finite.
bool IsFinite(const MatrixView& a) noexcept;

// Whether the lower triangle of a square matrix, diagonal included, holds a NaN.
bool HasNaNInLowerTriangle(const MatrixView& a) noexcept;

}  // namespace orvanth

#endif
