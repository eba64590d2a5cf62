#include <cmath>
#include <limits>
#include <numbers>

#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"
#include "special/error_function.hpp"

namespace {

using namespace orvanth;

// The checks of the three functions below run twice, once for the distribution and once for the
// call. The first only notes errno, so an infinite x may still be answered.
bool HasValidMeanAndSd(double mean, double sd) {
    constexpr const char* function = "boost::math::normal_distribution<%1%>::normal_distribution";
    if (!(sd > 0) || !std::isfinite(sd)) {
        RaiseDomain(function, "Scale parameter is %1%, but must be > 0 !", sd);
        return false;
    }
    if (!std::isfinite(mean)) {
        RaiseDomain(function, "Location parameter is %1%, but must be finite!", mean);
        return false;
    }
    return true;
}

double RejectVariate(double x) {
    return RaiseDomain("boost::math::cdf(const normal_distribution<%1%>&, %1%)",
                       "Random variate x is %1%, but must be finite!", x);
}

// (x - mean) / (sd sqrt(2)), where the distance and the product may overflow and the quotient not.
double ErrorFunctionArgument(double x, double mean, double sd) {
    const double distance = x - mean, divisor = sd * std::numbers::sqrt2;
    if (std::isinf(distance) || std::isinf(divisor)) return (x / sd - mean / sd) / std::numbers::sqrt2;
    return distance / divisor;
}

}  // namespace

ORVANTH_API(double) NormalPDF(double x, double mean, double sd) {
    Silent silent;
    const bool valid = HasValidMeanAndSd(mean, sd);
    if (std::isinf(x)) return 0;  // before the parameters decide
    if (!valid) return kNaN;
    if (std::isnan(x)) return RejectVariate(x);
    const double root = std::sqrt(2 * std::numbers::pi);
    const double distance = x - mean, square = distance * distance, variance = 2 * sd * sd;
    if (variance >= std::numeric_limits<double>::min() && variance <= kLargest && square <= kLargest)
        return std::exp(-square / variance) / (sd * root);
    // A square left the range. The quotient by sd does so only where the density is 0.
    const double z = std::isinf(distance) ? x / sd - mean / sd : distance / sd;
    return Narrow(std::exp(-z * z / 2) / root / sd, "boost::math::pdf(const normal_distribution<%1%>&, %1%)");
}

// The two tails differ in order: the upper one answers an infinite x ahead of the parameters.
ORVANTH_API(double) NormalCDF(double x, double mean, double sd, TailFlag tail) {
    Silent silent;
    const bool valid = HasValidMeanAndSd(mean, sd);
    if (!IsSet(tail)) {
        if (!valid) return kNaN;
        if (std::isinf(x)) return x > 0 ? 1 : 0;
        if (std::isnan(x)) return RejectVariate(x);
        return ErfCValue(-ErrorFunctionArgument(x, mean, sd)) / 2;
    }
    if (std::isinf(x)) return x > 0 ? 0 : 1;
    if (!valid) return kNaN;
    if (std::isnan(x)) return RejectVariate(x);
    return ErfCValue(ErrorFunctionArgument(x, mean, sd)) / 2;
}

ORVANTH_API(double) NormalICDF(double p, double mean, double sd, TailFlag tail) {
    Silent silent;
    if (!HasValidMeanAndSd(mean, sd)) return kNaN;
    if (!(p >= 0 && p <= 1))
        return RaiseDomain("boost::math::quantile(const normal_distribution<%1%>&, %1%)",
                           "Probability argument is %1%, but must be >= 0 and <= 1 !", p);
    const double argument = InverseErfCValue(2 * p), factor = sd * std::numbers::sqrt2;
    const double z = std::isinf(factor) ? argument * std::numbers::sqrt2 * sd : argument * factor;
    return IsSet(tail) ? z + mean : -z + mean;
}
