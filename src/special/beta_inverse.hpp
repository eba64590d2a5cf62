// The inverse of the regularized incomplete beta function, as a point and its complement.
#ifndef ORVANTH_SPECIAL_BETA_INVERSE_HPP
#define ORVANTH_SPECIAL_BETA_INVERSE_HPP

namespace orvanth {

// A point x of [0, 1] and y = 1 - x, each with its own digits.
struct BetaPoint {
    double x;
    double y;
};

inline BetaPoint Swapped(BetaPoint point) { return {point.y, point.x}; }

// The point with I_x(a, b) = p = 1 - q. Two NaNs where a or b is not positive or p not in [0, 1]. `function` is the
// template of the text if no search arrives.
BetaPoint InverseBetaPoint(const char* function, double a, double b, double p, double q);

}  // namespace orvanth

#endif
