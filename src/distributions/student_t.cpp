#include <cmath>

#include <boost/math/distributions/students_t.hpp>

#include "distributions/checks.hpp"
#include "frame/flags.hpp"
#include "frame/policies.hpp"
#include "orvanth/distributions.h"
#include "special/beta.hpp"

using namespace orvanth;

namespace {

constexpr const char* kFunction = "boost::math::students_t_distribution<%1%>::students_t_distribution";

constexpr double kTinyDf = 1e-300;

double Cumulative(double x, double df) {
    if (x == 0) return 0.5;
    const double t2 = x * x;
    const double tail =
        df > 2 * t2 ? RegularizedBetaC(0.5, df / 2, t2 / (df + t2)) : RegularizedBeta(df / 2, 0.5, df / (df + t2));
    return x > 0 ? 1 - tail / 2 : tail / 2;
}

double Quantile(double p, double df) {
    if (p == 0) return -RaiseOverflow(kFunction);
    if (p == 1) return RaiseOverflow(kFunction);
    if (p == 0.5) return 0;
    if (!CheckProbability(kFunction, p)) return kNaN;
    // Half of the probability lies beyond every double.
    if (df < kTinyDf) return p < 0.5 ? -RaiseOverflow(kFunction) : RaiseOverflow(kFunction);
    return boost::math::quantile(boost::math::students_t_distribution<double, DefaultPolicy>(df), p);
}

}  // namespace

// x is not tested: an infinite one gives 0, a NaN passes through.
ORVANTH_API(double) StudentTPDF(double x, double df) {
    Silent silent;
    if (!CheckDf(kFunction, df)) return kNaN;
    const double u = x * x / df;
    const double kernel = u < 0.125 ? std::exp(-std::log1p(u) * (df + 1) / 2) : std::pow(1 / (1 + u), (df + 1) / 2);
    return kernel / (std::sqrt(df) * BetaFunction(df / 2, 0.5));
}

// Symmetry stands in for a complement.
ORVANTH_API(double) StudentTCDF(double x, double df, TailFlag tail) {
    Silent silent;
    if (!CheckDf(kFunction, df)) return kNaN;
    return Cumulative(IsSet(tail) ? -x : x, df);
}

// Required: the early return needs a bad df and a good p; otherwise the quantile sees p as it is.
ORVANTH_API(double) StudentTICDF(double p, double df, TailFlag tail) {
    Silent silent;
    const bool valid = CheckDf(kFunction, df);
    if (!valid) {
        CheckProbability(kFunction, p);
        return kNaN;
    }
    const double x = Quantile(p, df);
    return IsSet(tail) ? -x : x;
}
