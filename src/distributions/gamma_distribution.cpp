#include "distributions/checks.hpp"
#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"
#include "special/gamma.hpp"

using namespace orvanth;

namespace {

constexpr const char* kGamma = "boost::math::gamma_distribution<%1%>::gamma_distribution";

bool HasValidShapeAndScale(double shape, double scale) {
    const bool first = CheckPositive(kGamma, "Scale parameter is %1%, but must be > 0 !", scale);
    const bool second = CheckPositive(kGamma, "Shape parameter is %1%, but must be > 0 !", shape);
    return first && second;
}

}  // namespace

ORVANTH_API(double) GammaPDF(double x, double shape, double scale) {
    Silent silent;
    if (!HasValidShapeAndScale(shape, scale) || !CheckNonNegativeVariate(kGamma, x)) return kNaN;
    if (x == 0) return 0;  // required, for every shape
    return Narrow(GammaDensity(shape, x / scale) / scale, kGamma);
}

ORVANTH_API(double) GammaCDF(double x, double shape, double scale, TailFlag tail) {
    Silent silent;
    if (!HasValidShapeAndScale(shape, scale) || !CheckNonNegativeVariate(kGamma, x)) return kNaN;
    return IsSet(tail) ? RegularizedGammaQ(shape, x / scale) : RegularizedGammaP(shape, x / scale);
}

ORVANTH_API(double) GammaICDF(double p, double shape, double scale, TailFlag tail) {
    Silent silent;
    if (!HasValidShapeAndScale(shape, scale) || !CheckProbability(kGamma, p)) return kNaN;
    if (p == (IsSet(tail) ? 0 : 1)) return RaiseOverflow(kGamma);
    return (IsSet(tail) ? InverseGammaQ(shape, p) : InverseGammaP(shape, p)) * scale;
}
