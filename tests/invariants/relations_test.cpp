// What one family says of another, at random arguments. The tolerances are those of docs/accuracy for the two sides
// together.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

#include "invariants/laws.hpp"

namespace orvanth::test {
namespace {

class Relations : public testing::Test {
protected:
    Relations()
        : seed_(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()) + 1970u), dice_(seed_) {
        std::printf("  seed %u\n", seed_);
    }
    // Relative, and below the smallest normal double not at all.
    static void ExpectClose(double one, double other, double tolerance) {
        EXPECT_NEAR(one, other, tolerance * std::fabs(other) + 1e-300);
    }
    static void ExpectSameBits(double one, double other) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(one), std::bit_cast<std::uint64_t>(other)) << one << " and " << other;
    }
    TailFlag Tail() { return dice_.Unit() < 0.5 ? 0 : 1; }

    unsigned seed_;
    Dice dice_;
};

constexpr int kPoints = 500;

TEST_F(Relations, BetaIsItsOwnMirrorImage) {
    for (int i = 0; i < kPoints; ++i) {
        const double a = dice_.Degrees(), b = dice_.Degrees();
        const double x = std::ldexp(dice_.Whole(1, 1048575), -20);  // 1 - x is exact
        ExpectClose(BetaCDF(x, a, b, 0), BetaCDF(1 - x, b, a, 1), 1e-11);
        ExpectClose(BetaPDF(x, a, b), BetaPDF(1 - x, b, a), 1e-11);
        ExpectClose(Beta(a, b), Beta(b, a), 1e-12);
    }
}

TEST_F(Relations, FisherFIsBeta) {
    for (int i = 0; i < kPoints; ++i) {
        const double df1 = dice_.Whole(1, 300), df2 = dice_.Whole(1, 300), x = dice_.PowerOfTen(-1.3, 1.3);
        const TailFlag tail = Tail();
        ExpectClose(FisherFCDF(x, df1, df2, tail), BetaCDF(df1 * x / (df1 * x + df2), df1 / 2, df2 / 2, tail), 1e-11);
        ExpectClose(FisherFCDF(x, df1, df2, tail), FisherFCDF(1 / x, df2, df1, !tail), 1e-11);
    }
}

TEST_F(Relations, ChiSquaredIsGammaAndErlangIsPoisson) {
    for (int i = 0; i < kPoints; ++i) {
        const double df = dice_.Degrees(), x = df * dice_.PowerOfTen(-0.5, 0.5);
        const TailFlag tail = Tail();
        ExpectClose(ChiSquaredCDF(x, df, tail), GammaCDF(x, df / 2, 2, tail), 1e-12);
        ExpectClose(ChiSquaredPDF(x, df), GammaPDF(x, df / 2, 2), 1e-12);
        ExpectClose(ChiSquaredCDF(x, df, tail), (tail ? GammaRegularizedC : GammaRegularized)(df / 2, x / 2), 1e-12);
        // One step of the recurrence: P(a + 1, x) = P(a, x) - x / a P'(a, x).
        const double a = df / 2, half = x / 2;
        EXPECT_NEAR(GammaRegularized(a + 1, half), GammaRegularized(a, half) - half / a * GammaDerivative(a, half),
                    1e-13);
    }
}

TEST_F(Relations, OneDegreeOfFreedomIsTheSquareOfANormal) {
    for (int i = 0; i < kPoints; ++i) {
        const double z = dice_.Between(0.01, 8);
        ExpectClose(ChiSquaredCDF(z * z, 1, 1), 2 * NormalCDF(z, 0, 1, 1), 1e-12);
        ExpectClose(2 * NormalCDF(z, 0, 1, 1), ErfC(z / std::numbers::sqrt2), 1e-13);
    }
}

TEST_F(Relations, StudentTIsSymmetricAndItsSquareIsF) {
    for (int i = 0; i < kPoints; ++i) {
        const double df = dice_.Degrees(), t = dice_.PowerOfTen(-2, 1.5);
        ExpectSameBits(StudentTCDF(t, df, 1), StudentTCDF(-t, df, 0));
        ExpectSameBits(StudentTPDF(t, df), StudentTPDF(-t, df));
        ExpectClose(2 * StudentTCDF(t, df, 1), FisherFCDF(t * t, 1, df, 1), 1e-11);
    }
}

