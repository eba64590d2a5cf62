#include "special/beta.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/log1p.hpp>

#include "frame/boost_detail.hpp"
#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "special/beta_inverse.hpp"
#include "special/beta_limits.hpp"
#include "special/beta_parts.hpp"

namespace orvanth {

namespace {

constexpr const char* kParameterTests = "boost::math::ibeta<%1%>(%1%, %1%, %1%)";

// From here on the power terms of Boost.Math, for two such parameters, have a relative error of 1e-9 and more.
constexpr double kLargeParameters = 1e7;

// x - ln(1 + x), for x > -1.
double LogRemainder(double x) { return -boost::math::log1pmx(x, DefaultPolicy()); }

// a (1 - x) - b x, which is near 0 about the mean, without the rounding errors of its products.
double DistanceFromMean(double a, double b, double x) {
    const double first = a * x, second = b * x;
    const double lost = std::fma(a, x, -first) + std::fma(b, x, -second);
    const double rest = a - first;
    return rest - second + (a - rest - first - lost);
}

// x^a y^b / B(a, b) for two large parameters: the largest value by Stirling's series, of which the first term is
// enough here, and the deviance from it (C. Loader, Fast and accurate computation of binomial probabilities, 2000).
// Boost.Math forms the same from differences that have an error of a epsilon.
double LargePowerTerms(double a, double b, double x) {
    const double distance = DistanceFromMean(a, b, x);
    const double first = -distance / a, second = distance / b;
    if (std::fmax(std::fabs(first), std::fabs(second)) > 0.5) return 0;  // the deviance is a million or more
    const double deviance = a * LogRemainder(first) + b * LogRemainder(second);
    const double correction = (1 / (a + b) - 1 / a - 1 / b) / 12;
    return std::sqrt(std::min(a, b) / (2 * std::numbers::pi)) / std::sqrt(1 + std::min(a, b) / std::max(a, b)) *
           std::exp(correction - deviance);
}

// I_x(a, b) for two large parameters. Boost.Math forms the tail on the side of x as its power terms times a fraction;
// the power terms are exchanged.
double LargeRegularized(double a, double b, double x, double y, bool upperIsFormed, bool complement) {
    const double terms = upperIsFormed ? BetaPowerTerms(b, a, y, x) : BetaPowerTerms(a, b, x, y);
    if (!(terms > 0)) return upperIsFormed != complement ? 1 : 0;
    const double formed =
        upperIsFormed ? boost::math::ibetac(a, b, x, DefaultPolicy()) : boost::math::ibeta(a, b, x, DefaultPolicy());
    const double tail = formed * (LargePowerTerms(a, b, x) / terms);
    return upperIsFormed == complement ? tail : 1 - tail;
}

// I_x(a, b) for whole a and b as the lower tail of a binomial distribution of a + b - 1 trials with the success
// fraction y = 1 - x, summed from its last and largest term down.
double BinomialSum(double a, double b, double x, double y) {
    const double last = BetaPowerTerms(a, b, x, y) / (a * y);
    double sum = 1, term = 1;
    for (double j = b - 1; j > 0; --j) sum += term *= j * x / ((a + b - j) * y);
    return last * sum;
}

// Boost.Math takes the same sum for a second parameter below 40. Its terms have the factor x^(a + 1): where that
// underflows they are 0, or NaN if the binomial coefficient overflows.
bool IsBinomialSumLost(double a, double b, double x) {
    constexpr double kMostTerms = 40;
    if (!(b < kMostTerms && a > 1 && b > 1 && x > 0) || IsPowerInRange(x, a + 1)) return false;
    return std::floor(a) == a && std::floor(b) == b &&
           (a + 1) * std::log(x) < std::log(std::numeric_limits<double>::min());
}

// If one parameter is below the first or both are below the second, 1 / (a b) may overflow inside Boost.Math.
constexpr double kTinyParameter = 1e-280;
constexpr double kTinyParameters = 1e-20;

bool AreTiny(double a, double b) { return std::min(a, b) < kTinyParameter || std::max(a, b) < kTinyParameters; }

constexpr double kHugeParameter = 1e300;

double GeneralRegularized(double a, double b, double x, bool complement);

// For tiny parameters. The ratio of two of them decides alone; beside a larger b, 1 - I is proportional to a, and
// beside a larger a, I is to b.
double TinyRegularized(double a, double b, double x, bool complement) {
    if (std::max(a, b) < kTinyParameters) return 1 / (1 + (complement ? b / a : a / b));
    if ((a < b) != complement) return 1;
    const double side = GeneralRegularized(std::max(a, kTinyParameter), std::max(b, kTinyParameter), x, complement);
    return std::min(a, b) / kTinyParameter * side;
}

// For x in (0, 1) and positive a and b.
double GeneralRegularized(double a, double b, double x, bool complement) {
    if (AreTiny(a, b)) return TinyRegularized(a, b, x, complement);
    const double y = 1 - x;
    // The side of the mean on which the tail is the smaller one.
    const bool swap = a < b ? a - (a + b) * x < 0 : (a + b) * y - b < 0;
    if (std::min(a, b) > kLargeParameters) return LargeRegularized(a, b, x, y, swap, complement);
    if (!swap && IsBinomialSumLost(a, b, x)) {
        const double tail = BinomialSum(a, b, x, y);
        return complement ? 1 - tail : tail;
    }
    if (swap && IsBinomialSumLost(b, a, y)) {
        const double tail = BinomialSum(b, a, y, x);
        return complement ? tail : 1 - tail;
    }
    return complement ? Narrow(boost::math::ibetac(a, b, x, DefaultPolicy()), "boost::math::ibetac<%1%>(%1%,%1%,%1%)")
                      : Narrow(boost::math::ibeta(a, b, x, DefaultPolicy()), "boost::math::ibeta<%1%>(%1%,%1%,%1%)");
}

// The regularized functions share their tests, and accept a zero parameter.
double Regularized(double a, double b, double x, bool complement) {
    if (a < 0)
        return RaiseDomain(kParameterTests,
                           "The argument a to the incomplete beta function must be >= zero (got a=%1%).", a,
                           kLongDouble);
    if (b < 0)
        return RaiseDomain(kParameterTests,
                           "The argument b to the incomplete beta function must be >= zero (got b=%1%).", b,
                           kLongDouble);
    if (a == 0) {
        if (b == 0)
            return RaiseDomain(
                kParameterTests,
                "The arguments a and b to the incomplete beta function cannot both be zero, with x=%1%.", x,
                kLongDouble);
        if (b > 0) return complement ? 0 : 1;
    } else if (b == 0 && a > 0) {
        return complement ? 1 : 0;
    }
    if (x < 0 || x > 1)
        return RaiseDomain(kParameterTests,
                           "Parameter x outside the range [0,1] in the incomplete beta function (got x=%1%).", x,
                           kLongDouble);
    if (std::isnan(a) || std::isnan(b) || std::isnan(x)) return kNaN;
    if (x > 0 && x < 1 && IsForwardLimit(a, b)) return RegularizedBetaLimit(a, b, x, complement);
    return GeneralRegularized(a, b, x, complement);
}

// At an end of [0, 1] the exponent of the factor that vanishes there decides. With exponent 1 the
// value is 1/B(1, other), which is `other`.
double DensityAtEnd(const char* function, double exponent, double other) {
    if (exponent > 1) return 0;
    if (exponent == 1) return other == 0 ? kNaN : other;
    return RaiseOverflow(function);
}

// Outside [0, 1] one power has a negative base, and the quotient by x (1 - x) < 0 counts as an
// overflow; with a broken exponent the power itself is a NaN.
double DensityOutside(const char* function, double exponent) {
    return std::floor(exponent) == exponent && !std::isinf(exponent) ? RaiseOverflow(function) : kNaN;
}

// The density of tiny parameters, of which 1/B(a, b) = a b / (a + b) to all digits.
double TinyParameterDensity(double a, double b, double x) {
    const double smaller = std::min(a, b), larger = std::max(a, b), scale = smaller / (1 + smaller / larger);
    const double first = std::pow(x, a) / x, second = std::pow(1 - x, b) / (1 - x);
    // For a subnormal x the first factor may overflow and the product not.
    return std::isinf(first) ? scale / x * std::pow(x, a) * second : scale * first * second;
}

// The power terms x^a (1 - x)^b / B(a, b) come first and are divided by x (1 - x) last: where they
// are 0 or the quotient is in range, no 1/x on the way may overflow.
double DensityInside(const char* function, double a, double b, double x) {
    const double y = 1 - x;
    if (AreTiny(a, b)) return TinyParameterDensity(a, b, x);
    const double terms = std::min(a, b) > kLargeParameters ? LargePowerTerms(a, b, x) : BetaPowerTerms(a, b, x, y);
    if (std::isnan(terms) && std::max(a, b) > kHugeParameter) return 0;  // a power overflows only far from the mean
    if (terms == 0) return 0;
    if (terms > x * y * kLargest) return RaiseOverflow(function);
    return terms / (x * y);
}

bool IsPositive(double a) { return a > 0; }  // false for a NaN

// Both inverses pass x and its complement through the narrowing check.
double Invert(const char* function, double a, double b, double p, double q, double* complement) {
    const BetaPoint point = InverseBetaPoint(function, a, b, p, q);
    if (complement != nullptr) *complement = Narrow(point.y, function);
    return Narrow(point.x, function);
}

}  // namespace

double BetaFunction(double a, double b) {
    constexpr const char* function = "boost::math::beta<%1%>(%1%,%1%)";
    if (a <= 0)
        return RaiseDomain(function, "The arguments to the beta function must be greater than zero (got a=%1%).", a,
                           kLongDouble);
    if (b <= 0)
        return RaiseDomain(function, "The arguments to the beta function must be greater than zero (got b=%1%).", b,
                           kLongDouble);
    if (std::isnan(a) || std::isnan(b)) return kNaN;
    if (std::isinf(a) || std::isinf(b)) return 0;
    return Narrow(boost::math::beta(a, b, LateOverflowPolicy()), function);
}

double RegularizedBeta(double a, double b, double x) { return Regularized(a, b, x, false); }
double RegularizedBetaC(double a, double b, double x) { return Regularized(a, b, x, true); }

double BetaDensity(double a, double b, double x) {
    constexpr const char* function = "boost::math::ibeta_derivative<%1%>(%1%,%1%,%1%)";
    // Required: each failure is noted and the calculation goes on.
    if (a <= 0)
        RaiseDomain(function, "The argument a to the incomplete beta function must be greater than zero (got a=%1%).",
                    a, kLongDouble);
    if (b <= 0)
        RaiseDomain(function, "The argument b to the incomplete beta function must be greater than zero (got b=%1%).",
                    b, kLongDouble);
    if (x < 0 || x > 1)
        RaiseDomain(function, "Parameter x outside the range [0,1] in the incomplete beta function (got x=%1%).", x,
                    kLongDouble);
    if (x == 0) return DensityAtEnd(function, a, b);
    if (x == 1) return DensityAtEnd(function, b, a);
    if (!IsPositive(a) || !IsPositive(b) || !std::isfinite(x)) return kNaN;
    if (x < 0) return DensityOutside(function, a);
    if (x > 1) return DensityOutside(function, b);
    if (std::isinf(a) || std::isinf(b)) return std::isinf(a) && std::isinf(b) ? kNaN : 0;
    // One power remains, without B(a, b): also exact where the general form rounds.
    if (b == 1) return Narrow(a * std::pow(x, a - 1), function);
    if (a == 1) return Narrow(b * std::pow(1 - x, b - 1), function);
    return Narrow(DensityInside(function, a, b, x), function);
}

double InverseBeta(double a, double b, double p, double* complement) {
    constexpr const char* function = "boost::math::ibeta_inv<%1%>(%1%,%1%,%1%)";
    if (a <= 0)
        return RaiseDomain(function,
                           "The argument a to the incomplete beta function inverse must be greater than zero (got "
                           "a=%1%).",
                           a);
    if (b <= 0)
        return RaiseDomain(function,
                           "The argument b to the incomplete beta function inverse must be greater than zero (got "
                           "b=%1%).",
                           b);
    if (p < 0 || p > 1)
        return RaiseDomain(
            function, "Argument p outside the range [0,1] in the incomplete beta function inverse (got p=%1%).", p);
    return Invert(function, a, b, p, 1 - p, complement);
}

double InverseBetaC(double a, double b, double q, double* complement) {
    constexpr const char* function = "boost::math::ibetac_inv<%1%>(%1%,%1%,%1%)";
    // Required, unlike InverseBeta: each failure is noted and the calculation goes on.
    if (a <= 0)
        RaiseDomain(function,
                    "The argument a to the incomplete beta function inverse must be greater than zero (got a=%1%).",
                    a);
    if (b <= 0)
        RaiseDomain(function,
                    "The argument b to the incomplete beta function inverse must be greater than zero (got b=%1%).",
                    b);
    if (q < 0 || q > 1)
        RaiseDomain(function,
                    "Argument q outside the range [0,1] in the incomplete beta function inverse (got q=%1%).", q);
    return Invert(function, a, b, 1 - q, q, complement);
}

}  // namespace orvanth

