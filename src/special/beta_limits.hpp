// The incomplete beta function and its inverse where a parameter is so large or so small that the
// general methods have nothing to hold on to, or take minutes: limit distributions stand in.
#ifndef ORVANTH_SPECIAL_BETA_LIMITS_HPP
#define ORVANTH_SPECIAL_BETA_LIMITS_HPP

#include "special/beta_inverse.hpp"

namespace orvanth {

// Beyond these the limits below are taken.
inline constexpr double kHugeBetaParameter = 1e12;
inline constexpr double kTinyBetaParameter = 1e-12;

inline bool IsBetaLimit(double a, double b) { return a > kHugeBetaParameter || b > kHugeBetaParameter; }

// Beyond this the forward function takes its limits: the gamma distribution if one parameter is
// that large, to all digits, the normal one if both are, to a relative 1e-7.
inline constexpr double kHugeForwardParameter = 1e14;

inline bool IsForwardLimit(double a, double b) { return a > kHugeForwardParameter || b > kHugeForwardParameter; }

// I_x(a, b), or its complement, for x in (0, 1).
double RegularizedBetaLimit(double a, double b, double x, bool complement);

// The point with I_x(a, b) = p = 1 - q, for a and b greater than 0 of which one is beyond the limits, and p in (0,
// 1).
BetaPoint InverseBetaLimit(double a, double b, double p, double q);

}  // namespace orvanth

#endif
