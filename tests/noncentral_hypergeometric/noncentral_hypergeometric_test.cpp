#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <thread>
#include <vector>

#include <boost/multiprecision/cpp_bin_float.hpp>
#include <boost/multiprecision/cpp_int.hpp>

#include "frame/load_state.hpp"
#include "frame/policies.hpp"
#include "noncentral_hypergeometric/fnc_record.hpp"
#include "noncentral_hypergeometric/fnc_table.hpp"
#include "noncentral_hypergeometric/log_factorial.hpp"
#include "orvanth/noncentral_hypergeometric.h"
#include "support/heap.hpp"

namespace {

using namespace orvanth;
using Rational = boost::multiprecision::cpp_rational;
using Integer = boost::multiprecision::cpp_int;

constexpr unsigned kSeed = 20240122;

// Before everything else in this program: nothing has filled the table yet.
TEST(AFirst, LogFactorialsOfZeroAndOneDoNotFillTheTable) {
    ASSERT_FALSE(FNCLogFactorialTableIsReady());
    EXPECT_EQ(FNCLogFactorial(0), 0.0);
    EXPECT_EQ(FNCLogFactorial(1), 0.0);
    EXPECT_EQ(FNCLogFactorial(-1), FncInvalidValue);
    EXPECT_GT(FNCLogFactorial(1024), 6000);
    EXPECT_FALSE(FNCLogFactorialTableIsReady());
    FNCLogFactorial(2);
    EXPECT_TRUE(FNCLogFactorialTableIsReady());
}

TEST(FNCLogFactorial, TheTableIsARunningSum) {
    double running = 0;
    for (std::int32_t i = 1; i < 1024; ++i) {
        running += std::log(i);
        EXPECT_EQ(FNCLogFactorial(i), running) << i;
    }
    EXPECT_NEAR(FNCLogFactorial(1023) + std::log(1024), FNCLogFactorial(1024), 5e-11);
    EXPECT_NE(FNCLogFactorial(1023) + std::log(1024), FNCLogFactorial(1024));
    for (std::int32_t k : {1024, 5000, 2147483647}) EXPECT_NEAR(FNCLogFactorial(k) / std::lgamma(k + 1.0), 1, 1e-15);
}

TEST(FNCTruncate, WhatNoIntegerHoldsIsTheMostNegativeOne) {
    for (double value : {kNaN, kInfinity, -kInfinity, 2147483648.0, -2147483649.0, 1e300})
        EXPECT_EQ(FNCTruncate(value), INT32_MIN) << value;
    EXPECT_EQ(FNCTruncate(2147483647.9), INT32_MAX);
    EXPECT_EQ(FNCTruncate(-2147483648.9), INT32_MIN);
    EXPECT_EQ(FNCTruncate(-0.9), 0);
}

TEST(FNCNumSD, StepsOfItsTable) {
    EXPECT_EQ(FNCNumSD(0.01), 6);
    EXPECT_EQ(FNCNumSD(2.699796e-03), 6);
    EXPECT_EQ(FNCNumSD(std::nextafter(2.699796e-03, 0)), 7);
    EXPECT_EQ(FNCNumSD(6.381783e-14), 15);
    EXPECT_EQ(FNCNumSD(1e-20), 16);
    EXPECT_EQ(FNCNumSD(kNaN), 16);
}

// Exact point probabilities by rational sums.
std::vector<Rational> ExactProbabilities(std::int32_t n, std::int32_t m, std::int32_t N, Rational odds) {
    const std::int32_t lo = std::max(n + m - N, 0), hi = std::min(n, m);
    const auto binomial = [](std::int32_t a, std::int32_t b) {
        Integer value = 1;
        for (std::int32_t i = 1; i <= b; ++i) value = value * (a - b + i) / i;
        return value;
    };
    std::vector<Rational> terms;
    Rational power = 1, sum = 0;
    for (std::int32_t x = lo; x <= hi; ++x, power *= odds) {
        terms.push_back(Rational(binomial(m, x) * binomial(N - m, n - x)) * power);
        sum += terms.back();
    }
    for (Rational& term : terms) term /= sum;
    return terms;
}

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
    std::int32_t first = 0, last = 0;
    std::vector<double> table(200);
    const FNCRecord record(100, 100, 400, 2, 100);
    FNCMakeTable(record, table.data(), 101, &first, &last, 0.1);
    EXPECT_LT(last - first, 60);
    EXPECT_EQ(FNCHypergeometricCDF(last + 5, 100, 100, 400, 2, 1, 100), 0.0);
    EXPECT_EQ(FNCHypergeometricCDF(first - 5, 100, 100, 400, 2, 0, 100), 0.0);
}

