// Closed forms at the edges of the range and the one-sided tail.
#ifndef ORVANTH_KOLMOGOROV_TAILS_HPP
#define ORVANTH_KOLMOGOROV_TAILS_HPP

#include <cstdint>

namespace orvanth::kolmogorov {

// P(D_n <= x) and P(D_n > x) where a closed form applies, otherwise -1.0. The cut-offs of the two
// differ on purpose. Ruben and Gambino, Ann. Inst. Statist. Math. 34 (1982) 167.
double KolmogorovCumulativeSpecial(std::int32_t n, double x);
double KolmogorovComplementSpecial(std::int32_t n, double x);

// The one-sided tail P(D_n+ > x), summed outward from its centre by logarithms; above n = 200000
// the asymptotic form of W. Feller and S. Malmquist is used.
double SmirnovUpperTail(std::int32_t n, double x);
double SmirnovUpperTailAsymptotic(std::int32_t n, double x);

// ln(1 + x): its power series up to |x| = 0.1.
double SeriesLog1p(double x);

}  // namespace orvanth::kolmogorov

#endif
