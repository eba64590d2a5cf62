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

// A term below this part of the sum ends the sum on its side.
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
};

// Sums the grid points on one side of the origin into halves[parity]; returns how many were taken.
template <class Integrand>
int SumSide(const Integrand& integrand, const TrapezoidRange& range, double signedStep, double (&halves)[2]) {
    double previous = 0.0;
    for (int i = 1;; ++i) {
        const double at = range.origin + i * signedStep;
        if (at < range.low || at > range.high) return i - 1;
        const double term = integrand(at);
        halves[i & 1] += term;
        const double negligible = kNegligibleTerm * (halves[0] + halves[1]) + range.floor * kNegligibleTerm;
        if (range.oneHump && term <= previous && term <= negligible) return i;
        previous = term;
    }
}

template <class Integrand>
TrapezoidResult Trapezoid(const Integrand& integrand, const TrapezoidRange& range, double step) {
    const double middle = integrand(range.origin);
    double halves[2] = {range.even ? middle / 2 : middle, 0.0};
    int right = SumSide(integrand, range, step, halves);
    int left = range.even ? 0 : SumSide(integrand, range, -step, halves);
    double difference = 0.0;
    for (int halving = 0;; ++halving) {
        const double sum = halves[0] + halves[1];
        difference = std::fabs(halves[0] - halves[1]) / (sum + range.floor / step);
        if (difference <= range.agree || halving == kMostHalvings) break;
        halves[0] = sum;
        halves[1] = 0.0;
        for (int i = -left; i < right; ++i) halves[1] += integrand(range.origin + (i + 0.5) * step);
        step /= 2;
        right *= 2;
        left *= 2;
    }
    return {step * (halves[0] + halves[1]) * (range.even ? 2.0 : 1.0), step, difference};
}

}  // namespace orvanth

#endif
