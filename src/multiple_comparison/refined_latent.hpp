// The conditional probability of the three statistics at a known scale, in both tails, by a rule
// whose step follows the integrand.
//
// The integrands are those of statistics.cpp. There every normal probability is 1 - Phi(-z), which
// fixes digits; here each is computed as the tail that it is, so that small probabilities keep their
// relative accuracy.
#ifndef ORVANTH_MULTIPLE_COMPARISON_REFINED_LATENT_HPP
#define ORVANTH_MULTIPLE_COMPARISON_REFINED_LATENT_HPP

#include <cstdint>
#include <span>
#include <vector>

namespace orvanth {

enum class ComparisonKind { kAllPairs, kOneSided, kTwoSided };

// Comparisons that share a coefficient.
struct ComparisonRun {
    double lambda;
    double c;            // 1 / sqrt(1 - lambda^2)
    std::int32_t count;  // how many comparisons
};

struct ComparisonStatistic {
    ComparisonKind kind;
    std::int32_t k;
    std::vector<ComparisonRun> runs;  // all pairs: one run, with k - 1 comparisons
    double steepest;                  // the largest c |lambda|: the factors change within 1 / steepest
};

// The steps and places found at one scale, from which the next scale starts.
struct LatentStart {
    double step = 0.0;
    double logDifference = 0.0;  // log of the difference of the two halves at this step
    double mode = 0.0;
    bool known = false;
};

struct LatentStarts {
    LatentStart lower;
    LatentStart upper;
};

// P(statistic <= v) or P(statistic > v) at scale 1. `share`, at most 1, is the part that the value has in a
// sum over scales: a small one needs a small relative accuracy.
double ConditionalProbability(const ComparisonStatistic& statistic, double v, bool upper, double share,
                              LatentStarts& starts);

// erfc(z / sqrt 2) / 2, the upper normal tail.
double UpperNormal(double z);

}  // namespace orvanth

#endif
