// The continuous families at the edges of their supports and parameters, and what holds between their functions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "frame/failure.hpp"
#include "orvanth/distributions.h"
#include "orvanth/special.h"
#include "support/call.hpp"

namespace {

using namespace orvanth;
using orvanth::test::CallWithErrno;

constexpr unsigned kSeed = 20261121;

// The value, and errno whether it was 0 or 7 before; 0 stands for "as it was".
#define EXPECT_CALL(call, expected, expectedErrno)                                          \
    for (int before : {0, 7}) {                                                             \
        const auto outcome = CallWithErrno(before, [&] { return call; });                   \
        if (std::isnan(static_cast<double>(expected)))                                      \
            EXPECT_TRUE(std::isnan(outcome.value)) << #call << " = " << outcome.value;      \
        else                                                                                \
            EXPECT_EQ(outcome.value, expected) << #call;                                    \
        EXPECT_EQ(outcome.errnoAfter, (expectedErrno) ? (expectedErrno) : before) << #call; \
    }

TEST(BetaDistribution, EndsOfTheSupport) {
    EXPECT_CALL(BetaCDF(1.5, 2, 3, 0), kNaN, 33);
    EXPECT_CALL(BetaCDF(-0.5, 2, 3, 1), kNaN, 33);
    EXPECT_CALL(BetaCDF(kInfinity, 2, 3, 0), kNaN, 33);
    EXPECT_CALL(BetaCDF(0, 2, 3, 0), 0, 0);
    EXPECT_CALL(BetaCDF(0, 2, 3, 1), 1, 0);
    EXPECT_CALL(BetaCDF(1, 2, 3, 0), 1, 0);
    EXPECT_CALL(BetaCDF(1, 2, 3, 1), 0, 0);
    EXPECT_CALL(BetaPDF(0, 0.5, 3), kInfinity, 34);
    EXPECT_CALL(BetaPDF(1, 3, 0.5), kInfinity, 34);
    EXPECT_CALL(BetaPDF(0, 2, 3), 0, 0);
    EXPECT_CALL(BetaPDF(1, 2, 3), 0, 0);
    EXPECT_NEAR(BetaPDF(0, 1, 3), 3, 1e-15);
    EXPECT_NEAR(BetaPDF(1, 3, 1), 3, 1e-15);
    EXPECT_CALL(BetaICDF(0, 2, 3, 0), 0, 0);
    EXPECT_CALL(BetaICDF(1, 2, 3, 0), 1, 0);
    EXPECT_CALL(BetaICDF(1, 2, 3, 1), 0, 0);
    EXPECT_CALL(BetaICDF(0, 2, 3, 1), 1, 0);
}

TEST(GammaDistribution, EndsOfTheSupport) {
    EXPECT_CALL(GammaPDF(0, 0.5, 1), 0, 0);
    EXPECT_CALL(GammaPDF(0, 1, 1), 0, 0);
    EXPECT_CALL(GammaPDF(0, 2, 1), 0, 0);
    EXPECT_CALL(GammaCDF(0, 2, 1, 0), 0, 0);
    EXPECT_CALL(GammaCDF(0, 2, 1, 1), 1, 0);
    EXPECT_CALL(GammaCDF(1, 2, -1, 0), kNaN, 33);
    EXPECT_CALL(GammaCDF(kInfinity, 2, 1, 0), kNaN, 33);
    EXPECT_CALL(GammaCDF(-1, 2, 1, 0), kNaN, 33);
    EXPECT_CALL(GammaICDF(1, 2, 1, 0), kInfinity, 34);
    EXPECT_CALL(GammaICDF(0, 2, 1, 1), kInfinity, 34);
    EXPECT_CALL(GammaICDF(0, 2, 1, 0), 0, 0);
    EXPECT_CALL(GammaICDF(1, 2, 1, 1), 0, 0);
    EXPECT_CALL(GammaICDF(1.5, 2, 1, 0), kNaN, 33);
}

TEST(ChiSquaredDistribution, EndsOfTheSupport) {
    EXPECT_CALL(ChiSquaredPDF(0, 1), kInfinity, 34);
    EXPECT_CALL(ChiSquaredPDF(0, 2), 0.5, 0);
    EXPECT_CALL(ChiSquaredPDF(0, 3), 0, 0);
    EXPECT_CALL(ChiSquaredCDF(kInfinity, 3, 0), kNaN, 33);
    EXPECT_CALL(ChiSquaredCDF(-1, 3, 1), kNaN, 33);
}

TEST(ChiSquaredICDF, ACertainEventIsAnUnmarkedInfinity) {
    EXPECT_CALL(ChiSquaredICDF(1, 3, 0), kInfinity, 0);
    EXPECT_CALL(ChiSquaredICDF(0, 3, 1), kInfinity, 0);
    EXPECT_CALL(ChiSquaredICDF(0, 3, 0), 0, 0);
    EXPECT_CALL(ChiSquaredICDF(1, 3, 1), 0, 0);
}

TEST(FisherFDistribution, EndsOfTheSupport) {
    EXPECT_CALL(FisherFPDF(0, 1, 5), kInfinity, 34);
    EXPECT_CALL(FisherFPDF(0, 2, 5), 1, 0);
    EXPECT_CALL(FisherFPDF(0, 3, 5), 0, 0);
    EXPECT_CALL(FisherFCDF(kInfinity, 3, 5, 0), kNaN, 33);
    EXPECT_CALL(FisherFCDF(0, 3, 5, 0), 0, 0);
    EXPECT_CALL(FisherFCDF(0, 3, 5, 1), 1, 0);
    EXPECT_CALL(FisherFICDF(0, 3, 5, 0), 0, 0);
    EXPECT_CALL(FisherFICDF(1.5, 3, 5, 0), kNaN, 33);
}

TEST(StudentTDistribution, EdgesOfEachFunction) {
    EXPECT_CALL(StudentTPDF(kNaN, 5), kNaN, 0);
    EXPECT_CALL(StudentTPDF(kInfinity, 5), 0, 0);
    EXPECT_CALL(StudentTPDF(-kInfinity, 5), 0, 0);
    EXPECT_CALL(StudentTCDF(0, 5, 0), 0.5, 0);
    EXPECT_CALL(StudentTICDF(0, 5, 0), -kInfinity, 34);
    EXPECT_CALL(StudentTICDF(1, 5, 0), kInfinity, 34);
    EXPECT_CALL(StudentTICDF(0, 5, 1), kInfinity, 34);
    EXPECT_CALL(StudentTICDF(0.5, 5, 0), 0, 0);
    EXPECT_FALSE(std::signbit(StudentTICDF(0.5, 5, 0)));
    EXPECT_TRUE(std::signbit(StudentTICDF(0.5, 5, 1))) << "the flag negates zero too";
}

TEST(Distributions, InfiniteDegreesOfFreedomAreNone) {
    EXPECT_CALL(StudentTPDF(1, kInfinity), kNaN, 33);
    EXPECT_CALL(StudentTCDF(1, kInfinity, 0), kNaN, 33);
    EXPECT_CALL(StudentTICDF(0.3, kInfinity, 0), kNaN, 33);
    EXPECT_CALL(ChiSquaredPDF(1, kInfinity), kNaN, 33);
    EXPECT_CALL(ChiSquaredCDF(1, kInfinity, 0), kNaN, 33);
    EXPECT_CALL(ChiSquaredICDF(0.3, kInfinity, 0), kNaN, 33);
    EXPECT_CALL(FisherFPDF(1, 3, kInfinity), kNaN, 33);
    EXPECT_CALL(FisherFCDF(1, kInfinity, 3, 0), kNaN, 33);
    EXPECT_CALL(FisherFICDF(0.3, kInfinity, 3, 0), kNaN, 33);
}

TEST(Distributions, BadParametersGiveNaNAndErrno33) {
    for (double bad : {0.0, -1.0, kNaN, kInfinity, -kInfinity}) {
        EXPECT_CALL(BetaPDF(0.3, bad, 2), kNaN, 33);
        EXPECT_CALL(BetaCDF(0.3, 2, bad, 1), kNaN, 33);
        EXPECT_CALL(BetaICDF(0.3, bad, bad, 0), kNaN, 33);
        EXPECT_CALL(GammaPDF(0.3, bad, 2), kNaN, 33);
        EXPECT_CALL(GammaCDF(0.3, 2, bad, 1), kNaN, 33);
        EXPECT_CALL(GammaICDF(0.3, bad, bad, 0), kNaN, 33);
        EXPECT_CALL(ChiSquaredPDF(0.3, bad), kNaN, 33);
        EXPECT_CALL(ChiSquaredCDF(0.3, bad, 1), kNaN, 33);
        EXPECT_CALL(FisherFPDF(0.3, bad, 2), kNaN, 33);
        EXPECT_CALL(FisherFCDF(0.3, 2, bad, 1), kNaN, 33);
        EXPECT_CALL(StudentTPDF(0.3, bad), kNaN, 33);
        EXPECT_CALL(StudentTCDF(0.3, bad, 1), kNaN, 33);
    }
}

// Three quantiles return early only for a bad first parameter with a good rest; all else goes on into the inverse.
TEST(Distributions, TheQuantileRuleEndsInErrno33) {
    for (double p : {-0.25, 1.25, kNaN}) {
        for (double df : {3.0, -3.0}) {
            const bool noted = df < 0 || !std::isnan(p);  // a NaN is neither below nor above: it passes
            EXPECT_EQ(CallWithErrno(0, [&] { return ChiSquaredICDF(p, df, 0); }).errnoAfter, noted ? 33 : 0);
            EXPECT_EQ(CallWithErrno(0, [&] { return FisherFICDF(p, df, 5, 0); }).errnoAfter, noted ? 33 : 0);
            EXPECT_CALL(StudentTICDF(p, df, 0), kNaN, 33);
        }
        EXPECT_CALL(BetaICDF(p, 2, 3, 0), kNaN, 33);
        EXPECT_CALL(GammaICDF(p, 2, 3, 0), kNaN, 33);
    }
    EXPECT_CALL(ChiSquaredICDF(0.5, -3, 0), kNaN, 33);
    EXPECT_CALL(FisherFICDF(0.5, -3, 5, 0), kNaN, 33);
}

struct Case {
    double a, b, x;
};

template <class Function>
void ForRandomCases(Function function) {
    std::mt19937_64 random(kSeed);
    std::uniform_real_distribution<double> exponent(-1.5, 3), unit(0, 1);
    std::printf("  seed %u\n", kSeed);
    for (int i = 0; i < 3000; ++i)
        function(Case{std::pow(10, exponent(random)), std::pow(10, exponent(random)), unit(random)});
}

TEST(Distributions, TheTailsAddUpToOne) {
    ForRandomCases([](const Case& c) {
        const double x = c.x / (1 - c.x) * c.a;
        EXPECT_NEAR(BetaCDF(c.x, c.a, c.b, 0) + BetaCDF(c.x, c.a, c.b, 1), 1, 1e-13);
        EXPECT_NEAR(GammaCDF(x, c.a, c.b, 0) + GammaCDF(x, c.a, c.b, 1), 1, 1e-13);
        EXPECT_NEAR(ChiSquaredCDF(x, c.a, 0) + ChiSquaredCDF(x, c.a, 1), 1, 1e-13);
        EXPECT_NEAR(FisherFCDF(x, c.a, c.b, 0) + FisherFCDF(x, c.a, c.b, 1), 1, 1e-13);
        EXPECT_NEAR(StudentTCDF(x, c.a, 0) + StudentTCDF(x, c.a, 1), 1, 1e-13);
    });
}

TEST(StudentTDistribution, IsSymmetricBitForBit) {
    ForRandomCases([](const Case& c) {
        const double x = 10 * c.x - 5;
        EXPECT_EQ(StudentTCDF(x, c.a, 1), StudentTCDF(-x, c.a, 0));
        EXPECT_EQ(StudentTPDF(x, c.a), StudentTPDF(-x, c.a));
        EXPECT_EQ(StudentTICDF(c.x, c.a, 1), -StudentTICDF(c.x, c.a, 0));
    });
}

// Apart from the last digits.
TEST(Distributions, GrowWithX) {
    const auto grows = [](double at, double further) { EXPECT_LE(at, further * (1 + 1e-13)); };
    ForRandomCases([&](const Case& c) {
        const double x = c.x / (1 - c.x) * c.a, further = x * 1.001;
        grows(GammaCDF(x, c.a, 1, 0), GammaCDF(further, c.a, 1, 0));
        grows(ChiSquaredCDF(further, c.a, 1), ChiSquaredCDF(x, c.a, 1));
        grows(FisherFCDF(x, c.a, c.b, 0), FisherFCDF(further, c.a, c.b, 0));
        grows(StudentTCDF(x, c.a, 0), StudentTCDF(further, c.a, 0));
        grows(BetaCDF(c.x * 0.999, c.a, c.b, 0), BetaCDF(c.x, c.a, c.b, 0));
    });
}

// Of the smaller tail, where a quantile can be told from its neighbours.
TEST(Distributions, TheCumulativeProbabilityOfAQuantileIsItsProbability) {
    ForRandomCases([](const Case& c) {
        const int tail = c.x > 0.5;
        const double p = (tail ? 1 - c.x : c.x) + 1e-6, tolerance = 1e-11 * p;
        EXPECT_NEAR(GammaCDF(GammaICDF(p, c.a, c.b, tail), c.a, c.b, tail), p, tolerance) << c.a;
        EXPECT_NEAR(ChiSquaredCDF(ChiSquaredICDF(p, c.a, tail), c.a, tail), p, tolerance) << c.a;
        if (c.a > 0.3 && c.b > 0.3) {
            EXPECT_NEAR(FisherFCDF(FisherFICDF(p, c.a, c.b, tail), c.a, c.b, tail), p, tolerance)
                << c.a << " " << c.b;
            EXPECT_NEAR(BetaCDF(BetaICDF(p, c.a, c.b, tail), c.a, c.b, tail), p, 1e-9 * p) << c.a << " " << c.b;
        }
        EXPECT_NEAR(StudentTCDF(StudentTICDF(p, c.a, tail), c.a, tail), p, tolerance) << c.a;
    });
}

// A TailFlag is its low byte: 0x100 is clear, 0x101 and 0xFFFFFF02 are set.
template <class Function>
void ExpectLowByteDecides(const char* name, Function function) {
    ASSERT_NE(function(0), function(1)) << name;
    EXPECT_EQ(function(0x100), function(0)) << name;
    EXPECT_EQ(function(0x101), function(1)) << name;
    EXPECT_EQ(function(static_cast<TailFlag>(0xFFFFFF02u)), function(1)) << name;
}

TEST(Distributions, OnlyTheLowByteOfTheTailFlagCounts) {
    ExpectLowByteDecides("BetaCDF", [](TailFlag tail) { return BetaCDF(0.3, 2, 3, tail); });
    ExpectLowByteDecides("BetaCDF at 0", [](TailFlag tail) { return BetaCDF(0, 2, 3, tail); });
    ExpectLowByteDecides("BetaCDF at 1", [](TailFlag tail) { return BetaCDF(1, 2, 3, tail); });
    ExpectLowByteDecides("BetaICDF", [](TailFlag tail) { return BetaICDF(0.3, 2, 3, tail); });
    ExpectLowByteDecides("BetaICDF at 0", [](TailFlag tail) { return BetaICDF(0, 2, 3, tail); });
    ExpectLowByteDecides("BetaICDF at 1", [](TailFlag tail) { return BetaICDF(1, 2, 3, tail); });
    ExpectLowByteDecides("ChiSquaredCDF", [](TailFlag tail) { return ChiSquaredCDF(2, 3, tail); });
    ExpectLowByteDecides("ChiSquaredICDF", [](TailFlag tail) { return ChiSquaredICDF(0.3, 3, tail); });
    ExpectLowByteDecides("FisherFCDF, small x", [](TailFlag tail) { return FisherFCDF(0.5, 3, 4, tail); });
    ExpectLowByteDecides("FisherFCDF, large x", [](TailFlag tail) { return FisherFCDF(5, 3, 4, tail); });
    ExpectLowByteDecides("FisherFICDF", [](TailFlag tail) { return FisherFICDF(0.3, 3, 4, tail); });
    ExpectLowByteDecides("GammaCDF", [](TailFlag tail) { return GammaCDF(2, 3, 1, tail); });
    ExpectLowByteDecides("GammaICDF", [](TailFlag tail) { return GammaICDF(0.3, 3, 1, tail); });
    ExpectLowByteDecides("GammaICDF at 1", [](TailFlag tail) { return GammaICDF(1, 3, 1, tail); });
    ExpectLowByteDecides("NormalCDF", [](TailFlag tail) { return NormalCDF(1, 0, 1, tail); });
    ExpectLowByteDecides("NormalICDF", [](TailFlag tail) { return NormalICDF(0.3, 0, 1, tail); });
    ExpectLowByteDecides("StudentTCDF", [](TailFlag tail) { return StudentTCDF(1, 3, tail); });
    ExpectLowByteDecides("StudentTICDF", [](TailFlag tail) { return StudentTICDF(0.3, 3, tail); });
}

// The second parameter is tested for errno 33; with a good first one the call goes on into the inverse.
TEST(FisherFICDF, TheSecondParameterIsTested) {
    for (double bad : {0.0, -1.0, kNaN, kInfinity}) {
        EXPECT_EQ(CallWithErrno(0, [=] { return FisherFICDF(0.3, 3, bad, 0); }).errnoAfter, 33) << bad;
        EXPECT_EQ(CallWithErrno(0, [=] { return FisherFICDF(0.3, 3, bad, 1); }).errnoAfter, 33) << bad;
        EXPECT_CALL(FisherFICDF(0.3, bad, bad, 0), kNaN, 33);
    }
}

}  // namespace