using namespace orvanth;

ORVANTH_API(double) Beta(double a, double b) {
    Throwing throwing;
    return BetaFunction(a, b);
}

ORVANTH_API(double) BetaRegularized(double a, double b, double x) {
    Throwing throwing;
    return RegularizedBeta(a, b, x);
}

ORVANTH_API(double) BetaRegularizedC(double a, double b, double x) {
    Throwing throwing;
    return RegularizedBetaC(a, b, x);
}

ORVANTH_API(double) BetaDerivative(double a, double b, double x) {
    Silent silent;
    return BetaDensity(a, b, x);
}

ORVANTH_API(double) InverseBetaRegularized(double a, double b, double p) {
    Silent silent;
    return InverseBeta(a, b, p, nullptr);
}

ORVANTH_API(void) InverseBetaRegularized2(double a, double b, double p, double* result, double* complement) {
    Silent silent;
    *result = InverseBeta(a, b, p, complement);
}

ORVANTH_API(double) InverseBetaRegularizedC(double a, double b, double q) {
    Silent silent;
    return InverseBetaC(a, b, q, nullptr);
}

ORVANTH_API(void) InverseBetaRegularizedC2(double a, double b, double q, double* result, double* complement) {
    Silent silent;
    *result = InverseBetaC(a, b, q, complement);
}
