#include <cmath>

#include "distributions/binomial_quantile.hpp"
#include "distributions/checks.hpp"
#include "frame/failure.hpp"
#include "frame/flags.hpp"
#include "orvanth/distributions.h"
#include "special/beta.hpp"

using namespace orvanth;

namespace {

constexpr const char* kConstructor = "boost::math::binomial_distribution<%1%>::binomial_distribution";

void CheckTrials(const char* function, double n) {
    Check(std::isfinite(n) && n >= 0, function, "Number of Trials argument is %1%, but must be >= 0 !", n);
}

// The accessors repeat these tests; whatever fails them has failed here already.
void CheckParameters(double n, double p) {
    Check(p >= 0 && p <= 1, kConstructor, "Success fraction argument is %1%, but must be >= 0 and <= 1 !", p);
    CheckTrials(kConstructor, n);
}

void CheckSuccesses(const char* function, double k, double n) {
    Check(std::isfinite(k) && k >= 0, function, "Number of Successes argument is %1%, but must be >= 0 !", k);
    Check(k <= n, function, "Number of Successes argument is %1%, but must be <= Number of Trials !", k);
}

double LowerBound(double alpha, double successes, double trials) {
    constexpr const char* function = "boost::math::binomial_distribution<%1%>::find_lower_bound_on_p";
    CheckTrials(function, trials);
    CheckSuccesses(function, successes, trials);
    if (successes == 0) return 0;  // a bad alpha goes unnoticed, on purpose
    return InverseBeta(successes, trials - successes + 1, alpha, nullptr);
}

double UpperBound(double alpha, double successes, double trials) {
    constexpr const char* function = "boost::math::binomial_distribution<%1%>::find_upper_bound_on_p";
    CheckTrials(function, trials);
    CheckSuccesses(function, successes, trials);
    if (successes == trials) return 1;  // a bad alpha goes unnoticed, on purpose
    return InverseBetaC(successes + 1, trials - successes, alpha, nullptr);
}

}  // namespace

ORVANTH_API(double) BinomialPDF(double k, double n, double p) {
    Throwing throwing;
    CheckParameters(n, p);
    CheckSuccesses("boost::math::pdf(binomial_distribution<%1%> const&, %1%)", k, n);
    if (p == 0) return k == 0 ? 1 : 0;
    if (p == 1) return k == n ? 1 : 0;
    if (n == 0) return 1;
    if (k == 0) return std::pow(1 - p, n);
    if (k == n) return std::pow(p, k);
    return BetaDensity(k + 1, n - k + 1, p) / (n + 1);
}

ORVANTH_API(double) BinomialCDF(double k, double n, double p, TailFlag tail) {
    Throwing throwing;
    CheckParameters(n, p);
    CheckSuccesses("boost::math::cdf(binomial_distribution<%1%> const&, %1%)", k, n);
    return BinomialTail(k, n, p, IsSet(tail));
}

ORVANTH_API(double) BinomialICDF(double probability, double n, double p, TailFlag tail, int32_t roundUp) {
    Throwing throwing;
    CheckParameters(n, p);
    const double complement = 1 - probability;
    const double lower = IsSet(tail) ? complement : probability;
    const double upper = IsSet(tail) ? probability : complement;
    CheckProbability("boost::math::quantile(binomial_distribution<%1%> const&, %1%)", lower);
    if (lower == 0) return 0;
    if (lower == 1) return n;
    if (lower <= std::pow(1 - p, n)) return 0;
    return SearchBinomialQuantile(lower, upper, n, p, IsWholeWordSet(roundUp) ? Rounding::kUp : Rounding::kDown);
}

ORVANTH_API(double) BinomialPS(double alpha, double successes, double trials, int32_t boundSelector) {
    Throwing throwing;
    switch (boundSelector) {
        case 0:
            return LowerBound(alpha, successes, trials);
        case 1:
            return UpperBound(alpha, successes, trials);
        default:
            return -1.0;  // no test of the other arguments
    }
}
