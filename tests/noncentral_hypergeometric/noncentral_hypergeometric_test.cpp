#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "frame/failure.hpp"
#include "frame/load_state.hpp"
#include "noncentral_hypergeometric/exact_sums.hpp"
#include "noncentral_hypergeometric/fnc_probability.hpp"
#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "noncentral_hypergeometric/log_factorial.hpp"
#include "noncentral_hypergeometric/wrap.hpp"
#include "orvanth/noncentral_hypergeometric.h"
#include "support/heap.hpp"

namespace {

using namespace orvanth;
using namespace orvanth::test;

constexpr unsigned kSeed = 20240122;

TEST(FNCHypergeometricCDF, AgreesWithExactRationalSums) {
    std::mt19937_64 random(kSeed);
    double worst = 0, worstMoment = 0;
    for (int trial = 0; trial < 200; ++trial) {
        const std::int32_t N = 2 + static_cast<std::int32_t>(random() % 90);
        const std::int32_t n = 1 + static_cast<std::int32_t>(random() % static_cast<unsigned>(N - 1));
        const std::int32_t m = 1 + static_cast<std::int32_t>(random() % static_cast<unsigned>(N - 1));
        const double odds = std::exp2(static_cast<double>(random() % 17) - 8);
        const std::vector<Rational> p = ExactProbabilities(n, m, N, Rational(odds));
        const std::int32_t lo = std::max(n + m - N, 0), hi = std::min(n, m);
        Rational lower = 0, mean = 0, square = 0;
        for (std::int32_t x = lo; x <= hi; ++x) {
            const Rational& px = p[static_cast<std::size_t>(x - lo)];
            lower += px;
            mean += x * px;
            square += x * Rational(x) * px;
            const double want = static_cast<double>(lower), upper = static_cast<double>(Rational(1) - lower);
            const double got = FNCHypergeometricCDF(x, n, m, N, odds, 0, 0);
            const double gotUpper = FNCHypergeometricCDF(x, n, m, N, odds, 1, 0);
            // The tail without the mean is summed by itself and keeps its digits.
            if (want < 0.4) worst = std::max(worst, std::fabs(got / want - 1));
            if (upper < 0.4 && upper > 0) worst = std::max(worst, std::fabs(gotUpper / upper - 1));
            EXPECT_NEAR(got + gotUpper, 1, 4e-16);
        }
        double gotMean = 0, gotVariance = 0;
        FNCHypergeometricMoments(n, m, N, odds, &gotMean, &gotVariance);
        const double variance = static_cast<double>(square - mean * mean);
        EXPECT_NEAR(gotMean, static_cast<double>(mean), 1e-6 * (1 + static_cast<double>(mean)))
            << "seed " << kSeed << " n " << n << " m " << m << " N " << N << " odds " << odds;
        EXPECT_NEAR(gotVariance, variance, 1e-6 * (1 + variance));
        if (variance > 1e-3) worstMoment = std::max(worstMoment, std::fabs(gotMean / static_cast<double>(mean) - 1));
    }
    std::printf("  seed %u; worst relative error of the smaller tail %.1e, of the mean %.1e\n", kSeed, worst,
                worstMoment);
    EXPECT_LT(worst, 2e-13);
    EXPECT_LT(worstMoment, 2e-8);
}

TEST(FNCHypergeometricCDF, OutsideTheTableIsExact) {
    EXPECT_EQ(FNCHypergeometricCDF(2, 10, 8, 15, 2, 0, 1e-8), 0.0) << "one below the first possible value";
    EXPECT_EQ(FNCHypergeometricCDF(2, 10, 8, 15, 2, 1, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricCDF(8, 10, 8, 15, 2, 1, 1e-8), 0.0) << "the last possible value";
    EXPECT_EQ(FNCHypergeometricCDF(8, 10, 8, 15, 2, 0, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricCDF(INT32_MAX, 10, 8, 15, 2, 0, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricCDF(INT32_MIN, 10, 8, 15, 2, 0, 1e-8), 0.0);
}

TEST(FNCHypergeometricCDF, ALargeAccuracyCutsTheTableShort) {
    std::vector<double> storage(101);
    const FNCTable table = FNCMakeTable(FNCRecord(100, 100, 400, 2, 100), 0.1, storage);
    EXPECT_LT(table.xlast - table.xfirst, 60);
    EXPECT_EQ(FNCHypergeometricCDF(table.xlast + 5, 100, 100, 400, 2, 1, 100), 0.0);
    EXPECT_EQ(FNCHypergeometricCDF(table.xfirst - 5, 100, 100, 400, 2, 0, 100), 0.0);
}

TEST(FNCHypergeometric, ADeviationThatRoundsToNoEntryLeavesTheMode) {
    // A support of 301 points, all but 2e-6 of the probability at its upper end.
    const FNCRecord record(300, 400, 1000, 1e9, 1e-8);
    ASSERT_LT(std::sqrt(FNCVariance(record)) * FNCNumSD(1e-8) + 0.5, 1);
    EXPECT_EQ(FNCTableLength(record), 1);
    for (double p : {0.0, 0.5, 1.0}) EXPECT_EQ(FNCHypergeometricICDF(p, 300, 400, 1000, 1e9, 0, 1e-8), 300);
    EXPECT_EQ(FNCHypergeometricCDF(300, 300, 400, 1000, 1e9, 0, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricCDF(299, 300, 400, 1000, 1e9, 0, 1e-8), 0.0);
}

TEST(FNCHypergeometric, ExtremeOddsPutTheModeAtTheNearerEndOfTheSupport) {
    EXPECT_EQ(FNCHypergeometricICDF(0, 10, 10, 40, 1e17, 0, 1e-10), 9) << "the first entry below the cutoff";
    EXPECT_EQ(FNCHypergeometricICDF(0.5, 10, 10, 40, 1e17, 0, 1e-10), 10);
    EXPECT_EQ(FNCHypergeometricICDF(-0.3, 6, 6, 7, 2.377993983894137e-16, 0, 1e-3), 5);
    EXPECT_EQ(FNCHypergeometricICDF(0.5, 6, 6, 7, 2.377993983894137e-16, 0, 1e-3), 5);
    EXPECT_NEAR(FNCHypergeometricCDF(0, 10, 10, 40, 1e17, 0, 1e-10), ExactCumulative(0, 10, 10, 40, 1e17), 1e-10);
    EXPECT_NEAR(FNCHypergeometricCDF(0, 10, 10, 40, 1e17, 0, 0) / ExactCumulative(0, 10, 10, 40, 1e17), 1, 1e-13);
    std::mt19937_64 random(kSeed);
    for (int trial = 0; trial < 3000; ++trial) {
        const std::int32_t N = 2 + static_cast<std::int32_t>(random() % (trial % 2 == 0 ? 60 : 100000));
        const std::int32_t n = static_cast<std::int32_t>(random() % static_cast<unsigned>(N + 1));
        const std::int32_t m =
            trial % 3 == 0 ? n : static_cast<std::int32_t>(random() % static_cast<unsigned>(N + 1));
        const double far = std::exp2(static_cast<double>(45 + random() % 60));
        for (double odds : {far, 1 / far})
            for (double p : {-0.1, 0.0, 0.5, 1.0, 1.1}) {
                const double x = FNCHypergeometricICDF(p, n, m, N, odds, 0, 1e-8);
                ASSERT_GE(x, std::max(n + m - N, 0)) << n << " " << m << " " << N << " " << odds << " " << p;
                ASSERT_LE(x, std::min(n, m)) << n << " " << m << " " << N << " " << odds << " " << p;
            }
    }
}

TEST(FNCHypergeometric, WalksEndAtTheLargestInteger) {
    const std::int32_t M = INT32_MAX;
    EXPECT_EQ(FNCHypergeometricCDF(0, M, M, M, 0.5, 0, 1e-8), 0.0);
    EXPECT_EQ(FNCHypergeometricCDF(M, M, M, M, 0.5, 0, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricCDF(M - 1, M, M, M, 0.5, 1, 1e-8), 1.0);
    EXPECT_EQ(FNCHypergeometricICDF(0.5, M, M, M, 0.5, 0, 1e-8), M);
    double mean = 0, variance = 1;
    FNCHypergeometricMoments(M, M, M, 0.5, &mean, &variance);
    EXPECT_EQ(mean, M);
    EXPECT_EQ(variance, 0.0);
    EXPECT_EQ(FNCHypergeometricICDF(0.5, M, M - 1, M, 2, 0, 1e-8), M - 1);
}

TEST(FNCHypergeometric, OddsNearOneAgreeWithExactSumsAtEveryDistance) {
    double worst = 0, worstMean = 0, worstVariance = 0;
    for (int exponent = -16; exponent <= -6; ++exponent)
        for (double digit : {1.0, 2.2, 5.0})
            for (double sign : {-1.0, 1.0}) {
                const double odds = 1 + sign * digit * std::pow(10, exponent);
                for (std::int32_t x : {190, 200, 215})
                    worst = std::max(worst, std::fabs(FNCHypergeometricCDF(x, 500, 400, 1000, odds, 0, 0) /
                                                          ExactCumulative(x, 500, 400, 1000, odds) -
                                                      1));
                double mean = 0, variance = 0;
                FNCHypergeometricMoments(50, 40, 100, odds, &mean, &variance);
                // To first order in odds - 1 the mean moves by as many variances.
                const double central = 50.0 * 40 * 60 * 50 / (100.0 * 100 * 99);
                worstMean = std::max(worstMean, std::fabs(mean - (20 + (odds - 1) * central)));
                worstVariance = std::max(worstVariance, std::fabs(variance - central));
            }
    std::printf("  worst relative error of the tail %.1e, worst error of mean %.1e and variance %.1e\n", worst,
                worstMean, worstVariance);
    EXPECT_LT(worst, 1e-13);
    EXPECT_LT(worstMean, 1e-8);
    EXPECT_LT(worstVariance, 1e-6);
    EXPECT_NEAR(FNCHypergeometricCDF(200, 500, 400, 1000, (0.1 + 0.2) / 0.3, 0, 1e-8), 0.53, 0.005);
}

TEST(FNCHypergeometric, OddsNearOneInTheLargestPopulations) {
    const std::int32_t n = 1471272403, m = 1733452833, N = INT32_MAX;
    const double center = static_cast<double>(n) * m / N;
    for (double distance : {std::ldexp(1.0, -52), 1e-14, 1e-12, 1e-10, 1e-8}) {
        double mean = 0, variance = 0;
        FNCHypergeometricMoments(n, m, N, 1 + distance, &mean, &variance);
        EXPECT_NEAR(mean, center, 10) << distance;
        EXPECT_NEAR(FNCHypergeometricICDF(0.5, n, m, N, 1 + distance, 0, 1e-10), center, 10) << distance;
        EXPECT_NEAR(FNCHypergeometricCDF(static_cast<std::int32_t>(center), n, m, N, 1 + distance, 0, 1e-10), 0.5,
                    1e-3)
            << distance;
    }
}

TEST(FNCHypergeometricICDF, EdgesOfP) {
    EXPECT_EQ(FNCHypergeometricICDF(0, 10, 8, 15, 2, 0, 0), 3);
    EXPECT_EQ(FNCHypergeometricICDF(-1, 10, 8, 15, 2, 0, 0), 3);
    EXPECT_EQ(FNCHypergeometricICDF(1.5, 10, 8, 15, 2, 0, 0), 8);
    EXPECT_EQ(FNCHypergeometricICDF(kNaN, 10, 8, 15, 2, 0, 0), 8);
    EXPECT_LE(FNCHypergeometricICDF(1, 10, 8, 15, 2, 0, 0), 8);
    EXPECT_EQ(FNCHypergeometricICDF(0.25, 50, 80, 150, 2, 1, 1e-8),
              FNCHypergeometricICDF(0.75, 50, 80, 150, 2, 0, 1e-8));
}

TEST(FNCHypergeometricICDF, InvertsTheDistribution) {
    for (double p : {0.01, 0.3, 0.5, 0.77, 0.999}) {
        const double x = FNCHypergeometricICDF(p, 300, 500, 2000, 1.7, 0, 1e-12);
        const std::int32_t k = static_cast<std::int32_t>(x);
        EXPECT_GE(FNCHypergeometricCDF(k, 300, 500, 2000, 1.7, 0, 1e-12), p - 1e-12);
        EXPECT_LT(FNCHypergeometricCDF(k - 1, 300, 500, 2000, 1.7, 0, 1e-12), p + 1e-12);
    }
}

TEST(FNCHypergeometric, TheTailFlagStandsBeforeTheAccuracyAndItsLowByteCounts) {
    const double low = FNCHypergeometricICDF(0.1, 10, 12, 30, 2, 0, 1e-8);
    const double high = FNCHypergeometricICDF(0.1, 10, 12, 30, 2, 1, 1e-8);
    ASSERT_NE(low, high);
    for (std::int32_t x : {4, 8}) {  // below and above the mean
        const double lower = FNCHypergeometricCDF(x, 10, 12, 30, 2, 0, 1e-8);
        const double upper = FNCHypergeometricCDF(x, 10, 12, 30, 2, 1, 1e-8);
        EXPECT_NEAR(lower + upper, 1, 1e-15);
        ASSERT_NE(lower, upper);
        for (TailFlag clear : {0x100, 0x10000, static_cast<TailFlag>(0xFFFFFF00)}) {
            EXPECT_EQ(FNCHypergeometricCDF(x, 10, 12, 30, 2, clear, 1e-8), lower) << clear;
            EXPECT_EQ(FNCHypergeometricICDF(0.1, 10, 12, 30, 2, clear, 1e-8), low) << clear;
        }
        for (TailFlag set : {0x101, 0x80, 2}) {
            EXPECT_EQ(FNCHypergeometricCDF(x, 10, 12, 30, 2, set, 1e-8), upper) << set;
            EXPECT_EQ(FNCHypergeometricICDF(0.1, 10, 12, 30, 2, set, 1e-8), high) << set;
        }
    }
}

TEST(FNCHypergeometric, TheTableEndsAtAThousandthOfTheAccuracy) {
    for (double accuracy : {1e-2, 1e-3, 1e-4, 1e-5, 1e-6}) {
        const FNCRecord record(90, 60, 200, 1.3, accuracy);
        std::vector<double> storage(static_cast<std::size_t>(FNCTableLength(record).value()));
        const FNCTable table = FNCMakeTable(record, accuracy * 0.001, storage);
        ASSERT_GT(table.xfirst, 0) << accuracy;
        EXPECT_EQ(FNCHypergeometricICDF(0, 90, 60, 200, 1.3, 0, accuracy), table.xfirst) << accuracy;
        EXPECT_EQ(FNCHypergeometricICDF(2, 90, 60, 200, 1.3, 0, accuracy), table.xlast) << accuracy;
        EXPECT_GT(FNCHypergeometricCDF(table.xfirst, 90, 60, 200, 1.3, 0, accuracy), 0) << accuracy;
        EXPECT_EQ(FNCHypergeometricCDF(table.xfirst - 1, 90, 60, 200, 1.3, 0, accuracy), 0) << accuracy;
        EXPECT_GT(FNCHypergeometricCDF(table.xlast - 1, 90, 60, 200, 1.3, 1, accuracy), 0) << accuracy;
        EXPECT_EQ(FNCHypergeometricCDF(table.xlast, 90, 60, 200, 1.3, 1, accuracy), 0) << accuracy;
    }
}

TEST(FNCHypergeometricMoments, HaveAnAccuracyOfTenToTheMinusEight) {
    double mean = 0, variance = 0;
    FNCHypergeometricMoments(900, 600, 2000, 1.3, &mean, &variance);
    EXPECT_EQ(mean, FNCExactMoments(FNCRecord(900, 600, 2000, 1.3, 1e-8)).mean);
    EXPECT_NE(mean, FNCExactMoments(FNCRecord(900, 600, 2000, 1.3, 2e-8)).mean);
    EXPECT_NE(mean, FNCExactMoments(FNCRecord(900, 600, 2000, 1.3, 1e-9)).mean);
}

TEST(FNCHypergeometric, OddsZeroAndBelow) {
    EXPECT_EQ(FNCHypergeometricICDF(0.5, 4, 6, 20, 0, 0, 1e-8), 0);
    EXPECT_EQ(FNCHypergeometricICDF(0.5, 4, 6, 20, -1, 0, 1e-8), 0);
    EXPECT_EQ(FNCHypergeometricCDF(0, 4, 6, 20, 0, 0, 1e-8), 1.0);
    double mean = 1, variance = 1;
    FNCHypergeometricMoments(4, 6, 20, -1, &mean, &variance);
    EXPECT_TRUE(std::isnan(mean));
    FNCHypergeometricMoments(15, 6, 20, 0, &mean, &variance);
    EXPECT_TRUE(std::isfinite(mean)) << "sums of the invalid value are finite";
}

TEST(FNCHypergeometric, ANaNMeanIsOutsideTheTable) {
    EXPECT_EQ(FNCHypergeometricCDF(0, 0, 0, 0, 1, 0, 1e-8), FNCInvalidValue);
}

TEST(FNCHypergeometricMoments, OddsOneHaveTheCentralMean) {
    double mean = 0, variance = 0;
    FNCHypergeometricMoments(30, 50, 120, 1, &mean, &variance);
    EXPECT_NEAR(mean, 30.0 * 50 / 120, 1e-9);
    EXPECT_NEAR(variance, 30.0 * 50 * 70 * 90 / (120.0 * 120 * 119), 1e-7);
}

#ifdef ORVANTH_HEAP_IS_PLAIN

TEST(FNCHypergeometricCDF, KeepsItsTableAndTheQuantileReleasesIt) {
    const auto cdf = [] { FNCHypergeometricCDF(20, 40, 60, 120, 1.5, 0, 0); };
    EXPECT_GE(test::HeapGrowth(cdf), 1000 * 41 * 8);
    EXPECT_LT(test::HeapGrowth([] { FNCHypergeometricICDF(0.5, 40, 60, 120, 1.5, 0, 0); }), 16000);
    double mean, variance;
    EXPECT_LT(test::HeapGrowth([&] { FNCHypergeometricMoments(40, 60, 120, 1.5, &mean, &variance); }), 16000);
}
#endif

TEST(FNCHypergeometric, BordersOfTheLogFactorialTable) {
    for (std::int32_t m : {1023, 1024, 1025})
        for (std::int32_t rest : {1023, 1024, 1025}) {
            double mean = 0, variance = 0;
            FNCHypergeometricMoments(900, m, m + rest, 1.5, &mean, &variance);
            const FNCRecord record(900, m, m + rest, 1.5, 1e-8);
            EXPECT_NEAR(mean, FNCMean(record), 0.05) << m << " " << rest;
            EXPECT_NEAR(variance, FNCVariance(record), 0.01 * variance) << m << " " << rest;
        }
}

TEST(FNCHypergeometric, PopulationsOfMillions) {
    const double p = FNCHypergeometricCDF(250000, 500000, 1000000, 2000000, 1, 0, 1e-10);
    EXPECT_NEAR(p, 0.5, 2e-3);
    const double x = FNCHypergeometricICDF(0.5, 500000, 1000000, 2000000, 3, 0, 1e-10);
    EXPECT_NEAR(x, FNCMean(FNCRecord(500000, 1000000, 2000000, 3, 0)), 2);
}

TEST(FNCHypergeometric, EverySenselessInputReturns) {
    double mean, variance;
    for (double odds : {kNaN, kInfinity, 1e300, 1e-300, -1e300, 0.0, -0.0})
        for (std::int32_t n : {-5, 0, 3, 100, INT32_MAX, INT32_MIN})
            for (std::int32_t m : {-5, 0, 7, 2000, INT32_MAX})
                for (std::int32_t N : {-1, 0, 10, 5000}) {
                    FNCHypergeometricCDF(3, n, m, N, odds, 0, 1e-8);
                    FNCHypergeometricICDF(0.5, n, m, N, odds, 1, kNaN);
                    FNCHypergeometricMoments(n, m, N, odds, &mean, &variance);
                }
}

TEST(FNCHypergeometricThread, ThreadsAgree) {
    const double alone = FNCHypergeometricCDF(20, 60, 80, 200, 1.4, 0, 1e-10);
    std::vector<int> agree(6, 0);
    std::vector<std::thread> threads;
    for (int& count : agree)
        threads.emplace_back([&count, alone] {
            double mean, variance;
            for (int i = 0; i < 50; ++i) {
                count += FNCHypergeometricCDF(20, 60, 80, 200, 1.4, 0, 1e-10) == alone;
                FNCHypergeometricMoments(60, 80, 200, 1.4, &mean, &variance);
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int count : agree) EXPECT_EQ(count, 50);
}

}  // namespace
