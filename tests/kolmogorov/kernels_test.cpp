// The algorithms behind the two exports, each against a plain form of itself or a known value.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>

#include "kolmogorov/durbin_matrix.hpp"
#include "kolmogorov/kolmogorov.hpp"
#include "kolmogorov/log_factorial.hpp"
#include "kolmogorov/pelz_good.hpp"
#include "kolmogorov/pomeranz.hpp"
#include "kolmogorov/tails.hpp"

namespace {

using namespace orvanth::kolmogorov;

constexpr unsigned kSeed = 20240119;

TEST(LogFactorial, TableHoldsItsStoredDecimals) {
    EXPECT_EQ(LogFactorial(0), 0.0);
    EXPECT_EQ(LogFactorial(1), 0.0);
    EXPECT_EQ(LogFactorial(2), 0.6931471805599453);
    EXPECT_EQ(LogFactorial(30), 74.65823634883016);
    for (int i = 0; i <= 30; ++i) {
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

TEST(MatrixPower, ScalesByTheCentralElementAlone) {
    const double large = 1e100;
    double V[9];
    std::int32_t e = 0;
    const double A[9] = {1, 0, 0, 0, large, 0, 0, 0, 1};
    MatrixPower(A, 0, V, &e, 3, 2);
    EXPECT_EQ(e, 140);
    EXPECT_DOUBLE_EQ(V[4], 1e60);
    EXPECT_DOUBLE_EQ(V[0], 1e-140);
    const double corner[9] = {large, 0, 0, 0, 1, 0, 0, 0, 1};
    MatrixPower(corner, 0, V, &e, 3, 2);
    EXPECT_EQ(e, 0) << "a large element elsewhere does not count";
    MatrixPower(A, 3, V, &e, 3, 1);
    EXPECT_EQ(e, 3);
    EXPECT_EQ(V[4], large);
}

TEST(MatrixRenormalize, ScalesEveryElement) {
    double V[4] = {1e140, -1e140, 0, 1};
    std::int32_t e = 5;
    MatrixRenormalize(V, 2, &e);
    EXPECT_EQ(e, 145);
    EXPECT_DOUBLE_EQ(V[0], 1);
    EXPECT_DOUBLE_EQ(V[1], -1);
    EXPECT_EQ(V[3], 1e-140);
}

struct Limits {
    std::vector<double> A, floors, ceilings;
    Limits(std::int32_t n, double t) : A(static_cast<std::size_t>(2 * n + 3)), floors(A.size()), ceilings(A.size()) {
        CalcFloorCeil(n, t, A.data(), floors.data(), ceilings.data());
    }
};

TEST(CalcFloorCeil, AreFloorAndCeilingOfThePoints) {
    const std::int32_t n = 12;
    for (double t : {0.6, 0.75, 1.7, 0.3, 2.25, 5.01}) {
        const Limits limits(n, t);
        for (std::size_t i = 2; i < limits.A.size() - 1; ++i) {
            // Every other point is itself t apart from a whole number, and rounding hides it.
            const double down = limits.A[i] - t, up = limits.A[i] + t;
            if (std::fabs(down - std::round(down)) > 1e-9) {
                EXPECT_EQ(limits.floors[i], std::floor(down)) << t << " " << i;
            }
            if (std::fabs(up - std::round(up)) > 1e-9) {
                EXPECT_EQ(limits.ceilings[i], std::ceil(up)) << t << " " << i;
            }
        }
        EXPECT_EQ(limits.A.back(), n);
    }
}

TEST(CalcFloorCeil, WholeTTakesTheThirdCase) {
    const Limits limits(10, 3.0);
    EXPECT_EQ(limits.A[2], 0.0);
    EXPECT_EQ(limits.A[3], 1.0);
    EXPECT_EQ(limits.floors[4], 2 - 3 - 1);
    EXPECT_EQ(limits.floors[5], 2 - 3);
    EXPECT_EQ(limits.ceilings[4], 2 + 3 - 1);
    EXPECT_EQ(limits.ceilings[5], 2 + 3);
}

TEST(CalcFloorCeil, AHalfTakesTheSecondCase) {
    const Limits limits(10, 3.5);
    EXPECT_EQ(limits.A[2], 0.5);
    EXPECT_EQ(limits.A[3], 0.5);
    EXPECT_EQ(limits.floors[4], 2 - 3 - 1);
    EXPECT_EQ(limits.ceilings[1], 4);
}

// The recursion as written down, one sum after the other.
double PlainPomeranz(std::int32_t n, double x) {
    const double scale = std::ldexp(1.0, 350), t = n * x;
    const std::size_t width = static_cast<std::size_t>(n) + 2;
    const Limits limits(n, t);
    const auto& A = limits.A;
    std::vector<std::vector<double>> V(2, std::vector<double>(width)), H(4, std::vector<double>(width));
    const double q[3] = {(2.0 * A[2]) / n, (1.0 - 2.0 * A[2]) / n, A[2] / n};
    for (std::size_t r = 0; r < 4; ++r) {
        H[r][0] = 1.0;
        for (std::size_t j = 1; j < width && r < 3; ++j) H[r][j] = (H[r][j - 1] * q[r]) / static_cast<double>(j);
    }
    V[1][1] = scale;
    std::size_t r1 = 0, r2 = 1;
    std::int32_t count = 1;
    for (std::size_t i = 2; i < A.size(); ++i) {
        const std::int32_t jlow = std::max(static_cast<std::int32_t>(2 + limits.floors[i]), 1);
        const std::int32_t jup = std::min(static_cast<std::int32_t>(limits.ceilings[i]), n + 1);
        const std::int32_t klow = std::max(static_cast<std::int32_t>(2 + limits.floors[i - 1]), 1);
        const std::int32_t kup0 = static_cast<std::int32_t>(limits.ceilings[i - 1]);
        const double w = (A[i] - A[i - 1]) / n;
        std::size_t s = 0;
        while (!(std::fabs(w - H[s][1]) <= 1e-15)) ++s;
        r1 = 1 - r1;
        r2 = 1 - r2;
        double smallest = scale;
        for (std::int32_t j = jlow; j <= jup; ++j) {
            double sum = 0;
            for (std::int32_t k = std::min(kup0, j); k >= klow; --k)
                sum += V[r1][static_cast<std::size_t>(k)] * H[s][static_cast<std::size_t>(j - k)];
            V[r2][static_cast<std::size_t>(j)] = sum;
            smallest = std::min(smallest, sum);
        }
        if (smallest < 1e-280) {
            for (std::int32_t j = jlow; j <= jup; ++j) V[r2][static_cast<std::size_t>(j)] *= scale;
            ++count;
        }
    }
    const double w = std::log(V[r2][width - 1]) + (LogFactorial(n) - (count * 350) * 0.6931471805599453);
    return w >= 0 ? 1.0 : std::exp(w);
}

TEST(Pomeranz, HasTheBitsOfThePlainRecursion) {
    std::mt19937_64 random(kSeed);
    for (int trial = 0; trial < 300; ++trial) {
        const std::int32_t n = std::uniform_int_distribution<std::int32_t>(2, 140)(random);
        double x = std::sqrt(std::uniform_real_distribution<double>(0.76, 3.99)(random) / n);
        if (trial % 3 == 0) x = std::round(n * x) / n;          // n x whole
        if (trial % 3 == 1) x = (std::floor(n * x) + 0.5) / n;  // n x a half
        if (x * n < 1 || x >= 1) continue;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Pomeranz(n, x)), std::bit_cast<std::uint64_t>(PlainPomeranz(n, x)))
            << "seed " << kSeed << " n " << n << " x " << x;
    }
}

TEST(Pomeranz, ALogarithmAtOrAboveZeroGivesExactlyOne) {
    int ones = 0;
    for (std::int32_t n = 10; n <= 60; ++n) {
        const double p = Pomeranz(n, 0.95);
        EXPECT_LE(p, 1.0) << n;
        EXPECT_NEAR(p, 1.0, 1e-12) << n;
        ones += p == 1.0;
    }
    EXPECT_GT(ones, 5);
}

TEST(Pomeranz, AgreesWithTheMatrix) {
    for (std::int32_t n : {5, 20, 60, 140})
        for (double w : {0.6, 0.754693, 1.0}) {
            const double x = std::sqrt(w / n);
            EXPECT_NEAR(Pomeranz(n, x), DurbinMatrix(n, x), 1e-12) << n << " " << w;
        }
}

TEST(SeriesLog1p, IsTheLogarithmOnBothSidesOfItsLimit) {
    EXPECT_EQ(SeriesLog1p(0.0), 0.0);
    for (double x : {-0.5, -0.1000001, -0.1, -0.05, 1e-18, 0.05, 0.1, 0.1000001, 2.0})
        EXPECT_NEAR(SeriesLog1p(x), std::log1p(x), 2e-15 * std::fabs(std::log1p(x)) + 1e-300) << x;
    EXPECT_EQ(SeriesLog1p(0.2), std::log(1.0 + 0.2));
}

// The exact sum that SmirnovUpperTail evaluates by logarithms.
double ExactTail(std::int32_t n, double x) {
    using Wide = boost::multiprecision::cpp_bin_float_50;
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
    EXPECT_EQ(KolmogorovComplementSpecial(n, at(18.001)), -1.0);
    EXPECT_EQ(KolmogorovComplementSpecial(n, at(370.001)), 0.0);
    EXPECT_EQ(KolmogorovComplementSpecial(n, at(0.0273)), 1.0);
    EXPECT_EQ(KolmogorovCumulativeSpecial(n, at(0.0273)), -1.0);
}

TEST(KolmogorovSpecial, TheLowestPieceChangesFromTableToLogarithmsAtTwentyOne) {
    for (std::int32_t n : {20, 21}) {
        const double x = 0.9 / n, t = 2 * x - 1.0 / n;
        const double table = std::pow(t, n) * std::tgamma(n + 1.0);
        EXPECT_NEAR(KolmogorovCumulativeSpecial(n, x) / table, 1, 1e-12) << n;
        EXPECT_EQ(KolmogorovComplementSpecial(n, x), 1 - KolmogorovCumulativeSpecial(n, x));
    }
}

TEST(KolmogorovSpecial, OneMinusOneOverNBelongsToTheUpperForm) {
    const double x = 1.0 - 1.0 / 5;
    EXPECT_EQ(KolmogorovCumulativeSpecial(5, x), 1.0 - 2.0 * std::pow(1.0 - x, 5));
    EXPECT_EQ(KolmogorovComplementSpecial(5, x), 2.0 * std::pow(1.0 - x, 5));
    EXPECT_EQ(KolmogorovCumulativeSpecial(2, 0.5), 0.5);
}

TEST(PelzGood, IsReturnedAsItStands) { EXPECT_GT(PelzGood(6, 0.85), 1.0); }

TEST(PelzGood, ApproachesTheLimitDistribution) {
    // Kolmogorov's limit at z = 1: 0.7300003283226455.
    const std::int32_t n = 2000000000;
    EXPECT_NEAR(PelzGood(n, 1 / std::sqrt(static_cast<double>(n))), 0.7300003283226455, 2e-5);
}

}  // namespace
