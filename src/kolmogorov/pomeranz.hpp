// P(D_n <= x) by a recursion over the ordered boundary points of the statistic, for n <= 140.
// J. Pomeranz, Comm. ACM 17 (1974) 703, algorithm 487.
#ifndef ORVANTH_KOLMOGOROV_POMERANZ_HPP
#define ORVANTH_KOLMOGOROV_POMERANZ_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

double Pomeranz(std::int32_t n, double x);

// Fills A, atflo and atcei, each of 2n + 3 elements and zero before the call, for t = n x:
// the boundary points in units of 1/n, floor(A - t) and ceil(A + t).
void CalcFloorCeil(std::int32_t n, double t, double* A, double* atflo, double* atcei);

}  // namespace orvanth::kolmogorov

#endif
