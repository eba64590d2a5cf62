// The algorithms behind the two exports, each against a plain form of itself or a known value.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <sstream>
#include <vector>

#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/kolmogorov.hpp"
#include "kolmogorov/log_factorial.hpp"
#include "kolmogorov/pelz_good.hpp"
#include "kolmogorov/tails.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth::kolmogorov;

constexpr unsigned kSeed = 20240119;

TEST(LogFactorial, TableHoldsItsStoredDecimals) {
    // Results depend on these very digits, although many of them are not those of ln i!.
    std::istringstream stored(
        "0.0 0.0 0.6931471805599453 1.791759469228055 3.178053830347946 4.787491742782046 6.579251212010101 "
        "8.525161361065415 10.60460290274525 12.80182748008147 15.10441257307552 17.50230784587389 "
        "19.98721449566188 22.55216385312342 25.19122118273868 27.89927138384088 30.67186010608066 "
        "33.50507345013688 36.39544520803305 39.33988418719949 42.33561646075348 45.3801388984769 "
        "48.47118135183522 51.60667556776437 54.7847293981123 58.00360522298051 61.26170176100199 "
        "64.55753862700632 67.88974313718154 71.257038967168 74.65823634883016");
    double decimal = 0;
    for (int i = 0; i <= 30; ++i) {
        ASSERT_TRUE(stored >> decimal);
        EXPECT_EQ(LogFactorial(i), decimal) << i;
        const double exact = std::lgamma(i + 1.0);
        EXPECT_NEAR(LogFactorial(i), exact, 3e-14) << i;
    }
}

TEST(LogFactorial, FromThirtyOneOnStirlingWithTruncatedConstants) {
    for (int n : {31, 100, 140, 3000, 200000}) EXPECT_NEAR(LogFactorial(n) / std::lgamma(n + 1.0), 1, 1e-14) << n;
}

TEST(FactorialTable, IsExact) {
    std::uint64_t factorial = 1;
    for (std::uint64_t i = 0; i <= 20; ++i) {
        if (i > 0) factorial *= i;
        EXPECT_EQ(FactorialTable[i], static_cast<double>(factorial)) << i;
    }
}

TEST(MatrixMultiply, HasTheBitsOfThePlainTripleLoop) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> element(-1, 1);
    // Every remainder of the tiles, and the largest matrix there is.
    for (std::int32_t m : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 19, 33, 117}) {
        const std::size_t area = static_cast<std::size_t>(m * m);
        std::vector<double> A(area), B(area), C(area), plain(area);
        for (double& a : A) a = element(random) * std::exp2(std::floor(element(random) * 100));
        for (double& b : B) b = element(random);
        for (std::int32_t i = 0; i < m; ++i)
            for (std::int32_t j = 0; j < m; ++j) {
                double sum = 0.0;
                for (std::int32_t k = 0; k < m; ++k)
                    sum += A[static_cast<std::size_t>(i * m + k)] * B[static_cast<std::size_t>(k * m + j)];
                plain[static_cast<std::size_t>(i * m + j)] = sum;
            }
        MatrixMultiply(A.data(), B.data(), C.data(), m);
        for (std::size_t i = 0; i < area; ++i)
            ASSERT_EQ(std::bit_cast<std::uint64_t>(C[i]), std::bit_cast<std::uint64_t>(plain[i])) << m << " " << i;
    }
}

TEST(MatrixMultiply, ArraysNeedTheAlignmentOfOneDoubleOnly) {
    constexpr std::int32_t m = 9;
    constexpr std::size_t area = m * m;
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> element(-1, 1);
    std::vector<double> a(area), b(area), plain(area);
    for (double& each : a) each = element(random);
    for (double& each : b) each = element(random);
    MatrixMultiply(a.data(), b.data(), plain.data(), m);
    alignas(64) double A[area + 4], B[area + 4], C[area + 4];
    for (std::size_t shift = 0; shift < 4; ++shift) {
        std::copy(a.begin(), a.end(), A + shift);
        std::copy(b.begin(), b.end(), B + shift);
        MatrixMultiply(A + shift, B + shift, C + shift, m);
        EXPECT_TRUE(std::equal(plain.begin(), plain.end(), C + shift)) << shift;
    }
}