TEST_F(Relations, NormalMovesWithItsParameters) {
    for (int i = 0; i < kPoints; ++i) {
        const double z = dice_.Between(-8, 8), sd = std::ldexp(1.0, static_cast<int>(dice_.Whole(-20, 20)));
        const TailFlag tail = Tail();
        ExpectSameBits(NormalCDF(z, 0, 1, tail), NormalCDF(-z, 0, 1, !tail));
        ExpectSameBits(NormalCDF(z, 0, 1, tail), NormalCDF(z * sd, 0, sd, tail));
    }
}

TEST_F(Relations, BinomialIsBeta) {
    for (int i = 0; i < kPoints; ++i) {
        const double n = dice_.Whole(1, 1000), k = dice_.Whole(0, n - 1), p = dice_.Between(0.001, 0.999);
        ExpectClose(BinomialCDF(k, n, p, 1), BetaCDF(p, k + 1, n - k, 0), 1e-11);
        ExpectClose(BinomialCDF(k, n, p, 0), BetaCDF(p, k + 1, n - k, 1), 1e-11);
        // Neighbouring probabilities have a rational ratio.
        ExpectClose(BinomialPDF(k + 1, n, p), BinomialPDF(k, n, p) * ((n - k) / (k + 1) * (p / (1 - p))), 1e-11);
    }
}

TEST_F(Relations, TheBoundsOfAProportionAreQuantilesOfBeta) {
    for (int i = 0; i < kPoints; ++i) {
        const double n = dice_.Whole(2, 500), k = dice_.Whole(1, n - 1), alpha = dice_.Between(0.001, 0.4);
        ExpectClose(BinomialCDF(k - 1, n, BinomialPS(alpha, k, n, 0), 1), alpha, 1e-9);
        ExpectClose(BinomialCDF(k, n, BinomialPS(alpha, k, n, 1), 0), alpha, 1e-9);
    }
}

TEST_F(Relations, HypergeometricExchangesSampleAndSuccesses) {
    for (int i = 0; i < kPoints; ++i) {
        const double N = dice_.Whole(1, 2000), r = dice_.Whole(0, N), n = dice_.Whole(0, N);
        const double x = dice_.Whole(std::max(0.0, n + r - N), std::min(n, r));
        ExpectClose(HypergeometricPDF(x, r, n, N), HypergeometricPDF(x, n, r, N), 1e-13);
        ExpectClose(HypergeometricPDF(x, r, n, N), HypergeometricPDF(n - x, N - r, n, N), 1e-13);
        ExpectClose(HypergeometricCDF(x, r, n, N, 0), HypergeometricCDF(x, n, r, N, 0), 1e-12);
    }
}

TEST_F(Relations, NoncentralWithOddsOneIsCentral) {
    for (int i = 0; i < kPoints; ++i) {
        const int N = static_cast<int>(dice_.Whole(1, 400)), n = static_cast<int>(dice_.Whole(0, N)),
                  m = static_cast<int>(dice_.Whole(0, N));
        const int x = static_cast<int>(dice_.Whole(std::max(0, n + m - N), std::min(n, m)));
        // The table ends where an entry is below 1e-15 of the largest.
        EXPECT_NEAR(FNCHypergeometricCDF(x, n, m, N, 1, 0, 0), HypergeometricCDF(x, m, n, N, 0), 1e-12);
        double mean = 0, variance = 0;
        FNCHypergeometricMoments(n, m, N, 1, &mean, &variance);
        EXPECT_NEAR(mean, static_cast<double>(n) * m / N, 1e-7 * (1 + mean));
    }
}

