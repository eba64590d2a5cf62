// What differs between the three statistics: the conditional probability and the bracket.
//
// The sums and products run in the order of the rule and of the comparisons. Every value has the
// bits of the plain double loop over nodes and comparisons. Evaluations are saved where the bits
// cannot change: over comparisons with equal lambda, over mirrored nodes, and of terms that do not
// depend on the scale.
#include <bit>
#include <cmath>
#include <cstddef>

#include "frame/failure.hpp"
#include "multiple_comparison/mc.hpp"
#include "multiple_comparison/normal_form.hpp"

namespace orvanth {

namespace {

const double kRootTwo = std::sqrt(2.0);
const double kRootPi = std::sqrt(3.141592653589793);

bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

// The number of comparisons from `first` up to `end` that have the same lambda, and so the same scale.
std::int32_t RunLength(const double* lambda, std::int32_t first, std::int32_t end) {
    std::int32_t j = first + 1;
    while (j < end && SameBits(lambda[j], lambda[first])) ++j;
    return j - first;
}

// base^exponent by squaring, low bit first. Fewer than one group are refused before a power is asked for.
double IntegerPower(double base, std::uint32_t exponent) {
    double result = 1.0;
    for (; exponent != 0; exponent >>= 1, base *= base)
        if (exponent & 1u) result *= base;
    return result;
}

void MultiplyTimes(double& product, double factor, std::int32_t times) {
    for (std::int32_t i = 0; i < times; ++i) product = factor * product;
}

// The integral over the latent value, from the products at the nodes of its rule.
double OverTheLatent(const std::array<double, kRulePoints>& products) {
    double sum = 0.0;
    for (std::size_t i = 0; i < kRulePoints; ++i) sum += GaussHermite48.weights[i] * products[i];
    return sum / kRootPi;
}

// U(c_0 a_i) at the nodes. A NaN is refused by the first ConditionalCDF and not here: the tests of the
// degrees of freedom come before it, and with two groups no quantile needs these terms.
std::array<double, kRulePoints> TukeyFixedTerms(double lambda, double c) {
    std::array<double, kRulePoints> terms{};
    if (std::isnan(c)) return terms;
    for (std::size_t i = 0; i < kHalfRule; ++i) {
        const NormalPair pair = NormalForms(c * ((lambda * kRootTwo) * GaussHermite48.nodes[i]));
        terms[i] = pair.at;
        terms[i + kHalfRule] = pair.mirrored;
    }
    return terms;
}

}  // namespace

double DunnettDistribution::ConditionalCDF(double x, double s) const {
    const double v = x * s;
    std::array<double, kRulePoints> products;
    products.fill(1.0);
    for (std::int32_t j = 0, run = 0; j < k_ - 1; j += run) {
        run = RunLength(lambda_, j, k_ - 1);
        const double c = scale_[static_cast<std::size_t>(j)];
        for (std::size_t i = 0; i < kHalfRule; ++i) {
            const double a = (lambda_[j] * kRootTwo) * GaussHermite48.nodes[i];
            const NormalPair above = NormalForms((v + a) * c);
            const NormalPair below = NormalForms((a - v) * c);
            // At the mirrored node a changes its sign, and the two arguments change places and signs.
            MultiplyTimes(products[i], above.at - below.at, run);
            MultiplyTimes(products[i + kHalfRule], below.mirrored - above.mirrored, run);
        }
    }
    return OverTheLatent(products);
}

double HsuDistribution::ConditionalCDF(double x, double s) const {
    const double v = x * s;
    std::array<double, kRulePoints> products;
    products.fill(1.0);
    for (std::int32_t j = 0, run = 0; j < k_ - 1; j += run) {
        run = RunLength(lambda_, j, k_ - 1);
        const double c = scale_[static_cast<std::size_t>(j)];
        for (std::size_t i = 0; i < kRulePoints; ++i) {
            const double a = (lambda_[j] * kRootTwo) * GaussHermite48.nodes[i];
            MultiplyTimes(products[i], NormalForm((a + v) * c), run);
        }
    }
    return OverTheLatent(products);
}

TukeyDistribution::TukeyDistribution(std::int32_t k, double df, const double* lambda)
    : MC(k, df, lambda),
      lambda0_(k > 0 ? lambda[0] : kNaN),
      scale0_(k > 0 ? scale_[0] : kNaN),
      fixedTerms_(TukeyFixedTerms(lambda0_, scale0_)) {}

double TukeyDistribution::ConditionalCDF(double x, double s) const {
    if (std::isnan(scale0_)) return RejectNormalArgument(-scale0_);
    const double v = x * s;
    double sum = 0.0;
    for (std::size_t i = 0; i < kRulePoints; ++i) {
        const double a = (lambda0_ * kRootTwo) * GaussHermite48.nodes[i];
        const double d = fixedTerms_[i] - NormalForm((a - v) * scale0_);
        sum += GaussHermite48.weights[i] * IntegerPower(d, static_cast<std::uint32_t>(k_ - 1));
    }
    return (k_ * sum) / kRootPi;
}

// The divisor of alpha is formed in 32-bit integers.

std::pair<double, double> TukeyDistribution::QuantileRange(double alpha) const {
    CheckDegreesOfFreedom();
    const double single = -StudentT(alpha / 2);
    const std::uint32_t k = static_cast<std::uint32_t>(k_);
    return {single, -StudentT(alpha / static_cast<std::int32_t>(k * (k - 1)))};
}

std::pair<double, double> HsuDistribution::QuantileRange(double alpha) const {
    CheckDegreesOfFreedom();
    const double single = -StudentT(alpha);
    return {single, -StudentT(alpha / static_cast<std::int32_t>(static_cast<std::uint32_t>(k_) - 1u))};
}

std::pair<double, double> DunnettDistribution::QuantileRange(double alpha) const {
    CheckDegreesOfFreedom();
    const double single = -StudentT(alpha / 2);
    return {single, -StudentT(alpha / static_cast<std::int32_t>(2u * static_cast<std::uint32_t>(k_) - 2u))};
}

}  // namespace orvanth
