// The algorithms against the same quantities in 50 digits, and against each other where two theories
// must meet.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/kolmogorov.hpp"
#include "kolmogorov/pelz_good.hpp"
#include "kolmogorov/pomeranz.hpp"
#include "kolmogorov/tails.hpp"
#include "orvanth/kolmogorov.h"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth::kolmogorov;
using orvanth::test::RelativeError;

// 50 digits and an exponent range that needs no scaling.
using orvanth::test::Wide;
using WideMatrix = std::vector<std::vector<Wide>>;

WideMatrix Product(const WideMatrix& a, const WideMatrix& b) {
    WideMatrix c(a.size(), std::vector<Wide>(a.size()));
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t k = 0; k < a.size(); ++k)
            for (std::size_t j = 0; j < a.size(); ++j) c[i][j] += a[i][k] * b[k][j];
    return c;
}

Wide Power(const Wide& base, std::size_t exponent) {
    Wide value = 1;
    for (std::size_t i = 0; i < exponent; ++i) value *= base;
    return value;
}

// P(D_n <= x) for the very double x, by the matrix of Durbin with exact factorials.
Wide ExactCumulative(std::int32_t n, double x) {
    const Wide t = Wide(x) * n;
    const std::size_t k = static_cast<std::size_t>(static_cast<std::int64_t>(t)) + 1, m = 2 * k - 1;
    const Wide h = Wide(k) - t;
    WideMatrix matrix(m, std::vector<Wide>(m)), result;
    for (std::size_t i = 0; i < m; ++i)
        for (std::size_t j = 0; j < m && j <= i + 1; ++j) {
            Wide value = 1;
            if (j == 0) value -= Power(h, i + 1);
            if (i == m - 1) value -= Power(h, m - j);
            if (j == 0 && i == m - 1 && 2 * h > 1) value += Power(2 * h - 1, m);
            for (std::size_t g = 1; g <= i + 1 - j; ++g) value /= g;
            matrix[i][j] = value;
        }
    for (std::int32_t rest = n; rest > 0; rest /= 2) {
        if (rest % 2 != 0) result = result.empty() ? matrix : Product(matrix, result);
        if (rest > 1) matrix = Product(matrix, matrix);
    }
    Wide probability = result[k - 1][k - 1];
    for (std::int32_t i = 1; i <= n; ++i) probability *= Wide(i) / n;
    return probability;
}

TEST(DurbinMatrix, KeepsItsRelativeAccuracyFarDownInTheLowerTail) {
    // n x of 1.5 to 20; the probabilities go down to where doubles end.
    struct Case {
        std::int32_t n;
        double t, bound;
    };
    for (const auto& [n, t, bound] :
         {Case{10, 1.5, 1e-14}, Case{140, 9.25, 1e-14}, Case{1000, 3.3, 2e-13}, Case{1000, 12.0, 2e-13},
          Case{20000, 8.5, 2e-12}, Case{100000, 14.0, 1e-11}, Case{100000, 20.1, 1e-11}}) {
        const double x = t / n;
        const Wide exact = ExactCumulative(n, x);
        const double error = RelativeError(DurbinMatrix(n, x), exact);
        std::printf("  n %d, n x %.2f: P %.3g, relative error %.1e\n", n, t, static_cast<double>(exact), error);
        EXPECT_LT(error, bound) << n << " " << t;
    }
}

TEST(Pomeranz, IsExactToRoundingOverItsRegion) {
    double worst = 0;
    for (std::int32_t n : {5, 12, 30, 50})
        for (double w : {0.76, 1.0, 1.7, 2.5, 3.9}) {
            const double x = std::sqrt(w / n);
            if (x >= 1.0 - 1.0 / n) continue;
            worst = std::max(worst, RelativeError(Pomeranz(n, x), ExactCumulative(n, x)));
        }
    std::printf("  worst relative error %.1e\n", worst);
    EXPECT_LT(worst, 1e-12);
}

TEST(PelzGood, ItsErrorFallsWithTheSquareOfTheSampleSize) {
    // All terms through n^(-3/2) are there, so n^2 times the error settles; a wrong coefficient in
    // any of the six sums would leave a slower fall.
    for (double z : {0.4, 0.6, 0.8, 1.0, 1.5}) {
        const auto scaled = [&](std::int32_t n) {
            const double x = z / std::sqrt(static_cast<double>(n));
            return (PelzGood(n, x) - DurbinMatrix(n, x)) * n * n;
        };
        const double coarse = scaled(500), fine = scaled(2000);
        EXPECT_LT(std::fabs(fine), 0.06) << z;
        EXPECT_NEAR(coarse / fine, 1.0, 0.05) << z;
    }
}

TEST(SmirnovUpperTail, DoubledIsTheTwoSidedTailButForTheOverlap) {
    // Each one-sided event has about exp(-2 w), both together exp(-8 w).
    for (std::int32_t n : {20, 60, 140}) {
        const double x = std::sqrt(4.0 / n);
        const Wide exact = 1 - ExactCumulative(n, x);
        EXPECT_LT(RelativeError(2.0 * SmirnovUpperTail(n, x), exact), 1e-10) << n;
    }
}

TEST(KolmogorovCDF, TheTailStandsOnWhereTheCumulativeProbabilityIsOne) {
    for (double n : {30.0, 140.0, 141.0, 5000.0}) {
        const double x = std::sqrt(18.5 / n);
        EXPECT_EQ(KolmogorovCDF(x, n, 0), 1.0) << n;
        const double tail = KolmogorovCDF(x, n, 1);
        EXPECT_GT(tail, 0.0) << n;
        EXPECT_LT(tail, 2.0 * std::exp(-2.0 * 18.5)) << n;
    }
    EXPECT_EQ(KolmogorovCDF(std::sqrt(370.5 / 5000), 5000, 1), 0.0);
}

}  // namespace
