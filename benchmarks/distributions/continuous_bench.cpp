// The continuous distributions beside the same Boost call made directly, Rmath and GSL, over the same arguments.
// The last argument of the sample is the tail flag.
#include <boost/math/distributions.hpp>

#include "contenders.hpp"
#include "orvanth/distributions.h"

#ifdef BENCH_RMATH
#define MATHLIB_STANDALONE
#include <Rmath.h>
#endif
#ifdef BENCH_GSL
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_randist.h>
#endif

namespace {

using namespace boost::math;
using P = orvanth::bench::BoostPolicy;

CONTENDER("GammaPDF", "here", GammaPDF(a[0], a[1], a[2]));
CONTENDER("GammaPDF", "Boost", pdf(gamma_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("GammaCDF", "here", GammaCDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("GammaCDF", "Boost",
          a[3] != 0 ? cdf(complement(gamma_distribution<double, P>(a[1], a[2]), a[0]))
                    : cdf(gamma_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("GammaICDF", "here", GammaICDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("GammaICDF", "Boost",
          a[3] != 0 ? quantile(complement(gamma_distribution<double, P>(a[1], a[2]), a[0]))
                    : quantile(gamma_distribution<double, P>(a[1], a[2]), a[0]));

CONTENDER("ChiSquaredPDF", "here", ChiSquaredPDF(a[0], a[1]));
CONTENDER("ChiSquaredPDF", "Boost", pdf(chi_squared_distribution<double, P>(a[1]), a[0]));
CONTENDER("ChiSquaredCDF", "here", ChiSquaredCDF(a[0], a[1], a[2] != 0));
CONTENDER("ChiSquaredCDF", "Boost",
          a[2] != 0 ? cdf(complement(chi_squared_distribution<double, P>(a[1]), a[0]))
                    : cdf(chi_squared_distribution<double, P>(a[1]), a[0]));
CONTENDER("ChiSquaredICDF", "here", ChiSquaredICDF(a[0], a[1], a[2] != 0));
CONTENDER("ChiSquaredICDF", "Boost",
          a[2] != 0 ? quantile(complement(chi_squared_distribution<double, P>(a[1]), a[0]))
                    : quantile(chi_squared_distribution<double, P>(a[1]), a[0]));

CONTENDER("BetaPDF", "here", BetaPDF(a[0], a[1], a[2]));
CONTENDER("BetaPDF", "Boost", pdf(beta_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("BetaCDF", "here", BetaCDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("BetaCDF", "Boost",
          a[3] != 0 ? cdf(complement(beta_distribution<double, P>(a[1], a[2]), a[0]))
                    : cdf(beta_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("BetaICDF", "here", BetaICDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("BetaICDF", "Boost",
          a[3] != 0 ? quantile(complement(beta_distribution<double, P>(a[1], a[2]), a[0]))
                    : quantile(beta_distribution<double, P>(a[1], a[2]), a[0]));

CONTENDER("FisherFPDF", "here", FisherFPDF(a[0], a[1], a[2]));
CONTENDER("FisherFPDF", "Boost", pdf(fisher_f_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("FisherFCDF", "here", FisherFCDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("FisherFCDF", "Boost",
          a[3] != 0 ? cdf(complement(fisher_f_distribution<double, P>(a[1], a[2]), a[0]))
                    : cdf(fisher_f_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("FisherFICDF", "here", FisherFICDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("FisherFICDF", "Boost",
          a[3] != 0 ? quantile(complement(fisher_f_distribution<double, P>(a[1], a[2]), a[0]))
                    : quantile(fisher_f_distribution<double, P>(a[1], a[2]), a[0]));

CONTENDER("StudentTPDF", "here", StudentTPDF(a[0], a[1]));
CONTENDER("StudentTPDF", "Boost", pdf(students_t_distribution<double, P>(a[1]), a[0]));
CONTENDER("StudentTCDF", "here", StudentTCDF(a[0], a[1], a[2] != 0));
CONTENDER("StudentTCDF", "Boost",
          a[2] != 0 ? cdf(complement(students_t_distribution<double, P>(a[1]), a[0]))
                    : cdf(students_t_distribution<double, P>(a[1]), a[0]));
CONTENDER("StudentTICDF", "here", StudentTICDF(a[0], a[1], a[2] != 0));
CONTENDER("StudentTICDF", "Boost",
          a[2] != 0 ? quantile(complement(students_t_distribution<double, P>(a[1]), a[0]))
                    : quantile(students_t_distribution<double, P>(a[1]), a[0]));

CONTENDER("NormalPDF", "here", NormalPDF(a[0], a[1], a[2]));
CONTENDER("NormalPDF", "Boost", pdf(normal_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("NormalCDF", "here", NormalCDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("NormalCDF", "Boost",
          a[3] != 0 ? cdf(complement(normal_distribution<double, P>(a[1], a[2]), a[0]))
                    : cdf(normal_distribution<double, P>(a[1], a[2]), a[0]));
CONTENDER("NormalICDF", "here", NormalICDF(a[0], a[1], a[2], a[3] != 0));
CONTENDER("NormalICDF", "Boost",
          a[3] != 0 ? quantile(complement(normal_distribution<double, P>(a[1], a[2]), a[0]))
                    : quantile(normal_distribution<double, P>(a[1], a[2]), a[0]));

#ifdef BENCH_RMATH
CONTENDER("GammaPDF", "Rmath", dgamma(a[0], a[1], a[2], 0));
CONTENDER("GammaCDF", "Rmath", pgamma(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("GammaICDF", "Rmath", qgamma(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("ChiSquaredPDF", "Rmath", dchisq(a[0], a[1], 0));
CONTENDER("ChiSquaredCDF", "Rmath", pchisq(a[0], a[1], a[2] == 0, 0));
CONTENDER("ChiSquaredICDF", "Rmath", qchisq(a[0], a[1], a[2] == 0, 0));
CONTENDER("BetaPDF", "Rmath", dbeta(a[0], a[1], a[2], 0));
CONTENDER("BetaCDF", "Rmath", pbeta(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("BetaICDF", "Rmath", qbeta(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("FisherFPDF", "Rmath", df(a[0], a[1], a[2], 0));
CONTENDER("FisherFCDF", "Rmath", pf(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("FisherFICDF", "Rmath", qf(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("StudentTPDF", "Rmath", dt(a[0], a[1], 0));
CONTENDER("StudentTCDF", "Rmath", pt(a[0], a[1], a[2] == 0, 0));
CONTENDER("StudentTICDF", "Rmath", qt(a[0], a[1], a[2] == 0, 0));
CONTENDER("NormalPDF", "Rmath", dnorm4(a[0], a[1], a[2], 0));
CONTENDER("NormalCDF", "Rmath", pnorm5(a[0], a[1], a[2], a[3] == 0, 0));
CONTENDER("NormalICDF", "Rmath", qnorm5(a[0], a[1], a[2], a[3] == 0, 0));
#endif

#ifdef BENCH_GSL
const auto kQuiet = gsl_set_error_handler_off();
CONTENDER("GammaPDF", "GSL", gsl_ran_gamma_pdf(a[0], a[1], a[2]));
CONTENDER("GammaCDF", "GSL", a[3] != 0 ? gsl_cdf_gamma_Q(a[0], a[1], a[2]) : gsl_cdf_gamma_P(a[0], a[1], a[2]));
CONTENDER("GammaICDF", "GSL",
          a[3] != 0 ? gsl_cdf_gamma_Qinv(a[0], a[1], a[2]) : gsl_cdf_gamma_Pinv(a[0], a[1], a[2]));
CONTENDER("ChiSquaredPDF", "GSL", gsl_ran_chisq_pdf(a[0], a[1]));
CONTENDER("ChiSquaredCDF", "GSL", a[2] != 0 ? gsl_cdf_chisq_Q(a[0], a[1]) : gsl_cdf_chisq_P(a[0], a[1]));
CONTENDER("ChiSquaredICDF", "GSL", a[2] != 0 ? gsl_cdf_chisq_Qinv(a[0], a[1]) : gsl_cdf_chisq_Pinv(a[0], a[1]));
CONTENDER("BetaPDF", "GSL", gsl_ran_beta_pdf(a[0], a[1], a[2]));
CONTENDER("BetaCDF", "GSL", a[3] != 0 ? gsl_cdf_beta_Q(a[0], a[1], a[2]) : gsl_cdf_beta_P(a[0], a[1], a[2]));
CONTENDER("BetaICDF", "GSL", a[3] != 0 ? gsl_cdf_beta_Qinv(a[0], a[1], a[2]) : gsl_cdf_beta_Pinv(a[0], a[1], a[2]));
CONTENDER("FisherFPDF", "GSL", gsl_ran_fdist_pdf(a[0], a[1], a[2]));
CONTENDER("FisherFCDF", "GSL", a[3] != 0 ? gsl_cdf_fdist_Q(a[0], a[1], a[2]) : gsl_cdf_fdist_P(a[0], a[1], a[2]));
CONTENDER("FisherFICDF", "GSL",
          a[3] != 0 ? gsl_cdf_fdist_Qinv(a[0], a[1], a[2]) : gsl_cdf_fdist_Pinv(a[0], a[1], a[2]));
CONTENDER("StudentTPDF", "GSL", gsl_ran_tdist_pdf(a[0], a[1]));
CONTENDER("StudentTCDF", "GSL", a[2] != 0 ? gsl_cdf_tdist_Q(a[0], a[1]) : gsl_cdf_tdist_P(a[0], a[1]));
CONTENDER("StudentTICDF", "GSL", a[2] != 0 ? gsl_cdf_tdist_Qinv(a[0], a[1]) : gsl_cdf_tdist_Pinv(a[0], a[1]));
CONTENDER("NormalPDF", "GSL", gsl_ran_gaussian_pdf(a[0] - a[1], a[2]));
CONTENDER("NormalCDF", "GSL",
          a[3] != 0 ? gsl_cdf_gaussian_Q(a[0] - a[1], a[2]) : gsl_cdf_gaussian_P(a[0] - a[1], a[2]));
CONTENDER("NormalICDF", "GSL",
          a[3] != 0 ? (a[1] + gsl_cdf_gaussian_Qinv(a[0], a[2])) : (a[1] + gsl_cdf_gaussian_Pinv(a[0], a[2])));
#endif

}  // namespace
