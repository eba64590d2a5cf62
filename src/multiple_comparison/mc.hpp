// The distributions of three multiple-comparison statistics under a one-factor correlation
// structure: given a standard normal latent value y, comparison j is normal with mean lambda_j y
// and variance 1 - lambda_j^2, so that two comparisons correlate by lambda_i lambda_j.
//
// C. W. Dunnett, J. Amer. Statist. Assoc. 50 (1955) 1096; J. C. Hsu, Multiple Comparisons: Theory
// and Methods (Chapman and Hall, 1996).
#ifndef ORVANTH_MULTIPLE_COMPARISON_MC_HPP
#define ORVANTH_MULTIPLE_COMPARISON_MC_HPP

#include <array>
#include <cstdint>
#include <utility>

#include "multiple_comparison/gauss48.hpp"

namespace orvanth {

class MC {
public:
    // lambda: k coefficients, borrowed. Nothing is validated.
    MC(std::int32_t k, double df, const double* lambda);

    MC(const MC&) = delete;
    MC& operator=(const MC&) = delete;

    // P(statistic <= x): the conditional probability integrated over the scale, of whose distribution
    // 5e-8 is cut off at each end and not made up for. Not clamped.
    double CDF(double x) const;

    // The x with CDF(x) = p, to 24 bits.
    double ICDF(double p) const;

    // P(statistic <= x) if the scale estimate were s times the true one.
    virtual double ConditionalCDF(double x, double s) const = 0;

    // A bracket of the upper alpha point: one comparison alone, and Bonferroni's bound over all.
    virtual std::pair<double, double> QuantileRange(double alpha) const = 0;

protected:
    // Not virtual: no one deletes through the base.
    ~MC() { delete[] scale_; }

    // The Student t quantile at lower tail q. The check of df comes first, and once.
    void CheckDegreesOfFreedom() const;
    double StudentT(double q) const;

    // j from `first`: how many of the elements up to `end` share lambda and scale.
    std::int32_t RunLength(std::int32_t first, std::int32_t end) const;

    const double* lambda_;
    double* scale_;  // 1 / sqrt(1 - lambda^2)
    std::int32_t k_;
    double df_;

private:
    struct ScaleRule;
    ScaleRule MakeScaleRule() const;
    double CDF(double x, const ScaleRule& rule) const;
    friend struct MCRootFunction;
};

// All pairwise comparisons: x is the studentised range over k groups divided by sqrt 2. Reads
// lambda[0] alone.
class TukeyDistribution final : public MC {
public:
    using MC::MC;
    double ConditionalCDF(double x, double s) const override;
    std::pair<double, double> QuantileRange(double alpha) const override;

private:
    void FillFixedTerms() const;
    // U(c_0 a_i), which depends on neither x nor the scale: filled by the first ConditionalCDF.
    mutable std::array<double, kRulePoints> fixedTerms_;
    mutable bool fixedTermsReady_ = false;
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
