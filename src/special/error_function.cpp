#include "special/error_function.hpp"

#include <boost/math/special_functions/erf.hpp>

#include "frame/policies.hpp"
#include "orvanth/special.h"
#include "special/erf_real.hpp"

namespace orvanth {

namespace {

constexpr const char* kInverse = "boost::math::erfc_inv<%1%>(%1%, %1%)";
constexpr const char* kOutsideRange = "Argument outside range [0,2] in inverse erfc function (got p=%1%).";

// Required: outside the range the calculation goes on; no x exists there, and it ends in a NaN.
double InverseErfValue(double p) {
    if (p < -1 || p > 1) return RaiseDomain(kInverse, kOutsideRange, p, kLongDouble);
    return boost::math::erf_inv(p, DefaultPolicy());
}

}  // namespace

double ErfCValue(double x) { return std::isnan(x) ? x : boost::math::erfc(ErfReal(x), DefaultPolicy()).value; }

double InverseErfCValue(double z) {
    if (z < 0 || z > 2) return RaiseDomain(kInverse, kOutsideRange, z, kLongDouble);
    return boost::math::erfc_inv(z, DefaultPolicy());
}

}  // namespace orvanth

using namespace orvanth;

ORVANTH_API(double) Erf(double x) {
    Silent silent;
    if (std::isnan(x)) return x;
    return boost::math::erf(ErfReal(x), DefaultPolicy()).value;
}

ORVANTH_API(double) ErfC(double x) {
    Silent silent;
    return ErfCValue(x);
}

ORVANTH_API(double) InverseErf(double p) {
    Silent silent;
    return InverseErfValue(p);
}

ORVANTH_API(double) InverseErfC(double z) {
    Silent silent;
    return InverseErfCValue(z);
}

ORVANTH_API(double) LogXplus1(double x) {
    Throwing throwing;
    constexpr const char* function = "log1p<%1%>(%1%)";
    if (x < -1) return RaiseDomain(function, "log1p(x) requires x > -1, but got x = %1%.", x);
    if (x == -1) return RaiseOverflow(function);
    const double u = 1 + x;
    if (u == 1) return x;
    // The quotient repairs the rounding of u. Required: no guard at infinity, where it is a NaN.
    return std::log(u) * (x / (u - 1));
}
