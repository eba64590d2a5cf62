#include "special/beta_inverse.hpp"

#include <cmath>

#include "frame/boost_detail.hpp"
#include "frame/failure.hpp"
#include "special/beta.hpp"
#include "special/beta_limits.hpp"
#include "special/quantile_search.hpp"

namespace orvanth {

namespace {

// The x of [0, 1/2] with I_x(a, b) = p = 1 - q, from the smaller of p and q; 1/2 if x is larger.
double BisectLowerHalf(double a, double b, double p, double q) {
    return Bisect(0, 0.5,
                  [=](double x) { return p <= q ? RegularizedBeta(a, b, x) < p : RegularizedBetaC(a, b, x) > q; });
}

// The smaller of x and y is searched.
BetaPoint BisectBeta(double a, double b, double p, double q) {
    const double x = BisectLowerHalf(a, b, p, q);
    if (x < 0.5) return {x, 1 - x};
    const double y = BisectLowerHalf(b, a, q, p);
    return {1 - y, y};
}

// For smaller probabilities the search of Boost.Math rarely arrives.
constexpr double kTinyBetaProbability = 1e-50;

}  // namespace

BetaPoint InverseBetaPoint(const char* function, double a, double b, double p, double q) {
    if (!(a > 0 && b > 0 && p >= 0 && p <= 1)) return {kNaN, kNaN};
    if (p == 0 || q == 0) return {q == 0 ? 1.0 : 0.0, q == 0 ? 0.0 : 1.0};
    if (a == 1 && b == 1) return {p, q};
    if (IsBetaLimit(a, b)) return InverseBetaLimit(a, b, p, q);
    const auto bisect = [=] { return BisectBeta(a, b, p, q); };
    if (p < kTinyBetaProbability || q < kTinyBetaProbability || a < kTinyBetaParameter || b < kTinyBetaParameter)
        return bisect();
    return SearchOrFinish(
        function,
        [=] {
            BetaPoint point = {};
            point.x = InverseBetaSearch(a, b, p, q, &point.y);
            return point;
        },
        [](BetaPoint point) { return !std::isnan(point.x) && !std::isnan(point.y); }, bisect);
}

}  // namespace orvanth
