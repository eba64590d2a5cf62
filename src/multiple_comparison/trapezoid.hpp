// The trapezoidal rule on the whole line for a smooth integrand with one hump.
//
// For integrands that are analytic and fall off at both ends the rule converges geometrically in the
// reciprocal of the step. The error at step h is then at most about the square of the error at step
// 2h, which is the difference between the sums over the even and over the odd points. See L. N.
// Trefethen and J. A. C. Weideman, The exponentially convergent trapezoidal rule, SIAM Review 56 (2014).
#ifndef ORVANTH_MULTIPLE_COMPARISON_TRAPEZOID_HPP
#define ORVANTH_MULTIPLE_COMPARISON_TRAPEZOID_HPP

#include <cmath>

namespace orvanth {

struct TrapezoidResult {
    double value;
    double step;        // the step that was needed
    double difference;  // relative difference of the sums over the even and the odd points
};

// A term below this part of the sum ends the sum on its side, where nothing else is asked for.
inline constexpr double kNegligibleTerm = 1e-13;
inline constexpr int kMostHalvings = 7;

struct TrapezoidRange {
    double origin;  // a point of the grid, where the integrand is not negligible
    double low;
    double high;
    double agree;  // accepted difference of the two halves; its square is the error of one smooth hump
    double floor;  // a sum times step below this needs no relative accuracy
    bool even;     // the integrand is even, low = origin = 0: twice the sum over the half-line
    bool oneHump;  // terms fall from the hump outwards: a sum may end before its range
    double negligible = kNegligibleTerm;
    double within = 0.0;  // a sum does not end nearer to its origin than this
};

// Sums the grid points on one side of the origin into halves[parity]; returns how many were taken.
// `previous` is the term at the origin. The integrand learns which share of the sum the term before it
// has: where that is small, a small relative accuracy is enough.
template <class Integrand>
int SumSide(const Integrand& integrand, const TrapezoidRange& range, double signedStep, double previous,
            double (&halves)[2]) {
    for (int i = 1;; ++i) {
        const double at = range.origin + i * signedStep;
        if (at < range.low || at > range.high) return i - 1;
        const double share = previous / (halves[0] + halves[1]);
        const double term = integrand(at, share);
        halves[i & 1] += term;
        const double negligible = range.negligible * (halves[0] + halves[1]) + range.floor * kNegligibleTerm;
        if (range.oneHump && term <= previous && term <= negligible && std::fabs(at - range.origin) >= range.within)
            return i;
        previous = term;
    }
}

template <class Integrand>
TrapezoidResult Trapezoid(const Integrand& integrand, const TrapezoidRange& range, double step) {
    const double middle = integrand(range.origin, 1.0);
    double halves[2] = {range.even ? middle / 2 : middle, 0.0};
    int right = SumSide(integrand, range, step, middle, halves);
    int left = range.even ? 0 : SumSide(integrand, range, -step, middle, halves);
    double difference = 0.0;
    for (int halving = 0;; ++halving) {
        const double sum = halves[0] + halves[1];
        difference = std::fabs(halves[0] - halves[1]) / (sum + range.floor / step);
        if (difference <= range.agree || halving == kMostHalvings) break;
        halves[0] = sum;
        halves[1] = 0.0;
        for (int i = -left; i < right; ++i) halves[1] += integrand(range.origin + (i + 0.5) * step, 1.0);
        step /= 2;
        right *= 2;
        left *= 2;
    }
    return {step * (halves[0] + halves[1]) * (range.even ? 2.0 : 1.0), step, difference};
}

}  // namespace orvanth

#endif
