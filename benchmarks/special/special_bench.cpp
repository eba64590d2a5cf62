// The special functions beside the same Boost call made directly, GSL and Rmath, over the same arguments.
#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <boost/math/special_functions/log1p.hpp>

#include "contenders.hpp"
#include "orvanth/special.h"

#ifdef BENCH_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#undef Beta
#endif
#ifdef BENCH_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_sf.h>
#endif

namespace {

namespace bm = boost::math;
constexpr orvanth::bench::BoostPolicy kPolicy;

CONTENDER("Gamma", "here", Gamma(a[0]));
CONTENDER("Gamma", "Boost", bm::tgamma(a[0], kPolicy));
CONTENDER("GammaLn", "here", GammaLn(a[0]));
CONTENDER("GammaLn", "Boost", bm::lgamma(a[0], kPolicy));
CONTENDER("GammaRegularized", "here", GammaRegularized(a[0], a[1]));
CONTENDER("GammaRegularized", "Boost", bm::gamma_p(a[0], a[1], kPolicy));
CONTENDER("GammaRegularizedC", "here", GammaRegularizedC(a[0], a[1]));
CONTENDER("GammaRegularizedC", "Boost", bm::gamma_q(a[0], a[1], kPolicy));
CONTENDER("GammaDerivative", "here", GammaDerivative(a[0], a[1]));
CONTENDER("GammaDerivative", "Boost", bm::gamma_p_derivative(a[0], a[1], kPolicy));
CONTENDER("IncompleteGammaLower", "here", IncompleteGammaLower(a[0], a[1]));
CONTENDER("IncompleteGammaLower", "Boost", bm::tgamma_lower(a[0], a[1], kPolicy));
CONTENDER("IncompleteGammaUpper", "here", IncompleteGammaUpper(a[0], a[1]));
CONTENDER("IncompleteGammaUpper", "Boost", bm::tgamma(a[0], a[1], kPolicy));
CONTENDER("InverseGammaRegularized", "here", InverseGammaRegularized(a[0], a[1]));
CONTENDER("InverseGammaRegularized", "Boost", bm::gamma_p_inv(a[0], a[1], kPolicy));
CONTENDER("InverseGammaRegularizedC", "here", InverseGammaRegularizedC(a[0], a[1]));
CONTENDER("InverseGammaRegularizedC", "Boost", bm::gamma_q_inv(a[0], a[1], kPolicy));

double OfPair(void (*function)(double, double, double, double*, double*), const double* a) {
    double result, complement;
    function(a[0], a[1], a[2], &result, &complement);
    return result;
}

CONTENDER("Beta", "here", Beta(a[0], a[1]));
CONTENDER("Beta", "Boost", bm::beta(a[0], a[1], kPolicy));
CONTENDER("BetaRegularized", "here", BetaRegularized(a[0], a[1], a[2]));
CONTENDER("BetaRegularized", "Boost", bm::ibeta(a[0], a[1], a[2], kPolicy));
CONTENDER("BetaRegularizedC", "here", BetaRegularizedC(a[0], a[1], a[2]));
CONTENDER("BetaRegularizedC", "Boost", bm::ibetac(a[0], a[1], a[2], kPolicy));
CONTENDER("BetaDerivative", "here", BetaDerivative(a[0], a[1], a[2]));
CONTENDER("BetaDerivative", "Boost", bm::ibeta_derivative(a[0], a[1], a[2], kPolicy));
CONTENDER("InverseBetaRegularized", "here", InverseBetaRegularized(a[0], a[1], a[2]));
CONTENDER("InverseBetaRegularized", "Boost", bm::ibeta_inv(a[0], a[1], a[2], kPolicy));
CONTENDER("InverseBetaRegularizedC", "here", InverseBetaRegularizedC(a[0], a[1], a[2]));
CONTENDER("InverseBetaRegularizedC", "Boost", bm::ibetac_inv(a[0], a[1], a[2], kPolicy));

double InverseWithComplement(const double* a) {
    double complement;
    return bm::ibeta_inv(a[0], a[1], a[2], &complement, kPolicy);
}
double InverseCWithComplement(const double* a) {
    double complement;
    return bm::ibetac_inv(a[0], a[1], a[2], &complement, kPolicy);
}
const int kPairs[] = {
    orvanth::bench::Contend(
        "InverseBetaRegularized2", "here", [](const double* a) { return OfPair(InverseBetaRegularized2, a); },
        "InverseBetaRegularized"),
    orvanth::bench::Contend("InverseBetaRegularized2", "Boost", InverseWithComplement, "InverseBetaRegularized"),
    orvanth::bench::Contend(
        "InverseBetaRegularizedC2", "here", [](const double* a) { return OfPair(InverseBetaRegularizedC2, a); },
        "InverseBetaRegularizedC"),
    orvanth::bench::Contend("InverseBetaRegularizedC2", "Boost", InverseCWithComplement, "InverseBetaRegularizedC")};

CONTENDER("Erf", "here", Erf(a[0]));
CONTENDER("Erf", "Boost", bm::erf(a[0], kPolicy));
CONTENDER("ErfC", "here", ErfC(a[0]));
CONTENDER("ErfC", "Boost", bm::erfc(a[0], kPolicy));
CONTENDER("InverseErf", "here", InverseErf(a[0]));
CONTENDER("InverseErf", "Boost", bm::erf_inv(a[0], kPolicy));
CONTENDER("InverseErfC", "here", InverseErfC(a[0]));
CONTENDER("InverseErfC", "Boost", bm::erfc_inv(a[0], kPolicy));
CONTENDER("LogXplus1", "here", LogXplus1(a[0]));
CONTENDER("LogXplus1", "Boost", bm::log1p(a[0], kPolicy));

#ifdef BENCH_RMATH
CONTENDER("Gamma", "Rmath", gammafn(a[0]));
CONTENDER("GammaLn", "Rmath", lgammafn(a[0]));
CONTENDER("GammaRegularized", "Rmath", pgamma(a[1], a[0], 1, 1, 0));
CONTENDER("GammaRegularizedC", "Rmath", pgamma(a[1], a[0], 1, 0, 0));
CONTENDER("GammaDerivative", "Rmath", dgamma(a[1], a[0], 1, 0));
CONTENDER("InverseGammaRegularized", "Rmath", qgamma(a[1], a[0], 1, 1, 0));
CONTENDER("InverseGammaRegularizedC", "Rmath", qgamma(a[1], a[0], 1, 0, 0));
CONTENDER("Beta", "Rmath", beta(a[0], a[1]));
CONTENDER("BetaRegularized", "Rmath", pbeta(a[2], a[0], a[1], 1, 0));
CONTENDER("BetaRegularizedC", "Rmath", pbeta(a[2], a[0], a[1], 0, 0));
CONTENDER("BetaDerivative", "Rmath", dbeta(a[2], a[0], a[1], 0));
CONTENDER("InverseBetaRegularized", "Rmath", qbeta(a[2], a[0], a[1], 1, 0));
CONTENDER("InverseBetaRegularizedC", "Rmath", qbeta(a[2], a[0], a[1], 0, 0));
CONTENDER("LogXplus1", "Rmath", log1p(a[0]));
#endif

#ifdef BENCH_GSL
const auto kQuiet = gsl_set_error_handler_off();
CONTENDER("Gamma", "GSL", gsl_sf_gamma(a[0]));
CONTENDER("GammaLn", "GSL", gsl_sf_lngamma(a[0]));
CONTENDER("GammaRegularized", "GSL", gsl_sf_gamma_inc_P(a[0], a[1]));
CONTENDER("GammaRegularizedC", "GSL", gsl_sf_gamma_inc_Q(a[0], a[1]));
CONTENDER("IncompleteGammaUpper", "GSL", gsl_sf_gamma_inc(a[0], a[1]));
CONTENDER("InverseGammaRegularized", "GSL", gsl_cdf_gamma_Pinv(a[1], a[0], 1));
CONTENDER("InverseGammaRegularizedC", "GSL", gsl_cdf_gamma_Qinv(a[1], a[0], 1));
CONTENDER("Beta", "GSL", gsl_sf_beta(a[0], a[1]));
CONTENDER("BetaRegularized", "GSL", gsl_sf_beta_inc(a[0], a[1], a[2]));
CONTENDER("InverseBetaRegularized", "GSL", gsl_cdf_beta_Pinv(a[2], a[0], a[1]));
CONTENDER("InverseBetaRegularizedC", "GSL", gsl_cdf_beta_Qinv(a[2], a[0], a[1]));
CONTENDER("Erf", "GSL", gsl_sf_erf(a[0]));
CONTENDER("ErfC", "GSL", gsl_sf_erfc(a[0]));
CONTENDER("LogXplus1", "GSL", gsl_sf_log_1plusx(a[0]));
#endif

}  // namespace
