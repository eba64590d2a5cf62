#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "frame/failure.hpp"
#include "orvanth/distributions.h"
#include "orvanth/special.h"
#include "support/call.hpp"
#include "support/errors.hpp"
#include "support/many_digits.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;
using orvanth::test::RelativeError;
using orvanth::test::Wide;

constexpr unsigned kSeed = 20240118;

TEST(NormalPDF, InfiniteXIsAnsweredAheadOfABadParameter) {
    const auto call = CallWithErrno(0, [] { return NormalPDF(kInfinity, 0, -1); });
    EXPECT_EQ(call.value, 0);
    EXPECT_EQ(call.errnoAfter, 33);
    EXPECT_EQ(CallWithErrno(0, [] { return NormalPDF(-kInfinity, 0, 1); }).errnoAfter, 0);
}

TEST(NormalCDF, OnlyTheUpperTailAnswersInfiniteXAheadOfTheParameters) {
    const auto lower = CallWithErrno(0, [] { return NormalCDF(kInfinity, 0, -1, 0); });
    EXPECT_TRUE(std::isnan(lower.value));
    EXPECT_EQ(lower.errnoAfter, 33);
    const auto upper = CallWithErrno(0, [] { return NormalCDF(kInfinity, 0, -1, 1); });
    EXPECT_EQ(upper.value, 0);
    EXPECT_EQ(upper.errnoAfter, 33);
    EXPECT_EQ(NormalCDF(-kInfinity, 0, -1, 1), 1);
    EXPECT_EQ(NormalCDF(kInfinity, 0, 1, 0), 1);
    EXPECT_EQ(NormalCDF(-kInfinity, 0, 1, 0), 0);
}

TEST(NormalICDF, EndsAreInfiniteWithErrno34) {
    const auto low = CallWithErrno(0, [] { return NormalICDF(0, 0, 1, 0); });
    EXPECT_EQ(low.value, -kInfinity);
    EXPECT_EQ(low.errnoAfter, 34);
    EXPECT_EQ(NormalICDF(1, 0, 1, 0), kInfinity);
    EXPECT_EQ(NormalICDF(0, 0, 1, 1), kInfinity);
    EXPECT_EQ(NormalICDF(1, 0, 1, 1), -kInfinity);
}

TEST(NormalICDF, ProbabilityOutsideTheRangeIsNaNWithErrno33) {
    for (double p : {1.5, -0.1, kNaN, kInfinity}) {
        const auto call = CallWithErrno(0, [=] { return NormalICDF(p, 0, 1, 0); });
        EXPECT_TRUE(std::isnan(call.value)) << p;
        EXPECT_EQ(call.errnoAfter, 33) << p;
    }
}

TEST(Normal, BadParametersGiveNaNWithErrno33) {
    for (double sd : {0.0, -1.0, kNaN, kInfinity})
        for (TailFlag tail : {0, 1}) {
            EXPECT_EQ(CallWithErrno(0, [=] { return NormalCDF(0.5, 0, sd, tail); }).errnoAfter, 33) << sd;
            EXPECT_TRUE(std::isnan(NormalCDF(0.5, 0, sd, tail)));
            EXPECT_TRUE(std::isnan(NormalICDF(0.5, 0, sd, tail)));
            EXPECT_TRUE(std::isnan(NormalPDF(0.5, 0, sd)));
        }
    for (double mean : {kNaN, kInfinity}) {
        EXPECT_EQ(CallWithErrno(0, [=] { return NormalPDF(0.5, mean, 1); }).errnoAfter, 33) << mean;
        EXPECT_TRUE(std::isnan(NormalCDF(0.5, mean, 1, 0)));
    }
    EXPECT_EQ(CallWithErrno(0, [] { return NormalCDF(kNaN, 0, 1, 0); }).errnoAfter, 33);
}

TEST(Normal, ErrnoShowsTheEarlierFailureUntilSomeoneClearsIt) {
    errno = 0;
    NormalCDF(0.5, 0, -1, 0);
    EXPECT_DOUBLE_EQ(NormalCDF(0, 0, 1, 0), 0.5);
    EXPECT_EQ(errno, 33);
    errno = 0;
}

TEST(NormalCDF, OnlyTheLowByteOfTheTailFlagCounts) {
    EXPECT_EQ(NormalCDF(1, 0, 1, 0x100), NormalCDF(1, 0, 1, 0));
    EXPECT_EQ(NormalCDF(1, 0, 1, 0x1FF), NormalCDF(1, 0, 1, 1));
}

TEST(Normal, UnderflowOfTheRuntimeDoesNotReachErrno) {
    EXPECT_EQ(CallWithErrno(0, [] { return NormalPDF(100, 0, 1); }).errnoAfter, 0);
    EXPECT_EQ(CallWithErrno(0, [] { return NormalCDF(-100, 0, 1, 0); }).errnoAfter, 0);
}

TEST(NormalCDF, TailsMirrorEachOther) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-30, 30);
    for (int i = 0; i < 10000; ++i) {
        const double x = point(random);
        EXPECT_EQ(NormalCDF(x, 0, 1, 1), NormalCDF(-x, 0, 1, 0)) << std::hexfloat << x;
        EXPECT_NEAR(NormalCDF(x, 0, 1, 0) + NormalCDF(x, 0, 1, 1), 1, 3e-16) << std::hexfloat << x;
    }
}

TEST(NormalCDF, AgreesWithFiftyDigits) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-8, 8);
    double worst = 0;
    for (int i = 0; i < 3000; ++i) {
        const double x = point(random);
        const Wide exact = erfc(-Wide(x) / sqrt(Wide(2))) / 2;
        worst = std::max(worst, RelativeError(NormalCDF(x, 0, 1, 0), exact));
    }
    std::printf("  seed %u; worst relative error %.2e\n", kSeed, worst);
    EXPECT_LT(worst, 2e-14);  // the rounding of x/sqrt(2), magnified by x squared
}

TEST(NormalICDF, InvertsNormalCDF) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> point(-7, 7);
    for (int i = 0; i < 10000; ++i) {
        const double x = point(random);
        const TailFlag tail = x > 0;  // the tail that keeps its digits
        EXPECT_NEAR(NormalICDF(NormalCDF(x, 3, 2, tail), 3, 2, tail), x, 2e-14 * (std::fabs(x) + 3))
            << std::hexfloat << x;
    }
}

TEST(NormalICDF, IsMonotone) {
    double before = -kInfinity;
    for (int i = 1; i < 20000; ++i) {
        const double x = NormalICDF(i / 20000.0, 0, 1, 0);
        EXPECT_GT(x, before) << i;
        before = x;
    }
}

}  // namespace
