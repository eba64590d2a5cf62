// Parts of the incomplete beta function that Boost.Math's own functions are directed to: the same operations in the
// same order, so the same bits, without what is calculated twice or only tested there. Each has the range where it
// answers; elsewhere it has nothing, and Boost's own part is called.
#ifndef ORVANTH_SPECIAL_BETA_PARTS_HPP
#define ORVANTH_SPECIAL_BETA_PARTS_HPP

#include <cstdint>
#include <optional>

namespace orvanth {

// True if base^exponent is in range for certain: |ln base| is at most (|e| + 1) ln 2 for a normal number of binary
// exponent e. Boost.Math takes two logarithms to know it exactly, and changes its method from 708 on.
bool IsPowerInRange(double base, double exponent);

// factor x^a y^b / B(a, b) for y = 1 - x, unless one power is near 1 and the other far from it, or one may leave the
// range of doubles.
std::optional<double> FastBetaPowerTerms(double a, double b, double x, double y, double factor);

// x^a / B(a, b), the factor in front of the power series.
std::optional<double> FastBetaSeriesFactor(double a, double b, double x);

// A sum, and whether it was at its end after the terms that were allowed.
struct BetaSum {
    double value;
    bool ended;
};

// start + factor (1/a + (1 - b) x / (a + 1) + ...), up to the first term below epsilon of the sum.
BetaSum SumBetaSeries(double a, double b, double x, double factor, double start, std::uintmax_t mostTerms);

// start + factor times I_x(a, b) for large a and b of at most 1, by the expansion in incomplete gamma functions of b.
double SumLargeShapeSeries(double a, double b, double x, double y, double start, double factor);

// The normalised upper incomplete gamma function Q(a, x), where it is its prefix x^a exp(-x) / Gamma(a) times a
// continued fraction.
std::optional<double> UpperGammaFromPrefix(double a, double x, double prefix);

}  // namespace orvanth

#endif
