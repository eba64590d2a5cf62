#include "special/beta_limits.hpp"

#include <cmath>

#include "frame/policies.hpp"
#include "special/beta.hpp"
#include "special/error_function.hpp"
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

double RegularizedBetaLimit(double a, double b, double x, bool complement) {
    // -a ln X has a gamma distribution of shape b in the limit of large a, and likewise for b.
    if (!(b > kHugeForwardParameter)) {
        const double v = -a * std::log(x);
        return complement ? RegularizedGammaP(b, v) : RegularizedGammaQ(b, v);
    }
    if (!(a > kHugeForwardParameter)) {
        const double v = -b * std::log1p(-x);
        return complement ? RegularizedGammaQ(a, v) : RegularizedGammaP(a, v);
    }
    if (std::isinf(a) || std::isinf(b)) return kNaN;
    const double mean = 1 / (1 + b / a);
    const double z = (x - mean) / std::sqrt(mean / (1 + a / b) / (a + b));
    return ErfCValue((complement ? z : -z) / std::sqrt(2.0)) / 2;
}

// Newton's method on ln I against ln x, kept between bounds: where I underflows the bounds are halved.
double InverseBetaTinyProbability(double a, double b, double p) {
    const double goal = std::log(p);
    const double logBeta = std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
    double low = -kLargest, high = 0;
    double t = std::fmin((goal + std::log(a) + logBeta) / a, 0);     // as if I were x^a / (a B)
    if (t < std::log(std::numeric_limits<double>::min())) return t;  // x is so small that it is
    for (int i = 0; i < 200; ++i) {
        const double x = std::exp(t);
        const double value = RegularizedBeta(a, b, x);
        (std::log(value) < goal ? low : high) = t;
        double next = t + (goal - std::log(value)) / (x * BetaDensity(a, b, x) / value);
        if (!(next > low && next < high)) next = (std::fmax(low, 4 * t - 1) + high) / 2;
        const bool settled = std::fabs(next - t) <= 4e-16 * std::fabs(t);
        t = next;
        if (settled) break;
    }
    return t;
}

double InverseBetaLimit(double a, double b, double p, double q, double* complement) {
    const Parts parts = Limit(a, b, p, q);
    *complement = parts.y;
    return parts.x;
}

}  // namespace orvanth
