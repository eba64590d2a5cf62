// Fisher's noncentral hypergeometric distribution: x marked items in a sample of n out of N, of
// which m are marked, each marked item with relative weight `odds`:
// P(x) proportional to C(m, x) C(N - m, n - x) odds^x.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_RECORD_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_RECORD_HPP

#include <cstdint>

namespace orvanth {

// The parameters of one evaluation, never changed.
struct FNCRecord {
    FNCRecord(std::int32_t sampleSize, std::int32_t marked, std::int32_t population, double oddsRatio,
              double leftOut);

    const double odds;
    const double logOdds;
    const double accuracy;    // what sums and tables may leave out
    const std::int32_t n;     // sample size
    const std::int32_t m;     // marked items
    const std::int32_t N;     // population size
    const std::int32_t xmin;  // the support, for consistent counts
    const std::int32_t xmax;
};

// Whether odds are so near to 1 that the estimates of the mean and the mode are taken for odds 1.
bool FNCHasCentralEstimates(const FNCRecord& record);

// Cornfield's approximation to the mean. J. Cornfield, Proc. 3rd Berkeley Symp. 4 (1956) 135.
double FNCMean(const FNCRecord& record);

// An approximate variance, 0 at the ends. B. Levin, Biometrika 71 (1984) 630.
double FNCVariance(const FNCRecord& record);

}  // namespace orvanth

#endif
