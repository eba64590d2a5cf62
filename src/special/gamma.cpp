#include "special/gamma.hpp"

#include <cmath>
#include <numbers>

#include <boost/math/special_functions/gamma.hpp>

#include "frame/boost_detail.hpp"
#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "special/quantile_search.hpp"

namespace orvanth {

namespace {

// The largest argument that Gamma answers, a little below the true point of overflow.
constexpr double kLargestGammaArgument = 171.0;

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

// From here on x^a exp(-x) or Gamma(a) may leave the range of doubles where the incomplete function does not.
constexpr double kLargeShape = 170.0;

// Below this x and above kLargeShape, x^a / Gamma(a + 1) is less than 1e-1300. Boost.Math divides by Gamma(a + 1)
// there, which overflows.
constexpr double kNegligibleVariate = 0x1p-26;  // the root of epsilon

// From this shape on Boost.Math's sums near the mean take more than 1e5 terms, and from 1e10 on they may exceed its
// limit of 1e6.
constexpr double kHugeShape = 1e9;

// Temme's expansion, good near the mean: its error is that of erfc, 1e-13 at most. Beyond 60 standard deviations from
// the mean the smaller tail underflows.
double HugeShapeTail(double a, double x, bool upper) {
    if (std::isinf(a)) return std::isinf(x) ? kNaN : upper ? 1 : 0;
    const double sigma = (x - a) / a;
    const bool upperIsSmaller = x >= a;
    const double smaller = sigma * sigma * a > 3600 ? 0 : TemmeTail(a, x);
    return upper == upperIsSmaller ? smaller : 1 - smaller;
}

// Below it 1 / a overflows inside Boost.Math. Q is proportional to a there.
constexpr double kTinyShape = 1e-300;

double RegularizedGamma(double a, double x, bool upper) {
    if (!AcceptsIncomplete(kIncomplete, a, x)) return kNaN;
    if (x == 0 && a > 0) return upper ? 1 : 0;
    if (a < kTinyShape) return upper ? a / kTinyShape * RegularizedGamma(kTinyShape, x, true) : 1;
    if (x < kNegligibleVariate && a > kLargeShape) return upper ? 1 : 0;
    if (a > kHugeShape) return HugeShapeTail(a, x, upper);
    return upper ? Narrow(boost::math::gamma_q(a, x, DefaultPolicy()), "gamma_q<%1%>(%1%, %1%)")
                 : Narrow(boost::math::gamma_p(a, x, DefaultPolicy()), "gamma_p<%1%>(%1%, %1%)");
}

// factor() x^a exp(-x), where the power may overflow and the product not. Where even the root of the power leaves the
// range, so does the product, and the factor is not asked for: it may take long.
template <class Factor>
double TimesPrefix(Factor factor, double a, double x) {
    const double prefix = IncompleteGammaPrefix(a, x);
    if (prefix == 0) return 0;
    if (!std::isinf(prefix)) return prefix * factor();
    const double root = std::pow(x / std::exp(x / a), a / 2);
    return std::isinf(root) ? kInfinity : root * factor() * root;
}

// Gamma(a) - summed, scaled where Gamma(a) overflows. From 172 on, Gamma(a) is seven times the largest double, and
// the part that is not summed is more than a third of it.
double RestOfGamma(double a, double summed) {
    constexpr double kScale = 0x1p-10;
    if (a <= kLargestGammaArgument) return boost::math::tgamma(a, DefaultPolicy()) - summed;
    if (a >= 172) return kInfinity;
    return (boost::math::tgamma(a - 1, DefaultPolicy()) * kScale * (a - 1) - summed * kScale) / kScale;
}

// Lower or upper incomplete gamma function for a large finite shape. The smaller one is summed, the
// other is what it leaves of Gamma(a).
double LargeIncomplete(double a, double x, bool upper) {
    if (x == 0 || std::isinf(x)) return upper == std::isinf(x) ? 0 : RestOfGamma(a, 0);
    const bool lowerIsSummed = x < 1.1 || x - 1 / (3 * x) < a;
    const auto factor = [=] { return lowerIsSummed ? LowerGammaSeries(a, x) / a : UpperGammaFraction(a, x); };
    const double summed = TimesPrefix(factor, a, x);
    return lowerIsSummed != upper ? summed : RestOfGamma(a, summed);
}

double IncompleteGamma(double a, double x, bool upper) {
    if (!AcceptsIncomplete(kIncomplete, a, x)) return kNaN;
    if (std::isinf(a)) return !upper && x <= 1 ? 0 : RaiseOverflow(kIncomplete);
    if (a >= kLargeShape) return Narrow(LargeIncomplete(a, x, upper), kIncomplete);
    return Narrow(
        upper ? boost::math::tgamma(a, x, DefaultPolicy()) : boost::math::tgamma_lower(a, x, DefaultPolicy()),
        kIncomplete);
}

// Below it a probability has too few digits for a search by derivatives.
constexpr double kSmallestNormal = std::numeric_limits<double>::min();

// The x with P(a, x) = p and Q(a, x) = q, from the smaller of the two.
double BisectGamma(double a, double p, double q) {
    return Bisect(0, kLargest, [=](double x) {
        return p <= q ? RegularizedGamma(a, x, false) < p : RegularizedGamma(a, x, true) > q;
    });
}

// From here on Boost.Math's power terms overflow. The density has a width of the root of a, and so differs from 0 at
// no double but a itself.
constexpr double kPointShape = 1e300;

}  // namespace

double RegularizedGammaP(double a, double x) { return RegularizedGamma(a, x, false); }
double RegularizedGammaQ(double a, double x) { return RegularizedGamma(a, x, true); }

double GammaDensity(double a, double x) {
    constexpr const char* function = "boost::math::gamma_p_derivative<%1%>(%1%, %1%)";
    const bool accepted = AcceptsIncomplete(function, a, x);
    if (x == 0) {
        if (a > 1) return 0;
        if (a == 1) return 1;
        return std::isnan(a) ? a : RaiseOverflow(function, nullptr, kLongDouble);
    }
    if (!accepted) return kNaN;
    if (std::isinf(a) || std::isinf(x)) return std::isinf(a) && std::isinf(x) ? kNaN : 0;
    if (a > kPointShape) return x == a ? 1 / (std::sqrt(2 * std::numbers::pi) * std::sqrt(a)) : 0;
    const double density = boost::math::gamma_p_derivative(a, x, LateOverflowPolicy());
    return std::isinf(density) ? RaiseOverflow(function, nullptr, kLongDouble) : density;
}

double InverseGammaP(double a, double p) {
    constexpr const char* function = "boost::math::gamma_p_inv<%1%>(%1%, %1%)";
    const bool accepted = AcceptsInverse(
        function, "Probabilty must be in the range [0,1] in the incomplete gamma function inverse (got p=%1%).", a,
        p);
    if (p == 1) return kLargest;
    if (p == 0) return 0;
    if (!accepted) return kNaN;
    const auto bisect = [=] { return BisectGamma(a, p, 1 - p); };
    if (p < kSmallestNormal) return bisect();
    return SearchOrFinish(
        function, [=] { return Narrow(boost::math::gamma_p_inv(a, p, DefaultPolicy()), function); },
        [](double x) { return !std::isnan(x); }, bisect);
}

double InverseGammaQ(double a, double q) {
    constexpr const char* function = "boost::math::gamma_q_inv<%1%>(%1%, %1%)";
    const bool accepted = AcceptsInverse(
        function, "Probabilty must be in the range [0,1] in the incomplete gamma function inverse (got q=%1%).", a,
        q);
    if (q == 0) return kLargest;
    if (q == 1) return 0;
    if (!accepted) return kNaN;
    const auto bisect = [=] { return BisectGamma(a, 1 - q, q); };
    if (q < kSmallestNormal) return bisect();
    return SearchOrFinish(
        function, [=] { return Narrow(boost::math::gamma_q_inv(a, q, DefaultPolicy()), function); },
        [](double x) { return !std::isnan(x); }, bisect);
}

namespace {

constexpr double kLargestInt = 0x7fffffff;

// ln|Gamma(x)| for an x below zero that is no integer, by the reflection of Boost's lgamma and with its bits. Boost
// turns the whole part of x into an int, which may not hold it.
double ReflectedGammaLn(double x) {
    const double fraction = std::ceil(x) - x;
    const double distance = fraction > 0.5 ? 1 - fraction : fraction;
    const double product = -x * std::sin(distance * std::numbers::pi);
    return std::log(std::numbers::pi) - boost::math::lgamma(-x, DefaultPolicy()) - std::log(product);
}

}  // namespace

}  // namespace orvanth

using namespace orvanth;

ORVANTH_API(double) Gamma(double x) {
    Silent silent;
    // Required: these two leave errno alone.
    if (x < 0 || x > kLargestGammaArgument) return kNaN;
    if (x == 0) return kInfinity;
    if (std::isnan(x)) return x;
    return Narrow(UncheckedGamma(x), "boost::math::tgamma<%1%>(%1%)");
}

ORVANTH_API(double) GammaLn(double x) {
    Throwing throwing;
    constexpr const char* function = "boost::math::lgamma<%1%>(%1%)";
    if (std::isnan(x)) return x;
    if (x <= 0 && std::floor(x) == x)
        return RaiseDomain(function, "Evaluation of lgamma at a negative integer %1%.", x, kLongDouble);
    if (x < -kLargestInt) return ReflectedGammaLn(x);
    return Narrow(boost::math::lgamma(x, LateOverflowPolicy()), function);
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
