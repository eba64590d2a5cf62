// Householder QR of a design with many rows and few columns, in three passes over its storage.
//
// Reflections one at a time read and write such a design once a column, and it does not fit in the cache. Here the
// triangular factor comes from the products of the columns (Cholesky), twice, so that Q is orthogonal to rounding:
// Y. Yamamoto and others, Roundoff error analysis of the CholeskyQR2 algorithm, Electronic Transactions on Numerical
// Analysis 44 (2015) 306. The reflectors follow from the first rows of Q: G. Ballard and others, Reconstructing
// Householder vectors from tall-skinny QR, J. Parallel Distrib. Comput. 85 (2015) 3.
#ifndef ORVANTH_LINALG_TALL_QR_HPP
#define ORVANTH_LINALG_TALL_QR_HPP

#include "linalg/matrix_view.hpp"

namespace orvanth {

// Whether the design is large and narrow enough to gain.
bool IsTall(const MatrixView& a) noexcept;

// Factors `a` as LAPACK lays it out and returns true, or leaves `a` and `tau` unchanged and returns false: where a
// column is collinear with those before it or near that, where a column is nearly reduced already, and where the
// elements are too large, too small or not finite.
bool FactorTall(const MatrixView& a, double* tau, double tolerance);

}  // namespace orvanth

#endif
