// The two tails of the Kolmogorov statistic D_n for finite n; see the decision tables in the source.
#ifndef ORVANTH_KOLMOGOROV_KOLMOGOROV_HPP
#define ORVANTH_KOLMOGOROV_KOLMOGOROV_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// P(D_n <= x) for n >= 0 and x no NaN.
double KolmogorovCumulative(std::int32_t n, double x);

// P(D_n > x), by a method of its own where it is small.
double KolmogorovComplement(std::int32_t n, double x);

}  // namespace orvanth::kolmogorov

#endif
