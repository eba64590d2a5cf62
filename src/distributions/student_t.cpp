#include <cmath>
#include <limits>
#include <numbers>

#include <boost/math/distributions/students_t.hpp>

#include "distributions/checks.hpp"
#include "frame/boost_detail.hpp"
#include "frame/flags.hpp"
#include "frame/policies.hpp"
#include "orvanth/distributions.h"
#include "special/beta.hpp"
#include "special/beta_inverse.hpp"
#include "special/quantile_search.hpp"

using namespace orvanth;

namespace {

constexpr const char* kStudentT = "boost::math::students_t_distribution<%1%>::students_t_distribution";

constexpr const char* kStudentTQuantile = "boost::math::students_t_quantile<%1%>(%1%,%1%)";

double Cumulative(double x, double df) {
    if (x == 0) return 0.5;
    const double t2 = x * x;
    const double tail =
        df > 2 * t2 ? RegularizedBetaC(0.5, df / 2, t2 / (df + t2)) : RegularizedBeta(df / 2, 0.5, df / (df + t2));
    return x > 0 ? 1 - tail / 2 : tail / 2;
}

// ln(a B(a, 1/2)) / a. For small a the beginning of its power series: ln(a B) has no digits left there.
double LogBetaPerShape(double a) {
    constexpr double kSmallShape = 1e-4;
    constexpr double kSecond = std::numbers::pi * std::numbers::pi / 6, kThird = 2.4041138063191886;  // 2 zeta(3)
    if (a < kSmallShape) return 2 * std::numbers::ln2 - a * (kSecond - a * kThird);
    return std::log(a * BetaFunction(a, 0.5)) / a;
}

// The t > 0 with the upper tail `tail`, below 1/2, from the inverse of I_x(df/2, 1/2) with x = df/(df + t^2). Where
// x is tiny, I is x^a / (a B(a, 1/2)) to all digits, and t is in range longer than x.
double QuantileFromBeta(double tail, double df) {
    constexpr double kTinyLogX = -200;
    const double a = df / 2;
    const double logTwoTails = tail < 0.25 ? std::log(2 * tail) : std::log1p(2 * tail - 1);
    const double logX = logTwoTails / a + LogBetaPerShape(a);
    if (logX < kTinyLogX) return std::exp((std::log(df) - logX) / 2);
    const BetaPoint point = InverseBetaPoint(kStudentTQuantile, a, 0.5, 2 * tail, 1 - 2 * tail);
    return std::sqrt(df) * std::sqrt(point.y / point.x);
}

// Boost.Math corrects its estimate of t by one step with a derivative that has the factor x^3, and answers wrongly
// where that underflows.
bool HasDerivative(double t, double df) {
    const double x = df / (df + t * t);
    return std::isfinite(t) && x * x * x >= std::numeric_limits<double>::min();
}

// For fewer degrees of freedom Boost.Math's estimate of the quantile is no number.
constexpr double kTinyDf = 1e-300;

double Quantile(double p, double df) {
    if (p == 0) return -RaiseOverflow(kStudentT);
    if (p == 1) return RaiseOverflow(kStudentT);
    if (p == 0.5) return 0;
    if (!CheckProbability(kStudentT, p)) return kNaN;
    const double tail = p < 0.5 ? p : 1 - p;
    const auto fromBeta = [=] { return QuantileFromBeta(tail, df); };
    const auto estimate = [=] {
        if (df < kTinyDf) return kNaN;
        return std::fabs(boost::math::quantile(boost::math::students_t_distribution<double, DefaultPolicy>(df), p));
    };
    const double t = SearchOrFinish(
        kStudentTQuantile, estimate, [=](double found) { return HasDerivative(found, df); }, fromBeta);
    return p < 0.5 ? -Narrow(t, kStudentTQuantile) : Narrow(t, kStudentTQuantile);
}

}  // namespace

// x is not tested: an infinite one gives 0, a NaN passes through.
ORVANTH_API(double) StudentTPDF(double x, double df) {
    Silent silent;
    if (!CheckDf(kStudentT, df)) return kNaN;
    // B(df/2, 1/2) = 2/df to all digits, and overflows for a subnormal df.
    if (df < kTinyDf) return df / 2 / std::hypot(x, std::sqrt(df));
    const double u = x * x / df;
    const double kernel = u < 0.125 ? std::exp(-std::log1p(u) * (df + 1) / 2) : std::pow(1 / (1 + u), (df + 1) / 2);
    return kernel / (std::sqrt(df) * BetaFunction(df / 2, 0.5));
}

// There is no complement form: the flag negates x.
ORVANTH_API(double) StudentTCDF(double x, double df, TailFlag tail) {
    Silent silent;
    if (!CheckDf(kStudentT, df)) return kNaN;
    return Cumulative(IsSet(tail) ? -x : x, df);
}

// Required: the early return needs a bad df and a good p; otherwise p goes on as it is.
ORVANTH_API(double) StudentTICDF(double p, double df, TailFlag tail) {
    Silent silent;
    const bool valid = CheckDf(kStudentT, df);
    if (!valid) {
        CheckProbability(kStudentT, p);
        return kNaN;
    }
    const double x = Quantile(p, df);
    return IsSet(tail) ? -x : x;
}
