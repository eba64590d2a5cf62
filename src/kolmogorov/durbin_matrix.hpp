// P(D_n <= x) as an element of the n-th power of a small dense matrix, for small n x.
// J. Durbin, Distribution Theory for Tests Based on the Sample Distribution Function (SIAM, 1973);
// G. Marsaglia, W. W. Tsang, J. Wang, J. Stat. Software 8 (2003) 18.
#ifndef ORVANTH_KOLMOGOROV_DURBIN_MATRIX_HPP
#define ORVANTH_KOLMOGOROV_DURBIN_MATRIX_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// n >= 2, 0 < n x below about 60.
double DurbinMatrix(std::int32_t n, double x);

// Matrices are row-major, m x m. A matrix with exponent e has the value array * 10^e.

// C = A B. Every element is summed from 0.0 in ascending order of the inner index. C overlaps neither A nor B.
void MatrixMultiply(const double* A, const double* B, double* C, std::int32_t m);

// V = A^n for n >= 1, where A has the exponent eA. Returns the exponent of V.
std::int32_t MatrixPower(const double* A, std::int32_t eA, double* V, std::int32_t m, std::int32_t n);

// Scales V, which has the exponent e, by 1e-140. Returns the new exponent e + 140.
std::int32_t MatrixRenormalize(double* V, std::int32_t m, std::int32_t e);

}  // namespace orvanth::kolmogorov

#endif
