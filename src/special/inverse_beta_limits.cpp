#include "special/inverse_beta_limits.hpp"

#include <cmath>

#include "frame/policies.hpp"
#include "special/gamma.hpp"

namespace orvanth {

namespace {

struct Parts {
    double x;
    double y;  // 1 - x
};

Parts Swapped(Parts parts) { return {parts.y, parts.x}; }

// a is huge: a (1 - x) has a gamma distribution of shape b, or next to none about its mean.
Parts HugeFirst(double a, double b, double p) {
    if (b > kHugeBetaParameter) {
        if (std::isinf(a)) return {1, 0};
        return {1 / (1 + b / a), 1 / (1 + a / b)};
    }
    const double y = std::fmin(InverseGammaQ(b, p) / a, 1);
    return {1 - y, y};
}

// a is tiny: next to 0 stands the mass b/(a + b), spread as x^a.
Parts TinyFirst(double a, double b, double p, double q) {
    const double atZero = 1 / (1 + a / b);
    if (p <= atZero) {
        const double x = std::exp(std::log(p / atZero) / a);
        return {x, 1 - x};
    }
    const double y = b < kTinyBetaParameter ? std::exp(std::log(q / (1 / (1 + b / a))) / b) : 0;
    return {1 - y, y};
}

Parts Limit(double a, double b, double p, double q) {
    if (a > kHugeBetaParameter) return b < kTinyBetaParameter ? Parts{1, 0} : HugeFirst(a, b, p);
    if (b > kHugeBetaParameter) return a < kTinyBetaParameter ? Parts{0, 1} : Swapped(HugeFirst(b, a, q));
    if (a < kTinyBetaParameter) return TinyFirst(a, b, p, q);
    return Swapped(TinyFirst(b, a, q, p));
}

}  // namespace

double InverseBetaLimit(double a, double b, double p, double q, double* complement) {
    const Parts parts = Limit(a, b, p, q);
    *complement = parts.y;
    return parts.x;
}

}  // namespace orvanth
