// Closed forms at the edges of the range and the one-sided tail.
#ifndef ORVANTH_KOLMOGOROV_TAILS_HPP
#define ORVANTH_KOLMOGOROV_TAILS_HPP

#include <cstdint>
#include <optional>

namespace orvanth::kolmogorov {

// P(D_n <= x) and P(D_n > x) where a closed form holds.
// H. Ruben and J. Gambino, Ann. Inst. Statist. Math. 34 (1982) 167.
std::optional<double> KolmogorovCumulativeSpecial(std::int32_t n, double x);
std::optional<double> KolmogorovComplementSpecial(std::int32_t n, double x);

// The one-sided tail P(D_n+ > x): the sum of Z. W. Birnbaum and F. H. Tingey, Ann. Math. Statist. 22 (1951) 592, up
// to n = 200000, and the asymptotic form above.
double SmirnovUpperTail(std::int32_t n, double x);

// U. R. Maag and G. Dicaire, Biometrika 58 (1971) 653.
double SmirnovUpperTailAsymptotic(std::int32_t n, double x);

// ln(1 + x), by its power series up to |x| = 0.1.
double SeriesLog1p(double x);

}  // namespace orvanth::kolmogorov

#endif
