// The inverse incomplete beta function where a parameter is so large or so small that the general
// search has nothing to hold on to: the limit distributions stand in, to all digits of a double.
#ifndef ORVANTH_SPECIAL_INVERSE_BETA_LIMITS_HPP
#define ORVANTH_SPECIAL_INVERSE_BETA_LIMITS_HPP

namespace orvanth {

// Beyond these the limits below are taken.
inline constexpr double kHugeBetaParameter = 1e12;
inline constexpr double kTinyBetaParameter = 1e-12;

inline bool IsBetaLimit(double a, double b) {
    return a > kHugeBetaParameter || b > kHugeBetaParameter || a < kTinyBetaParameter || b < kTinyBetaParameter;
}

// x and *complement = 1 - x with I_x(a, b) = p = 1 - q, for a and b greater than 0 of which one is
// beyond the limits, and p in (0, 1).
double InverseBetaLimit(double a, double b, double p, double q, double* complement);

}  // namespace orvanth

#endif
