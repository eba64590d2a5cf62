#include "special/gamma.hpp"

#include <cmath>

#include <boost/math/special_functions/gamma.hpp>

#include "frame/policies.hpp"
#include "orvanth/special.h"

namespace orvanth {

namespace {

// The largest argument that Gamma answers, a little below the true point of overflow.
constexpr double kLargestGammaArgument = 171.0;

// An overflow inside is left to the caller, who reports it under a text of its own.
using LateOverflowPolicy = bmp::normalise<DefaultPolicy, bmp::overflow_error<bmp::ignore_error>>::type;

// Beyond this point the polynomials of the Lanczos approximation of ln Gamma leave the range of
// doubles and the answer is a NaN, also where ln Gamma itself would be representable.
constexpr double kLargestLogArgument = 4.31965e25;

// Below it the Lanczos sum of a tiny argument, some 588 / x, may leave the range although 1 / x does not.
constexpr double kTiny = 1e-300;

constexpr const char* kIncomplete = "boost::math::gamma_p<%1%>(%1%, %1%)";
constexpr const char* kShape = "Argument a to the incomplete gamma function must be greater than zero (got a=%1%).";
constexpr const char* kVariate = "Argument x to the incomplete gamma function must be >= 0 (got x=%1%).";

// Notes or throws; false if the calculation cannot end in a number.
bool AcceptsIncomplete(const char* function, double a, double x) {
    if (a <= 0) RaiseDomain(function, kShape, a, kLongDouble);
    if (x < 0) RaiseDomain(function, kVariate, x, kLongDouble);
    return a > 0 && x >= 0;
}

bool AcceptsInverse(const char* function, const char* probability, double a, double p) {
    if (a <= 0)
        RaiseDomain(function, "Argument a in the incomplete gamma function inverse must be >= 0 (got a=%1%).", a,
                    kLongDouble);
    if (p < 0 || p > 1) RaiseDomain(function, probability, p, kLongDouble);
    return a > 0 && p >= 0 && p <= 1;
}

// From here on the factor x^a exp(-x) or Gamma(a) may leave the range of doubles.
constexpr double kLargeShape = 170.0;

// Lower or upper incomplete gamma function for a large shape. One of the two is summed, the other
// is what it leaves of Gamma(a): where both overflow, a NaN.
double LargeIncomplete(double a, double x, bool upper) {
    const DefaultPolicy policy;
    const bool lowerIsSummed = x < 1.1 || x - 1 / (3 * x) < a;
    double summed = boost::math::detail::full_igamma_prefix(a, x, policy);
    if (summed != 0 && !std::isinf(summed))
        summed *= lowerIsSummed
                      ? boost::math::detail::lower_gamma_series(a, x, policy) / a
                      : boost::math::detail::upper_gamma_fraction(a, x, std::numeric_limits<double>::epsilon());
    if (lowerIsSummed != upper) return summed;
    const double whole = a > kLargestGammaArgument ? RaiseOverflow(kIncomplete) : boost::math::tgamma(a, policy);
    return whole - summed;
}

double IncompleteGamma(double a, double x, bool upper) {
    if (!AcceptsIncomplete(kIncomplete, a, x)) return kNaN;
    double value = 0;
    if (a >= kLargeShape && x > 0 && !std::isinf(x) && !std::isinf(a))
        value = LargeIncomplete(a, x, upper);
    else
        value = upper ? boost::math::tgamma(a, x, DefaultPolicy()) : boost::math::tgamma_lower(a, x, DefaultPolicy());
    return Narrow(value, kIncomplete);
}

}  // namespace

double RegularizedGammaP(double a, double x) {
    if (!AcceptsIncomplete(kIncomplete, a, x)) return kNaN;
    return Narrow(boost::math::gamma_p(a, x, DefaultPolicy()), "gamma_p<%1%>(%1%, %1%)");
}

double RegularizedGammaQ(double a, double x) {
    if (!AcceptsIncomplete(kIncomplete, a, x)) return kNaN;
    return Narrow(boost::math::gamma_q(a, x, DefaultPolicy()), "gamma_q<%1%>(%1%, %1%)");
}

double GammaDensity(double a, double x) {
    constexpr const char* function = "boost::math::gamma_p_derivative<%1%>(%1%, %1%)";
    const bool accepted = AcceptsIncomplete(function, a, x);
    if (x == 0) {
        if (a > 1) return 0;
        if (a == 1) return 1;
        return std::isnan(a) ? a : RaiseOverflow(function, nullptr, kLongDouble);
    }
    if (!accepted) return kNaN;
    const double density = boost::math::gamma_p_derivative(a, x, LateOverflowPolicy());
    return std::isinf(density) ? RaiseOverflow(function) : density;
}

double InverseGammaP(double a, double p) {
    constexpr const char* function = "boost::math::gamma_p_inv<%1%>(%1%, %1%)";
    const bool accepted = AcceptsInverse(
        function, "Probabilty must be in the range [0,1] in the incomplete gamma function inverse (got p=%1%).", a,
        p);
    if (p == 1) return kLargest;
    if (p == 0) return 0;
    return accepted ? Narrow(boost::math::gamma_p_inv(a, p, DefaultPolicy()), function) : kNaN;
}

double InverseGammaQ(double a, double q) {
    constexpr const char* function = "boost::math::gamma_q_inv<%1%>(%1%, %1%)";
    const bool accepted = AcceptsInverse(
        function, "Probabilty must be in the range [0,1] in the incomplete gamma function inverse (got q=%1%).", a,
        q);
    if (q == 0) return kLargest;
    if (q == 1) return 0;
    return accepted ? Narrow(boost::math::gamma_q_inv(a, q, DefaultPolicy()), function) : kNaN;
}

}  // namespace orvanth

