#include "special/beta_limits.hpp"

#include <cmath>
#include <limits>
#include <numbers>

#include "frame/policies.hpp"
#include "special/beta.hpp"
#include "special/error_function.hpp"
#include "special/gamma.hpp"

namespace orvanth {

namespace {

// The factor c for which -c ln X has a gamma distribution of shape b in the limit of large a (Didonato and Morris,
// ACM Trans. Math. Softw. 18 (1992) 360, equation 9).
double LogScale(double a, double b) { return a + (b - 1) / 2; }

// a is huge: the gamma distribution, or where b is huge too, next to none about the mean.
BetaPoint HugeFirst(double a, double b, double p, double q) {
    if (b > kHugeBetaParameter) {
        if (std::isinf(a)) return {1, 0};
        return {1 / (1 + b / a), 1 / (1 + a / b)};
    }
    const double v = (p < q ? InverseGammaQ(b, p) : InverseGammaP(b, q)) / LogScale(a, b);
    return {std::exp(-v), -std::expm1(-v)};
}

// a is tiny: next to 0 stands the mass b/(a + b), spread as x^a.
BetaPoint TinyFirst(double a, double b, double p, double q) {
    const double atZero = 1 / (1 + a / b);
    if (p <= atZero) {
        const double x = std::exp(std::log(p / atZero) / a);
        return {x, 1 - x};
    }
    const double y = b < kTinyBetaParameter ? std::exp(std::log(q / (1 / (1 + b / a))) / b) : 0;
    return {1 - y, y};
}

}  // namespace

double RegularizedBetaLimit(double a, double b, double x, bool complement) {
    if (!(b > kHugeForwardParameter)) {
        const double v = -LogScale(a, b) * std::log(x);
        return complement ? RegularizedGammaP(b, v) : RegularizedGammaQ(b, v);
    }
    if (!(a > kHugeForwardParameter)) {
        const double v = -LogScale(b, a) * std::log1p(-x);
        return complement ? RegularizedGammaQ(a, v) : RegularizedGammaP(a, v);
    }
    if (std::isinf(a) && std::isinf(b)) return kNaN;
    if (std::isinf(a) || std::isinf(b)) return std::isinf(b) != complement ? 1 : 0;
    const double mean = 1 / (1 + b / a);
    const double part = mean / (1 + a / b), variance = part / (a + b);
    // The variance underflows sooner than its root.
    const double sd =
        variance >= std::numeric_limits<double>::min()
            ? std::sqrt(variance)
            : std::sqrt(part) / std::sqrt(std::fmax(a, b)) / std::sqrt(1 + std::fmin(a, b) / std::fmax(a, b));
    const double z = (x - mean) / sd;
    return ErfCValue((complement ? z : -z) / std::numbers::sqrt2) / 2;
}

BetaPoint InverseBetaLimit(double a, double b, double p, double q) {
    if (a > kHugeBetaParameter) return b < kTinyBetaParameter ? BetaPoint{1, 0} : HugeFirst(a, b, p, q);
    if (b > kHugeBetaParameter) return a < kTinyBetaParameter ? BetaPoint{0, 1} : Swapped(HugeFirst(b, a, q, p));
    if (a < kTinyBetaParameter) return TinyFirst(a, b, p, q);
    return Swapped(TinyFirst(b, a, q, p));
}

}  // namespace orvanth