TEST_F(Relations, NoncentralExchangesItsSidesWithTheOdds) {
    for (int i = 0; i < kPoints; ++i) {
        const int N = static_cast<int>(dice_.Whole(2, 300)), n = static_cast<int>(dice_.Whole(0, N)),
                  m = static_cast<int>(dice_.Whole(0, N));
        const int x = static_cast<int>(dice_.Whole(std::max(0, n + m - N), std::min(n, m)));
        const double odds = dice_.PowerOfTen(-2, 2);
        // What is not drawn of m is drawn of N - m, with the reciprocal odds.
        EXPECT_NEAR(FNCHypergeometricCDF(x, n, m, N, odds, 0, 0),
                    FNCHypergeometricCDF(n - x - 1, n, N - m, N, 1 / odds, 1, 0), 1e-12);
    }
}

TEST_F(Relations, TukeyAndDunnettOfTwoGroupsAreStudentT) {
    for (int i = 0; i < 60; ++i) {
        const double df = dice_.Between(3, 999), x = dice_.Between(0.2, 6), p = dice_.Between(0.05, 0.99);
        const double two = 1 - 2 * StudentTCDF(x, df, 1);
        EXPECT_NEAR(MCaCDF(x, 2, df, kEqual.lambda, 0), two, 2e-7);
        EXPECT_NEAR(MCcCDF(x, 2, df, kEqual.lambda, 0), two, 2e-7);
        EXPECT_NEAR(MCbCDF(x, 2, df, kEqual.lambda, 0), StudentTCDF(x, df, 0), 2e-7);
        ExpectClose(MCaICDF(p, 2, df, kEqual.lambda, 0), StudentTICDF((1 - p) / 2, df, 1), 1e-9);
        ExpectClose(MCcICDF(p, 2, df, kEqual.lambda, 0), StudentTICDF((1 - p) / 2, df, 1), 1e-9);
        EXPECT_NEAR(MCbICDF(p, 2, df, kEqual.lambda, 0), StudentTICDF(1 - p, df, 1), 1e-9 * (1 + x));
    }
}

TEST_F(Relations, MoreGroupsAreFartherApart) {
    for (int i = 0; i < 60; ++i) {
        const double df = dice_.Between(3, 999), x = dice_.Between(0.5, 5);
        const int k = static_cast<int>(dice_.Whole(2, kMostGroups - 1));
        for (auto cdf : {MCaCDF, MCbCDF, MCcCDF})
            EXPECT_LE(cdf(x, k + 1, df, kEqual.lambda, 0), cdf(x, k, df, kEqual.lambda, 0) + 1e-9);
        // All pairs are more comparisons than those with one control, and two sides more than one.
        EXPECT_LE(MCaCDF(x, k, df, kEqual.lambda, 0), MCcCDF(x, k, df, kEqual.lambda, 0) + 4e-7);
        EXPECT_LE(MCcCDF(x, k, df, kEqual.lambda, 0), MCbCDF(x, k, df, kEqual.lambda, 0) + 4e-7);
    }
}

TEST_F(Relations, ErrorFunctionsInvertEachOther) {
    for (int i = 0; i < kPoints; ++i) {
        const double x = dice_.Between(-4, 4), z = dice_.PowerOfTen(-300, 0);
        ExpectSameBits(Erf(-x), -Erf(x));
        EXPECT_NEAR(Erf(x) + ErfC(x), 1, 1e-15);
        ExpectClose(ErfC(InverseErfC(z)), z, 3e-13);  // the exponent of erfc multiplies an error by up to 1400
        ExpectClose(InverseErf(Erf(x / 4)), x / 4, 1e-14);
        const double p = dice_.PowerOfTen(-16, 2);
        ExpectClose(std::exp(LogXplus1(p)) - 1, p, 3e-16 / p + 1e-13);
    }
}

TEST_F(Relations, KolmogorovOfOneObservationIsALine) {
    for (int i = 0; i < kPoints; ++i) {
        const double x = dice_.Between(0.5, 1);
        EXPECT_NEAR(KolmogorovCDF(x, 1, 0), 2 * x - 1, 1e-15);
        const double n = dice_.Whole(1, 140), low = dice_.Between(0.5, 1) / n;
        ExpectClose(KolmogorovCDF(low, n, 0), std::exp(GammaLn(n + 1) + n * std::log(2 * low - 1 / n)), 1e-11);
    }
}

}  // namespace
}  // namespace orvanth::test