using namespace orvanth;

ORVANTH_API(double) Gamma(double x) {
    Silent silent;
    // Required: these two leave errno alone.
    if (x < 0 || x > kLargestGammaArgument) return kNaN;
    if (x == 0) return kInfinity;
    if (std::isnan(x)) return x;
    constexpr const char* function = "boost::math::tgamma<%1%>(%1%)";
    if (x < kTiny && std::isinf(boost::math::lanczos::lanczos13m53::lanczos_sum(x))) return RaiseOverflow(function);
    return Narrow(boost::math::tgamma(x, DefaultPolicy()), function);
}

ORVANTH_API(double) GammaLn(double x) {
    Throwing throwing;
    constexpr const char* function = "boost::math::lgamma<%1%>(%1%)";
    if (std::isnan(x)) return x;
    if (x <= 0 && std::floor(x) == x)
        return RaiseDomain(function, "Evaluation of lgamma at a negative integer %1%.", x, kLongDouble);
    if (x > kLargestLogArgument) return kNaN;
    return Narrow(boost::math::lgamma(x, DefaultPolicy()), function);
}

ORVANTH_API(double) GammaRegularized(double a, double x) {
    Throwing throwing;
    return RegularizedGammaP(a, x);
}

ORVANTH_API(double) GammaRegularizedC(double a, double x) {
    Throwing throwing;
    return RegularizedGammaQ(a, x);
}

ORVANTH_API(double) GammaDerivative(double a, double x) {
    Throwing throwing;
    return GammaDensity(a, x);
}

ORVANTH_API(double) IncompleteGammaLower(double a, double x) {
    Silent silent;
    return IncompleteGamma(a, x, false);
}

ORVANTH_API(double) IncompleteGammaUpper(double a, double x) {
    Silent silent;
    return IncompleteGamma(a, x, true);
}

ORVANTH_API(double) InverseGammaRegularized(double a, double p) {
    Silent silent;
    return InverseGammaP(a, p);
}

ORVANTH_API(double) InverseGammaRegularizedC(double a, double q) {
    Silent silent;
    return InverseGammaQ(a, q);
}
