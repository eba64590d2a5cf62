// P(D_n <= x) as an element of the n-th power of a small dense matrix, for small n x.
// J. Durbin, Distribution Theory for Tests Based on the Sample Distribution Function (SIAM, 1973);
// G. Marsaglia, W. W. Tsang, J. Wang, J. Stat. Software 8 (2003) 18.
#ifndef ORVANTH_KOLMOGOROV_DURBIN_MATRIX_HPP
#define ORVANTH_KOLMOGOROV_DURBIN_MATRIX_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// n >= 2, 0 < n x below about 60.
double DurbinMatrix(std::int32_t n, double x);

// Row-major m x m matrices; a matrix value is array * 10^exponent.

// C = A B. Every element is summed from 0.0 in ascending order of the inner index. C is apart.
void MatrixMultiply(const double* A, const double* B, double* C, std::int32_t m);

// V 10^eV = (A 10^eA)^n for n >= 1.
void MatrixPower(const double* A, std::int32_t eA, double* V, std::int32_t* eV, std::int32_t m, std::int32_t n);

// Scales V by 1e-140 and adds 140 to *e.
void MatrixRenormalize(double* V, std::int32_t m, std::int32_t* e);

}  // namespace orvanth::kolmogorov

#endif
