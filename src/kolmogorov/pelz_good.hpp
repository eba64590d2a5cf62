// The asymptotic distribution of D_n with its first three corrections, for large n.
// W. Pelz and I. J. Good, J. Roy. Statist. Soc. B 38 (1976) 152.
#ifndef ORVANTH_KOLMOGOROV_PELZ_GOOD_HPP
#define ORVANTH_KOLMOGOROV_PELZ_GOOD_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// P(D_n <= x); not clamped to [0, 1].
double PelzGood(std::int32_t n, double x);

}  // namespace orvanth::kolmogorov

#endif
