// The distributions of three multiple-comparison statistics under a one-factor correlation
// structure: given a standard normal latent value y, comparison j is normal with mean lambda_j y
// and variance 1 - lambda_j^2. Two comparisons then have the correlation lambda_i lambda_j.
//
// C. W. Dunnett, J. Amer. Statist. Assoc. 50 (1955) 1096; J. C. Hsu, Multiple Comparisons: Theory
// and Methods (Chapman and Hall, 1996).
#ifndef ORVANTH_MULTIPLE_COMPARISON_MC_HPP
#define ORVANTH_MULTIPLE_COMPARISON_MC_HPP

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "multiple_comparison/gauss48.hpp"
#include "multiple_comparison/scale_rule.hpp"

namespace orvanth {

class MC {
public:
    // lambda: k coefficients, all read here, borrowed. Throws std::bad_alloc for a negative k. No
    // other argument is tested.
    MC(std::int32_t k, double df, const double* lambda);

    MC(const MC&) = delete;
    MC& operator=(const MC&) = delete;

    // P(statistic <= x): the conditional probability integrated over the scale. 5e-8 of the scale's
    // distribution is cut off at each end; the sum is not rescaled and not clamped.
    double CDF(double x) const;

    // The x with CDF(x) = p, to 24 bits.
    double ICDF(double p) const;

    // P(statistic <= x) if the scale estimate were s times the true one.
    virtual double ConditionalCDF(double x, double s) const = 0;

    // A bracket of the upper alpha point: the point of a single comparison, and Bonferroni's bound
    // over all comparisons.
    virtual std::pair<double, double> QuantileRange(double alpha) const = 0;

protected:
    // Not virtual: no one deletes through the base.
    ~MC() = default;

    // The test of df comes before the first quantile, and once.
    void CheckDegreesOfFreedom() const;

    // The Student t quantile at lower tail q.
    double StudentT(double q) const;

    const double* const lambda_;
    const std::vector<double> scale_;  // c_j = 1 / sqrt(1 - lambda_j^2)
    const std::int32_t k_;
    const double df_;

private:
    double CDF(double x, const ScaleRule& rule) const;
};

// All pairwise comparisons: x is the studentised range over k groups divided by sqrt 2. Uses the
// first coefficient alone.
class TukeyDistribution final : public MC {
public:
    TukeyDistribution(std::int32_t k, double df, const double* lambda);
    double ConditionalCDF(double x, double s) const override;
    std::pair<double, double> QuantileRange(double alpha) const override;

private:
    const double lambda0_;  // a NaN for k = 0, where there is no coefficient
    const double scale0_;
    const std::array<double, kRulePoints> fixedTerms_;  // U(c_0 a_i), the same for every x and s
};

// Comparisons with the best: one-sided over k - 1 comparisons.
class HsuDistribution final : public MC {
public:
    using MC::MC;
    double ConditionalCDF(double x, double s) const override;
    std::pair<double, double> QuantileRange(double alpha) const override;
};

// Comparisons with a control: two-sided over k - 1 comparisons.
class DunnettDistribution final : public MC {
public:
    using MC::MC;
    double ConditionalCDF(double x, double s) const override;
    std::pair<double, double> QuantileRange(double alpha) const override;
};

}  // namespace orvanth

#endif