TEST(FNCMakeTable, SupportsOfTwoHundredAndOfOneMore) {
    std::int32_t first = 0;
    EXPECT_EQ(FNCMakeTable(FNCRecord(199, 1000, 5000, 1.5, 1e-8), nullptr, 0, &first, nullptr, 0), 200);
    EXPECT_EQ(first, 1);
    const FNCRecord wider(200, 1000, 5000, 1.5, 1e-8);
    const double estimate = std::trunc(std::sqrt(FNCVariance(wider)) * FNCNumSD(1e-8) + 0.5);
    ASSERT_LT(estimate, 201);
    EXPECT_EQ(FNCMakeTable(wider, nullptr, 0, nullptr, nullptr, 0), estimate);
}

TEST(FNCMakeTable, ACutoffOfZeroNeverStopsAWalk) {
    std::vector<double> table(51);
    std::int32_t first = -1, last = -1;
    FNCMakeTable(FNCRecord(50, 60, 200, 0.01, 0), table.data(), 51, &first, &last, 0);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 50);
}

TEST(FNCMakeTable, ASinglePointHasOneEntry) {
    std::int32_t first = 0, last = 0;
    double entry = 0;
    const FNCRecord record(5, 7, 7, 2, 1e-8);
    EXPECT_EQ(FNCMakeTable(record, nullptr, 0, &first, nullptr, 0), 1.0);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(FNCMakeTable(record, &entry, 1, &first, &last, 0), 1.0);
    EXPECT_EQ(first, 5);
    EXPECT_EQ(last, 5);
    EXPECT_EQ(entry, 1.0);
}

TEST(FNCMakeTable, OddsOneUseTheCentralRatios) {
    std::vector<double> table(6);
    std::int32_t first = -1, last = -1;
    const double sum = FNCMakeTable(FNCRecord(5, 6, 20, 1, 0), table.data(), 6, &first, &last, 0);
    const std::vector<Rational> p = ExactProbabilities(5, 6, 20, 1);
    for (std::size_t i = 0; i < p.size(); ++i) EXPECT_NEAR(table[i] / sum, static_cast<double>(p[i]), 1e-15);
}

TEST(FNCVariance, IsZeroAtTheEnds) {
    EXPECT_EQ(FNCVariance(FNCRecord(0, 5, 10, 2, 0)), 0.0);
    EXPECT_EQ(FNCVariance(FNCRecord(10, 5, 10, 2, 0)), 0.0);
}

TEST(FNCProbability, EdgesOfNAndOdds) {
    FNCRecord empty(0, 5, 10, 3, 1e-8);
    EXPECT_EQ(FNCProbability(empty, 0), 1.0);
    FNCRecord central(5, 6, 20, 1, 1e-8);
    EXPECT_NEAR(FNCProbability(central, 2), static_cast<double>(ExactProbabilities(5, 6, 20, 1)[2]), 1e-14);
    EXPECT_EQ(central.rsum, 0.0) << "the cache is not touched";
    FNCRecord zero(4, 6, 20, 0, 1e-8);
    EXPECT_EQ(FNCProbability(zero, 0), 1.0);
    EXPECT_EQ(FNCProbability(zero, 1), 0.0);
    FNCRecord impossible(15, 6, 20, 0, 1e-8);
    EXPECT_EQ(FNCProbability(impossible, 2), FncInvalidValue);
    EXPECT_EQ(FNCProbability(impossible, 99), 0.0);
}

TEST(FNCLogTerm, StepsOfOneContinueAndAJumpStartsAfresh) {
    FNCRecord record(3000, 4000, 9000, 1.3, 1e-8);
    const double start = FNCLogTerm(record, 1500);
    EXPECT_EQ(FNCLogTerm(record, 1500), start);
    const double byStep = FNCLogTerm(record, 1501);
    FNCLogTerm(record, 1503);  // a jump of two
    FNCRecord fresh(3000, 4000, 9000, 1.3, 1e-8);
    EXPECT_NEAR(FNCLogTerm(fresh, 1501), byStep, 1e-9);
    EXPECT_EQ(record.xLast, 1503);
    FNCRecord other(3000, 4000, 9000, 1.3, 1e-8);
    EXPECT_EQ(FNCLogTerm(other, 1503), FNCLogTerm(record, 1503));
    EXPECT_NEAR(FNCLogTerm(record, 1502), FNCLogTerm(fresh, 1502), 1e-9);
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

TEST(FNCHypergeometric, TheTailFlagStandsBeforeTheAccuracyAndIsOneByte) {
    const double lower = FNCHypergeometricCDF(5, 10, 12, 30, 2, 0, 1e-8);
    EXPECT_EQ(FNCHypergeometricCDF(5, 10, 12, 30, 2, 0x100, 1e-8), lower);
    EXPECT_NEAR(FNCHypergeometricCDF(5, 10, 12, 30, 2, 0x101, 1e-8), 1 - lower, 1e-15);
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
    EXPECT_EQ(FNCHypergeometricCDF(0, 0, 0, 0, 1, 0, 1e-8), FncInvalidValue);
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

TEST(FNCHypergeometric, InputWithoutARuleReturns) {
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
