// Fisher's noncentral hypergeometric distribution: x marked items in a sample of n out of N, of
// which m are marked, each marked item with relative weight `odds`:
// P(x) proportional to C(m, x) C(N - m, n - x) odds^x.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_RECORD_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_RECORD_HPP

#include <cstdint>

namespace orvanth {

// One evaluation: the parameters and what is carried from term to term.
struct FNCRecord {
    FNCRecord(std::int32_t n, std::int32_t m, std::int32_t N, double odds, double accuracy);

    double odds;
    double logOdds;
    double accuracy;
    std::int32_t n;
    std::int32_t m;
    std::int32_t N;
    std::int32_t xmin;
    std::int32_t xmax;
    std::int32_t xLast = -99;  // the x of the last FNCLogTerm; -99 means none
    double mFac = 0.0;         // ln m! + ln (N - m)!
    double xFac = 0.0;         // the four log-factorials that depend on x
    double scale = 0.0;        // subtracted from every log term, so that terms near the centre are near 1
    double rsum = 0.0;         // reciprocal sum of the scaled terms; 0: not yet computed
    std::int32_t parametersChanged = 1;
};

// A double as an integer, toward zero; what no 32-bit integer holds, a NaN too, gives the most
// negative one.
std::int32_t FNCTruncate(double value);

// Cornfield's approximation to the mean. J. Cornfield, Proc. 3rd Berkeley Symp. 4 (1956) 135.
double FNCMean(const FNCRecord& record);

// An approximate variance, 0 at the ends. B. Levin, Biometrika 71 (1984) 630.
double FNCVariance(const FNCRecord& record);

// Log of the scaled term at x; steps of one are cheap.
double FNCLogTerm(FNCRecord& record, std::int32_t x);

// P(x): 0 outside the support; the normalisation is computed at first need.
double FNCProbability(FNCRecord& record, std::int32_t x);

// Mean and variance by summing outward from the approximate mean; returns the total summed.
double FNCExactMoments(FNCRecord& record, double* mean, double* variance);

}  // namespace orvanth

#endif
