// Point probabilities from log-factorials, and the moments summed from them.
#ifndef ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_PROBABILITY_HPP
#define ORVANTH_NONCENTRAL_HYPERGEOMETRIC_FNC_PROBABILITY_HPP

#include <cstdint>
#include <optional>

#include "noncentral_hypergeometric/fnc_record.hpp"

namespace orvanth {

// The logarithm of a term C(m, x) C(N - m, n - x) odds^x, for one x after the other. Beyond the table of
// log-factorials a step of one from the last x costs one logarithm.
class FNCLogTerm {
public:
    explicit FNCLogTerm(const FNCRecord& record);
    double operator()(std::int32_t x);

private:
    const FNCRecord& record_;
    const std::int32_t m2_;                // unmarked items
    const double mFac_;                    // ln m! + ln (N - m)!
    double xFac_ = 0.0;                    // the four log-factorials that depend on x, at the last x
    std::optional<std::int32_t> xLast_{};  // none before the first call
};

// Where the sum of the terms starts: the truncated mean, or xmin if that is higher. Required: not held below xmax.
std::int32_t FNCCentre(const FNCRecord& record);

// P(x), 0 outside the support. The terms are summed once, at the first x that needs their sum.
class FNCProbability {
public:
    explicit FNCProbability(const FNCRecord& record) : record_(record), logTerm_(record) {}
    double operator()(std::int32_t x);

private:
    struct Normalisation {
        double scale;  // subtracted from every log term, so that terms near the centre are near 1
        double rsum;   // reciprocal sum of the scaled terms
    };
    Normalisation Normalise();

    const FNCRecord& record_;
    FNCLogTerm logTerm_;
    std::optional<Normalisation> normalisation_{};
};

struct FNCMoments {
    double mean;
    double variance;
};

// Mean and variance, summed outward from the approximate mean.
FNCMoments FNCExactMoments(const FNCRecord& record);

}  // namespace orvanth

#endif
