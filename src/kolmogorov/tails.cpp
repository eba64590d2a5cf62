#include "kolmogorov/tails.hpp"

#include <cmath>

#include "kolmogorov/log_factorial.hpp"

namespace orvanth::kolmogorov {

namespace {

// Limits in w = n x^2. With P(D_n > x) about 2 exp(-2 w) (Smirnov 1948) the tail is below 5e-16 from 18 on, where the
// cumulative probability is 1, but it leaves the range of doubles only at 370. With P(D_n <= x) about
// sqrt(2 pi / w) exp(-pi^2 / (8 w)) (Kolmogorov 1933) the lower tail is below 1e-18 up to 0.0274.
constexpr double kCumulativeIsOneFrom = 18.0;
constexpr double kComplementIsZeroFrom = 370.0;
constexpr double kComplementIsOneUpTo = 0.0274;

// The sum has about n terms of three logarithms and one exponential each.
constexpr std::int32_t kLargestSummed = 200000;
// Up to this size the sum starts at a third of its range, above it at the middle.
constexpr std::int32_t kLargestFromThird = 3000;
// A term below this share of the sum ends a direction.
constexpr double kNegligible = 1e-12;

// P(D_n <= x) for 0.5/n < x <= 1/n: n! (2x - 1/n)^n.
double LowestPiece(std::int32_t n, double x) {
    const double t = 2.0 * x - 1.0 / n;
    if (n < static_cast<std::int32_t>(FactorialTable.size()))
        return std::pow(t, n) * FactorialTable[static_cast<std::size_t>(n)];
    return std::exp(LogFactorial(n) + n * std::log(t));
}

}  // namespace

std::optional<double> KolmogorovCumulativeSpecial(std::int32_t n, double x) {
    const double w = (n * x) * x;
    if (w >= kCumulativeIsOneFrom) return 1.0;
    if (x >= 1.0) return 1.0;
    if (x <= 0.5 / n) return 0.0;
    if (n == 1) return 2.0 * x - 1.0;
    if (x <= 1.0 / n) return LowestPiece(n, x);
    if (x >= 1.0 - 1.0 / n) return 1.0 - 2.0 * std::pow(1.0 - x, n);
    return std::nullopt;
}

std::optional<double> KolmogorovComplementSpecial(std::int32_t n, double x) {
    const double w = (n * x) * x;
    if (w >= kComplementIsZeroFrom) return 0.0;
    if (x >= 1.0) return 0.0;
    if (w <= kComplementIsOneUpTo) return 1.0;
    if (x <= 0.5 / n) return 1.0;
    if (n == 1) return 2.0 - 2.0 * x;
    if (x <= 1.0 / n) return 1.0 - LowestPiece(n, x);
    if (x >= 1.0 - 1.0 / n) return 2.0 * std::pow(1.0 - x, n);
    return std::nullopt;
}

double SeriesLog1p(double x) {
    if (std::fabs(x) > 0.1) return std::log(1.0 + x);
    double sum = x;
    double term = x;
    if (std::fabs(term) <= std::fabs(sum) * 1e-15) return x;
    for (int j = 2; j < 50; ++j) {
        term = -(term * x);
        sum += term / j;
        // Required: the test looks at the power of x and not at the term that was added.
        if (std::fabs(term) <= std::fabs(sum) * 1e-15) break;
    }
    return sum;
}

double SmirnovUpperTailAsymptotic(std::int32_t n, double x) {
    const double t = (n * 6.0) * x + 1.0;
    const double z = (t * t) / (n * 18.0);
    double v = 1.0 - (((2.0 * z) * z - 4.0 * z) - 1.0) / (n * 18.0);
    if (v <= 0.0) return 0.0;
    v = std::exp(-z) * v;
    return v >= 1.0 ? 1.0 : v;
}

double SmirnovUpperTail(std::int32_t n, double x) {
    if (n > kLargestSummed) return SmirnovUpperTailAsymptotic(n, x);
    const double nd = n;
    std::int32_t jmax = static_cast<std::int32_t>(nd * (1.0 - x));
    if ((1.0 - x) - jmax / nd <= 0.0) --jmax;
    const std::int32_t jdiv = n <= kLargestFromThird ? jmax / 3 : jmax / 2;
    const double central = LogFactorial(n) - LogFactorial(jdiv + 1) - LogFactorial(n - jdiv - 1);

    double sum = 0.0;
    const auto add = [&](std::int32_t j, double logBinomial) {
        const double q = j / nd + x;
        const double term = std::exp(std::log(q) * (j - 1) + logBinomial + SeriesLog1p(-q) * (n - j));
        sum += term;
        return term;
    };
    double logBinomial = central;
    for (std::int32_t j = jdiv + 1; j <= jmax; ++j) {
        const double term = add(j, logBinomial);
        logBinomial += std::log((nd - j) / (j + 1));
        if (sum * kNegligible >= term) break;
    }
    logBinomial = central + std::log((jdiv + 1) / (nd - jdiv));
    for (std::int32_t j = jdiv; j > 0; --j) {
        const double term = add(j, logBinomial);
        logBinomial += std::log(j / (nd - j + 1));
        if (sum * kNegligible >= term) break;
    }
    return std::exp(SeriesLog1p(-x) * n) + sum * x;
}

}  // namespace orvanth::kolmogorov
