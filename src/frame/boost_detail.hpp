// The private functions of Boost.Math that the library calls, all of them and nowhere else. A private function may
// change with any version of Boost without a notice.
//
// They were read in Boost 1.74. When the assertion fails: compare each function below with the new version, its
// arguments, its meaning and its failures; run the tests of special/ and distributions/; then move the limit.
#ifndef ORVANTH_FRAME_BOOST_DETAIL_HPP
#define ORVANTH_FRAME_BOOST_DETAIL_HPP

#include <cstdint>
#include <limits>
#include <type_traits>

#include <boost/math/distributions/binomial.hpp>
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/version.hpp>

#include "frame/policies.hpp"

static_assert(BOOST_VERSION / 100 == 1074, "read the private functions below in this version of Boost first");

namespace orvanth {

// The form in which Boost.Math's public functions hand DefaultPolicy on to the private ones.
using InnerPolicy = bmp::normalise<DefaultPolicy, bmp::promote_float<false>, bmp::promote_double<false>,
                                   bmp::discrete_quantile<>, bmp::assert_undefined<>>::type;

}  // namespace orvanth

// Where the public functions call these parts of the incomplete beta function, those of special/beta_parts.cpp are
// taken, with the same bits.
namespace boost::math::detail {

template <>
double ibeta_power_terms(double a, double b, double x, double y, const lanczos::lanczos13m53&, bool normalised,
                         const orvanth::InnerPolicy&, double prefix, const char* function);
template <>
double ibeta_series(double a, double b, double x, double start, const lanczos::lanczos13m53&, bool normalised,
                    double* derivative, double y, const orvanth::InnerPolicy&);
template <>
double beta_small_b_large_a_series(double a, double b, double x, double y, double start, double factor,
                                   const orvanth::InnerPolicy&, bool normalised);

}  // namespace boost::math::detail

namespace orvanth {

// The gamma function without the test of its result, which comes back unchecked.
inline double UncheckedGamma(double x) {
    return boost::math::detail::gamma_imp(x, DefaultPolicy(), boost::math::lanczos::lanczos13m53());
}

// x^a exp(-x); infinity where it overflows.
inline double IncompleteGammaPrefix(double a, double x) {
    return boost::math::detail::full_igamma_prefix(a, x, LateOverflowPolicy());
}

// The same over Gamma(a).
inline double GammaPrefix(double a, double x) {
    return boost::math::detail::regularised_gamma_prefix(a, x, DefaultPolicy(), boost::math::lanczos::lanczos13m53());
}

// a times the series that makes the lower incomplete gamma function of the prefix, and the fraction that makes the
// upper one.
inline double LowerGammaSeries(double a, double x) {
    return boost::math::detail::lower_gamma_series(a, x, DefaultPolicy());
}
inline double UpperGammaFraction(double a, double x) {
    return boost::math::detail::upper_gamma_fraction(a, x, std::numeric_limits<double>::epsilon());
}

// The smaller of P(a, x) and Q(a, x) by Temme's expansion: P for x < a. For large a and x near a.
inline double TemmeTail(double a, double x) {
    using Digits = boost::integral_constant<int, std::numeric_limits<double>::digits>;
    return boost::math::detail::igamma_temme_large(a, x, DefaultPolicy(), static_cast<const Digits*>(nullptr));
}

// x^a y^b / B(a, b) for y = 1 - x.
inline double BetaPowerTerms(double a, double b, double x, double y) {
    return boost::math::detail::ibeta_power_terms(a, b, x, y, boost::math::lanczos::lanczos13m53(), true,
                                                  InnerPolicy());
}

// The x with I_x(a, b) = p = 1 - q, for positive a and b and p in (0, 1); 1 - x goes to *complement. The public
// inverses take either p or q, and form the other by a subtraction.
inline double InverseBetaSearch(double a, double b, double p, double q, double* complement) {
    return boost::math::detail::ibeta_inv_imp(a, b, p, q, DefaultPolicy(), complement);
}

// The Cornish-Fisher estimate of the binomial quantile for the tails p = 1 - q; a NaN for a fraction of 1.
inline double CornishFisherEstimate(double trials, double fraction, double p, double q) {
    return boost::math::binomial_detail::inverse_binomial_cornish_fisher(trials, fraction, p, q, DefaultPolicy());
}

// The real number at which cdf(distribution, k), or its complement for the upper tail, is p. The search steps out
// from `guess` by 1 and then by `factor`, and ends where `tolerance` is satisfied or after 200 steps.
template <class Distribution, class Tolerance>
double SearchDiscreteQuantile(const Distribution& distribution, double p, bool upper, double guess, double factor,
                              const Tolerance& tolerance) {
    std::uintmax_t iterations = bmp::get_max_root_iterations<DefaultPolicy>();
    return boost::math::detail::do_inverse_discrete_quantile(distribution, p, upper, guess, factor, 1.0, tolerance,
                                                             iterations);
}

}  // namespace orvanth

#endif
