#include "special/beta.hpp"

#include <cmath>

#include <boost/math/special_functions/beta.hpp>

#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "special/beta_limits.hpp"

namespace orvanth {

namespace {

// An overflow inside is left to the narrowing check, under whose text it is reported.
using LateOverflowPolicy = bmp::normalise<DefaultPolicy, bmp::overflow_error<bmp::ignore_error>>::type;

constexpr const char* kParameterTests = "boost::math::ibeta<%1%>(%1%, %1%, %1%)";

// The regularized functions share their tests, and accept a zero parameter.
double Regularized(double a, double b, double x, bool complement) {
    if (x < 0 || x > 1)
        return RaiseDomain(kParameterTests,
                           "Parameter x outside the range [0,1] in the incomplete beta function (got x=%1%).", x,
                           kLongDouble);
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
    if (std::isnan(a) || std::isnan(b) || std::isnan(x)) return kNaN;
    if (x > 0 && x < 1 && IsForwardLimit(a, b)) return RegularizedBetaLimit(a, b, x, complement);
    return complement ? Narrow(boost::math::ibetac(a, b, x, DefaultPolicy()), "boost::math::ibetac<%1%>(%1%,%1%,%1%)")
                      : Narrow(boost::math::ibeta(a, b, x, DefaultPolicy()), "boost::math::ibeta<%1%>(%1%,%1%,%1%)");
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

// The power terms x^a (1 - x)^b / B(a, b) come first and are divided by x (1 - x) last: where they
// are 0 or the quotient is in range, no 1/x on the way may overflow.
double DensityInside(const char* function, double a, double b, double x) {
    const double y = 1 - x;
    const double terms = boost::math::detail::ibeta_power_terms(a, b, x, y, boost::math::lanczos::lanczos13m53(),
                                                                true, DefaultPolicy());
    if (terms == 0) return 0;
    if (terms > x * y * kLargest) return RaiseOverflow(function);
    return terms / (x * y);
}

bool IsPositive(double a) { return a > 0; }  // false for a NaN

// Both inverses: the complement as the search carries it, which keeps its digits near x = 1.
template <class Inverse>
double Invert(Inverse inverse, const char* function, double* complement) {
    double y = 0;
    const double x = Narrow(inverse(&y), function);
    if (complement != nullptr) *complement = Narrow(y, function);
    return x;
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
    if (std::isnan(a) || std::isnan(b) || std::isnan(p)) return kNaN;
    return Invert(
        [&](double* y) {
            if (p > 0 && p < 1 && IsBetaLimit(a, b)) return InverseBetaLimit(a, b, p, 1 - p, y);
            if (p > 0 && p < kTinyBetaProbability) {
                const double x = std::exp(InverseBetaTinyProbability(a, b, p));
                *y = 1 - x;
                return x;
            }
            return boost::math::ibeta_inv(a, b, p, y, DefaultPolicy());
        },
        function, complement);
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
    const bool accepted = IsPositive(a) && IsPositive(b) && q >= 0 && q <= 1;
    return Invert(
        [&](double* y) {
            if (accepted && q > 0 && q < 1 && IsBetaLimit(a, b)) return InverseBetaLimit(a, b, 1 - q, q, y);
            if (accepted && q > 0 && q < kTinyBetaProbability) {
                *y = std::exp(InverseBetaTinyProbability(b, a, q));
                return 1 - *y;
            }
            if (accepted) return boost::math::ibetac_inv(a, b, q, y, DefaultPolicy());
            *y = kNaN;
            return kNaN;
        },
        function, complement);
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
