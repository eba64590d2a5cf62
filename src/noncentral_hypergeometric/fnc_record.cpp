#include "noncentral_hypergeometric/fnc_record.hpp"

#include <algorithm>
#include <cmath>

#include "noncentral_hypergeometric/wrap.hpp"

namespace orvanth {

FNCRecord::FNCRecord(std::int32_t sampleSize, std::int32_t marked, std::int32_t population, double oddsRatio,
                     double leftOut)
    : odds(oddsRatio),
      logOdds(std::log(oddsRatio)),
      accuracy(leftOut),
      n(sampleSize),
      m(marked),
      N(population),
      xmin(std::max(FNCDifference(FNCSum(sampleSize, marked), population), 0)),
      xmax(std::min(sampleSize, marked)) {}

bool FNCHasCentralEstimates(const FNCRecord& r) {
    // With a = odds - 1 the estimates divide a cancelled difference of size N eps by a, so they are wrong by about
    // 1e-16 N / |a|, which is 0.1 at this border. The estimates of odds 1 are wrong by |a| variances, which is at
    // most 0.03 standard deviations here even for N = 2^31.
    const double border = std::max(1e-12, 1e-15 * r.N);
    return std::fabs(r.odds - 1.0) < border;
}

double FNCMean(const FNCRecord& r) {
    const double n = r.n, m = r.m, N = r.N;
    if (FNCHasCentralEstimates(r)) return m * n / N;
    const double a = r.odds - 1.0;
    const double b = (N - n - m) + (n + m) * r.odds;
    const double d = b * b - 4.0 * r.odds * a * m * n;
    const double s = d > 0.0 ? std::sqrt(d) : 0.0;
    return (b - s) / (2.0 * a);
}

double FNCVariance(const FNCRecord& r) {
    const double n = r.n, m = r.m, N = r.N;
    const double mu = FNCMean(r);
    const double r1 = (m - mu) * mu;
    const double r2 = (N + mu - n - m) * (n - mu);
    if (r1 <= 0.0 || r2 <= 0.0) return 0.0;
    return std::max(N * r1 * r2 / (((N - m) * r1 + m * r2) * (N - 1.0)), 0.0);
}

}  // namespace orvanth