TEST(MatrixPower, ScalesByTheCentralElementAlone) {
    const double large = 1e100;
    double V[9];
    const double A[9] = {1, 0, 0, 0, large, 0, 0, 0, 1};
    EXPECT_EQ(MatrixPower(A, 0, V, 3, 2), 140);
    EXPECT_DOUBLE_EQ(V[4], 1e60);
    EXPECT_DOUBLE_EQ(V[0], 1e-140);
    const double corner[9] = {large, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_EQ(MatrixPower(corner, 0, V, 3, 2), 0) << "a large element elsewhere does not count";
    EXPECT_EQ(MatrixPower(A, 3, V, 3, 1), 3);
    EXPECT_EQ(V[4], large);
}

TEST(MatrixPower, ScalesTheSquareAndThenTheProductEachOnItsOwn) {
    double V[9];
    // The square, 1e100, stays below the limit; the product with A, 1e150, passes it.
    const double half[9] = {1, 0, 0, 0, 1e50, 0, 0, 0, 1};
    EXPECT_EQ(MatrixPower(half, 0, V, 3, 3), 140);
    EXPECT_DOUBLE_EQ(V[4], 1e10);
    EXPECT_DOUBLE_EQ(V[0], 1e-140);
    // The square, 1e220, is scaled to 1e80, and the product, 1e190, once more.
    const double large[9] = {1, 0, 0, 0, 1e110, 0, 0, 0, 1};
    EXPECT_EQ(MatrixPower(large, 0, V, 3, 3), 280);
    EXPECT_DOUBLE_EQ(V[4], 1e50);
    // The product, 1e135, stays below the limit, and the exponents add up.
    const double small[9] = {1, 0, 0, 0, 1e45, 0, 0, 0, 1};
    EXPECT_EQ(MatrixPower(small, 5, V, 3, 3), 15);
    EXPECT_DOUBLE_EQ(V[4], 1e135);
}

TEST(MatrixRenormalize, ScalesEveryElement) {
    double V[4] = {1e140, -1e140, 0, 1};
    EXPECT_EQ(MatrixRenormalize(V, 2, 5), 145);
    EXPECT_DOUBLE_EQ(V[0], 1);
    EXPECT_DOUBLE_EQ(V[1], -1);
    EXPECT_EQ(V[3], 1e-140);
}

TEST(SeriesLog1p, IsTheLogarithmOnBothSidesOfItsLimit) {
    EXPECT_EQ(SeriesLog1p(0.0), 0.0);
    for (double x : {-0.5, -0.1000001, -0.1, -0.05, 1e-18, 0.05, 0.1, 0.1000001, 2.0})
        EXPECT_NEAR(SeriesLog1p(x), std::log1p(x), 2e-15 * std::fabs(std::log1p(x)) + 1e-300) << x;
    EXPECT_EQ(SeriesLog1p(0.2), std::log(1.0 + 0.2));
    // The limits themselves belong to the series, whose digits differ from those of the logarithm.
    EXPECT_EQ(SeriesLog1p(0.1), 0x1.8663f793c46c8p-4);
    EXPECT_EQ(SeriesLog1p(-0.1), -0x1.af8e8210a415ep-4);
}

// The exact sum that SmirnovUpperTail evaluates by logarithms.
double ExactTail(std::int32_t n, double x) {
    using orvanth::test::Wide;
    const Wide wx = x, wn = n;
    Wide binomial = 1, sum = 0;
    for (std::int32_t j = 0; j <= n; ++j) {
        const Wide rest = 1 - wx - Wide(j) / wn;
        if (rest < 0) break;
        if (j > 0) sum += binomial * pow(wx + Wide(j) / wn, j - 1) * pow(rest, n - j);
        binomial = binomial * (n - j) / (j + 1);
    }
    return static_cast<double>(pow(1 - wx, n) + wx * sum);
}

TEST(SmirnovUpperTail, IsTheExactOneSidedSum) {
    for (std::int32_t n : {10, 100, 300, 500})
        for (double w : {2.2, 4.0, 9.0}) {
            const double x = std::sqrt(w / n);
            EXPECT_NEAR(SmirnovUpperTail(n, x) / ExactTail(n, x), 1, 5e-12) << n << " " << w;
        }
}

// The sum as written down, from jmax / divisor outward until a term is below `negligible` of the sum.
double PlainTail(std::int32_t n, double x, std::int32_t divisor, double negligible) {
    const double nd = n;
    std::int32_t jmax = static_cast<std::int32_t>(nd * (1 - x));
    if ((1 - x) - jmax / nd <= 0) --jmax;
    const std::int32_t jdiv = jmax / divisor;
    const auto term = [&](std::int32_t j, double logBinomial) {
        const double q = j / nd + x;
        return std::exp(std::log(q) * (j - 1) + logBinomial + SeriesLog1p(-q) * (n - j));
    };
    const double central = LogFactorial(n) - LogFactorial(jdiv + 1) - LogFactorial(n - jdiv - 1);
    double sum = 0, logBinomial = central;
    for (std::int32_t j = jdiv + 1; j <= jmax; ++j) {
        const double t = term(j, logBinomial);
        sum += t;
        logBinomial += std::log((nd - j) / (j + 1));
        if (sum * negligible >= t) break;
    }
    logBinomial = central + std::log((jdiv + 1) / (nd - jdiv));
    for (std::int32_t j = jdiv; j > 0; --j) {
        const double t = term(j, logBinomial);
        sum += t;
        logBinomial += std::log(j / (nd - j + 1));
        if (sum * negligible >= t) break;
    }
    return std::exp(SeriesLog1p(-x) * n) + sum * x;
}

TEST(SmirnovUpperTail, TheSumStartsAtAThirdUpToThreeThousandAndAtTheMiddleAbove) {
    for (double x : {0.03, 0.0447, 0.06}) {
        EXPECT_EQ(SmirnovUpperTail(3000, x), PlainTail(3000, x, 3, 1e-12)) << x;
        EXPECT_EQ(SmirnovUpperTail(3001, x), PlainTail(3001, x, 2, 1e-12)) << x;
        EXPECT_NE(SmirnovUpperTail(3000, x), PlainTail(3000, x, 2, 1e-12)) << x;
        EXPECT_NE(SmirnovUpperTail(3001, x), PlainTail(3001, x, 3, 1e-12)) << x;
    }
}

TEST(SmirnovUpperTail, ATermBelowTenToTheMinusTwelveOfTheSumEndsADirection) {
    for (double negligible : {9e-13, 2e-12, 1e-11, 1e-13}) {
        int differ = 0;
        for (double x : {0.04, 0.05, 0.06, 0.07, 0.08}) {
            EXPECT_EQ(SmirnovUpperTail(1000, x), PlainTail(1000, x, 3, 1e-12)) << x;
            differ += SmirnovUpperTail(1000, x) != PlainTail(1000, x, 3, negligible);
        }
        EXPECT_GT(differ, 0) << "the limit has to show in some of the values: " << negligible;
    }
}

TEST(SmirnovUpperTail, TakesTheAsymptoticFormAboveTwoHundredThousand) {
    const double x = std::sqrt(3.0 / 200000);
    EXPECT_NE(SmirnovUpperTail(200000, x), SmirnovUpperTailAsymptotic(200000, x));
    EXPECT_EQ(SmirnovUpperTail(200001, x), SmirnovUpperTailAsymptotic(200001, x));
    EXPECT_NEAR(SmirnovUpperTail(200000, x) / SmirnovUpperTailAsymptotic(200000, x), 1, 1e-6);
    EXPECT_EQ(SmirnovUpperTailAsymptotic(10, 1.0), 0.0);
}

TEST(KolmogorovSpecial, CutOffsOfTheTailsDiffer) {
    const std::int32_t n = 1000;
    const auto at = [&](double w) { return std::sqrt(w / n); };
    EXPECT_EQ(KolmogorovCumulativeSpecial(n, at(18.001)), 1.0);
    EXPECT_FALSE(KolmogorovCumulativeSpecial(n, at(17.999)));
    EXPECT_FALSE(KolmogorovComplementSpecial(n, at(18.001)));
    EXPECT_FALSE(KolmogorovComplementSpecial(n, at(369.999)));
    EXPECT_EQ(KolmogorovComplementSpecial(n, at(370.001)), 0.0);
    EXPECT_EQ(KolmogorovComplementSpecial(n, at(0.0273999)), 1.0);
    EXPECT_FALSE(KolmogorovComplementSpecial(n, at(0.0274001)));
    EXPECT_FALSE(KolmogorovCumulativeSpecial(n, at(0.0273)));
}

TEST(KolmogorovSpecial, TheLowestPieceChangesFromTableToLogarithmsAtTwentyOne) {
    for (std::int32_t n : {20, 21}) {
        const double x = 0.9 / n, t = 2 * x - 1.0 / n;
        const double table = std::pow(t, n) * std::tgamma(n + 1.0);
        const double lower = KolmogorovCumulativeSpecial(n, x).value();
        EXPECT_NEAR(lower / table, 1, 1e-12) << n;
        EXPECT_EQ(KolmogorovComplementSpecial(n, x), 1 - lower);
    }
    const double t20 = 2 * 0.045 - 1.0 / 20, t21 = 2 * 0.045 - 1.0 / 21;
    EXPECT_EQ(KolmogorovCumulativeSpecial(20, 0.045), std::pow(t20, 20) * FactorialTable[20]);
    EXPECT_EQ(KolmogorovCumulativeSpecial(21, 0.045), std::exp(LogFactorial(21) + 21 * std::log(t21)));
}

TEST(KolmogorovSpecial, OneMinusOneOverNBelongsToTheUpperForm) {
    const double x = 1.0 - 1.0 / 5;
    EXPECT_EQ(KolmogorovCumulativeSpecial(5, x), 1.0 - 2.0 * std::pow(1.0 - x, 5));
    EXPECT_EQ(KolmogorovComplementSpecial(5, x), 2.0 * std::pow(1.0 - x, 5));
    EXPECT_EQ(KolmogorovCumulativeSpecial(2, 0.5), 0.5);
}

TEST(SmirnovUpperTail, TheAsymptoticFormIsNeverAboveOne) {
    const std::int32_t n = 200001;
    EXPECT_EQ(SmirnovUpperTail(n, 0), 1.0) << "the factor of the exponential is 1 + 1 / (18 n)";
    EXPECT_LT(SmirnovUpperTail(n, 1e-3), 1.0);
    EXPECT_EQ(SmirnovUpperTail(n, 0.5), 0.0) << "the factor is negative";
}

TEST(PelzGood, IsNotClampedToOne) { EXPECT_GT(PelzGood(6, 0.85), 1.0); }

TEST(PelzGood, ApproachesTheLimitDistribution) {
    // Kolmogorov's limit at z = 1: 0.7300003283226455.
    const std::int32_t n = 2000000000;
    EXPECT_NEAR(PelzGood(n, 1 / std::sqrt(static_cast<double>(n))), 0.7300003283226455, 2e-5);
}

}  // namespace
