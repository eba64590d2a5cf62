#include <cmath>

#include "distributions/binomial_kernel.hpp"
#include "frame/flags.hpp"
#include "frame/policies.hpp"
#include "orvanth/distributions.h"

namespace {

using namespace orvanth;

constexpr const char* kDistribution = "boost::math::binomial_distribution<%1%>::binomial_distribution";
constexpr const char* kPdf = "boost::math::pdf(binomial_distribution<%1%> const&, %1%)";
constexpr const char* kCdf = "boost::math::cdf(binomial_distribution<%1%> const&, %1%)";
constexpr const char* kQuantile = "boost::math::quantile(binomial_distribution<%1%> const&, %1%)";

void CheckTrials(const char* function, double n) {
    if (!(n >= 0) || std::isinf(n)) RaiseDomain(function, "Number of Trials argument is %1%, but must be >= 0 !", n);
}

void CheckDistribution(double n, double p) {
    if (!(p >= 0 && p <= 1))
        RaiseDomain(kDistribution, "Success fraction argument is %1%, but must be >= 0 and <= 1 !", p);
    CheckTrials(kDistribution, n);
}

void CheckSuccesses(const char* function, double k, double n) {
    if (!(k >= 0) || std::isinf(k))
        RaiseDomain(function, "Number of Successes argument is %1%, but must be >= 0 !", k);
    if (k > n) RaiseDomain(function, "Number of Successes argument is %1%, but must be <= Number of Trials !", k);
}

// alpha comes last: where the counts alone decide, a bad one goes unnoticed. A NaN passes through.
double LowerBound(double alpha, double successes, double trials) {
    constexpr const char* function = "boost::math::binomial_distribution<%1%>::find_lower_bound_on_p";
    CheckTrials(function, trials);
    CheckSuccesses(function, successes, trials);
    if (successes == 0) return 0;
    if (std::isnan(alpha)) return alpha;
    if (alpha < 0 || alpha > 1)
        RaiseDomain("boost::math::ibeta_inv<%1%>(%1%,%1%,%1%)",
                    "Argument p outside the range [0,1] in the incomplete beta function inverse (got p=%1%).", alpha);
    return LowerProportion(successes, trials - successes + 1, alpha);
}

double UpperBound(double alpha, double successes, double trials) {
    constexpr const char* function = "boost::math::binomial_distribution<%1%>::find_upper_bound_on_p";
    CheckTrials(function, trials);
    CheckSuccesses(function, successes, trials);
    if (successes == trials) return 1;
    if (std::isnan(alpha)) return alpha;
    if (alpha < 0 || alpha > 1)
        RaiseDomain("boost::math::ibetac_inv<%1%>(%1%,%1%,%1%)",
                    "Argument q outside the range [0,1] in the incomplete beta function inverse (got q=%1%).", alpha);
    return UpperProportion(successes + 1, trials - successes, alpha);
}

}  // namespace

ORVANTH_API(double) BinomialPDF(double k, double n, double p) {
    ErrnoKeeper keep;
    CheckDistribution(n, p);
    CheckSuccesses(kPdf, k, n);
    return BinomialProbability(k, n, p);
}

ORVANTH_API(double) BinomialCDF(double k, double n, double p, TailFlag tail) {
    ErrnoKeeper keep;
    CheckDistribution(n, p);
    CheckSuccesses(kCdf, k, n);
    return BinomialTail(k, n, p, IsSet(tail));
}

ORVANTH_API(double) BinomialICDF(double probability, double n, double p, TailFlag tail, int32_t roundUp) {
    ErrnoKeeper keep;
    CheckDistribution(n, p);
    const double complement = 1 - probability;
    const double lower = IsSet(tail) ? complement : probability;
    const double upper = IsSet(tail) ? probability : complement;
    if (!(lower >= 0 && lower <= 1))
        RaiseDomain(kQuantile, "Probability argument is %1%, but must be >= 0 and <= 1 !", lower);
    return BinomialQuantile(lower, upper, n, p, IsWholeWordSet(roundUp) ? Rounding::kUp : Rounding::kDown);
}

ORVANTH_API(double) BinomialPS(double alpha, double successes, double trials, int32_t boundSelector) {
    ErrnoKeeper keep;
    if (boundSelector == 0) return LowerBound(alpha, successes, trials);
    if (boundSelector == 1) return UpperBound(alpha, successes, trials);
    return -1;  // whatever the other arguments are
}
