#include "kolmogorov/tails.hpp"

#include <cmath>

#include "kolmogorov/log_factorial.hpp"

namespace orvanth::kolmogorov {

namespace {

constexpr std::int32_t kLargestSummed = 200000;
constexpr double kNegligible = 1e-12;

// P(D_n <= x) for 0.5/n < x <= 1/n: n! (2x - 1/n)^n.
double LowestPiece(std::int32_t n, double x) {
    const double t = 2.0 * x - 1.0 / n;
    if (n <= 20) return std::pow(t, n) * FactorialTable[static_cast<std::size_t>(n)];
    return std::exp(LogFactorial(n) + n * std::log(t));
}

}  // namespace

double KolmogorovCumulativeSpecial(std::int32_t n, double x) {
    const double w = (n * x) * x;
    if (w >= 18.0) return 1.0;
    if (x >= 1.0) return 1.0;
    if (x <= 0.5 / n) return 0.0;
    if (n == 1) return 2.0 * x - 1.0;
    if (x <= 1.0 / n) return LowestPiece(n, x);
    if (x >= 1.0 - 1.0 / n) return 1.0 - 2.0 * std::pow(1.0 - x, n);
    return -1.0;
}

double KolmogorovComplementSpecial(std::int32_t n, double x) {
    const double w = (n * x) * x;
    if (w >= 370.0) return 0.0;
    if (x >= 1.0) return 0.0;
    if (w <= 0.0274) return 1.0;
    if (x <= 0.5 / n) return 1.0;
    if (n == 1) return 2.0 - 2.0 * x;
    if (x <= 1.0 / n) return 1.0 - LowestPiece(n, x);
    if (x >= 1.0 - 1.0 / n) return 2.0 * std::pow(1.0 - x, n);
    return -1.0;
}

double SeriesLog1p(double x) {
    if (std::fabs(x) > 0.1) return std::log(1.0 + x);
    double sum = x;
    double term = x;
    if (std::fabs(term) <= std::fabs(sum) * 1e-15) return x;
    for (int j = 2; j < 50; ++j) {
        term = -(term * x);
        sum += term / j;
        // The plain power, not the term that was added: required.
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
    const std::int32_t jdiv = n <= 3000 ? jmax / 3 : jmax / 2;
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
