#include "special/beta_limits.hpp"

#include <cmath>
#include <limits>
#include <numbers>

#include "frame/failure.hpp"
#include "special/beta.hpp"
#include "special/error_function.hpp"
#include "special/gamma.hpp"

namespace orvanth {

namespace {

// The factor c for which -c ln X has a gamma distribution of shape b in the limit of large a (Didonato and Morris,
// ACM Trans. Math. Softw. 18 (1992) 360, equation 9).
double LogScale(double a, double b) { return a + (b - 1) / 2; }

// Both parameters are large: the expansion of Cornish and Fisher (Rev. Inst. Int. Stat. 5 (1938) 307) with skewness
// and excess, of which the terms that are small against a and b are left out.
BetaPoint BothLarge(double a, double b, double p, double q) {
    const double meanX = 1 / (1 + b / a), meanY = 1 / (1 + a / b);
    const double z = std::numbers::sqrt2 * (p < q ? -InverseErfCValue(2 * p) : InverseErfCValue(2 * q));
    const double scale = 1 / std::fmax(b * meanX, a * meanY);  // (a + b)/(a b)
    const double skewness = 2 * (meanY - meanX) * std::sqrt(scale);
    const double excess = 6 * ((meanY - meanX) * (meanY - meanX) - meanX * meanY) * scale;
    const double correction =
        (z * z - 1) / 6 * skewness + z * (z * z - 3) / 24 * excess - z * (2 * z * z - 5) / 36 * skewness * skewness;
    const double step = (z + correction) * std::sqrt(meanX * meanY / (a + b));
    return {meanX + step, meanY - step};
}

// a is huge.
BetaPoint HugeFirst(double a, double b, double p, double q) {
    if (std::isinf(a)) return {1, 0};
    // Here both forms are within a relative 1e-11 for probabilities down to 1e-40: the gamma distribution leaves out
    // the square of b/a, the expansion higher powers of 1/b.
    constexpr double kLargeParameter = 1e7;
    if (b > kLargeParameter) return BothLarge(a, b, p, q);
    const double v = (p < q ? InverseGammaQ(b, p) : InverseGammaP(b, q)) / LogScale(a, b);
    return {std::exp(-v), -std::expm1(-v)};
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
    return a < kTinyBetaParameter ? BetaPoint{0, 1} : Swapped(HugeFirst(b, a, q, p));
}

}  // namespace orvanth
