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

TEST(FNCLogFactorial, EndsOfTheTable) {
    EXPECT_EQ(FNCLogFactorial(0), 0.0);
    EXPECT_EQ(FNCLogFactorial(1), 0.0);
    EXPECT_EQ(FNCLogFactorial(2), 0.6931471805599453);
    EXPECT_EQ(FNCLogFactorial(-1), FNCInvalidValue);
    EXPECT_EQ(FNCLogFactorial(INT32_MIN), FNCInvalidValue);
    EXPECT_NEAR(FNCLogFactorial(1023) + std::log(1024), FNCLogFactorial(1024), 5e-11);
    EXPECT_NE(FNCLogFactorial(1023) + std::log(1024), FNCLogFactorial(1024));
}

TEST(FNCLogFactorial, TheTableIsARunningSum) {
    double running = 0;
    for (std::int32_t i = 1; i < 1024; ++i) {
        running += std::log(i);
        EXPECT_EQ(FNCLogFactorial(i), running) << i;
    }
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

TEST(FNCTableLength, SupportsOfTwoHundredAndOfOneMore) {
    EXPECT_EQ(FNCTableLength(FNCRecord(199, 1000, 5000, 1.5, 1e-8)), 200);
    const FNCRecord wider(200, 1000, 5000, 1.5, 1e-8);
    const double estimate = std::trunc(std::sqrt(FNCVariance(wider)) * FNCNumSD(1e-8) + 0.5);
    ASSERT_LT(estimate, 201);
    EXPECT_EQ(FNCTableLength(wider), static_cast<std::int32_t>(estimate));
}

TEST(FNCTableLength, NothingWhereNoDistributionExists) {
    EXPECT_FALSE(FNCTableLength(FNCRecord(15, 6, 20, 0, 1e-8))) << "odds 0 with n > N - m";
    EXPECT_FALSE(FNCTableLength(FNCRecord(15, 6, 20, -1, 1e-8)));
    EXPECT_FALSE(FNCTableLength(FNCRecord(12, 6, 10, 2, 1e-8))) << "n > N";
    EXPECT_FALSE(FNCTableLength(FNCRecord(-5, 3, 10, 2, 1e-8)));
    EXPECT_FALSE(FNCTableLength(FNCRecord(300, 300, 1000, kNaN, 1e-8))) << "the variance is a NaN";
    EXPECT_EQ(FNCTableLength(FNCRecord(14, 6, 20, 0, 1e-8)), 1);
    EXPECT_EQ(FNCTableLength(FNCRecord(5, 7, 7, 2, 1e-8)), 1);
}

TEST(FNCMakeTable, ACutoffOfZeroNeverStopsAWalk) {
    std::vector<double> storage(51);
    const FNCTable table = FNCMakeTable(FNCRecord(50, 60, 200, 0.01, 0), 0, storage);
    EXPECT_EQ(table.xfirst, 0);
    EXPECT_EQ(table.xlast, 50);
    EXPECT_EQ(table.entries.size(), 51u);
}

TEST(FNCMakeTable, AnEntryEqualToTheCutoffDoesNotStopAWalk) {
    const FNCRecord record(50, 60, 200, 1.3, 0);
    std::vector<double> storage(51);
    const FNCTable whole = FNCMakeTable(record, 0, storage);
    const std::vector<double> entries(whole.entries.begin(), whole.entries.end());
    const std::ptrdiff_t mode = std::max_element(entries.begin(), entries.end()) - entries.begin();
    for (std::ptrdiff_t away : {3, 5, 8}) {
        // Down: the walk goes on from the entry that equals the cutoff, and ends behind the next one.
        std::vector<double> cut(51);
        const FNCTable down = FNCMakeTable(record, entries[static_cast<std::size_t>(mode - away)], cut);
        EXPECT_EQ(down.xfirst, mode - away - 1);
        const FNCTable up = FNCMakeTable(record, entries[static_cast<std::size_t>(mode + away)], cut);
        EXPECT_EQ(up.xlast, mode + away + 1);
    }
}

TEST(FNCMakeTable, ASinglePointHasOneEntry) {
    std::vector<double> storage(1);
    const FNCTable table = FNCMakeTable(FNCRecord(5, 7, 7, 2, 1e-8), 0, storage);
    EXPECT_EQ(table.sum, 1.0);
    EXPECT_EQ(table.xfirst, 5);
    EXPECT_EQ(table.xlast, 5);
    EXPECT_EQ(storage[0], 1.0);
}

TEST(FNCMakeTable, OddsOneUseTheCentralRatios) {
    std::vector<double> storage(6);
    const FNCTable table = FNCMakeTable(FNCRecord(5, 6, 20, 1, 0), 0, storage);
    const std::vector<Rational> p = ExactProbabilities(5, 6, 20, 1);
    for (std::size_t i = 0; i < p.size(); ++i)
        EXPECT_NEAR(table.entries[i] / table.sum, static_cast<double>(p[i]), 1e-15);
}

TEST(FNCMean, TakesTheEstimateOfOddsOneBelowADistanceThatGrowsWithThePopulation) {
    for (const auto& [N, border] :
         {std::pair{100, 1e-12}, {1000, 1e-12}, {1000000, 1e-9}, {INT32_MAX, 2.147483647e-6}}) {
        const std::int32_t n = N / 2, m = N / 5;
        const double central = static_cast<double>(m) * n / N;
        for (double sign : {-1.0, 1.0}) {
            EXPECT_EQ(FNCMean(FNCRecord(n, m, N, 1 + sign * border * 0.999, 0)), central) << N;
            EXPECT_NE(FNCMean(FNCRecord(n, m, N, 1 + sign * border * 1.01, 0)), central) << N;
            EXPECT_NEAR(FNCMean(FNCRecord(n, m, N, 1 + sign * border * 1.01, 0)), central,
                        0.2 + 1.1 * border * FNCVariance(FNCRecord(n, m, N, 1, 0)))
                << N;
        }
    }
}

TEST(FNCCentre, IsRaisedToTheLowerEndOfTheSupportButNotLoweredToTheUpper) {
    // Only counts that no population has lead above the support.
    const FNCRecord above(1200000000, 1200000000, 2, 2, 1e-8);
    ASSERT_EQ(FNCMean(above), 1200000001);
    ASSERT_EQ(above.xmax, 1200000000);
    EXPECT_EQ(FNCCentre(above), 1200000001);
    const FNCRecord noNumber(5, 6, 8, kNaN, 1e-8);
    EXPECT_EQ(noNumber.xmin, 3);
    EXPECT_EQ(FNCCentre(noNumber), 3) << "a NaN truncates to the most negative integer";
    EXPECT_EQ(FNCCentre(FNCRecord(50, 40, 100, 1, 1e-8)), 20);
}

TEST(FNCVariance, IsZeroAtTheEnds) {
    EXPECT_EQ(FNCVariance(FNCRecord(0, 5, 10, 2, 0)), 0.0);
    EXPECT_EQ(FNCVariance(FNCRecord(10, 5, 10, 2, 0)), 0.0);
}

TEST(FNCProbability, EdgesOfNAndOdds) {
    const FNCRecord empty(0, 5, 10, 3, 1e-8), central(5, 6, 20, 1, 1e-8), zero(4, 6, 20, 0, 1e-8),
        impossible(15, 6, 20, 0, 1e-8);
    EXPECT_EQ(FNCProbability(empty)(0), 1.0);
    EXPECT_NEAR(FNCProbability(central)(2), static_cast<double>(ExactProbabilities(5, 6, 20, 1)[2]), 1e-14);
    EXPECT_EQ(FNCProbability(zero)(0), 1.0);
    EXPECT_EQ(FNCProbability(zero)(1), 0.0);
    EXPECT_EQ(FNCProbability(impossible)(2), FNCInvalidValue);
    EXPECT_EQ(FNCProbability(impossible)(99), 0.0);
}

TEST(FNCLogTerm, StepsOfOneContinueAndAJumpStartsAfresh) {
    const FNCRecord record(3000, 4000, 9000, 1.3, 1e-8);
    FNCLogTerm term(record), other(record);
    const double start = term(1500);
    EXPECT_EQ(term(1500), start);
    const double byStep = term(1501);
    EXPECT_NEAR(FNCLogTerm(record)(1501), byStep, 1e-9);
    EXPECT_NE(FNCLogTerm(record)(1501), byStep) << "a step and a fresh start round differently";
    const double byJump = term(1503);
    EXPECT_EQ(FNCLogTerm(record)(1503), byJump);
    EXPECT_NEAR(term(1502), other(1502), 1e-9);
}

TEST(FNCProbability, TheSumEndsBehindTheFirstTermBelowATenthOfTheAccuracy) {
    for (double accuracy : {0.5, 0.05, 0.005, 5e-4, 5e-5, 5e-6}) {
        const FNCRecord record(90, 60, 200, 1.3, accuracy);
        FNCLogTerm term(record);
        const std::int32_t center = FNCCentre(record);
        const double scale = term(center);
        double sum = 1;
        for (std::int32_t step : {-1, 1})
            for (std::int32_t x = center + step;; x += step) {
                const double f = std::exp(term(x) - scale);
                sum += f;
                if (accuracy * 0.1 > f) break;
            }
        EXPECT_EQ(FNCProbability(record)(center), 1 / sum) << accuracy;
    }
}

TEST(FNCExactMoments, TheSumEndsBehindTheFirstProbabilityBelowATenthOfTheAccuracy) {
    for (double accuracy : {0.5, 0.05, 0.005, 5e-4, 5e-5, 5e-6}) {
        const FNCRecord record(90, 60, 200, 1.3, accuracy);
        FNCProbability probability(record);
        const std::int32_t center = FNCCentre(record);
        double s0 = 0, s1 = 0, s2 = 0;
        for (std::int32_t step : {1, -1})
            for (std::int32_t x = step > 0 ? center : center - 1;; x += step) {
                const double f = probability(x);
                s0 += f;
                s1 += (x - center) * f;
                s2 += (x - center) * (x - center) * f;
                if (accuracy * 0.1 > f && x != center) break;
            }
        EXPECT_EQ(FNCExactMoments(record).mean, center + s1 / s0) << accuracy;
        EXPECT_EQ(FNCExactMoments(record).variance, s2 / s0 - (s1 / s0) * (s1 / s0)) << accuracy;
    }
}

TEST(FNCExactMoments, ATermBelowTheLimitAtTheCentreDoesNotEndTheWalk) {
    // All terms are below a tenth of this accuracy, so each walk takes one step beyond the centre.
    const FNCRecord record(90, 60, 200, 1.3, 100);
    FNCProbability probability(record);
    const std::int32_t center = FNCCentre(record);
    const double below = probability(center - 1), at = probability(center), above = probability(center + 1);
    EXPECT_NEAR(FNCExactMoments(record).mean, center + (above - below) / (below + at + above), 1e-12);
}

}  // namespace
