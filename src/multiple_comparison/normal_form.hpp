// The normal probability in the one form that the conditional integrals use: 1 - Phi(-z).
//
// The form is required: it decides what rounding does in the tails, and is not folded into Phi(z).
// Every value has the bits of 1 - cdf(normal_distribution, -z); what is saved is the evaluation of
// error functions whose outcome is known.
#ifndef ORVANTH_MULTIPLE_COMPARISON_NORMAL_FORM_HPP
#define ORVANTH_MULTIPLE_COMPARISON_NORMAL_FORM_HPP

#include <cmath>

#include <boost/math/constants/constants.hpp>
#include <boost/math/special_functions/erf.hpp>

#include "frame/policies.hpp"
#include "special/erf_real.hpp"

namespace orvanth {

// erfc(5.9) / 2 = 3.6e-17 is less than half a unit in the last place below 1, and 2 - erfc(5.9)
// rounds to 2: beyond this point the form is exactly 1 or 0, at infinity too.
inline constexpr double kCertain = 5.9;

inline double RejectNormalArgument(double x) {
    return RaiseDomain("boost::math::cdf(const normal_distribution<%1%>&, %1%)",
                       "Random variate x is %1%, but must be finite!", x);
}

// U(z) = 1 - Phi(-z).
inline double NormalForm(double z) {
    const double y = z / boost::math::constants::root_two<double>();
    if (y >= kCertain) return 1.0;
    if (y <= -kCertain) return 0.0;
    if (std::isnan(y)) return RejectNormalArgument(-z);
    return 1.0 - boost::math::erfc(ErfReal(y), DefaultPolicy()).value / 2;
}

struct NormalPair {
    double at;        // U(z)
    double mirrored;  // U(-z)
};

// U(z) and U(-z) from one evaluation: erfc(-y) is 2 - erfc(y) from 0.5 on and 1 + erf(y) below.
inline NormalPair NormalForms(double z) {
    const double y = std::fabs(z / boost::math::constants::root_two<double>());
    double upper = 0.0, lower = 0.0;  // erfc(y), erfc(-y)
    if (y >= kCertain) {
        lower = 2.0;
    } else if (y > 0.5) {
        upper = boost::math::erfc(ErfReal(y), DefaultPolicy()).value;
        lower = 2.0 - upper;
    } else if (y < 0.5) {
        const double e = boost::math::erf(ErfReal(y), DefaultPolicy()).value;
        upper = 1.0 - e;
        lower = 1.0 + e;
    } else if (y == 0.5) {
        upper = boost::math::erfc(ErfReal(y), DefaultPolicy()).value;
        lower = boost::math::erfc(ErfReal(-y), DefaultPolicy()).value;
    } else {
        RejectNormalArgument(-z);
    }
    const double high = 1.0 - upper / 2, low = 1.0 - lower / 2;
    return std::signbit(z) ? NormalPair{low, high} : NormalPair{high, low};
}

}  // namespace orvanth

#endif
