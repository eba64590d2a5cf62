#include <limits>

#include "distributions/checks.hpp"
#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"
#include "special/beta.hpp"

using namespace orvanth;

namespace {

constexpr const char* kFisherF = "boost::math::fisher_f_distribution<%1%>::fisher_f_distribution";

bool HasValidDfs(double df1, double df2) {
    const bool first = CheckDf(kFisherF, df1);
    const bool second = CheckDf(kFisherF, df2);
    return first && second;
}

}  // namespace

// The smaller of v/(v + df2) and its complement is the argument of the beta functions.

ORVANTH_API(double) FisherFPDF(double x, double df1, double df2) {
    Silent silent;
    if (!HasValidDfs(df1, df2) || !CheckNonNegativeVariate(kFisherF, x)) return kNaN;
    if (x == 0) return df1 < 2 ? RaiseOverflow(kFisherF) : df1 == 2 ? 1 : 0;
    const double v = df1 * x;
    const double density =
        v <= df2 ? BetaDensity(df1 / 2, df2 / 2, v / (v + df2)) : BetaDensity(df2 / 2, df1 / 2, df2 / (v + df2));
    if (density == 0) return 0;
    const double sum = v + df2, square = sum * sum, product = df1 * df2;
    // They leave the range for tiny and for huge degrees of freedom.
    const bool inRange =
        std::fmin(square, product) >= std::numeric_limits<double>::min() && std::fmax(square, product) <= kLargest;
    return Narrow(density * (inRange ? product / square : df1 / sum * (df2 / sum)), kFisherF);
}

ORVANTH_API(double) FisherFCDF(double x, double df1, double df2, TailFlag tail) {
    Silent silent;
    if (!HasValidDfs(df1, df2) || !CheckNonNegativeVariate(kFisherF, x)) return kNaN;
    const double v = df1 * x;
    if (v <= df2) {
        const double z = v / (v + df2);
        return IsSet(tail) ? RegularizedBetaC(df1 / 2, df2 / 2, z) : RegularizedBeta(df1 / 2, df2 / 2, z);
    }
    const double z = df2 / (v + df2);
    return IsSet(tail) ? RegularizedBeta(df2 / 2, df1 / 2, z) : RegularizedBetaC(df2 / 2, df1 / 2, z);
}

// Required: the early return needs a bad df1 and everything else good; other bad input is left to
// the inverse, which then leaves y at 0 or stores a NaN.
ORVANTH_API(double) FisherFICDF(double p, double df1, double df2, TailFlag tail) {
    Silent silent;
    const bool firstIsValid = CheckDf(kFisherF, df1);
    const bool secondIsValid = CheckDf(kFisherF, df2);
    if (!firstIsValid && secondIsValid && CheckProbability(kFisherF, p)) return kNaN;
    double y = 0;
    const double x = IsSet(tail) ? InverseBetaC(df1 / 2, df2 / 2, p, &y) : InverseBeta(df1 / 2, df2 / 2, p, &y);
    return df2 * x / (df1 * y);
}
