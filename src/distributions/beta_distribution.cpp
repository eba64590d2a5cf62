#include "distributions/checks.hpp"
#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"
#include "special/beta.hpp"

using namespace orvanth;

namespace {

constexpr const char* kBeta = "boost::math::beta_distribution<%1%>::beta_distribution";

bool HasValidShapes(double a, double b) {
    const bool alpha = CheckPositive(kBeta, "Alpha argument is %1%, but must be > 0 !", a);
    const bool beta = CheckPositive(kBeta, "Beta argument is %1%, but must be > 0 !", b);
    return alpha && beta;
}

bool IsInSupport(double x) {
    return Check(x >= 0 && x <= 1, kBeta, "x argument is %1%, but must be >= 0 and <= 1 !", x);
}

}  // namespace

ORVANTH_API(double) BetaPDF(double x, double a, double b) {
    Silent silent;
    if (!HasValidShapes(a, b) || !IsInSupport(x)) return kNaN;
    return BetaDensity(a, b, x);
}

ORVANTH_API(double) BetaCDF(double x, double a, double b, TailFlag tail) {
    Silent silent;
    if (!HasValidShapes(a, b) || !IsInSupport(x)) return kNaN;
    if (x == 0) return IsSet(tail) ? 1 : 0;
    if (x == 1) return IsSet(tail) ? 0 : 1;
    return IsSet(tail) ? RegularizedBetaC(a, b, x) : RegularizedBeta(a, b, x);
}

ORVANTH_API(double) BetaICDF(double p, double a, double b, TailFlag tail) {
    Silent silent;
    if (!HasValidShapes(a, b) || !CheckProbability(kBeta, p)) return kNaN;
    if (p == 0) return IsSet(tail) ? 1 : 0;
    if (p == 1) return IsSet(tail) ? 0 : 1;
    return IsSet(tail) ? InverseBetaC(a, b, p, nullptr) : InverseBeta(a, b, p, nullptr);
}
