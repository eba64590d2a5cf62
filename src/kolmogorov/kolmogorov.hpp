// The two tails of the Kolmogorov statistic D_n for finite n. A decision table chooses the method by n and x.
#ifndef ORVANTH_KOLMOGOROV_KOLMOGOROV_HPP
#define ORVANTH_KOLMOGOROV_KOLMOGOROV_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// P(D_n <= x) for n >= 0 and x no NaN.
double KolmogorovCumulative(std::int32_t n, double x);

// P(D_n > x) for n >= 0 and x no NaN. Where it is small it is computed directly.
double KolmogorovComplement(std::int32_t n, double x);

}  // namespace orvanth::kolmogorov

#endif
